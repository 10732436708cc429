// Files, generic readers and writers, and what happens when memory ends in them.
#include <unistd.h>
#include <velpki/asn1_error.h>
#include <velpki/asn1_io.h>

#include "support/asn1.h"

using namespace test;

namespace {

// A GiB of zeros in the release build, a MiB elsewhere.
#ifdef VELPKI_SLOW_TESTS
constexpr long kLargeFile = 1L << 30;
#else
constexpr long kLargeFile = 1L << 20;
#endif

// A structure of the generic functions: any unit, and conversions that fail as the tests want.
int to_unit(void *structure, ASN1_UNIT **unit) {
  *unit = dup_ASN1_UNIT_strict(static_cast<ASN1_UNIT *>(structure));
  return *unit ? 0 : 0x41000001;
}
int fail_to_unit(void *structure, ASN1_UNIT **) { return *static_cast<int *>(structure); }
int from_unit(ASN1_UNIT *unit, void **structure) {
  *structure = dup_ASN1_UNIT_strict(unit);
  return *structure ? 0 : 0x41000001;
}

std::string file_with(const char *name, std::string_view content) {
  const std::string path = temporary_path(name);
  EXPECT_TRUE(write_file(path, content.data(), content.size()));
  return path;
}

TEST(Files, BadOnesGiveTheDocumentedCodes) {
  const std::string empty = file_with("empty", ""), no_end = file_with("no_end", "-----BEGIN X-----\nAAAA\n");
  const std::string garbage = file_with("garbage", "\x30\x05\x02");
  struct Case {
    std::string path;
    int size, der, pem;
  };
  for (const Case &c : {Case{temporary_path("missing"), -1, 0x4E00002B, 0x4E00002B},
                        {empty, -1, 0x4E00002B, 0x4E00002B},
                        {"/tmp", -1, 0x4E00002B, 0x4E00002B},
                        {no_end, 23, 0x4E00004F, 0x4E00002B},
                        {garbage, 3, 0x4E00004F, 0x4E00002B}}) {
    Block octets;
    void *structure = nullptr;
    EXPECT_EQ(File_to_binary(c.path.c_str(), &octets), c.size) << c.path;
    EXPECT_EQ(readDER_from_File(&structure, from_unit, c.path.c_str()), c.der) << c.path;
    free_ASN1_UNIT(static_cast<ASN1_UNIT *>(structure));
    EXPECT_EQ(readPEM_from_File(&structure, from_unit, c.path.c_str()), c.pem) << c.path;
  }
  void *structure = nullptr;
  EXPECT_EQ(readDER_from_File(&structure, from_unit, nullptr), 0x4E00002B);
}

TEST(Files, ALargeOneOfZerosIsOneSmallUnit) {
  const std::string zeros = file_with("zeros", "");
  ASSERT_EQ(truncate(zeros.c_str(), kLargeFile), 0);  // a hole: takes no space
  void *structure = nullptr;
  EXPECT_EQ(readDER_from_File(&structure, from_unit, zeros.c_str()), 0);
  EXPECT_EQ(flat(static_cast<ASN1_UNIT *>(structure)), "0000");
  free_ASN1_UNIT(static_cast<ASN1_UNIT *>(structure));
}

TEST(Files, LengthIsComparedWithTheOffset) {
  const unsigned char data[] = "0123456789";
  const std::string path = temporary_path("written");
  for (const Row &row : table("file_ranges")) {
    const int offset = number_in(row, "offset"), length = number_in(row, "length");
    unlink(path.c_str());
    EXPECT_EQ(binary_to_File(data, offset, length, path.c_str()), number_in(row, "plain")) << offset;
    EXPECT_EQ(binary_to_File_n(data, 10, offset, length, path.c_str()), number_in(row, "bounded")) << offset;
    const Bytes written = read_file(path);
    EXPECT_EQ(std::string(written.begin(), written.end()), row.at("content"));
  }
  EXPECT_EQ(binary_to_File(data, 0, 3, "/no/such/folder"), -1);
  EXPECT_EQ(binary_to_File_n(data, 10, 0, 3, "/dev/full"), -1);
}

TEST(Writers, LengthsAndCodesShareOneInt) {
  Unit u = unit("3003020105");
  unsigned char *der = nullptr, digest[64];
  Owned<char> pem;
  EXPECT_EQ(writeDER_to_Binary(u, to_unit, &der), 5);
  EXPECT_EQ(writePEM_to_Binary(u, to_unit, "X", 1, &pem), 43);
  EXPECT_STREQ(pem, "-----BEGIN X-----\nMAMCAQU=\n-----END X-----\n");
  EXPECT_EQ(get_ASN1_hash(u, to_unit, PKV_DIGEST_SHA1, digest), 20);
  EXPECT_EQ(get_ASN1_hash(nullptr, to_unit, PKV_DIGEST_SHA1, digest), 0);
  PKV_Free(der, __FILE__, __LINE__);
  der = nullptr;
  for (int code : {1, 0x46190049}) {
    EXPECT_EQ(writeDER_to_Binary(&code, fail_to_unit, &der), code);
    EXPECT_EQ(get_ASN1_hash(&code, fail_to_unit, PKV_DIGEST_SHA1, digest), 0);
  }
  int provider_code = 0x2B;  // would read as a length
  EXPECT_EQ(writeDER_to_Binary(&provider_code, fail_to_unit, &der), 1);
  EXPECT_EQ(writeDER_to_Binary(u, to_unit, nullptr), 0x4E00002B);
  EXPECT_EQ(writePEM_to_FILE(u, to_unit, "X", 1, nullptr), 0x4E00002B);
  EXPECT_EQ(der, nullptr);
}

TEST(Readers, StrictOnesTakeOneDerValue) {
  for (const auto &[text, code, strict_code] : {std::tuple("3003020105", 0, 0),
                                                {"300302010500", 0, 0x4E000200},
                                                {"308103020105", 0, 0x4E000200},
                                                {"30040201", 0x4E00004F, 0x4E00004F}}) {
    const Bytes octets = hex(text);
    void *plain = nullptr, *strict = nullptr;
    EXPECT_EQ(readDER_from_Binary(&plain, from_unit, octets.data(), int(octets.size())), code) << text;
    EXPECT_EQ(readDER_from_Binary_strict(&strict, from_unit, octets.data(), int(octets.size())), strict_code) << text;
    free_ASN1_UNIT(static_cast<ASN1_UNIT *>(plain));
    free_ASN1_UNIT(static_cast<ASN1_UNIT *>(strict));
  }
}

// Encoders, appends, copies and writers with the n-th allocation failing.
TEST(Memory, EndsAnywhereWithoutALeak) {
  const String text = string(3, hex("ff00")), oid = test::oid("1.2.840.113549");
  const Unit child = unit("30800201050000");
  survive_each_failed_allocation([&] {
    Block der;
    Owned<char> pem;
    const Unit unit(new_ASN1_UNIT());
    ASN1_UNIT *seq = unit;
    const bool failed = !seq || addToDERSequence(seq, 3, text, 2) || addToDERSequence(seq, 6, oid, oid->length) ||
                        addToDERSequence(seq, TYPE_SEQUENCE, child, 0) || addToDERSetOf_strict(seq, 3, text, 2) ||
                        setBERLengthForm(seq, 2) || writeDER_to_Binary(seq, to_unit, &der) < 2 ||
                        writePEM_to_Binary(seq, to_unit, "X", 1, &pem) < 2;
    return !failed;
  });
  // A unit that is handed over stays the caller's where sorting it in fails.
  survive_each_failed_allocation([&] {
    const Unit set(new_ASN1_UNIT());
    ASN1_UNIT *child = new_ASN1_UNIT();
    const bool done = set && child && !encodeToBERNull(child, 5, nullptr, 0, 0) &&
                      !addToDERSetOf_strict(set, TYPE_ASN1_UNIT, child, 0);
    if (!done) free_ASN1_UNIT(child);
    return done;
  });
}

}  // namespace
