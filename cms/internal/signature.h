// Signatures over message content or attributes, whichever record the signer stands in.
#pragma once

#include <velpki/pkcs1.h>

#include "cms/internal/message.h"

namespace velpki {

namespace row {
inline constexpr int kContentType = 50;
inline constexpr int kMessageDigest = 51;
inline constexpr int kPssRsa = 435;  // "pss"
inline constexpr int kRsaesOaep = 832;
}  // namespace row

// The digest of a signer and, for RSA keys, the scheme. With PSS `mgf_digest_id` and `salt_length` are those of the
// parameters; without parameters the digest's own, and a salt of any length is taken.
struct SignatureScheme {
  int digest_id = 0;
  int scheme = 0;  // PKV_RSA_PKCS1 or PKV_RSA_PSS
  int mgf_digest_id = 0;
  int salt_length = PKV_RSA_ANY_SALT;
};

// The digest that an AlgorithmIdentifier names, 0 for none.
int digest_id_of(const X509_ALGO_IDENTIFIER *algorithm) noexcept;
// The scheme of an RSA key under a cipher identifier: 0 when it is none of signatures. rsaEncryption means PKCS#1 v1.5.
int rsa_scheme_of(int cipher_id) noexcept;
// The scheme that a signer's two algorithms mean for a key; false when either is unknown or means nothing for it.
bool signature_scheme(const X509_ALGO_IDENTIFIER *digest, const X509_ALGO_IDENTIFIER *signature, int key_type,
                      SignatureScheme &out) noexcept;
// The RSASSA-PSS parameters of an AlgorithmIdentifier into `scheme`: nothing when there are none. False when they are
// malformed, or their digest is not the scheme's.
bool read_pss_parameters(const X509_ALGO_IDENTIFIER &algorithm, SignatureScheme &scheme) noexcept;

// The parameters of an AlgorithmIdentifier as if just read; false for NULL and for none.
bool parameters_view(const X509_ALGO_IDENTIFIER &algorithm, Tlv &out) noexcept;
// Puts one encoded value in their place; false when it is none, or memory ends.
bool set_parameters(X509_ALGO_IDENTIFIER &algorithm, const DerWriter &der) noexcept;
// Puts the identifier of a registry row, with NULL parameters, in place of what is there.
bool set_algorithm(X509_ALGO_IDENTIFIER *&algorithm, int row) noexcept;
// RSASSA-PSS parameters into a signature algorithm: those given, or for null the digest for everything. 0, `function`
// with a reason, or the code of the parameters.
int set_pss_parameters(const RSASSA_PSS_PARAM *given, const X509_ALGO_IDENTIFIER &digest, int function,
                       X509_ALGO_IDENTIFIER &algorithm) noexcept;
// The signature algorithm that is written for a digest's row under a padding.
int signature_row(int digest_row, int padding) noexcept;
// Names the algorithm of a finished signature. KCDSA has one of its own; an RSA signer that signed its attributes, and
// every signer of version 0, names the key's, and PSS survives the former; one on a curve has been named. False when
// memory ends.
bool name_signature(X509_ALGO_IDENTIFIER *&algorithm, int key_type, bool attributes, bool version_0) noexcept;

// What is signed of attributes: their set under the tag of a SET.
int write_attribute_set(const X509_ATTRIBUTES &attributes, DerWriter &out) noexcept;
// A set that is absent or empty is no set.
inline bool has_attributes(const X509_ATTRIBUTES *attributes) noexcept { return attributes && attributes->count > 0; }
// The first attribute of a type; null when there is none.
const X509_ATTRIBUTE *find_attribute(const X509_ATTRIBUTES *attributes, int row) noexcept;
// Appends an attribute with one value to the set, which is made when missing. Octets of a type with bit 20 (or of 16
// and 17, which become 30 and 31) are the content of a constructed value.
bool add_attribute(X509_ATTRIBUTES *&attributes, int row, int type, Octets value) noexcept;

// The digests of one content, each computed once.
class ContentDigests {
 public:
  explicit ContentDigests(Octets content) noexcept : content_(content) {}
  Octets content() const noexcept { return content_; }
  // The digest's octets, or the provider's code.
  int get(int digest_id, Octets &out) noexcept;

 private:
  struct Entry {
    int digest_id, length;
    uint8_t octets[PKV_MAX_DIGEST_LENGTH];
  };
  static constexpr int kRoom = 12;  // more than the provider has
  Octets content_;
  Entry entries_[kRoom];
  int count_ = 0;
};

// Signing with a key that the signer owns alone: start, feed, finish. `function` is the code of an unfit key;
// `encoding_code` is what a failing encoding of the two numbers of a KCDSA signature returns.
int start_signature(ASYMMETRIC_KEY &key, const SignatureScheme &scheme, int function) noexcept;
int feed_signature(ASYMMETRIC_KEY &key, Octets data) noexcept;
int finish_signature(ASYMMETRIC_KEY &key, int function, int encoding_code, owned<ASN1_STRING> &out) noexcept;

// Verifies a signature over the content of `digests`, which for RSA keys is digested once for all signers.
int verify_signature(const ASYMMETRIC_KEY &key, const SignatureScheme &scheme, ContentDigests &digests,
                     const ASN1_STRING *signature, int function) noexcept;

// A signer as PKCS#7 and CMS have it.
struct SignerParts {
  const BIGINT *version;
  const X509_ATTRIBUTES *attributes;
  const ASN1_STRING *signature;
};
// What binds a signer to the content: the signature over it, or over the attributes of which messageDigest, if there,
// must be its digest.
int verify_signer(const SignerParts &signer, const ASYMMETRIC_KEY &key, const SignatureScheme &scheme,
                  ContentDigests &digests, int function) noexcept;

}  // namespace velpki
