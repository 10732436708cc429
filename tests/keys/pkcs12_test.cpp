// PKCS#12: written here and read by others, written by others and read here, and what a hostile file may hold.
#include <velpki/asn1_error.h>
#include <velpki/asn1_objects.h>

#include <set>

#include "support/json.h"
#include "support/keys.h"

using namespace test;

namespace {

constexpr int kMacMismatch = F_IMPORT_PKCS12 | 0x5E;

void free_keys(STACK *keys) {
  free_STACK_values(keys, [](void *key) { free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(key)); });
}
using Keys = Owned<STACK, free_keys>;
using Bags = Owned<STACK, free_P12_SAFEBAGS>;
using Safes = Owned<STACK, free_P12_AUTH_SAFE>;

struct Imported {
  int code = 0, skipped = 0;
  Keys keys;
  Certificates certs, ca_certs;
  static int count(const STACK *stack) { return stack ? stack->count : 0; }
  std::string shape() const {
    return std::to_string(count(keys)) + "+" + std::to_string(count(certs)) + "+" + std::to_string(count(ca_certs));
  }
  const P8_PRIV_KEY_INFO *key() const { return item<P8_PRIV_KEY_INFO>(keys, 0); }
  const X509_CERT *cert() const { return item<X509_CERT>(certs, 0); }
};

Owned<PKCS12> read_pfx(const Bytes &der) { return read_by(readDER_PKCS12_from_Binary, der); }
Imported import_plain(PKCS12 *p12, const char *password, bool utf8 = false) {
  Imported out;
  out.code = (utf8 ? import_PKCS12_UTF8 : import_PKCS12)(p12, password, -1, &out.keys, &out.certs, &out.ca_certs);
  return out;
}
Imported import_ex(PKCS12 *p12, const char *password, unsigned flags = PKCS12_UTF8, int maximum = 0) {
  Imported out;
  out.code = import_PKCS12_ex(p12, password, -1, maximum, flags, &out.keys, &out.certs, &out.ca_certs, &out.skipped);
  return out;
}

Bytes key_der(const P8_PRIV_KEY_INFO *info) { return octets_by(writeDER_P8_PRIV_KEY_INFO_to_Binary, info); }
Bytes pfx_der(const PKCS12 *p12) { return octets_by(writeDER_PKCS12_to_Binary, p12); }
std::string sha256(const X509_CERT *cert) {
  int size = 0;
  const unsigned char *der = get_X509_received(cert, 0, &size);
  return to_hex(digest(PKV_DIGEST_SHA256, Bytes(der, der + size)));
}

// A certification authority and a certificate under it, made by openssl once.
struct Pair {
  std::string folder = temporary_path("pair"), key, cert, ca;
  Owned<P8_PRIV_KEY_INFO> info;
  Certificate own, authority;
  Pair() {
    key = folder + ".key", cert = folder + ".crt", ca = folder + ".ca";
    run("openssl req -x509 -newkey rsa:1024 -nodes -subj /CN=CA -days 999 -keyout " + folder + ".cakey -out " + ca +
        " 2>&1; openssl req -newkey rsa:1024 -nodes -subj /CN=User -keyout " + key + " -out " + folder +
        ".csr 2>&1; openssl x509 -req -in " + folder + ".csr -CA " + ca + " -CAkey " + folder +
        ".cakey -set_serial 7 -days 99 -out " + cert + " 2>&1");
    info = read_by(readPEM_P8_PRIV_KEY_INFO_from_File, key);
    own = read_by(readPEM_X509_CERT_from_File, cert);
    authority = read_by(readPEM_X509_CERT_from_File, ca);
  }
};

class Pkcs12 : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(pair().info && pair().own && pair().authority); }
  static Pair &pair() {
    static Pair *const made = new Pair;
    return *made;
  }
};

struct Writing {
  int key_index, cert_index, digest;
  const char *password, *name;
  int mac_iterations = 2048, iterations = 0;
};

