// VID: the digest of the digest of an identity number and the random octets kept beside the private key.
#include <velpki/asn1_error.h>

#include "korea/internal/kisa.h"

namespace velpki {

template <>
inline constexpr auto owned_fields<VID> = std::tuple(own(&VID::hashAlg), own(&VID::virtualID));

// VID ::= SEQUENCE { hashAlg AlgorithmIdentifier, virtualID [0] EXPLICIT OCTET STRING }
int decode(const Tlv &tlv, VID &out) noexcept {
  Cursor in(tlv);
  Tlv wrapper;
  if (read_algorithm(in, out.hashAlg) && in.next(wrapper) && ends(in)) {
    Cursor inner(wrapper);
    if (wrapper.identifier != tag::explicit_context(0) || !inner.at(TYPE_OCTET_STRING))
      in.stop(Read::malformed);
    else if (inner.string(TYPE_OCTET_STRING, out.virtualID))
      ends(inner);
    in.absorb(inner);
  }
  return in.result(F_SEQ_TO_VID);
}
int encode(const VID &vid, DerWriter &out) noexcept {
  if (!vid.hashAlg) return fail(F_VID_TO_SEQ, ERR_ASN1_ENCODING);
  const auto sequence = out.sequence();
  if (const int code = encode(*vid.hashAlg, out)) return code;
  const auto wrapper = out.explicit_context(0);
  out.octets_as(TYPE_OCTET_STRING, vid.virtualID);
  return out.result(F_VID_TO_SEQ);
}

namespace {

// PrintableString (X.680 41.4).
bool is_printable(Octets text) noexcept {
  constexpr std::string_view kMarks = " '()+,-./:=?";
  for (const uint8_t c : text) {
    const bool letter = (c | 0x20) >= 'a' && (c | 0x20) <= 'z', digit = c >= '0' && c <= '9';
    if (!letter && !digit && kMarks.find(char(c)) == kMarks.npos) return false;
  }
  return true;
}

struct Secret {
  Octets number, random;
};

int secret_of(const char *idn, int idn_length, const unsigned char *random, int random_length, int function,
              Secret &out) noexcept {
  if (!idn || !random) return fail(function, kNullArgument);
  out = {measured(idn, idn_length), octets_of(random, random_length)};
  const bool fits = !out.number.empty() && !out.random.empty() && is_printable(out.number);
  return fits ? 0 : fail(function, kBadValue);
}

// HashContent ::= SEQUENCE { idn PrintableString, randomNum BIT STRING }
int write_content(const Secret &secret, int function, DerWriter &out) noexcept {
  {
    const auto sequence = out.sequence();
    out.primitive(TYPE_PRINTABLE_STRING, secret.number);
    out.bits(secret.random);
  }
  return out.failed() ? fail(function, out.status() == Read::no_memory ? kNoMemory : kBadValue) : 0;
}

// A virtual identifier, wiped at the end of its scope.
struct Identifier {
  uint8_t octets[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  WipeAtEnd wipe{octets, sizeof octets};
};

int compute(const Secret &secret, int digest_id, int function, Identifier &out) noexcept {
  DerWriter content({}, Content::secret);
  if (const int code = write_content(secret, function, content)) return code;
  Identifier first;
  const Octets octets = content.written();
  if (const int code = PKV_DIGEST(digest_id, octets.data(), int(octets.size()), first.octets, &first.length)) {
    return code;
  }
  return PKV_DIGEST(digest_id, first.octets, first.length, out.octets, &out.length);
}

// The digest that an identifier names; 0 for one that is no plain digest.
int digest_of(const X509_ALGO_IDENTIFIER &identifier) noexcept {
  const int digest_id = get_DigestID_from_OID(identifier.algorithm);
  const bool plain =
      digest_id && get_OID_from_DigestID(digest_id) == index_from_OBJECT_IDENTIFIER(identifier.algorithm);
  return plain && !(digest_id & PKV_HMAC_FLAG) && PKV_Get_DIGEST_Length(digest_id) > 0 ? digest_id : 0;
}

int identifier_record(int digest_id, Octets digest, owned<VID> &out) noexcept {
  owned<VID> vid(blank<VID>());
  owned<X509_ALGO_IDENTIFIER> algorithm = new_bare_algorithm(oid_of_row(get_OID_from_DigestID(digest_id)).get());
  if (!vid || !algorithm) return fail(kKisa, kNoMemory);
  vid->virtualID = new_string(TYPE_OCTET_STRING, digest);
  if (!vid->virtualID) return fail(kKisa, kNoMemory);
  vid->hashAlg = algorithm.release();
  out = std::move(vid);
  return 0;
}

// The VID in a certificate's identity data. Failures of the search have the caller's function code.
int vid_of(const X509_CERT &cert, owned<VID> &out) noexcept {
  KISA_IDENTIFY_DATA *found = nullptr;
  const int code = get_X509_KISA_IDENTIFY_DATA(&cert, &found);
  const owned<KISA_IDENTIFY_DATA> data(found);
  if (code) return (code & ~ERR_MASK) == kKisa ? fail(F_CHECK_VID, reason_of(code)) : code;
  ASN1_UNIT *unit = get_KISA_IDENTIFY_DATA_userInfo(data.get(), KISA_OID_VID);
  if (!unit) return fail(F_CHECK_VID, ERR_NOT_FOUNDED);
  VID *vid = nullptr;
  if (const int failed = Seq_to_VID(unit, &vid)) return failed;
  out.reset(vid);
  return 0;
}

int check(const VID &vid, const Secret &secret) noexcept {
  const int digest_id = digest_of(*vid.hashAlg);
  if (!digest_id) return fail(F_CHECK_VID, kUnsupported);
  Identifier own;
  if (const int code = compute(secret, digest_id, F_CHECK_VID, own)) return code;
  const Octets theirs = octets(*vid.virtualID);
  if (theirs.size() != size_t(own.length)) return fail(F_CHECK_VID, ERR_INVALID_VID_LENGTH);
  return PKV_Equal_Secret(own.octets, theirs.data(), theirs.size()) ? 0 : fail(F_CHECK_VID, ERR_INVALID_VID_DATA);
}

}  // namespace

}  // namespace velpki

using namespace velpki;

VELPKI_LIFE_CYCLE(VID)

int VID_to_Seq(const VID *in, ASN1_UNIT **out) noexcept { return to_seq(F_VID_TO_SEQ, in, out, encode); }
int Seq_to_VID(ASN1_UNIT *in, VID **out) noexcept { return from_seq(F_SEQ_TO_VID, in, out, decode); }

int gen_VID(VID **out, const char *idn, int idn_length, const unsigned char *random, int random_length,
            int digest_id) noexcept {
  if (!out) return fail(kKisa, kNullArgument);
  Secret secret;
  if (const int code = secret_of(idn, idn_length, random, random_length, kKisa, secret)) return code;
  if (digest_id & PKV_HMAC_FLAG || !get_OID_from_DigestID(digest_id) || !PKV_Get_DIGEST_Length(digest_id)) {
    return fail(kKisa, kUnsupported);
  }
  Identifier made;
  if (const int code = compute(secret, digest_id, kKisa, made)) return code;
  owned<VID> vid;
  if (const int code = identifier_record(digest_id, {made.octets, size_t(made.length)}, vid)) return code;
  return store(std::move(vid), out);
}

int check_VID(const X509_CERT *cert, const char *idn, int idn_length, const unsigned char *random,
              int random_length) noexcept {
  if (!cert) return fail(F_CHECK_VID, kNullArgument);
  Secret secret;
  if (const int code = secret_of(idn, idn_length, random, random_length, F_CHECK_VID, secret)) return code;
  owned<VID> vid;
  if (const int code = vid_of(*cert, vid)) return code;
  return check(*vid, secret);
}

int get_VID_random(const X509_ATTRIBUTES *attributes, unsigned char *out, int *length) noexcept {
  if (!attributes || !out || !length) return fail(kKisa, kNullArgument);
  for (const X509_ATTRIBUTE *each : elements<X509_ATTRIBUTE>(attributes)) {
    if (!each || !has_oid(each->type, KISA_OID_RANDOM_NUM)) continue;
    if (get_X509_ATTRIBUTE_data_type(each, 0) != TYPE_BIT_STRING) return fail(kKisa, ERR_ASN1_DECODING);
    const auto *random = static_cast<const ASN1_STRING *>(get_X509_ATTRIBUTE_data(each, 0));
    if (!random || random->unused_bits) return fail(kKisa, ERR_ASN1_DECODING);
    const bool fits = random->length <= *length;
    *length = random->length;
    if (fits) copy_octets(out, octets(*random));
    return fits ? 0 : fail(kKisa, kBadValue);
  }
  return fail(kKisa, ERR_NOT_FOUNDED);
}
