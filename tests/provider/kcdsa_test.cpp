#include "keys.h"

using namespace test;

namespace {

Kcdsa key_of(const Json &from) {
  Kcdsa key(PKV_New_KCDSA());
  const auto at = [&](const char *name) { return number(from[name].text); };
  EXPECT_EQ(0, call(PKV_Set_KCDSA_Params, key, at("p"), at("q"), at("g"), at("j"), at("y"), from["seed"].octets(),
                    from["count"].number()));
  return key;
}

// A list of the vectors, with the domain that those of our own making only name.
std::vector<Json> list(const char *name) {
  std::vector<Json> out = korean(name).items;
  for (Json &one : out) {
    for (const Json &key : korean("kcdsa_keys").items) {
      if (key["name"].text != one["key"].text) continue;
      for (const char *field : {"p", "q", "g"}) one.fields[field] = key[field];
    }
  }
  return out;
}

struct Signature {
  Bytes r, s;
};

int sign(const Kcdsa &key, int digest, const Bytes &message, Signature &out) {
  int r = 0, s = 0;
  if (int error = PKV_Get_KCDSA_Lengths(key, &r, &s)) return error;
  out = {Bytes(size_t(r)), Bytes(size_t(s))};
  return call(PKV_KCDSA_SIGN, key, digest, message, out.r.data(), out.s.data());
}
int verify(const Kcdsa &key, int digest, const Bytes &message, const Signature &in) {
  return call(PKV_KCDSA_VERIFY, key, digest, message, in.r, in.s);
}
Signature given(const Json &one) { return {one["r"].octets(), one["s"].octets()}; }

}  // namespace

// With the published nonce the published signature comes out; and y from x.
TEST(Kcdsa, SignsAndVerifiesVectors) {
  VELPKI_NEED_KOREAN;
  std::vector<Json> all = list("kcdsa_published");
  for (const Json &one : list("kcdsa_self_made")) all.push_back(one);
  for (const Json &one : all) {
    SCOPED_TRACE(one["name"].text);
    const Kcdsa key = key_of(one);
    const int digest = digest_id(one["hash"].text);
    const Bytes message = one["message"].octets(), k = one["k"].octets();
    ASSERT_EQ(0, call(PKV_Set_KCDSA_Private, key, number(one["x"].text)));
    EXPECT_EQ(digits_of(PKV_Get_KCDSA_Component(key, PKV_KCDSA_Y)), digits_of(number(one["y"].text)));
    EXPECT_EQ(0, PKV_Check_KCDSA_Key(key));
    Signature made;
    const size_t size = one["q"].octets().size();
    Bytes drawn(size, 0xFF);  // this and 0 are no values below q: drawn again
    drawn.resize(3 * size - k.size());
    drawn.insert(drawn.end(), k.begin(), k.end());
    choose_random(drawn);
    ASSERT_EQ(0, sign(key, digest, message, made));
    choose_random({});
    EXPECT_EQ(to_hex(made.r), one["r"].text);
    EXPECT_EQ(digits_of(number(to_hex(made.s))), digits_of(number(one["s"].text)));
    EXPECT_EQ(0, verify(key_of(one), digest, message, made));
  }
  for (const Json &one : list("kcdsa_verify_published")) {
    EXPECT_EQ(one["valid"].text == "true" ? 0 : PKV_ERR_MISMATCH,
              verify(key_of(one), digest_id(one["hash"].text), one["message"].octets(), given(one)));
  }
}