// Key, own certificate and authority in a file.
Owned<PKCS12> write_pfx(const Pair &pair, const Writing &with) {
  static const unsigned char id[] = {1, 2, 3, 4};
  Bags keys, certs;
  Safes safes;
  P12_SAFEBAG *key =
      add_PKCS12_keyinfo_UTF8(&keys, pair.info, id, 4, with.password, -1, with.key_index, with.iterations);
  P12_SAFEBAG *cert = add_PKCS12_cert(&certs, pair.own, id, 4);
  P12_SAFEBAG *ca = add_PKCS12_cert(&certs, pair.authority, nullptr, 0);
  EXPECT_TRUE(ca);
  for (P12_SAFEBAG *named : {key, cert}) EXPECT_EQ(add_PKCS12_friendlyname_UTF8(named, with.name, -1), 0);
  EXPECT_EQ(PKCS12_add_safe_UTF8(&safes, certs, with.cert_index, with.iterations, with.password), 0);
  EXPECT_EQ(PKCS12_add_safe(&safes, keys, -1, 0, nullptr), 0);
  Owned<PKCS12> p12(PKCS12_add_safes(safes));
  EXPECT_EQ(set_PKCS12_mac_UTF8(p12, with.password, -1, nullptr, 0, with.mac_iterations, with.digest), 0);
  return p12;
}

const Writing kWritings[] = {
    {146, 149, 0, "pass", "friendly"},
    {161, 161, PKV_DIGEST_SHA256, "pass", "홍길동"},
    {144, 145, PKV_DIGEST_SHA512, "pass", "x"},
    {147, 148, PKV_DIGEST_SHA384, "비밀번호", "이름"},
    {-1, -1, 0, "pass", "plain"},
    {146, 0, 0, "", "empty password"},
};

// What is written here comes back, and openssl and certtool show the same key and certificates.
TEST_F(Pkcs12, OthersReadWhatIsWritten) {
  const bool has_certtool = !run("command -v certtool").empty();
  for (const Writing &with : kWritings) {
    const Owned<PKCS12> p12 = write_pfx(pair(), with);
    const Bytes der = pfx_der(p12);
    const Owned<PKCS12> again = read_pfx(der);
    const Imported back = import_plain(again, with.password, true);
    EXPECT_EQ(back.code, 0) << with.name;
    ASSERT_EQ(back.shape(), "1+1+1") << with.name;
    EXPECT_EQ(key_der(back.key()), key_der(pair().info));
    EXPECT_EQ(sha256(back.cert()), sha256(pair().own));
    EXPECT_EQ(text_of(get_X509_AUX_friendly(back.cert())), with.name);
    EXPECT_EQ(octets_hex(get_X509_AUX_localkey(back.cert())), "01020304");
    const std::string file = temporary_path("ours.p12");
    ASSERT_TRUE(write_file(file, der.data(), der.size()));
    const std::string shown = run("openssl pkcs12 -legacy -nodes -passin 'pass:" + std::string(with.password) +
                                  "' -in " + file + " 2>&1 | grep -c -E 'BEGIN|subject=CN = (CA|User)'");
    EXPECT_EQ(shown, "5\n") << with.name;
    EXPECT_EQ(run("openssl pkcs12 -legacy -nodes -nocerts -passin 'pass:" + std::string(with.password) + "' -in " +
                  file + " | openssl pkey -outform DER | sha256sum"),
              run("openssl pkey -outform DER -in " + pair().key + " | sha256sum"))
        << with.name;
    // certtool has neither triple DES with two keys nor RC4 of 40 bits.
    if (!has_certtool || with.key_index == 147 || with.key_index == 144) continue;
    const std::string listed = run("certtool --p12-info --inder --password '" + std::string(with.password) +
                                   "' --infile " + file + " 2>&1 | grep -c 'BEGIN'");
    EXPECT_EQ(listed, "3\n") << with.name;
  }
  if (!has_certtool) std::printf("certtool is not here: not run\n");
}

