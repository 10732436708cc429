// CMS_RECIPIENT_INFO, its list, and the kinds that are not key agreement.
#include "cms/internal/cms_recipient.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<KEY_TRANS_RECIPIENT_INFO> =
    std::tuple(own(&KEY_TRANS_RECIPIENT_INFO::version), own(&KEY_TRANS_RECIPIENT_INFO::rid),
               own(&KEY_TRANS_RECIPIENT_INFO::keyEncryptionAlgorithm), own(&KEY_TRANS_RECIPIENT_INFO::encryptedKey),
               own(&KEY_TRANS_RECIPIENT_INFO::publicKey));
template <>
inline constexpr auto owned_fields<KEK_RECIPIENT_INFO> = std::tuple(own(&KEK_RECIPIENT_INFO::version),
                                                                    own(&KEK_RECIPIENT_INFO::kekid),
                                                                    own(&KEK_RECIPIENT_INFO::keyEncryptionAlgorithm),
                                                                    own(&KEK_RECIPIENT_INFO::encryptedKey),
                                                                    own(&KEK_RECIPIENT_INFO::key));
template <>
inline constexpr auto owned_fields<PASSWORD_RECIPIENT_INFO> =
    std::tuple(own(&PASSWORD_RECIPIENT_INFO::version), own(&PASSWORD_RECIPIENT_INFO::keyDerivationAlgorithm),
               own(&PASSWORD_RECIPIENT_INFO::keyEncryptionAlgorithm), own(&PASSWORD_RECIPIENT_INFO::encryptedKey),
               own(&PASSWORD_RECIPIENT_INFO::password));

void Flat<CMS_SECRET>::release(CMS_SECRET *secret) noexcept {
  if (secret) PKV_Wipe(secret + 1, secret->size);
  velpki::release(secret);
}
owned<CMS_SECRET> new_secret(Octets octets) noexcept {
  owned<CMS_SECRET> secret(static_cast<CMS_SECRET *>(allocate(sizeof(CMS_SECRET) + octets.size())));
  if (!secret) return nullptr;
  secret->size = octets.size();
  copy_octets(secret.get() + 1, octets);
  return secret;
}

namespace {

constexpr int kMissing = F_CMS_RECIPIENT_INFO_TO_SEQ | ERR_ASN1_ENCODING;

// What all kinds end in: keyEncryptionAlgorithm AlgorithmIdentifier, encryptedKey OCTET STRING
template <class R>
bool read_wrapped_key(MessageReader &in, R &out) noexcept {
  return in.record(out.keyEncryptionAlgorithm) && in.octets(out.encryptedKey) && in.end();
}
template <class R>
int write_wrapped_key(const R &info, DerWriter &out) noexcept {
  if (!info.keyEncryptionAlgorithm) return kMissing;
  if (const int code = encode(*info.keyEncryptionAlgorithm, out)) return code;
  out.octets_as(TYPE_OCTET_STRING, info.encryptedKey);
  return 0;
}

}  // namespace

// KeyTransRecipientInfo ::= SEQUENCE { version INTEGER, rid RecipientIdentifier, keyEncryptionAlgorithm, encryptedKey }
int decode(const Tlv &tlv, KEY_TRANS_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && read_identifier(in, out.rid)) read_wrapped_key(in, out);
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}
int encode_members(const KEY_TRANS_RECIPIENT_INFO &info, DerWriter &out) noexcept {
  write_version(info.version, out);
  const int code = write_identifier(info.rid, F_CMS_RECIPIENT_INFO_TO_SEQ, out);
  return code ? code : write_wrapped_key(info, out);
}

