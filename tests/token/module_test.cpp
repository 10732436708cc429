// Loading and unloading modules, and what each wrapper forwards to.
#include <velpki/pkcs11_access.h>

#include <algorithm>
#include <utility>

#include "entry_points.h"
#include "support/precompiled.h"
#include "support/support.h"

namespace {

constexpr CK_RV kNone = 400;

// A function of a caller's own: it answers from its number and from every argument in its place. In the calls below an
// argument is its place, whatever its type.
template <class F>
struct Own;
template <class... A>
struct Own<CK_RV (*)(A...)> {
  template <auto number>
  static CK_RV answer(A... arguments) {
    CK_RV sum = number;
    ((sum = sum * 31 + CK_RV(arguments)), ...);
    return sum;
  }
  template <auto function>
  static CK_RV call() {
    return [&]<size_t... place>(std::index_sequence<place...>) { return function((A)(place + 1)...); }
    (std::index_sequence_for<A...>());
  }
};

struct Wrapper {
  const char *name;
  CK_RV (*call)();
  CK_RV (*call_own)();
  void (*set_own)();
  bool (*is_null)();
};
#define NUMBER(name) k##name,
enum : CK_RV { kBefore = 1000, VELPKI_ENTRY_POINTS(NUMBER) };
#define ROW(name)                                                                                               \
  {"C_" #name, Own<CK_C_##name>::call<p11_C_##name>, Own<CK_C_##name>::call<Own<CK_C_##name>::answer<k##name>>, \
   [] { pfnC_##name = Own<CK_C_##name>::answer<k##name>; }, [] { return !pfnC_##name; }},
const Wrapper kWrappers[] = {VELPKI_ENTRY_POINTS(ROW)};

// Every wrapper answers its number in the modules' list, the one that they lack 400.
void expect_numbers() {
  for (size_t i = 0; i < std::size(kWrappers); ++i) {
    if (kWrappers[i].name == std::string("C_GetFunctionList")) continue;  // it has work to do in one of the modules
    EXPECT_EQ(kWrappers[i].call(), kWrappers[i].is_null() ? kNone : kBefore + 1 + i) << kWrappers[i].name;
  }
  EXPECT_EQ(p11_C_DigestKey(1, 2), kNone);
  EXPECT_EQ(p11_C_DigestFinal(1, nullptr, nullptr), kDigestFinal);
}
void expect_nothing_called() {
  for (const Wrapper &each : kWrappers) EXPECT_EQ(each.call(), kNone) << each.name;
}
int count_null() {
  return int(std::count_if(std::begin(kWrappers), std::end(kWrappers), [](auto &each) { return each.is_null(); }));
}

const int kNullAtStart = count_null();
const std::string kByName = VELPKI_TEST_MODULES "/libtoken_by_name.so";
const std::string kListOnly = VELPKI_TEST_MODULES "/libtoken_list_only.so";

TEST(Pkcs11Module, IsLoadedUnloadedAndLoadedAgain) {
  ASSERT_EQ(g_hModule, nullptr);
  EXPECT_EQ(kNullAtStart, 37);
  expect_nothing_called();
  _unload_pkcs11_module();
  for (const char *refused : {(const char *)nullptr, "/nowhere/module.so", VELPKI_SOURCE_DIR "/README.md"})
    EXPECT_EQ(_load_pkcs11_module(refused), -1);
  EXPECT_EQ(count_null(), 37);
  for (int turn = 0; turn < 2; ++turn) {  // at the same addresses, quite likely
    ASSERT_EQ(_load_pkcs11_module(kByName.c_str()), 0);
    EXPECT_EQ(count_null(), 1);
    void *handle = g_hModule;
    EXPECT_EQ(_load_pkcs11_module(nullptr), -1);
    EXPECT_EQ(g_hModule, handle);
    EXPECT_EQ(_load_pkcs11_module("/nowhere/module.so"), -1);
    EXPECT_EQ(std::exchange(g_hModule, handle), nullptr);
    expect_numbers();
    _unload_pkcs11_module();
    EXPECT_EQ(g_hModule, nullptr);
    EXPECT_EQ(count_null(), 1) << "they stay";
    expect_nothing_called();
  }
  _unload_pkcs11_module();
  expect_nothing_called();
  _assign_function_list();
  EXPECT_EQ(count_null(), 37) << "nothing of the process itself is found";
}

TEST(Pkcs11Module, CallersOwnFunctionsAreCalledWithEveryArgumentInItsPlace) {
  ASSERT_EQ(_load_pkcs11_module(kByName.c_str()), 0);
  _unload_pkcs11_module();
  for (const Wrapper &each : kWrappers) {
    each.set_own();
    EXPECT_EQ(each.call(), each.call_own()) << each.name;
  }
  _unload_pkcs11_module();  // without a module it does nothing
  EXPECT_EQ(kWrappers[0].call(), kWrappers[0].call_own());
  _assign_function_list();
}

TEST(Pkcs11Module, FunctionListFillsWhatIsNotExported) {
  ASSERT_EQ(_load_pkcs11_module(kListOnly.c_str()), 0);
  EXPECT_EQ(count_null(), 36);
  EXPECT_EQ(_load_pkcs11_module_ex(kListOnly.c_str()), P11_LOAD_NOT_UNLOADED);
  _unload_pkcs11_module();
  _assign_function_list();
  const std::string readme = VELPKI_SOURCE_DIR "/README.md";
  const std::pair<const char *, int> refused[] = {{nullptr, P11_LOAD_REFUSED},
                                                  {"", P11_LOAD_REFUSED},
                                                  {readme.c_str(), P11_LOAD_REFUSED},
                                                  {VELPKI_BUILD_DIR "/lib/libvelCrypto.so", P11_LOAD_NO_MODULE},
                                                  {kByName.c_str(), P11_LOAD_NO_MODULE}};  // its list cannot be had
  for (const auto &[path, code] : refused) EXPECT_EQ(_load_pkcs11_module_ex(path), code) << (path ? path : "null");
  EXPECT_EQ(g_hModule, nullptr);
  EXPECT_EQ(count_null(), 37);
  ASSERT_EQ(_load_pkcs11_module_ex(kListOnly.c_str()), 0);
  EXPECT_EQ(count_null(), 1);
  expect_numbers();
  _unload_pkcs11_module();
  expect_nothing_called();
}

}  // namespace