// All are checked, which derives p at the count given; the shortest search is also done again.
TEST(Kcdsa, DerivesAndChecksPublishedParameters) {
  VELPKI_NEED_KOREAN;
  std::vector<Json> sets = list("kcdsa_published");
  for (Json one : list("kcdsa_keys")) {
    one.fields["hash"].text = one["q"].text.size() == 40 ? "has160" : "sha256";
    sets.push_back(one);
  }
  int checked = 0, searched = 0;
  for (const Json &one : sets) {
    if (!one.has("seed")) continue;
    SCOPED_TRACE(one["name"].text);
    const Kcdsa key = key_of(one), derived(PKV_New_KCDSA());
    const Bytes seed = one["seed"].octets();
    const int digest = digest_id(one["hash"].text), p_bits = int(one["p"].text.size() * 4);
    EXPECT_EQ(0, PKV_Check_KCDSA_Params(key, 1, digest));
    EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Check_KCDSA_Params(key, 1, PKV_DIGEST_SHA384));
    ++checked;
    if (p_bits > 1024 || one["count"].number() > 3000) continue;
    ++searched;
    ASSERT_EQ(0, call(PKV_Derive_KCDSA_Params, derived, p_bits, int(seed.size() * 8), digest, seed, nullptr, nullptr));
    int length = 0, count = 0;
    EXPECT_EQ(to_hex(PKV_Get_KCDSA_Seed(derived, &length, &count), seed.size()), one["seed"].text);
    EXPECT_EQ(count, one["count"].number());
    for (const auto &[which, name] : {std::pair(PKV_KCDSA_P, "p"), {PKV_KCDSA_Q, "q"}, {PKV_KCDSA_J, "j"}})
      EXPECT_EQ(digits_of(PKV_Get_KCDSA_Component(derived, which)), one[name].text);
    EXPECT_EQ(0, PKV_Check_KCDSA_Params(derived, 0, 0)) << "the generator's order";
  }
  EXPECT_TRUE(checked == 7 && searched == 1);
}

TEST(Kcdsa, FindsFaultsInNumbers) {
  VELPKI_NEED_KOREAN;
  const Json good = list("kcdsa_keys").at(0);
  for (const Row &row : table("kcdsa_faults")) {
    Json bad = good;
    bad.fields[row.at("number")].text = row.at("value");
    const Kcdsa key = key_of(bad);
    const auto expected = [&](const char *check) { return row.at(check) == "good" ? 0 : PKV_ERR_BAD_VALUE; };
    EXPECT_EQ(expected("quick"), PKV_Check_KCDSA_Params(key, 0, 0)) << row.at("number") << row.at("value");
    EXPECT_EQ(expected("thorough"), PKV_Check_KCDSA_Params(key, 1, PKV_DIGEST_HAS160)) << row.at("number");
    EXPECT_EQ(expected("key"), PKV_Check_KCDSA_Key(key)) << row.at("number") << row.at("value");
    const bool usable = !expected("quick") && !expected("key");
    if (row.at("number") != "j") EXPECT_EQ(usable, PKV_Init_KCDSA(key, 0) == 0) << row.at("number") << row.at("value");
  }
  const Kcdsa key = key_of(good);
  EXPECT_EQ(PKV_ERR_MISMATCH, call(PKV_Set_KCDSA_Private, key, number("02")));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, call(PKV_Set_KCDSA_Private, key, number(good["q"].text)));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Init_KCDSA(key, 1)) << "no private value";
}