// KEKRecipientInfo ::= SEQUENCE { version INTEGER, kekid KEKIdentifier, keyEncryptionAlgorithm, encryptedKey }
int decode(const Tlv &tlv, KEK_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  if (in.integer(out.version) && (in.at(tag::kSequence) || in.stop(Read::malformed)) &&
      read_key_identifier(in, out.kekid)) {
    read_wrapped_key(in, out);
  }
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}
int encode_members(const KEK_RECIPIENT_INFO &info, DerWriter &out) noexcept {
  write_version(info.version, out);
  const int code = write_key_identifier(info.kekid, tag::kSequence, out);
  return code ? code : write_wrapped_key(info, out);
}

// PasswordRecipientInfo ::= SEQUENCE { version INTEGER, keyDerivationAlgorithm [0] IMPLICIT AlgorithmIdentifier
//   OPTIONAL, keyEncryptionAlgorithm, encryptedKey }
int decode(const Tlv &tlv, PASSWORD_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  Tlv child;
  bool read = in.integer(out.version);
  if (read && in.at(tag::explicit_context(0))) {
    read = in.next(child) && in.made(out.keyDerivationAlgorithm = blank<X509_ALGO_IDENTIFIER>()) &&
           in.inner(decode(child, *out.keyDerivationAlgorithm));
  }
  if (read) read_wrapped_key(in, out);
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}
int encode_members(const PASSWORD_RECIPIENT_INFO &info, DerWriter &out) noexcept {
  write_version(info.version, out);
  if (info.keyDerivationAlgorithm) {
    const size_t start = out.size();
    if (const int code = encode(*info.keyDerivationAlgorithm, out)) return code;
    out.retag(start, tag::explicit_context(0));
  }
  return write_wrapped_key(info, out);
}

namespace {

// How the record of a kind is released, read and written.
struct RecipientKind {
  uint8_t identifier;
  void (*release)(void *) noexcept;
  bool (*read)(const Tlv &tlv, MessageReader &in, void *&out) noexcept;
  int (*write)(const void *info, DerWriter &out) noexcept;
};

template <class R>
constexpr RecipientKind kind_of(uint8_t identifier) noexcept {
  return {identifier, [](void *info) noexcept { Flat<R>::release(static_cast<R *>(info)); },
          [](const Tlv &tlv, MessageReader &in, void *&out) noexcept {
            R *record = blank<R>();
            out = record;
            return in.made(record) && in.inner(decode(tlv, *record));
          },
          [](const void *info, DerWriter &out) noexcept { return encode_members(*static_cast<const R *>(info), out); }};
}

// By CMS_RECIPIENT_.
constexpr RecipientKind kKinds[] = {
    kind_of<KEY_TRANS_RECIPIENT_INFO>(tag::kSequence), kind_of<KEY_AGREE_RECIPIENT_INFO>(tag::explicit_context(1)),
    kind_of<KEK_RECIPIENT_INFO>(tag::explicit_context(2)), kind_of<PASSWORD_RECIPIENT_INFO>(tag::explicit_context(3))};

int kind_behind(uint8_t identifier) noexcept {
  for (int kind = 0; kind < CMS_RECIPIENT_OTHER; ++kind)
    if (kKinds[kind].identifier == identifier) return kind;
  return CMS_RECIPIENT_OTHER;
}

bool read_other(const Tlv &tlv, MessageReader &in, void *&out) noexcept {
  if (!tag::is_context_or_private(tlv.identifier)) return in.stop(Read::malformed);
  ASN1_UNIT *unit = nullptr;
  if (!in.keep(read_unit(tlv, unit))) return false;
  out = unit;
  return true;
}

}  // namespace

void drop_info(CMS_RECIPIENT_INFO &recipient) noexcept {
  if (recipient.kind >= 0 && recipient.kind < CMS_RECIPIENT_OTHER) {
    kKinds[recipient.kind].release(recipient.info);
  } else {
    free_ASN1_UNIT(static_cast<ASN1_UNIT *>(recipient.info));
  }
  recipient = CMS_RECIPIENT_INFO();
}

