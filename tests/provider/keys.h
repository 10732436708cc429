// What the tests of keys share: owners, numbers from vectors, chosen random octets.
#pragma once

#include <velpki/pkv.h>

#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "support/json.h"
#include "support/owned.h"

namespace test {

using Number = Owned<BIGINT>;
using Rsa = Owned<RSA_UNIT>;
using Kcdsa = Owned<KCDSA_UNIT>;
using Ecc = Owned<ECC_UNIT>;
using Curve = Owned<ECURVE>;
using Point = Owned<ECC_POINT>;

// Room for what a call writes; `length` is the capacity before it and what was written after it.
struct Output {
  explicit Output(size_t room) : octets(room), length(int(room)) {}
  Bytes written() const { return Bytes(octets.begin(), octets.begin() + length); }
  Bytes octets;
  int length;
};

// Calls `f` with every owner as its pointer, octets as pointer and length, an Output as pointer and pointer to length.
template <class T>
std::tuple<T> spread(T argument) {
  return {argument};
}
template <class T>
std::tuple<T *> spread(const Owned<T> &owner) {
  return {owner};
}
inline std::tuple<const uint8_t *, int> spread(const Bytes &octets) { return {octets.data(), int(octets.size())}; }
inline std::tuple<uint8_t *, int *> spread(Output &out) { return {out.octets.data(), &out.length}; }
template <class F, class... Arguments>
auto call(F f, Arguments &&...arguments) {
  return std::apply(f, std::tuple_cat(spread(arguments)...));
}

// Null for no text. Vectors leave a leading zero out now and then.
inline Number number(const std::string &digits) {
  if (digits.empty()) return nullptr;
  const Bytes octets = hex(digits.size() % 2 ? "0" + digits : digits);
  return Number(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
}
inline std::string digits_of(const BIGINT *n) {
  int length = 0;
  const unsigned char *octets = PKV_Get_BIGINT_Octets(n, &length);
  return to_hex(octets, size_t(length));
}

// Every case of a file: `make` gives the key of a group (false when the group is none of the test's), and `check`
// takes the key, the group and the case. Returns the number of cases.
template <class Make, class Check>
int each_vector(const std::string &path, Make make, Check check) {
  int count = 0;
  for (const Json &group : read_json(path)["testGroups"].items) {
    const auto key = make(group);
    for (const Json &one : group["tests"].items) {
      SCOPED_TRACE(path + " " + one["tcId"].text);
      if (key) check(key, group, one), ++count;
    }
  }
  return count;
}

// The next random octets that the provider draws in this process; after them the real ones come again.
void choose_random(const Bytes &octets);

// What `work` answers when two threads do it at once, the first answer that is not 0.
template <class Work>
int in_two_threads(Work work) {
  int there = 0;
  std::thread other([&] { there = work(); });
  const int here = work();
  other.join();
  return here ? here : there;
}

// Calls `work` with the first allocation failing, then the second, and so on until it succeeds; it must answer
// "no memory" every time. `work` must not depend on what an earlier call left. Returns the number of failures.
template <class Work>
long fail_each_allocation(Work work) {
  for (long n = 0;; ++n) {
    fail_allocation(n);
    const int result = work();
    fail_allocation(-1);
    if (result != PKV_ERR_NO_MEMORY) {
      EXPECT_EQ(result, 0) << "allocation " << n;
      return n;
    }
  }
}

}  // namespace test