// What openssl and certtool write is imported.
TEST_F(Pkcs12, ReadsWhatOthersWrite) {
  const std::string file = temporary_path("theirs.p12");
  for (const Row &row : table("pkcs12_writers")) {
    const std::string tool = row.at("tool"), password = row.at("password");
    if (tool == "certtool" && run("command -v certtool").empty()) continue;
    const std::string made =
        tool == "openssl"
            ? run("openssl pkcs12 -export -inkey " + pair().key + " -in " + pair().cert + " -certfile " + pair().ca +
                  " -name '" + row.at("name") + "' -passout 'pass:" + password + "' " + row.at("options") + " -out " +
                  file + " 2>&1")
            : run("certtool --to-p12 --outder --load-privkey " + pair().key + " --load-certificate " + pair().cert +
                  " --load-ca-certificate " + pair().ca + " --p12-name '" + row.at("name") + "' --password '" +
                  password + "' " + row.at("options") + " --outfile " + file + " 2>&1");
    const Owned<PKCS12> p12 = read_pfx(read_file(file));
    ASSERT_TRUE(p12) << made;
    const Imported plain = import_plain(p12, password.c_str(), true);
    const Imported ex = import_ex(p12, password.c_str(), PKCS12_UTF8 | PKCS12_WITHOUT_MAC);
    EXPECT_EQ(plain.code & 0xFFFF, number_in(row, "plain")) << row.at("options");
    EXPECT_EQ(ex.code, 0) << row.at("options");
    ASSERT_EQ(ex.shape(), "1+1+1") << row.at("options");
    EXPECT_EQ(key_der(ex.key()), key_der(pair().info)) << row.at("options");
    EXPECT_EQ(sha256(ex.cert()), sha256(pair().own));
    EXPECT_EQ(text_of(get_X509_AUX_friendly(ex.cert())), row.at("name"));
    const Imported wrong = import_ex(p12, "wrong");
    EXPECT_EQ(wrong.code, kMacMismatch) << row.at("options");
    EXPECT_EQ(wrong.shape(), "0+0+0");
  }
}

// The files of others agree with their manifest.
TEST(Pkcs12Vectors, ReadFilesOfOthers) {
  VELPKI_NEED_VECTORS("pkcs12", folder);
  std::map<std::string, int> count;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const Bytes der = read_file(folder + "/" + row.at("file"));
    const Owned<PKCS12> p12 = read_pfx(der);
    const Bytes utf8 = hex(row.at("password_utf8_hex"));
    const std::string password(utf8.begin(), utf8.end()), mac = row.at("mac_verifies");
    const char *given = utf8.empty() ? nullptr : password.c_str();
    const Imported read = p12 ? import_ex(p12, given, PKCS12_UTF8 | PKCS12_WITHOUT_MAC) : Imported();
    if (p12 && import_plain(p12, given, true).code == 0) ++count["plain"];
    if (row.at("decodes") != "yes") {
      ++count[p12 && !read.code ? "opened though others do not" : "refused as by others"];
      continue;
    }
    const std::string pbe = row.at("pbe");
    // RFC 9579 is younger than the program that made the manifest.
    if (row.at("mac").find("PBMAC1") == 0 && row.at("file").find("bad") == std::string::npos && read.code == 0) {
      ++count["opened by PBMAC1"];
      continue;
    }
    if (row.at("file").find("nesting_too_deep") != std::string::npos) {
      EXPECT_EQ(read.code, F_IMPORT_PKCS12 | ERR_ASN1_DECODING);
      continue;
    }
    if (mac == "no" || pbe.find("amellia") != std::string::npos || pbe.find("CAMELLIA") != std::string::npos) {
      EXPECT_NE(read.code, 0) << row.at("file");
      ++count[mac == "no" ? "wrong mac" : "no such cipher"];
      continue;
    }
    ASSERT_TRUE(p12) << row.at("file");
    EXPECT_EQ(read.code, 0) << row.at("file") << " " << pbe << std::hex << " " << read.code;
    if (read.code) continue;
    ++count["opened"];
    std::set<std::string> expected, found;
    for (const std::string &each : split(row.at("certificate_sha256"))) expected.insert(each);
    for (const STACK *list : {read.certs.get(), read.ca_certs.get()})
      for (int i = 0; i < Imported::count(list); ++i) found.insert(sha256(item<X509_CERT>(list, i)).substr(0, 32));
    EXPECT_EQ(found, expected) << row.at("file");
    EXPECT_EQ(Imported::count(read.keys), number_in(row, "keys")) << row.at("file");
    EXPECT_TRUE(read_pfx(pfx_der(p12))) << row.at("file");
  }
  for (const auto &[kind, n] : count) std::printf("  %s: %d\n", kind.c_str(), n);
  EXPECT_GT(count["opened"], 120);
}