// RecipientInfo ::= CHOICE { ktri KeyTransRecipientInfo, kari [1] KeyAgreeRecipientInfo, kekri [2] KEKRecipientInfo,
//   pwri [3] PasswordRecipientInfo, ori [4] OtherRecipientInfo }
int decode(const Tlv &tlv, CMS_RECIPIENT_INFO &out) noexcept {
  MessageReader in(tlv);
  out.kind = kind_behind(tlv.identifier);
  out.kind == CMS_RECIPIENT_OTHER ? read_other(tlv, in, out.info) : kKinds[out.kind].read(tlv, in, out.info);
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFO);
}

int encode(const CMS_RECIPIENT_INFO &recipient, DerWriter &out) noexcept {
  if (!recipient.info || recipient.kind < 0 || recipient.kind > CMS_RECIPIENT_OTHER) return kMissing;
  if (recipient.kind == CMS_RECIPIENT_OTHER) return out.unit(static_cast<const ASN1_UNIT *>(recipient.info)), 0;
  const auto scope = out.constructed(kKinds[recipient.kind].identifier);
  return kKinds[recipient.kind].write(recipient.info, out);
}

// RecipientInfos ::= SET OF RecipientInfo
int decode_cms_recipient_infos(const Tlv &tlv, STACK &out) noexcept {
  MessageReader in(tlv);
  if (!reserve_stack(&out, count_values(in.rest(), in.rules()))) in.stop(Read::no_memory);
  while (in.reason() == Read::ok && !in.at_end()) {
    Tlv child;
    owned<CMS_RECIPIENT_INFO> recipient(new_CMS_RECIPIENT_INFO());
    if (!in.made(recipient.get()) || !in.next(child) || !in.inner(decode(child, *recipient))) break;
    if (!append(&out, recipient)) in.stop(Read::no_memory);
  }
  return in.result(F_SEQ_TO_CMS_RECIPIENT_INFOS);
}

int encode_cms_recipient_infos(const STACK &recipients, DerWriter &out) noexcept {
  return encode_list<CMS_RECIPIENT_INFO>(recipients, out, tag::kSet, F_CMS_RECIPIENT_INFOS_TO_SEQ, encode,
                                         out.rules().standard);
}

}  // namespace velpki

using namespace velpki;

VELPKI_NEW_AND_FREE(KEY_TRANS_RECIPIENT_INFO)
VELPKI_NEW_AND_FREE(KEK_RECIPIENT_INFO)
VELPKI_NEW_AND_FREE(PASSWORD_RECIPIENT_INFO)
VELPKI_LIST(CMS_RECIPIENT_INFOS, CMS_RECIPIENT_INFO)

CMS_RECIPIENT_INFO *new_CMS_RECIPIENT_INFO(void) noexcept { return allocate_record<CMS_RECIPIENT_INFO>(); }
void free_CMS_RECIPIENT_INFO(CMS_RECIPIENT_INFO *p) noexcept {
  if (!p) return;
  drop_info(*p);
  release(p);
}

int CMS_RECIPIENT_INFO_to_Seq(const CMS_RECIPIENT_INFO *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_RECIPIENT_INFO_TO_SEQ, in, out, encode);
}
int Seq_to_CMS_RECIPIENT_INFO(ASN1_UNIT *in, CMS_RECIPIENT_INFO **out) noexcept {
  return from_seq(F_SEQ_TO_CMS_RECIPIENT_INFO, in, out, decode);
}
int CMS_RECIPIENT_INFOS_to_Seq(const CMS_RECIPIENT_INFOS *in, ASN1_UNIT **out) noexcept {
  return to_seq(F_CMS_RECIPIENT_INFOS_TO_SEQ, in, out, encode_cms_recipient_infos);
}
int Seq_to_CMS_RECIPIENT_INFOS(ASN1_UNIT *in, CMS_RECIPIENT_INFOS **out) noexcept {
  return list_from_seq<CMS_RECIPIENT_INFO>(F_SEQ_TO_CMS_RECIPIENT_INFOS, in, out, decode_cms_recipient_infos);
}
