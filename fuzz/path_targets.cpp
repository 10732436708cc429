// Paths: validated with extensions that are the input's, and searched for; trust lists.
#include <velpki/asn1_error.h>
#include <velpki/cpv_validate.h>
#include <velpki/ctl.h>

#include <algorithm>
#include <string>

#include "target.h"

namespace {

ASYMMETRIC_KEY *key() {
  static ASYMMETRIC_KEY *const made = [] {
    const Owned<RSA_UNIT> rsa(PKV_New_RSA());
    require(PKV_Generate_RSA(rsa, 1024, 65537, nullptr, nullptr) == 0, "a key is made");
    return RSA_UNIT_to_ASYMMETRIC_KEY(rsa);
  }();
  return made;
}

void set_name(X509_CERT *cert, int (*set)(X509_CERT *, const X509_NAME *), const char *text) {
  const Owned<STACK, free_X509_NAME> name(new_X509_NAME());
  add_X509_NAME_child_OID_index(name, 13, 12, reinterpret_cast<const unsigned char *>(text), -1, -1);
  set(cert, name);
}
void set_date(X509_CERT *cert, int (*set)(X509_CERT *, const X509_TIME *), const std::string &text) {
  const Owned<X509_TIME> time(new_X509_TIME());
  time->time = new_ASN1_STRING();
  set_ASN1_STRING_value(time->time, 23, reinterpret_cast<const unsigned char *>(text.data()), int(text.size()));
  set(cert, time);
}

// A signed certificate with these extensions, or with none when they cannot be read.
X509_CERT *certificate(const char *subject, const char *issuer, std::span<const uint8_t> octets) {
  X509_CERT *cert = new_X509_CERT();
  const Owned<BIGINT> serial(PKV_New_BIGINT());
  const Owned<X509_PUBKEY> pubkey(new_X509_PUBKEY());
  const Owned<ASN1_STRING> algorithm(new_OBJECT_IDENTIFIER("1.2.840.113549.1.1.11", 21));
  set_X509_version(cert, 2);
  set_X509_serial(cert, serial);
  set_X509_signature(cert, algorithm);
  set_name(cert, set_X509_subject, subject);
  set_name(cert, set_X509_issuer, issuer);
  set_date(cert, set_X509_notBefore, "200101000000Z");
  set_date(cert, set_X509_notAfter, "490101000000Z");
  set_X509_PUBKEY_rsa(pubkey, ASYMMETRIC_KEY_to_RSA_UNIT(key()));
  set_X509_pub_key(cert, pubkey);
  const Owned<ASN1_UNIT> unit(decodeToBERSequence_n(octets.data(), int(octets.size())));
  Owned<STACK, free_X509_EXTENSIONS> extensions;
  if (unit && Seq_to_X509_EXTENSIONS(unit, &extensions) == 0) set_X509_extensions(cert, extensions);
  if (gen_SIG_X509_Cert(cert, key())) {
    set_X509_extensions(cert, nullptr);
    gen_SIG_X509_Cert(cert, key());
  }
  return cert;
}

// The tree that is left: every level has nodes, and every node its policy and a parent in the level above.
void check_tree(const node_LIST *tree) {
  for (const node_LIST *level = tree; level; level = level->next) {
    require(get_STACK_count(level->nodes) > 0, "no level is empty");
    for (int i = 0; i < level->nodes->count; ++i) {
      const auto *node = static_cast<VALID_POLICY_NODE *>(get_STACK_value(level->nodes, i));
      require(node->data && node->data->valid_policy, "a node has a policy");
      require((level == tree) == !node->parent, "and a parent");
      require(!node->parent || node->parent->child_count > 0, "that counts it");
    }
  }
}

// The first octet says how many of the others are the authority's extensions; the end entity has the rest.
void path(const uint8_t *data, int size) {
  if (size < 1) return;
  const std::span<const uint8_t> all(data + 1, size_t(size) - 1);
  const size_t first = std::min(size_t(data[0]), all.size());
  const Owned<STACK, free_X509_CERTIFICATES> certs(new_STACK());
  const Owned<STACK, free_OBJECT_IDENTIFIERS> user(new_STACK());
  push_STACK_value(certs, certificate("end", "ca", all.subspan(first)));
  push_STACK_value(certs, certificate("ca", "root", all.first(first)));
  push_STACK_value(certs, certificate("root", "root", {}));
  push_STACK_value(user, new_OBJECT_IDENTIFIER("1.2.3.4", 7));
  Owned<node_LIST> all_policies, cut;
  const int code = validate_certpath(certs, nullptr, &all_policies);
  const int with_user = validate_certpath(certs, user, &cut);
  require(with_user == code || with_user == (F_VALIDATE_CERTPATH | ERR_INVALID_VALID_POLICY_TREE),
          "a user's policies can only leave nothing");
  require((code == 0 || !all_policies) && (with_user == 0 || !cut), "failure leaves no tree");
  check_tree(all_policies);
  check_tree(cut);
  const Owned<STACK, free_TRUST_ANCHORS> anchors(new_TRUST_ANCHORS());
  auto *end = static_cast<X509_CERT *>(get_STACK_value(certs, 0)),
       *root = static_cast<X509_CERT *>(get_STACK_value(certs, 2));
  const TRUST_ANCHOR anchor{get_X509_subject(root), get_X509_SPKI(root)};
  add_TRUST_ANCHORS(anchors, &anchor);
  Owned<STACK, free_X509_CERTIFICATES> built;
  require(build_certPath(&built, end, certs, anchors) == 0 && built->count >= 2, "the path is found");
}

// Appends a certificate as the standard reads it; false when it does not.
bool append_standard(STACK *certs, X509_CERT *cert) {
  unsigned char *der = nullptr;
  const int length = writeDER_X509_CERT_to_Binary(cert, &der);
  const Owned<unsigned char> owner(der);
  X509_CERT *read = nullptr;
  return readDER_X509_CERT_from_Binary_RFC5280(&read, der, length) == 0 && push_STACK_value(certs, read);
}

// The same paths by RFC 5280.
void strict_path(const uint8_t *data, int size) {
  if (size < 1) return;
  const std::span<const uint8_t> all(data + 1, size_t(size) - 1);
  const size_t first = std::min(size_t(data[0]), all.size());
  const Owned<X509_CERT> end(certificate("end", "ca", all.subspan(first))),
      authority(certificate("ca", "root", all.first(first)));
  const Owned<STACK, free_X509_CERTIFICATES> certs(new_STACK());
  if (!append_standard(certs, end) || !append_standard(certs, authority)) return;
  const Owned<X509_CERT> root(certificate("root", "root", {}));
  const TRUST_ANCHOR anchor{get_X509_subject(root), get_X509_SPKI(root)};
  const Owned<STACK, free_TRUST_ANCHORS> anchors(new_TRUST_ANCHORS());
  add_TRUST_ANCHORS(anchors, &anchor);
  CERTPATH_REPORT report, built_report;
  const int code = validate_certpath_strict(certs, anchors, nullptr, &report);
  require((code == 0) == (report.policies != nullptr), "policies are of a valid path");
  require(code || report.anchor == 0, "a valid path has its anchor");
  Owned<STACK, free_X509_CERTIFICATES> built;
  const auto *leaf = static_cast<X509_CERT *>(get_STACK_value(certs, 0));
  const int found = build_certPath_strict(&built, leaf, certs, anchors, nullptr, &built_report);
  require(code || found == 0, "a valid path is found");
  free_CERTPATH_POLICIES(report.policies);
  free_CERTPATH_POLICIES(built_report.policies);
}

void message(const uint8_t *data, int size) {
  Owned<P7_CONTENT_INFO> read;
  Owned<CERT_TRUST_LIST> list;
  if (readDER_P7_CONTENT_INFO_from_Binary(&read, data, size)) return;
  const Owned<STACK, free_TRUST_ANCHORS> anchors(new_TRUST_ANCHORS());
  P7_CONTENT_INFO_to_CERT_TRUST_LIST(read, &list);
  const int verified = verify_ctlSignedData(read, nullptr);
  const int added = add_TRUST_ANCHORS_from_CTL(anchors, read);
  require(!verified || (added && anchors->count == 0), "nothing unsigned is taken");
}

constexpr Target kTargets[] = {
    {"path", path},
    {"strict_path", strict_path},
    {"trust_list_message", message},
    {"trust_list", FAMILY(CERT_TRUST_LIST, dup_CERT_TRUST_LIST)},
    {"trust_anchor", KEY_FAMILY(TRUST_ANCHOR, dup_TRUST_ANCHOR)},
};

const Registered kRegistered(kTargets);

}  // namespace
