// CMS messages and the parties that the tests of this folder make them for.
#pragma once

#include <velpki/cms.h>

#include "parties.h"

// Options and openers name the members that they set.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace test {

using Cms = Owned<CMS_CONTENT_INFO>;

inline Cms cms_of(int type) {
  Cms cms(new_CMS_CONTENT_INFO());
  if (set_CMS_Type(cms, type)) cms.reset();
  return cms;
}
inline Cms read_cms(const Bytes &octets, int *code = nullptr) {
  return Cms(read_by(readBER_CMS_CONTENT_INFO_from_Binary, octets, code));
}
inline Bytes written(CMS_CONTENT_INFO *cms) { return octets_by(writeDER_CMS_CONTENT_INFO_to_Binary, cms); }
// As a peer gets it.
inline Cms sent(const Cms &cms) { return read_cms(written(cms)); }

template <class R>
R *content(const Cms &cms) {
  return static_cast<R *>(cms->content);
}

inline int verify(const Cms &cms, const Bytes *data = nullptr) {
  return verify_CMS(cms, nullptr, data ? data->data() : nullptr, data ? int(data->size()) : 0);
}
inline int verify_strict(const Cms &cms, const Bytes *data = nullptr, int flags = CMS_ALLOW_WEAK_DIGESTS) {
  return verify_CMS_strict(cms, nullptr, nullptr, data ? data->data() : nullptr, data ? int(data->size()) : 0, flags,
                           nullptr, nullptr);
}
inline int open_strict(const Cms &cms, const CMS_OPENER &opener, Bytes &out) {
  const CMS_ENCRYPTED_CONTENT_INFO *info = content<CMS_ENVELOPED_DATA>(cms)->encryptedContentInfo;
  out.assign(info->encryptedContent ? size_t(info->encryptedContent->length) + 1 : 1, 0);
  int length = int(out.size());
  const int code = decrypt_CMS_strict(cms, &opener, out.data(), &length);
  out.resize(code ? 0 : size_t(length));
  return code;
}

// A party with a key on P-256, in files and here.
struct CurveParty : PartyFiles {
  CurveParty() : PartyFiles("curve") {
    run("openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:prime256v1 -out " + key_path + " 2>/dev/null");
    certify("curve");
  }
};
inline const CurveParty &curve_party() {
  static const CurveParty party;
  return party;
}

}  // namespace test