// Bags of any type are kept, nested ones followed, and what a file may not do is refused in time.
class BagFiles : public Pkcs12 {
 protected:
  static Bytes oid_der(const char *suffix) { return TLV(0x06, "2a864886f70d010c0a01" + std::string(suffix)); }
  static Bytes bag(const char *suffix, const Bytes &value) { return TLV(0x30, oid_der(suffix) + TLV(0xA0, value)); }
  static Bytes safe_of(const Bytes &bags) {
    return TLV(0x30, hex("06092a864886f70d010701") + TLV(0xA0, TLV(0x04, TLV(0x30, bags))));
  }
  static Bytes file_of(const Bytes &safes, const Bytes &rest = {}) {
    return TLV(
        0x30, hex("020103") + TLV(0x30, hex("06092a864886f70d010701") + TLV(0xA0, TLV(0x04, TLV(0x30, safes)))) + rest);
  }
  static Bytes key_bag() { return bag("01", key_der(pair().info)); }
  static Bytes nested(int depth) { return depth ? bag("06", TLV(0x30, nested(depth - 1))) : key_bag(); }
};

TEST_F(BagFiles, NestedUnknownAndMisformed) {
  const Bytes unknown = bag("7f", TLV(0x30, "0203010203")), secret = bag("05", TLV(0x30, "06012a"));
  const struct {
    Bytes file;
    int code;
    const char *shape;
  } cases[] = {
      {file_of(safe_of(key_bag() + unknown + secret)), 0, "1+0+0"},
      {file_of(safe_of(nested(8))), 0, "1+0+0"},
      {file_of(safe_of(nested(9))), ERR_ASN1_DECODING, "0+0+0"},
      {file_of(safe_of(nested(60))), ERR_ASN1_DECODING, "0+0+0"},
      {file_of({}), 0, "0+0+0"},
      {file_of(safe_of(bag("01", TLV(0x30, "020100 300506032b6570 0422 0420" + std::string(64, '7'))))), 0, "1+0+0"},
      {file_of(safe_of(bag("03", TLV(0x30, hex("060a2a864886f70d01091601") + TLV(0xA0, TLV(0x04, "3000")))))),
       ERR_ASN1_DECODING, "0+0+0"},
      {file_of(safe_of(bag("02", TLV(0x30, "3003 06012a 0400")))), ERR_ASN1_DECODING, "0+0+0"},
      {file_of(TLV(0x30, hex("06092a864886f70d010701"))), ERR_ASN1_DECODING, "0+0+0"},
  };
  for (const auto &c : cases) {
    const Owned<PKCS12> p12 = read_pfx(c.file);
    ASSERT_TRUE(p12);
    const Imported got = import_plain(p12, nullptr);
    EXPECT_EQ(got.code & 0xFFFF, c.code) << to_hex(c.file).substr(0, 80);
    EXPECT_EQ(got.shape(), c.shape);
    EXPECT_EQ(pfx_der(p12), c.file);
    EXPECT_EQ(import_plain(p12, "password").code, kMacMismatch) << "no MAC";
  }
}

TEST_F(BagFiles, ListsOfTheCallerOnFailure) {
  const Owned<PKCS12> p12 = read_pfx(file_of(safe_of(key_bag()) + TLV(0x30, hex("06092a864886f70d010701"))));
  Keys plain(new_STACK()), kept(new_STACK());
  EXPECT_EQ(import_PKCS12(p12, nullptr, 0, &plain, nullptr, nullptr), F_IMPORT_PKCS12 | ERR_ASN1_DECODING);
  EXPECT_EQ(plain, nullptr) << "a key had been found for it";
  EXPECT_EQ(import_PKCS12_ex(p12, nullptr, 0, 0, 0, &kept, nullptr, nullptr, nullptr),
            F_IMPORT_PKCS12 | ERR_ASN1_DECODING);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->count, 0);
}

