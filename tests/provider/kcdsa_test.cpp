#include <thread>

#include "keys.h"

using namespace test;

namespace {

Kcdsa key_of(const Json &from) {
  Kcdsa key(PKV_New_KCDSA());
  const auto at = [&](const char *name) { return number(from[name].text); };
  const Bytes seed = from["seed"].octets();
  EXPECT_EQ(0,
            PKV_Set_KCDSA_Params(key.get(), at("p").get(), at("q").get(), at("g").get(), at("j").get(), at("y").get(),
                                 seed.empty() ? nullptr : seed.data(), int(seed.size()), from["count"].number()));
  return key;
}

Json korean_vectors() { return read_json(vectors("../reference/korean_vectors.json")); }

// The signatures of one list, with the domain that those of our own making only name.
std::vector<Json> signatures(const Json &vectors, const char *list) {
  std::vector<Json> out = vectors[list].items;
  for (Json &one : out) {
    for (const Json &key : vectors["kcdsa_keys"].items) {
      if (key["name"].text != one["key"].text) continue;
      for (const char *name : {"p", "q", "g"}) one.fields[name] = key[name];
    }
  }
  return out;
}

struct Signature {
  Bytes r, s;
};

int sign(const KCDSA_UNIT *key, int digest, const Bytes &message, Signature &out) {
  int r = 0, s = 0;
  if (int error = PKV_Get_KCDSA_Lengths(key, &r, &s)) return error;
  out = {Bytes(size_t(r)), Bytes(size_t(s))};
  return PKV_KCDSA_SIGN(key, digest, message.data(), int(message.size()), out.r.data(), out.s.data());
}
int verify(const KCDSA_UNIT *key, int digest, const Bytes &message, const Signature &in) {
  return PKV_KCDSA_VERIFY(key, digest, message.data(), int(message.size()), in.r.data(), int(in.r.size()), in.s.data(),
                          int(in.s.size()));
}

}  // namespace

// With the published nonce the published signature comes out; and y from x.
TEST(Kcdsa, SignsVectors) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json vectors = korean_vectors();
  for (const char *list : {"kcdsa_published", "kcdsa_self_made"}) {
    for (const Json &one : signatures(vectors, list)) {
      const std::string name = std::string(list) + ": " + one["name"].text;
      const Kcdsa key = key_of(one), bare = key_of(one);
      const int digest = digest_id(one["hash"].text);
      const Bytes message = one["message"].octets(), k = one["k"].octets();
      ASSERT_EQ(0, PKV_Set_KCDSA_Private(key.get(), number(one["x"].text).get())) << name;
      EXPECT_EQ(digits_of(PKV_Get_KCDSA_Component(key.get(), PKV_KCDSA_Y)), digits_of(number(one["y"].text).get()));
      EXPECT_EQ(0, PKV_Check_KCDSA_Key(key.get())) << name;
      Signature made;
      Bytes nonce(one["q"].octets().size() - k.size());
      nonce.insert(nonce.end(), k.begin(), k.end());
      Bytes refused(nonce.size(), 0xFF);  // not below q: drawn again
      refused.insert(refused.end(), nonce.size(), 0);
      refused.insert(refused.end(), nonce.begin(), nonce.end());
      choose_random(refused);
      ASSERT_EQ(0, sign(key.get(), digest, message, made)) << name;
      choose_random({});
      EXPECT_EQ(to_hex(made.r), one["r"].text) << name;
      EXPECT_EQ(digits_of(number(to_hex(made.s)).get()), digits_of(number(one["s"].text).get())) << name;
      EXPECT_EQ(0, verify(bare.get(), digest, message, made)) << name;
    }
  }
}

TEST(Kcdsa, VerifiesVectors) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &one : korean_vectors()["kcdsa_verify_published"].items) {
    EXPECT_EQ(one["valid"].text == "true" ? 0 : PKV_ERR_MISMATCH,
              verify(key_of(one).get(), digest_id(one["hash"].text), one["message"].octets(),
                     {one["r"].octets(), one["s"].octets()}));
  }
}

TEST(Kcdsa, DerivesAndChecksPublishedParameters) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json vectors = korean_vectors();
  std::vector<Json> sets = vectors["kcdsa_published"].items;
  for (Json one : vectors["kcdsa_keys"].items) {
    one.fields["hash"].text = one["q"].text.size() == 40 ? "has160" : "sha256";
    sets.push_back(one);
  }
  int checked = 0;
  for (const Json &one : sets) {
    if (!one.has("seed")) continue;
    const Kcdsa given = key_of(one), derived(PKV_New_KCDSA());
    const Bytes seed = one["seed"].octets();
    const int p_bits = int(one["p"].text.size() * 4), q_bits = int(seed.size() * 8),
              digest = digest_id(one["hash"].text);
    const int count_given = one["count"].number();
    EXPECT_EQ(0, PKV_Check_KCDSA_Params(given.get(), 1, digest)) << one["name"].text;
    EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Check_KCDSA_Params(given.get(), 1, PKV_DIGEST_SHA384)) << one["name"].text;
    ++checked;
