// Extension values in both forms: what each reads, what it writes back, and what comes of mixing them.
#include "extension_types.h"

using namespace test;

namespace {

struct Case {
  const char *column;
  const Type &type;
  const Read &read;
  const Write &write;
  std::string octets, wanted;
};

// Every row of the table in every form that it has a result for.
void for_each_case(const std::function<void(const Case &)> &run) {
  for (const Row &row : table("extension_values")) {
    const Type &type = type_named(row.at("type"));
    const std::string &octets = row.at("octets");
    SCOPED_TRACE(row.at("type") + " " + octets);
    const auto with = [&](const char *column, const Read &read, const Write &write) {
      const std::string &wanted = row.at(column);
      if (wanted != "-") run({column, type, read, write, octets, wanted == "=" ? octets : wanted});
    };
    with("house", type.read, type.write);
    with("standard", type.read_standard, type.write_standard);
    with("house_to_standard", type.read, type.write_standard);
  }
}

TEST(ExtensionValues, ReadAndWriteAsTheirFormSays) {
  for_each_case([](const Case &each) {
    const Unit in = unit(each.octets);
    EXPECT_EQ(passed_through(in.get(), each.type, each.read, each.write), each.wanted) << each.column;
  });
}

TEST(ExtensionValues, SurviveEachFailedAllocation) {
  for_each_case([](const Case &each) {
    const Unit in = unit(each.octets);
    const size_t before = live_blocks();
    std::string result;
    for (long n = 0; result != each.wanted && n < 200; ++n) {
      fail_allocation(n);
      result = passed_through(in.get(), each.type, each.read, each.write);
      fail_allocation(-1);
      ASSERT_EQ(live_blocks(), before) << each.column << " allocation " << n;
      if (result != each.wanted && result != "-") ASSERT_EQ(result.substr(4), "003c") << each.column << " " << n;
    }
    EXPECT_EQ(result, each.wanted);
  });
}

// One changed octet, one missing, at every place and at the end of a page: no crash, no leak.
TEST(ExtensionValues, SurviveDamage) {
  for_each_case([](const Case &each) {
    const Bytes sample = hex(each.octets);
    GuardedBytes guarded(sample.size());
    const auto run = [&](const Bytes &octets) {
      const Unit in(decodeToBERSequence_n(guarded.place(octets.data(), octets.size()), int(octets.size())));
      if (in) passed_through(in.get(), each.type, each.read, each.write);
    };
    const size_t before = live_blocks();
    for (size_t i = 0; i < sample.size(); ++i) {
      for (const uint8_t change : {0x01, 0x20, 0x80, 0xFF}) {
        Bytes damaged = sample;
        damaged[i] ^= change;
        run(damaged);
      }
      run(Bytes(sample.begin(), sample.begin() + long(i)));
    }
    EXPECT_EQ(live_blocks(), before);
  });
}

// Lists are appended to, all or nothing; records keep what they had.
TEST(ExtensionValues, FillWhatTheCallerHas) {
  const Unit good = unit("300b8204612e6b728603753a78"), bad = unit("30058603753a7a0c");
  GENERAL_NAMES *names = nullptr;
  ASSERT_EQ(Seq_to_GENERAL_NAMES(good.get(), &names), 0);
  const STACK *const address = names;
  EXPECT_EQ(Seq_to_GENERAL_NAMES(unit("30068603753a7900").get(), &names) & 0xFFFF, ERR_ASN1_DECODING);
  EXPECT_EQ(names->count, 2);
  EXPECT_EQ(Seq_to_GENERAL_NAMES_RFC5280(unit("30058603753a79").get(), &names), 0);
  EXPECT_EQ(names, address);
  ASSERT_EQ(names->count, 3);
  EXPECT_EQ(text_of(static_cast<ASN1_STRING *>(static_cast<GENERAL_NAME *>(names->data[2])->value)), "u:y");
  free_GENERAL_NAMES(names);
}

// The length of an rfc822Name or dNSName is its first length octet, and nothing behind the name is read.
TEST(ExtensionValues, HouseNamesAreMeasuredByOneLengthOctet) {
  const struct {
    int size;
    std::string header;
    int read;
  } cases[] = {{127, "817f", 127},     {128, "818180", 128}, {129, "818181", 129},
               {256, "81820100", 130}, {5, "818105", 5},     {200, "8181c8", 129}};
  for (const auto &each : cases) {
    const Bytes octets = hex(each.header) + Bytes(size_t(each.size), 'a');
    GuardedBytes guarded(octets.size());
    const Unit in(decodeToBERSequence_n(guarded.place(octets.data(), octets.size()), int(octets.size())));
    for (const bool standard : {false, true}) {
      GENERAL_NAME *name = nullptr;
      ASSERT_EQ(standard ? Seq_to_GENERAL_NAME_RFC5280(in.get(), &name) : Seq_to_GENERAL_NAME(in.get(), &name), 0);
      EXPECT_EQ(static_cast<ASN1_STRING *>(name->value)->length, standard ? each.size : each.read) << each.header;
      free_GENERAL_NAME(name);
    }
  }
}

struct Printed {
  const char *oid, *value, *house, *standard;
};

// The extensions of one certificate in the order of this table; the heading of each is checked by its number and OID.
TEST(ExtensionValues, AreShownOnTheTerminal) {
  const Printed cases[] = {
      {"551d0e", "0402AABB", "  * SKey Id (PKV_SHA1 Hash Value) : AA:BB\n", nullptr},
      {"551d0f", "03020106", "  * key_usage : 06\n", nullptr},
      {"551d11", "300B A009 06022A03 A003 0C0141", "  * OID = 1.2.3 \n", nullptr},
      {"551d13", "30060101FF020103", "  * BasicConstraints, CA = ff\n  * BasicConstraints, pathLenConstraint = 3\n",
       nullptr},
      {"551d20", "3006300406022A03", "  * Policy Mapping, issuerDomainPolicy\n1.2.3=\n", nullptr},
      {"551d23", "301B80020102A111A40F300D310B3009060355040613024B5282020080",
       "  * Key Id : 01:02\n  * Serial : 80\n      * KR\n", nullptr},
      {"551d24", "3003800101", "  * PolicyConstraints : \n    PolicyConstraints->requireExplicitPolicy 01\n", nullptr},
      {"551d24", "3000", "  * PolicyConstraints : \n    PolicyConstraints has no data\n", nullptr},
      {"551d21", "300A300806022A0306022A04", "  * Policy Mapping, issuerDomainPolicy\n1.2.3=1.2.4\n", nullptr},
      {"551d1c", "3000", "  * IssuingDistrubutionPoint : \n", nullptr},
      {"551d1e", "300AA00830068204612E6B72",
       "  * NameConstraints : \n    NameConstraints->permittedSubtrees\n  * permittedSubtrees->DNS a.kr\n", nullptr},
      {"551d1f", "300F300DA007A0058603753A7881020560", "", "  * DISTPOINT URI : u:x\n  * Reason Flags 60\n"},
      {"551d1f", "30123010A00EA10C310A30080603550403130163", "  * DISTPOINT->relativename\n      * c\n", ""},
      {"551d1f", "30093007A2058603753A78", "  * CRLissuer->URI u:x\n", nullptr},
      {"2b06010505070101", "3011300F06082B060105050730018603751B78",
       "  * OID = 1.3.6.1.5.5.7.48.1 / OCSP\n  * AuthorityInfoAccess uri : u\\x1Bx\n", nullptr},
      {"551d13", "3000", "", "  * BasicConstraints, CA = 0\n"},
      {"551d13", "3006", "", ""},
      {"2a03", "0500", "", nullptr},
  };
  for (const Printed &each : cases) {
    CertificateParts parts;
    parts.tail = TLV(0xA3, TLV(0x30, TLV(0x30, TLV(0x06, each.oid) + TLV(0x04, hex(each.value)))));
    const Certificate cert = read_certificate(parts.der());
    ASSERT_NE(cert, nullptr);
    const auto shown = [&](void (*print)(const X509_CERT *)) {
      static void (*chosen)(const X509_CERT *);
      chosen = print;
      const std::string text =
          captured_stdout([](const void *p) { chosen(static_cast<const X509_CERT *>(p)); }, cert.get());
      EXPECT_EQ(text.find("\n - Extension (0) : "), 0u) << text;
      return text.substr(std::min(text.find('\n', 1) + 1, text.size()));
    };
    EXPECT_EQ(shown(print_X509_Extension), each.house) << each.value;
    EXPECT_EQ(shown(print_X509_Extension_RFC5280), each.standard ? each.standard : each.house) << each.value;
  }
}

}  // namespace
