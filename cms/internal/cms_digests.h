// Digests of content that comes in pieces, and the attributes that bind a content.
#pragma once

#include "cms/internal/cms.h"

// One digest for each algorithm that signers of attributes use.
struct cms_digests {
  static constexpr int kRoom = 12;  // more than the provider has
  int count;
  struct {
    int id;
    DIGEST_UNIT *unit;
  } entries[kRoom];
};

namespace velpki {

template <>
struct Flat<DIGEST_UNIT> {
  static void release(DIGEST_UNIT *unit) noexcept { PKV_Free_DIGEST(unit); }
};
template <>
struct Flat<CMS_DIGESTS> {
  static void release(CMS_DIGESTS *digests) noexcept;
};

// A digest that was finished.
class DigestValue {
 public:
  void set(Octets digest) noexcept { copy_octets(data_, digest), length_ = int(digest.size()); }
  Octets octets() const noexcept { return octets_of(data_, length_); }
  uint8_t *data() noexcept { return data_; }
  int *length() noexcept { return &length_; }

 private:
  uint8_t data_[PKV_MAX_DIGEST_LENGTH];
  int length_ = PKV_MAX_DIGEST_LENGTH;
};

// Starts the digest, unless it runs already. 0, `function` with 2B (an unknown digest) or 3C, or the provider's code.
int start_digest(CMS_DIGESTS *&digests, int digest_id, int function) noexcept;
int update_digests(CMS_DIGESTS *digests, Octets data) noexcept;  // null is none
// The value so far; `function` with 2B when it does not run.
int finish_digest(const CMS_DIGESTS *digests, int digest_id, int function, DigestValue &out) noexcept;

// Adds contentType and messageDigest where they are missing. False when memory ends.
bool add_content_attributes(X509_ATTRIBUTES *&attributes, const OBJECT_IDENTIFIER *type, Octets digest) noexcept;
// Puts attributes and their values into the order of DER, in which they are signed. False when one cannot be encoded.
bool sort_attributes(X509_ATTRIBUTES &attributes) noexcept;

}  // namespace velpki