TEST_F(BagFiles, MacsThatAreRefused) {
  for (const Row &row : table("pkcs12_macs")) {
    const Owned<PKCS12> p12 = read_pfx(file_of(safe_of(key_bag()), hex(row.at("mac"))));
    ASSERT_TRUE(p12) << row.at("why");
    EXPECT_EQ(import_plain(p12, "p").code & 0xFFFF, code_at(row, "plain")) << row.at("why");
    EXPECT_EQ(import_ex(p12, "p").code & 0xFFFF, code_at(row, "ex")) << row.at("why");
  }
}

TEST_F(Pkcs12, LimitsVersionsAndListsOfTheCaller) {
  const Owned<PKCS12> p12 = write_pfx(pair(), kWritings[0]);
  EXPECT_EQ(import_ex(p12, "pass", 0, 2047).code, F_IMPORT_PKCS12 | 0x2B);
  EXPECT_EQ(import_ex(p12, "pass", 0, 2048).code, 0);
  Keys keys(new_STACK());
  EXPECT_EQ(import_PKCS12(p12, "wrong", -1, &keys, nullptr, nullptr), kMacMismatch);
  ASSERT_NE(keys, nullptr) << "nothing was put into it";
  EXPECT_EQ(import_PKCS12(p12, "pass", -1, &keys, nullptr, nullptr), 0);
  EXPECT_EQ(keys->count, 1);
  EXPECT_EQ(import_PKCS12(nullptr, "pass", -1, &keys, nullptr, nullptr), F_IMPORT_PKCS12 | 0x49);
  Certificates all;
  EXPECT_EQ(import_PKCS12(p12, "pass", -1, &keys, &all, &all), 0);
  EXPECT_EQ(get_STACK_count(all), 2) << "one list for both kinds";
  PKV_Set_BIGINT_Word(p12->version, 4);
  STACK *none = nullptr;
  EXPECT_EQ(import_PKCS12_strict(p12, "pass", -1, 0, &none, nullptr, nullptr), F_IMPORT_PKCS12 | 0x2B);
  EXPECT_EQ(import_plain(p12, "pass").code, 0) << "any version";
}

// The stated rules of the MAC's iteration count, and of a MAC that is set again.
TEST_F(Pkcs12, CountsOfTheMac) {
  for (const int count : {0, 1, 2, 16, 17, 255, 256, 271, 272, 2048, 100000}) {
    const Owned<PKCS12> p12 = write_pfx(pair(), {-1, -1, 0, "pass", "n", count});
    const BIGINT *stored = get_PKCS12_MAC_iter(p12);
    EXPECT_EQ(stored != nullptr, count > 16) << count;
    if (stored) EXPECT_EQ(int(PKV_Get_BIGINT_Word(stored)), count >= 256 && count < 272 ? count - 256 : count);
    EXPECT_EQ(verify_PKCS12_mac(p12, "pass", -1), 0) << count;
    EXPECT_EQ(verify_PKCS12_mac(p12, "Pass", -1), kMacMismatch) << count;
  }
  const Owned<PKCS12> p12(new_PKCS12());
  EXPECT_EQ(set_PKCS12_mac(p12, "p", 1, nullptr, 0, 1, PKV_DIGEST_MD5), F_SET_PKCS12_MAC | ERR_P12_MAC_INIT);
  EXPECT_EQ(set_PKCS12_mac(p12, "p", 1, nullptr, 0, 1, 0), F_SET_PKCS12_MAC | ERR_P12_MAC_GEN);
  EXPECT_EQ(set_PKCS12_mac(nullptr, "p", 1, nullptr, 0, 1, 0), F_SET_PKCS12_MAC | 0x49);
  EXPECT_EQ(set_PKCS12_MAC_iter(p12, hex("0800").data(), 2), 0);
  EXPECT_EQ(PKV_Get_BIGINT_Word(get_PKCS12_MAC_iter(p12)), 2048u);
}

