#include "cms/internal/cms_digests.h"

#include <algorithm>

#include "cms/internal/signature.h"

namespace velpki {

void Flat<CMS_DIGESTS>::release(CMS_DIGESTS *digests) noexcept {
  if (!digests) return;
  for (int i = 0; i < digests->count; ++i) PKV_Free_DIGEST(digests->entries[i].unit);
  velpki::release(digests);
}

namespace {

DIGEST_UNIT *find(const CMS_DIGESTS *digests, int digest_id) noexcept {
  for (int i = 0; digests && i < digests->count; ++i)
    if (digests->entries[i].id == digest_id) return digests->entries[i].unit;
  return nullptr;
}

}  // namespace

int start_digest(CMS_DIGESTS *&digests, int digest_id, int function) noexcept {
  if (find(digests, digest_id)) return 0;
  if (!digests && !(digests = allocate_record<CMS_DIGESTS>())) return fail(function, kNoMemory);
  if (digest_id == 0 || digests->count == CMS_DIGESTS::kRoom) return fail(function, kBadValue);
  owned<DIGEST_UNIT> unit(PKV_New_DIGEST());
  if (!unit) return fail(function, kNoMemory);
  if (const int code = PKV_Init_DIGEST(unit.get(), digest_id)) return code;
  digests->entries[digests->count++] = {digest_id, unit.release()};
  return 0;
}

int update_digests(CMS_DIGESTS *digests, Octets data) noexcept {
  for (int i = 0; digests && i < digests->count; ++i) {
    const int code = PKV_Update_DIGEST(digests->entries[i].unit, data.data(), int(data.size()));
    if (code) return code;
  }
  return 0;
}

int finish_digest(const CMS_DIGESTS *digests, int digest_id, int function, DigestValue &out) noexcept {
  const DIGEST_UNIT *running = find(digests, digest_id);
  if (!running) return fail(function, kBadValue);
  const owned<DIGEST_UNIT> copy(PKV_Dup_DIGEST(running));
  return copy ? PKV_Final_DIGEST(copy.get(), out.data(), out.length()) : fail(function, kNoMemory);
}

bool add_content_attributes(X509_ATTRIBUTES *&attributes, const OBJECT_IDENTIFIER *type, Octets digest) noexcept {
  if (!find_attribute(attributes, row::kContentType) &&
      !add_attribute(attributes, row::kContentType, TYPE_OBJECT_IDENTIFIER, octets(*type))) {
    return false;
  }
  return find_attribute(attributes, row::kMessageDigest) ||
         add_attribute(attributes, row::kMessageDigest, TYPE_OCTET_STRING, digest);
}

namespace {

struct EncodedAttribute {
  void *attribute;
  size_t start, length;
};

// X.690 11.6: as octets, the shorter one as if followed by zeros; encodings of which one begins the other do not occur.
bool comes_before(Octets a, Octets b) noexcept {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

}  // namespace

bool sort_attributes(X509_ATTRIBUTES &attributes) noexcept {
  const size_t count = size_t(attributes.count);
  const owned<uint8_t> block = new_octets(count * sizeof(EncodedAttribute) + 1);
  if (!block) return false;
  auto *const encoded = static_cast<EncodedAttribute *>(static_cast<void *>(block.get()));
  DerWriter out;
  for (size_t i = 0; i < count; ++i) {
    const auto *attribute = static_cast<const X509_ATTRIBUTE *>(attributes.data[i]);
    const size_t start = out.size();
    if (!attribute || encode(*attribute, out) || out.failed()) return false;
    encoded[i] = {attributes.data[i], start, out.size() - start};
  }
  std::sort(encoded, encoded + count, [all = out.written()](const EncodedAttribute &a, const EncodedAttribute &b) {
    return comes_before(all.subspan(a.start, a.length), all.subspan(b.start, b.length));
  });
  for (size_t i = 0; i < count; ++i) attributes.data[i] = encoded[i].attribute;
  return true;
}

}  // namespace velpki
