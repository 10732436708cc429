// Validation of a certification path: the walk from its last certificate to its first.
#include <velpki/asn1_error.h>

#include "validation/internal/cpv.h"

namespace velpki {

namespace {

// What one validation counts. `inhibit_any_policy` is kept up and decides nothing; the length left stops at 0.
struct Counters {
  int explicit_policy, inhibit_any_policy, max_path_length;
};

Counters initial_counters(int certificates) noexcept {
  return {get_initial_explicit_policy() ? 0 : certificates + 1, get_initial_any_policy_inhibit() ? 0 : certificates + 1,
          get_max_certificatePath_length()};
}

void count_down(int &counter) noexcept {
  if (counter > 0) --counter;
}
// A number of certificates that a certificate asks for; 0 does not count.
void lower(int &counter, int limit) noexcept {
  if (limit > 0 && limit < counter) counter = limit;
}

int limit_of(const BIGINT *number) noexcept {
  if (!number || PKV_Is_BIGINT_Negative(number)) return 0;
  return PKV_Get_BIGINT_Bit_Length(number) > 31 ? INT_MAX : int(PKV_Get_BIGINT_Word(number));
}

int unreadable(int function, int code) noexcept {
  return fail(function, reason_of(code) == kNoMemory ? kNoMemory : kUnreadable);
}

// A list of extensions that is there has to have some.
int check_extensions(const X509_CERT &cert, int function) noexcept {
  const X509_EXTENSIONS *extensions = get_X509_extensions(&cert);
  return extensions && extensions->count == 0 ? fail(function, kBadValue) : 0;
}

int verify_signature(const X509_CERT &cert, const X509_CERT &issuer) noexcept {
  const X509_PUBKEY *key = get_X509_SPKI(&issuer);
  return verify_SIG_X509_CERT(const_cast<X509_CERT *>(&cert), key ? key->key : nullptr);
}

int check_policy_constraints(const X509_CERT &cert, Counters &counters) noexcept {
  constexpr int kFunction = F_VERIFY_POLICYCONSTRANITS;
  if (const int code = check_extensions(cert, kFunction)) return code;
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), kPolicyConstraintsOid);
  if (!extension) return 0;
  Tlv value;
  const owned<POLICY_CONSTRAINTS> constraints(new_POLICY_CONSTRAINTS());
  if (!constraints) return fail(kFunction, kNoMemory);
  if (!value_of(*extension, value)) return fail(kFunction, kUnreadable);
  if (const int code = decode(value, *constraints)) return unreadable(kFunction, code);
  lower(counters.explicit_policy, limit_of(constraints->requireExplicitPolicy));
  return 0;
}

int check_inhibit_any_policy(const X509_CERT &cert, Counters &counters) noexcept {
  constexpr int kFunction = F_VERIFY_INHIBITANYPOLICY;
  if (const int code = check_extensions(cert, kFunction)) return code;
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), kInhibitAnyPolicyOid);
  if (!extension) return 0;
  Tlv value;
  BIGINT *read = nullptr;
  if (!value_of(*extension, value) || value.number() != TYPE_INTEGER) return fail(kFunction, kUnreadable);
  const Read outcome = read_integer(value, read);
  const owned<BIGINT> number(read);
  if (outcome != Read::ok) return fail(kFunction, outcome == Read::no_memory ? kNoMemory : kUnreadable);
  lower(counters.inhibit_any_policy, limit_of(number.get()));
  return 0;
}

// Whether a certificate says that it is a CA. Constraints that cannot be read say nothing.
int is_authority(const X509_CERT &cert, bool &out) noexcept {
  owned<BASIC_CONSTRAINTS> constraints;
  const int code = read_basic_constraints(cert, F_VERIFY_BASICCONSTRAINTS, constraints);
  out = !code && constraints && constraints->ca == kTrue;
  return reason_of(code) == kNoMemory ? code : 0;
}

// An issuer whose cA is not true may issue as long as its key usage does not name certificates.
int check_no_authority(const X509_CERT &issuer) noexcept {
  KeyUsage usage;
  const int code = read_key_usage(issuer, F_VERIFY_BASICCONSTRAINTS, usage);
  if (reason_of(code) == kNoMemory) return code;
  return !code && usage.cert_sign ? fail(F_VERIFY_BASICCONSTRAINTS, ERR_INVALID_BASIC_CONSTRAINTS) : 0;
}

int check_basic_constraints(const X509_CERT &issuer, const X509_CERT &cert) noexcept {
  constexpr int kFunction = F_VERIFY_BASICCONSTRAINTS;
  if (!get_X509_extensions(&issuer)) return 0;
  if (const int code = check_extensions(issuer, kFunction)) return code;
  owned<BASIC_CONSTRAINTS> constraints;
  if (const int code = read_basic_constraints(issuer, kFunction, constraints)) return code;
  if (!constraints) return fail(kFunction, ERR_INVALID_BASIC_CONSTRAINTS);
  if (constraints->ca != kTrue) return check_no_authority(issuer);
  const bool last = constraints->pathLenConstraint && *constraints->pathLenConstraint == 0;
  bool authority = false;
  if (const int code = last ? is_authority(cert, authority) : 0) return code;
  return authority ? fail(kFunction, ERR_INVALID_BASIC_CONSTRAINTS) : 0;
}