#ifdef VELPKI_SLOW_TESTS
    const int longest = 10000;  // some seconds; two of 2048 and more bits are among them
#else
    const int longest = 3000;
#endif
    if (count_given > longest) continue;
    ASSERT_EQ(0, PKV_Derive_KCDSA_Params(derived.get(), p_bits, q_bits, digest, seed.data(), int(seed.size()), nullptr,
                                         nullptr));
    int length = 0, count = 0;
    EXPECT_EQ(to_hex(PKV_Get_KCDSA_Seed(derived.get(), &length, &count), seed.size()), one["seed"].text);
    EXPECT_EQ(count, count_given) << one["name"].text;
    for (const auto &[which, name] : {std::pair(PKV_KCDSA_P, "p"), {PKV_KCDSA_Q, "q"}, {PKV_KCDSA_J, "j"}}) {
      EXPECT_EQ(digits_of(PKV_Get_KCDSA_Component(derived.get(), which)), one[name].text) << one["name"].text;
    }
    EXPECT_EQ(0, PKV_Check_KCDSA_Params(derived.get(), 0, 0)) << "the generator's order";
  }
  EXPECT_EQ(checked, 7);
}

TEST(Kcdsa, FindsFaultsInNumbers) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json good = korean_vectors()["kcdsa_keys"].items.at(0);
  constexpr int kBad = PKV_ERR_BAD_VALUE;
  const struct {
    const char *name, *value;
    int quick, thorough, key;
  } cases[] = {{"p", "ff", kBad, kBad, kBad}, {"q", "8b85", kBad, kBad, kBad}, {"g", "01", kBad, kBad, kBad},
               {"g", "02", kBad, kBad, 0},    {"j", "03", kBad, kBad, 0},      {"y", "01", kBad, kBad, kBad},
               {"y", "02", 0, 0, kBad},       {"count", "2802", 0, kBad, 0}};
  for (const auto &one : cases) {
    Json bad = good;
    bad.fields[one.name].text = one.value;
    const Kcdsa key = key_of(bad);
    EXPECT_EQ(one.quick, PKV_Check_KCDSA_Params(key.get(), 0, 0)) << one.name << ' ' << one.value;
    EXPECT_EQ(one.thorough, PKV_Check_KCDSA_Params(key.get(), 1, PKV_DIGEST_HAS160)) << one.name << ' ' << one.value;
    EXPECT_EQ(one.key, PKV_Check_KCDSA_Key(key.get())) << one.name << ' ' << one.value;
  }
  const Kcdsa key = key_of(good);
  EXPECT_EQ(PKV_ERR_MISMATCH, PKV_Set_KCDSA_Private(key.get(), number("02").get()));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Set_KCDSA_Private(key.get(), number(good["q"].text).get()));
  EXPECT_EQ(PKV_ERR_BAD_VALUE, PKV_Init_KCDSA(key.get(), 1)) << "no private value";
}