// Rows that encrypt, and those that do not.
TEST_F(Pkcs12, RowsThatEncrypt) {
  std::set<int> rows;
  for (int row = 1; row <= 840; ++row) {
    const Owned<P12_SAFEBAG> bag(get_PKCS12_shr_keybag(row, "pass", 4, nullptr, 0, 100, pair().info));
    if (!bag) continue;
    rows.insert(row);
    const Owned<P8_PRIV_KEY_INFO> key(get_PKCS12_shr_key(bag, "pass", 4));
    EXPECT_EQ(key_der(key), key_der(pair().info)) << row;
  }
  EXPECT_EQ(rows, (std::set<int>{10, 144, 145, 146, 147, 148, 149, 161, 170, 780, 793, 828, 829, 830}));
  EXPECT_EQ(get_PKCS12_shr_keybag(146, "pass", 4, nullptr, 0, 16, pair().info), nullptr) << "a count of no octets";
}

TEST_F(Pkcs12, NamesAndIdentifiers) {
  const Owned<P12_SAFEBAG> bag(get_PKCS12_keybag(pair().info));
  EXPECT_EQ(get_PKCS12_friendlyname(bag), nullptr);
  EXPECT_EQ(add_PKCS12_friendlyname_UNI(bag, hex("00410042").data(), 4), 0);
  EXPECT_EQ(add_PKCS12_friendlyname_ASC(bag, "abc", -1), 0);
  EXPECT_EQ(add_PKCS12_LKID(bag, hex("0102").data(), 2), 0);
  const Owned<char> name(get_PKCS12_friendlyname(bag));
  EXPECT_STREQ(name, "AB");
  const auto *odd =
      static_cast<ASN1_STRING *>(get_X509_ATTRIBUTE_data(get_X509_ATTRIBUTES_child(bag->attributes, 1), 0));
  EXPECT_EQ(text_of(odd), "abc") << "not widened";
  EXPECT_NE(get_PKCS12_attribute(bag, 157), nullptr);
  EXPECT_EQ(get_PKCS12_attribute(bag, 999), nullptr);
  EXPECT_EQ(add_PKCS12_bag(nullptr, bag), 0x4D120049);
}

TEST(Pkcs12Derivation, AgreesWithIndependentValues) {
  VELPKI_NEED_KOREAN;
  const Owned<DIGEST_UNIT> unit(PKV_New_DIGEST());
  unsigned char byte;
  EXPECT_EQ(gen_PKCS12_key_ASC("p", 1, &byte, 1, 1, 1, 1, &byte, unit), PKV_ERR_UNSUPPORTED);
  ASSERT_EQ(PKV_Init_DIGEST(unit, PKV_DIGEST_SHA1), 0);
  for (const Json &c : korean("pkcs12_kdf").items) {
    Bytes out(size_t(c["size"].number()));
    const Bytes salt = c["salt"].octets();
    for (const auto derive : {gen_PKCS12_key_ASC, gen_PKCS12_key_UTF8}) {
      EXPECT_EQ(derive(c["password_ascii"].text.c_str(), -1, salt.data(), int(salt.size()), c["id"].number(),
                       c["count"].number(), int(out.size()), out.data(), unit),
                0);
      EXPECT_EQ(to_hex(out), c["output"].text);
    }
  }
}

// What comes back of a key, and of a certificate if there is one, in one safe of a file.
Imported through_a_file(P8_PRIV_KEY_INFO *key, X509_CERT *cert, int key_row, int safe_row, int mac_digest) {
  Bags bags;
  Safes safes;
  EXPECT_NE(add_PKCS12_keyinfo(&bags, key, nullptr, 0, "test1234!", 9, key_row, 2048), nullptr);
  if (cert) EXPECT_NE(add_PKCS12_cert(&bags, cert, nullptr, 0), nullptr);
  EXPECT_EQ(PKCS12_add_safe(&safes, bags, safe_row, 0, safe_row < 0 ? nullptr : "test1234!"), 0);
  const Owned<PKCS12> p12(PKCS12_add_safes(safes));
  EXPECT_EQ(set_PKCS12_mac(p12, "test1234!", -1, nullptr, 0, 2048, mac_digest), 0);
  return import_plain(read_pfx(pfx_der(p12)), "test1234!");
}