int check_key_usage(const X509_CERT &issuer) noexcept {
  if (const int code = check_extensions(issuer, F_VERIFY_KEYUSAGE)) return code;
  KeyUsage usage;
  if (const int code = read_key_usage(issuer, F_VERIFY_KEYUSAGE, usage)) return code;
  return usage.present && !usage.cert_sign ? fail(F_VERIFY_KEYUSAGE, ERR_INVALID_KEY_USAGE) : 0;
}

void release_elements(STACK &policies) noexcept {
  for (OBJECT_IDENTIFIER *each : elements<OBJECT_IDENTIFIER>(&policies)) free_OBJECT_IDENTIFIER(each);
  policies.count = 0;
}

class Walk {
 public:
  Walk(int certificates, node_LIST *root) noexcept : counters_(initial_counters(certificates)), tree_(root) {}

  int run(const STACK &certs) noexcept {
    if (const int code = tree_.start()) return code;
    for (int i = certs.count - 1; i >= 0; --i) {
      const auto *cert = element<X509_CERT>(&certs, i);
      if (!cert) return fail(F_VALIDATE_CERTPATH, kNullArgument);
      if (const int code = is_selfSigned(cert) ? check_issued(*cert) : verify_signature(*cert, *cert)) return code;
      previous_ = cert;
      ++depth_;
    }
    return 0;
  }

  // Consumes the user's policies. Any policy among them ends the wrap-up before it begins.
  int finish(STACK *user_policies, node_LIST *&root) noexcept {
    const bool any = holds_any_policy(user_policies);
    if (!any) root = tree_.wrap_up(user_policies);
    if (user_policies) release_elements(*user_policies);
    const bool nothing = !any && counters_.explicit_policy < 1 && !root;
    return nothing ? fail(F_VALIDATE_CERTPATH, ERR_INVALID_VALID_POLICY_TREE) : 0;
  }

 private:
  int check_issued(const X509_CERT &cert) noexcept {
    if (!previous_) return failure(kNullArgument);
    if (const int code = process(cert)) return code;
    return prepare(cert);
  }

  static constexpr int failure(int reason) noexcept { return fail(F_PROCESS_BASIC_CERTIFICATE, reason); }

  int process(const X509_CERT &cert) noexcept {
    const int verified = verify_signature(cert, *previous_);
    if (verified) return failure(reason_of(verified) == kNoMemory ? kNoMemory : kBadSignature);
    if (const int code = verify_X509_expireDate(&cert)) return code;
    if (cmp_X509_NAME(get_X509_issuer(&cert), get_X509_subject(previous_))) return failure(ERR_TBS_CERT_ISSUER);
    if (const int code = tree_.extend(cert, depth_)) return code;
    const bool accepted = counters_.explicit_policy > 0 || find_extension(get_X509_extensions(&cert), kPoliciesOid);
    return accepted ? 0 : failure(ERR_INVALID_CERTIFICATE_POLICIES);
  }

  int prepare(const X509_CERT &cert) noexcept {
    count_down(counters_.explicit_policy);
    count_down(counters_.inhibit_any_policy);
    if (const int code = check_policy_constraints(cert, counters_)) return code;
    if (const int code = check_inhibit_any_policy(cert, counters_)) return code;
    if (const int code = check_basic_constraints(*previous_, cert)) return code;
    count_down(counters_.max_path_length);
    return check_key_usage(*previous_);
  }

  static constexpr int kBadSignature = 0x54;

  Counters counters_;
  PolicyTree tree_;
  const X509_CERT *previous_ = nullptr;
  int depth_ = 0;
};

}  // namespace

int read_basic_constraints(const X509_CERT &cert, int function, owned<BASIC_CONSTRAINTS> &out) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), kBasicConstraintsOid);
  if (!extension) return 0;
  Tlv value;
  owned<BASIC_CONSTRAINTS> constraints(new_BASIC_CONSTRAINTS());
  if (!constraints) return fail(function, kNoMemory);
  if (!value_of(*extension, value)) return fail(function, kUnreadable);
  if (const int code = decode(value, *constraints)) return unreadable(function, code);
  out = std::move(constraints);
  return 0;
}

int read_key_usage(const X509_CERT &cert, int function, KeyUsage &out) noexcept {
  const X509_EXTENSION *extension = find_extension(get_X509_extensions(&cert), kKeyUsageOid);
  if (!extension) return 0;
  Tlv value;
  if (!value_of(*extension, value) || value.number() != TYPE_BIT_STRING) return fail(function, kUnreadable);
  // The first content octet counts the unused bits of the last.
  out.present = true;
  out.cert_sign = value.content.size() > 1 && value.content[1] & kKeyCertSign;
  return 0;
}

}  // namespace velpki

using namespace velpki;

int is_selfSigned(const X509_CERT *cert) noexcept {
  return cmp_X509_NAME(get_X509_issuer(cert), get_X509_subject(cert)) == 0 ? 0 : 1;
}

int verify_X509_expireDate(const X509_CERT *cert) noexcept { return verify_X509_validity(cert, nullptr); }

int validate_certpath(STACK *certs, STACK *user_initial_policy_set, node_LIST **tree) noexcept {
  if (!certs || !tree) return fail(F_VALIDATE_CERTPATH, kNullArgument);
  owned<node_LIST> fresh(*tree ? nullptr : new_node_LIST());
  node_LIST *root = *tree ? *tree : fresh.get();
  if (!root) return fail(F_VALIDATE_CERTPATH, kNoMemory);
  Walk walk(certs->count, root);
  if (const int code = walk.run(*certs)) return code;
  fresh.release();
  const int code = walk.finish(user_initial_policy_set, root);
  *tree = root;
  return code;
}