TEST(Kcdsa, SignsIncrementallyAndReadsLengthsStrictly) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  for (const Json &one : korean_vectors()["kcdsa_keys"].items) {
    const Kcdsa key = key_of(one);
    ASSERT_EQ(0, PKV_Generate_KCDSA(key.get()));
    EXPECT_EQ(0, PKV_Check_KCDSA_Key(key.get()));
    EXPECT_EQ(1, PKV_Cmp_KCDSA(key.get(), key_of(one).get()));
    const Bytes message(100, 'm');
    for (const int digest : {0, int(PKV_DIGEST_HAS160), int(PKV_DIGEST_SHA512)}) {
      ASSERT_EQ(0, PKV_Init_KCDSA(key.get(), 1));
      ASSERT_EQ(digest ? 0 : PKV_ERR_UNSUPPORTED, PKV_Set_KCDSA_DIGEST(key.get(), digest));
      int r = 0, s = 0;
      ASSERT_EQ(0, PKV_Get_KCDSA_Lengths(key.get(), &r, &s));
      EXPECT_EQ(s, int(one["q"].text.size() / 2));
      EXPECT_EQ(r, digest == PKV_DIGEST_HAS160 ? 20 : s);
      Signature made{Bytes(size_t(r)), Bytes(size_t(s))};
      ASSERT_EQ(0, PKV_Update_KCDSA(key.get(), message.data(), 60));
      EXPECT_EQ(PKV_ERR_FAILED, PKV_Set_KCDSA_DIGEST(key.get(), PKV_DIGEST_SHA1)) << "after the first octets";
      ASSERT_EQ(0, PKV_Update_KCDSA(key.get(), message.data(), 40));
      ASSERT_EQ(0, PKV_Final_KCDSA(key.get(), made.r.data(), made.s.data()));
      EXPECT_EQ(0, verify(key.get(), digest, message, made));
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(key.get(), digest, Bytes(99, 'm'), made));
      Signature changed = made;
      changed.r.insert(changed.r.begin(), 0);
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(key.get(), digest, message, changed)) << "r is octets, not a number";
      changed = made;
      changed.s.insert(changed.s.begin(), 0);
      EXPECT_EQ(PKV_ERR_MISMATCH, verify(key.get(), digest, message, changed)) << "s is too long";
      for (const std::string &value : {std::string("00"), one["q"].text}) {
        EXPECT_EQ(PKV_ERR_MISMATCH, verify(key.get(), digest, message, {made.r, hex(value)})) << "s is " << value;
      }
    }
  }
}

TEST(Kcdsa, AsksASignerElsewhere) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json one = signatures(korean_vectors(), "kcdsa_self_made").at(0);
  const Kcdsa key = key_of(one);
  const auto answer = [](void *context, int kind, int digest, int, const unsigned char *input, int length,
                         unsigned char *signature, int *signature_length) {
    const Json &expected = *static_cast<const Json *>(context);
    EXPECT_EQ(to_hex(input, size_t(length)), expected["hz"].text);
    EXPECT_TRUE(kind == PKV_KEY_KCDSA && digest == PKV_DIGEST_HAS160 && *signature_length == 40);
    const Bytes both = hex(expected["r"].text + expected["s"].text);
    memcpy(signature, both.data(), both.size());
    return 0;
  };
  ASSERT_EQ(0, PKV_Set_KCDSA_Callback(key.get(), answer, const_cast<Json *>(&one)));
  const Kcdsa copy(PKV_Dup_KCDSA(key.get()));
  Signature made;
  ASSERT_EQ(0, sign(copy.get(), 0, one["message"].octets(), made));
  EXPECT_EQ(0, verify(key.get(), 0, one["message"].octets(), made));
}

TEST(Kcdsa, VerifiesInTwoThreadsAndSurvivesExhaustedMemory) {
  VELPKI_NEED_VECTORS("../reference/korean_vectors.json", file);
  const Json one = signatures(korean_vectors(), "kcdsa_self_made").at(0);
  const Bytes message = one["message"].octets();
  const Signature given{one["r"].octets(), one["s"].octets()};
  for (int turn = 0; turn < 20; ++turn) {
    const Kcdsa key = key_of(one);
    int other_result = -1;
    std::thread other([&] { other_result = verify(key.get(), 0, message, given); });
    EXPECT_EQ(0, verify(key.get(), 0, message, given));
    other.join();
    EXPECT_EQ(0, other_result);
  }
  const Kcdsa source = key_of(one);
  const auto work = [&] {
    const Kcdsa key(PKV_Dup_KCDSA(source.get()));
    if (!key) return int(PKV_ERR_NO_MEMORY);
    if (int error = PKV_Generate_KCDSA(key.get())) return error;
    Signature made;
    return sign(key.get(), 0, message, made);
  };
  EXPECT_GT(fail_each_allocation(work), 5);
}

TEST(Kcdsa, GeneratesParameters) {
  const Kcdsa key(PKV_New_KCDSA());
  EXPECT_EQ(PKV_ERR_UNSUPPORTED, PKV_Generate_KCDSA_Params(key.get(), 1024, 224, PKV_DIGEST_SHA224, nullptr, nullptr));
  const auto stop = [](int count, void *) { return count == 3 ? 1 : 0; };
  EXPECT_EQ(PKV_ERR_FAILED, PKV_Generate_KCDSA_Params(key.get(), 1024, 160, PKV_DIGEST_SHA1, stop, nullptr));
#ifdef VELPKI_SLOW_TESTS
  ASSERT_EQ(0, PKV_Generate_KCDSA_Params(key.get(), 1024, 160, PKV_DIGEST_SHA1, nullptr, nullptr));
  EXPECT_EQ(0, PKV_Check_KCDSA_Params(key.get(), 1, PKV_DIGEST_SHA1));
#endif
}