// An accredited-style pair: the key opens, belongs to the certificate, goes into a file and comes back.
TEST(Pkcs12Korean, AccreditedPair) {
  VELPKI_NEED_KOREAN;
  const auto cert =
      read_by(readDER_X509_CERT_from_Binary, from_base64(korean("certificates").items[0]["der_base64"].text));
  const auto p8 = read_by(readDER_PKCS8_from_Binary, from_base64(korean("pbe_pkcs8").items[2]["der_base64"].text));
  Owned<P8_PRIV_KEY_INFO> key;
  ASSERT_EQ(decrypt_PKCS5(p8, &key, "test1234!", 9), 0);
  EXPECT_EQ(get_X509_ATTRIBUTES_count(key->attributes), 1) << "the random number";
  EXPECT_EQ(cmp_ASYMMETRIC_KEY(key->key, get_X509_SPKI(cert)->key), 0);
  const Imported back = through_a_file(key, cert, 780, 0, PKV_DIGEST_HAS160);
  EXPECT_EQ(back.code, 0);
  ASSERT_EQ(back.shape(), "1+1+0") << "by the public key";
  EXPECT_EQ(key_der(back.key()), key_der(key)) << "with the attributes";
}

// A KCDSA key survives copying, both containers and the file, and signs for its certificate's key afterwards.
TEST(Pkcs12Korean, KcdsaKeySignsAfterwards) {
  VELPKI_NEED_KOREAN;
  const auto p8 = read_by(readDER_PKCS8_from_Binary, from_base64(korean("pbe_pkcs8").items[3]["der_base64"].text));
  Owned<P8_PRIV_KEY_INFO> first;
  ASSERT_EQ(decrypt_PKCS5(p8, &first, "qwer1234!@#$", 12), 0);
  const Owned<P8_PRIV_KEY_INFO> copy(dup_P8_PRIV_KEY_INFO(first));
  const Imported back = through_a_file(copy, nullptr, 828, -1, 0);
  ASSERT_EQ(back.shape(), "1+0+0");
  const KCDSA_UNIT *signer = ASYMMETRIC_KEY_to_KCDSA_UNIT(back.key()->key);
  const KCDSA_UNIT *verifier = ASYMMETRIC_KEY_to_KCDSA_UNIT(first->key);
  unsigned char r[64], s[64];
  int r_length = 0, s_length = 0;
  ASSERT_EQ(PKV_Get_KCDSA_Lengths(signer, &r_length, &s_length), 0);
  EXPECT_EQ(key_der(back.key()), key_der(first));
  const Bytes message(40, 7);
  EXPECT_EQ(PKV_KCDSA_SIGN(signer, 0, message.data(), 40, r, s), 0);
  EXPECT_EQ(PKV_KCDSA_VERIFY(verifier, 0, message.data(), 40, r, r_length, s, s_length), 0);
}

// Import and export with the n-th allocation failing.
TEST_F(Pkcs12, SurviveEachFailedAllocation) {
  const Owned<PKCS12> source = write_pfx(pair(), {161, 161, PKV_DIGEST_SHA256, "pass", "홍길동", 20, 20});
  const Bytes der = pfx_der(source);
  survive_each_failed_allocation([&] {
    Keys keys;
    Certificates certs, others;
    int code = 0;
    const auto p12 = read_by(readDER_PKCS12_from_Binary, der, &code);
    if (p12) code = import_PKCS12(p12, "pass", -1, &keys, &certs, &others);
    EXPECT_EQ(code == 0, keys && others);
    if (code) EXPECT_TRUE((code & 0xFFFF) == 0x3C || (code & 0xFFFF) == 0x3B) << std::hex << code;
    return code == 0;
  });
  survive_each_failed_allocation([&] {
    Bags bags;
    Safes safes;
    if (!add_PKCS12_keyinfo(&bags, pair().info, nullptr, 0, "pass", 4, 161, 20) ||
        !add_PKCS12_cert(&bags, pair().own, nullptr, 0) || PKCS12_add_safe(&safes, bags, 0, 20, "pass"))
      return false;
    const Owned<PKCS12> p12(PKCS12_add_safes(safes));
    return p12 && !set_PKCS12_mac(p12, "pass", -1, nullptr, 0, 1, 0);
  });
}

}  // namespace