TEST(Kcdsa, SignsIncrementallyAndReadsLengthsStrictly) {
  VELPKI_NEED_KOREAN;
  for (const Json &one : list("kcdsa_keys")) {
    const Kcdsa key = key_of(one);
    ASSERT_EQ(0, PKV_Generate_KCDSA(key));
    EXPECT_EQ(0, PKV_Check_KCDSA_Key(key));
    EXPECT_EQ(1, call(PKV_Cmp_KCDSA, key, key_of(one)));
    const Bytes message(100, 'm');
    for (const int digest : {0, int(PKV_DIGEST_HAS160), int(PKV_DIGEST_SHA512)}) {
      ASSERT_EQ(0, PKV_Init_KCDSA(key, 1));
      ASSERT_EQ(digest ? 0 : PKV_ERR_UNSUPPORTED, PKV_Set_KCDSA_DIGEST(key, digest));
      int r = 0, s = 0;
      ASSERT_EQ(0, PKV_Get_KCDSA_Lengths(key, &r, &s));
      EXPECT_EQ(s, int(one["q"].text.size() / 2));
      EXPECT_EQ(r, digest == PKV_DIGEST_HAS160 ? 20 : s);
      Signature made{Bytes(size_t(r)), Bytes(size_t(s))};
      ASSERT_EQ(0, PKV_Update_KCDSA(key, message.data(), 60));
      EXPECT_EQ(PKV_ERR_FAILED, PKV_Set_KCDSA_DIGEST(key, PKV_DIGEST_SHA1)) << "after the first octets";
      ASSERT_EQ(0, PKV_Update_KCDSA(key, message.data(), 40));
      ASSERT_EQ(0, PKV_Final_KCDSA(key, made.r.data(), made.s.data()));
      EXPECT_EQ(0, verify(key, digest, message, made));
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(key, digest, Bytes(99, 'm'), made));
      const Bytes long_r = hex("00" + to_hex(made.r)), long_s = hex("00" + to_hex(made.s));
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(key, digest, message, {long_r, made.s})) << "r is octets, not a number";
      for (const Bytes &bad_s : {long_s, Bytes(1), one["q"].octets()})
        EXPECT_EQ(PKV_ERR_MISMATCH, verify(key, digest, message, {made.r, bad_s})) << to_hex(bad_s);
    }
  }
}

TEST(Kcdsa, AsksASignerElsewhere) {
  VELPKI_NEED_KOREAN;
  Json one = list("kcdsa_self_made").at(0);
  const Kcdsa key = key_of(one);
  const auto answer = [](void *context, int kind, int digest, int, const unsigned char *input, int length,
                         unsigned char *signature, int *signature_length) {
    const Json &expected = *static_cast<const Json *>(context);
    EXPECT_EQ(to_hex(input, size_t(length)), expected["hz"].text);
    EXPECT_TRUE(kind == PKV_KEY_KCDSA && digest == PKV_DIGEST_HAS160 && *signature_length == 40);
    memcpy(signature, hex(expected["r"].text + expected["s"].text).data(), 40);
    return 0;
  };
  ASSERT_EQ(0, PKV_Set_KCDSA_Callback(key, answer, &one));
  Signature made;
  ASSERT_EQ(0, sign(Kcdsa(PKV_Dup_KCDSA(key)), 0, one["message"].octets(), made));
  EXPECT_EQ(0, verify(key, 0, one["message"].octets(), made));
}

TEST(Kcdsa, VerifiesInTwoThreadsAndSurvivesExhaustedMemory) {
  VELPKI_NEED_KOREAN;
  const Json one = list("kcdsa_self_made").at(0);
  const Bytes message = one["message"].octets();
  for (int turn = 0; turn < 20; ++turn) {
    const Kcdsa key = key_of(one);
    EXPECT_EQ(0, in_two_threads([&] { return verify(key, 0, message, given(one)); }));
  }
  const Kcdsa source = key_of(one);
  const auto work = [&] {
    const Kcdsa key(PKV_Dup_KCDSA(source));
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Generate_KCDSA(key)) return error;
    Signature made;
    return sign(key, 0, message, made);
  };
  EXPECT_GT(fail_each_allocation(work), 5);
}

TEST(Kcdsa, GeneratesParameters) {
  const Kcdsa key(PKV_New_KCDSA());
  const auto stop = [](int, void *) { return 1; };  // at the first candidate: there may be no second
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Generate_KCDSA_Params(key, 1024, 224, PKV_DIGEST_SHA224, nullptr, nullptr));
  EXPECT_EQ(PKV_ERR_FAILED, PKV_Generate_KCDSA_Params(key, 1024, 160, PKV_DIGEST_SHA1, stop, nullptr));
#ifdef VELPKI_SLOW_TESTS
  ASSERT_EQ(0, PKV_Generate_KCDSA_Params(key, 1024, 160, PKV_DIGEST_SHA1, nullptr, nullptr));
  EXPECT_EQ(0, PKV_Check_KCDSA_Params(key, 1, PKV_DIGEST_SHA1));
#endif
}
