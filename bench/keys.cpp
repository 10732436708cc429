// Key containers beside the derivations that they need: velpki_keys_bench. Ratios of processor time, medians of nine
// interleaved repetitions.
#include <velpki/pkcs12.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "libcrypto_keys.h"

namespace {

constexpr int kRepetitions = 9, kIterations = 2048;
const char kPassword[] = "test1234!";
constexpr int kPasswordLength = sizeof kPassword - 1;

void check(bool good, const char *what) {
  if (good) return;
  std::fprintf(stderr, "%s failed\n", what);
  std::exit(1);
}

double seconds(const std::function<void()> &run, int turns) {
  timespec from, to;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &from);
  for (int i = 0; i < turns; ++i) run();
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &to);
  return double(to.tv_sec - from.tv_sec) + 1e-9 * double(to.tv_nsec - from.tv_nsec);
}

void ratio(const char *what, const std::function<void()> &ours, const std::function<void()> &raw) {
  constexpr int kTurns = 40;
  std::vector<double> ratios, here, there;
  for (int i = 0; i < kRepetitions; ++i) {
    here.push_back(seconds(ours, kTurns));
    there.push_back(seconds(raw, kTurns));
    ratios.push_back(here.back() / there.back());
  }
  for (auto *each : {&ratios, &here, &there}) std::sort(each->begin(), each->end());
  const auto middle = [](const std::vector<double> &of) { return of[kRepetitions / 2] / kTurns * 1e6; };
  std::printf("%-50s %6.3f  (%.0f us against %.0f us)\n", what, ratios[kRepetitions / 2], middle(here), middle(there));
}

struct Digest {
  const char *name;
  int id, length;
};
constexpr Digest kDigests[] = {
    {"SHA1", PKV_DIGEST_SHA1, 20}, {"SHA256", PKV_DIGEST_SHA256, 32}, {"SHA512", PKV_DIGEST_SHA512, 64}};
const unsigned char kSalt[8] = {1, 2, 3, 4, 5, 6, 7, 8};

void derivations() {
  unsigned char out[64];
  for (const Digest &digest : kDigests) {
    ratio((std::string("PBKDF2 with ") + digest.name + " / libcrypto's").c_str(),
          [&] { PBKDF2(kPassword, kPasswordLength, kSalt, 8, kIterations, digest.id, out, digest.length); },
          [&] { peer::pbkdf2(digest.name, kPassword, kPasswordLength, kSalt, 8, kIterations, out, digest.length); });
    DIGEST_UNIT *unit = PKV_New_DIGEST();
    PKV_Init_DIGEST(unit, digest.id);
    ratio((std::string("PKCS#12 derivation with ") + digest.name + " / libcrypto's").c_str(),
          [&] { gen_PKCS12_key_ASC(kPassword, kPasswordLength, kSalt, 8, 1, kIterations, digest.length, out, unit); },
          [&] {
            peer::pkcs12_key(digest.name, kPassword, kPasswordLength, kSalt, 8, 1, kIterations, out, digest.length);
          });
    PKV_Free_DIGEST(unit);
  }
}

P8_PRIV_KEY_INFO *new_key() {
  RSA_UNIT *rsa = PKV_New_RSA();
  check(PKV_Generate_RSA(rsa, 2048, 0, nullptr, nullptr) == 0, "key");
  ASYMMETRIC_KEY *wrapped = RSA_UNIT_to_ASYMMETRIC_KEY(rsa);
  P8_PRIV_KEY_INFO *info = gen_P8_PRIV_KEY_INFO(wrapped, nullptr);
  free_ASYMMETRIC_KEY(wrapped);
  PKV_Free_RSA(rsa);
  return info;
}

void container(P8_PRIV_KEY_INFO *key) {
  PKCS8 *p8 = nullptr;
  unsigned char *der = nullptr, out[32];
  check(encrypt_PKCS5_modern(key, &p8, kPassword, kPasswordLength, kIterations) == 0, "encrypt");
  const int length = writeDER_PKCS8_to_Binary(p8, &der);
  ratio(
      "PKCS#8, octets to key / libcrypto's PBKDF2 SHA256",
      [&] {
        PKCS8 *read = nullptr;
        P8_PRIV_KEY_INFO *opened = nullptr;
        check(readDER_PKCS8_from_Binary(&read, der, length) == 0, "read");
        check(decrypt_PKCS5_strict(read, &opened, kPassword, kPasswordLength, 0, nullptr) == 0, "decrypt");
        free_P8_PRIV_KEY_INFO(opened);
        free_PKCS8(read);
      },
      [&] { peer::pbkdf2("SHA256", kPassword, kPasswordLength, kSalt, 8, kIterations, out, 32); });
  PKV_Free(der, __FILE__, __LINE__);
  free_PKCS8(p8);
}

// A file with one key and one certificate bag under triple DES: MAC key, and key and IV twice.
void file(P8_PRIV_KEY_INFO *key) {
  STACK *keys = nullptr, *safes = nullptr;
  unsigned char *der = nullptr, out[32];
  check(add_PKCS12_keyinfo(&keys, key, kSalt, 8, kPassword, -1, 146, kIterations) != nullptr, "bag");
  check(PKCS12_add_safe(&safes, keys, 0, kIterations, kPassword) == 0, "safe");
  PKCS12 *p12 = PKCS12_add_safes(safes);
  check(set_PKCS12_mac(p12, kPassword, -1, nullptr, 0, kIterations, 0) == 0, "MAC");
  const int length = writeDER_PKCS12_to_Binary(p12, &der);
  const auto derive = [&](int id, int size) {
    peer::pkcs12_key("SHA1", kPassword, kPasswordLength, kSalt, 8, id, kIterations, out, size);
  };
  ratio(
      "PKCS#12 import, octets to key / libcrypto's keys",
      [&] {
        PKCS12 *read = nullptr;
        STACK *found = nullptr;
        check(readDER_PKCS12_from_Binary(&read, der, length) == 0, "read");
        check(import_PKCS12(read, kPassword, -1, &found, nullptr, nullptr) == 0, "import");
        free_STACK_values(found, [](void *each) { free_P8_PRIV_KEY_INFO(static_cast<P8_PRIV_KEY_INFO *>(each)); });
        free_PKCS12(read);
      },
      [&] {
        derive(3, 20);
        for (int i = 0; i < 2; ++i) derive(1, 24), derive(2, 8);
      });
  PKV_Free(der, __FILE__, __LINE__);
  free_PKCS12(p12);
  free_P12_SAFEBAGS(keys);
  free_P12_AUTH_SAFE(safes);
}

}  // namespace

int main() {
  derivations();
  P8_PRIV_KEY_INFO *key = new_key();
  container(key);
  file(key);
  free_P8_PRIV_KEY_INFO(key);
}
