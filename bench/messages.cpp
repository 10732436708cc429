// Messages beside the raw cryptography that they need: velpki_message_bench [MIB]. Ratios of processor time, medians of
// nine interleaved repetitions, and what a flow holds at most beyond the caller's own buffers.
#include <velpki/pkcs7.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

#include "libcrypto_side.h"

namespace {

using peer::Bytes;

struct Release {
  void operator()(P7_CONTENT_INFO *p) const { free_P7_CONTENT_INFO(p); }
  void operator()(X509_CERT *p) const { free_X509_CERT(p); }
  void operator()(ASYMMETRIC_KEY *p) const { free_ASYMMETRIC_KEY(p); }
  void operator()(RSA_UNIT *p) const { PKV_Free_RSA(p); }
  void operator()(X509_ALGO_IDENTIFIER *p) const { free_X509_ALGO_IDENTIFIER(p); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;
using Message = Owned<P7_CONTENT_INFO>;

constexpr int kRepetitions = 9;

void check(int code, const char *what) {
  if (code == 0) return;
  std::fprintf(stderr, "%s: %08x\n", what, unsigned(code));
  std::exit(1);
}

double seconds(const std::function<void()> &run) {
  timespec from, to;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &from);
  run();
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &to);
  return double(to.tv_sec - from.tv_sec) + 1e-9 * double(to.tv_nsec - from.tv_nsec);
}

void ratio(const char *what, int turns, const std::function<void()> &ours, const std::function<void()> &raw) {
  std::vector<double> ratios, times;
  const auto repeat = [turns](const std::function<void()> &run) {
    return [&run, turns] {
      for (int i = 0; i < turns; ++i) run();
    };
  };
  for (int i = 0; i < kRepetitions; ++i) {
    const double here = seconds(repeat(ours)), there = seconds(repeat(raw));
    ratios.push_back(here / there);
    times.push_back(here / turns);
  }
  std::sort(ratios.begin(), ratios.end());
  std::sort(times.begin(), times.end());
  std::printf("%-52s %6.3f  (%.1f us)\n", what, ratios[kRepetitions / 2], times[kRepetitions / 2] * 1e6);
}

struct Signer {
  Owned<RSA_UNIT> rsa{PKV_New_RSA()};
  Owned<ASYMMETRIC_KEY> key;
  Owned<X509_CERT> cert;

  Signer() {
    check(PKV_Generate_RSA(rsa.get(), 2048, 0, nullptr, nullptr), "key");
    key.reset(RSA_UNIT_to_ASYMMETRIC_KEY(rsa.get()));
    const Bytes der = peer::self_signed(components(PKV_RSA_N), components(PKV_RSA_E), components(PKV_RSA_D));
    X509_CERT *made = nullptr;
    check(readDER_X509_CERT_from_Binary(&made, der.data(), int(der.size())), "certificate");
    cert.reset(made);
  }
  Bytes components(PKV_RSA_COMPONENT which) const {
    int length = 0;
    const uint8_t *octets = PKV_Get_BIGINT_Octets(PKV_Get_RSA_Component(rsa.get(), which), &length);
    return Bytes(octets, octets + length);
  }
};

const Signer &signer() {
  static const Signer one;
  return one;
}

Message signed_message(const Bytes &content, bool detached, bool attributes = false) {
  Message p7(new_P7_CONTENT_INFO());
  check(set_PKCS7_Type(p7.get(), PKCS7_SIGNED_DATA), "type");
  if (!add_PKCS7_Signature(p7.get(), signer().cert.get(), signer().key.get(), 672)) check(1, "signer");
  check(add_PKCS7_Certificate_ex(p7.get(), signer().cert.get()), "certificate");
  check(sign_PKCS7_ex(p7.get(), content.data(), int(content.size()), detached, attributes ? PKCS7_SIGN_ATTRIBUTES : 0),
        "sign");
  return p7;
}

void raw_sign(const uint8_t *content, size_t size) {
  unsigned char signature[256];
  int length = sizeof signature;
  check(PKV_RSASSA_SIGN(signer().rsa.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, content, int(size), signature, &length),
        "raw");
}

void large(const Bytes &content) {
  ratio(
      "sign, detached / hash and RSA", 1, [&] { signed_message(content, true); },
      [&] { raw_sign(content.data(), content.size()); });
  ratio(
      "sign, attached / copy, hash and RSA", 1, [&] { signed_message(content, false); },
      [&] {
        const std::unique_ptr<uint8_t[]> copy(new uint8_t[content.size()]);
        std::memcpy(copy.get(), content.data(), content.size());
        raw_sign(copy.get(), content.size());
      });
  const Message detached = signed_message(content, true), attached = signed_message(content, false);
  unsigned char signature[256];
  int length = sizeof signature;
  PKV_RSASSA_SIGN(signer().rsa.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, content.data(), int(content.size()), signature,
                  &length);
  const auto raw = [&] {
    check(PKV_RSASSA_VERIFY(signer().rsa.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, content.data(), int(content.size()),
                            signature, length),
          "raw");
  };
  ratio(
      "verify, detached / hash and RSA", 1,
      [&] { check(verify_PKCS7(detached.get(), nullptr, content.data(), int(content.size())), "verify"); }, raw);
  ratio(
      "verify, attached / hash and RSA", 1, [&] { check(verify_PKCS7(attached.get(), nullptr, nullptr, 0), "verify"); },
      raw);
  Owned<X509_ALGO_IDENTIFIER> aes(new_X509_ALGO_IDENTIFIER());
  OBJECT_IDENTIFIER *oid = index_to_OBJECT_IDENTIFIER(419);
  set_X509_ALGO_IDENTIFIER_value(aes.get(), oid, nullptr);
  free_OBJECT_IDENTIFIER(oid);
  const unsigned char key[16] = {1};
  ratio(
      "envelop / raw AES-128-CBC into new memory", 1,
      [&] {
        Message p7(new_P7_CONTENT_INFO());
        set_PKCS7_Type(p7.get(), PKCS7_ENVELOPED_DATA);
        add_PKCS7_Recipient(p7.get(), signer().cert.get());
        check(encrypt_PKCS7(p7.get(), nullptr, aes.get(), content.data(), int(content.size()), 32), "encrypt");
      },
      [&] {
        int room = int(content.size()) + 16;
        const std::unique_ptr<uint8_t[]> out(new uint8_t[size_t(room)]);
        check(PKV_Encrypt_BLOCK_CIPHER(0x01000120, key, 16, key, 16, content.data(), int(content.size()), out.get(),
                                       &room),
              "raw");
      });
}

void small(const Bytes &content) {
  Message p7 = signed_message(content, false, true);
  unsigned char *der = nullptr;
  const int length = writeDER_P7_CONTENT_INFO_to_Binary(p7.get(), &der);
  unsigned char signature[256], digest[32] = {};
  int signature_length = sizeof signature;
  PKV_RSASSA_SIGN(signer().rsa.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, digest, 32, signature, &signature_length);
  const auto raw = [&] {
    check(PKV_RSASSA_VERIFY(signer().rsa.get(), PKV_DIGEST_SHA256, PKV_RSA_PKCS1, digest, 32, signature,
                            signature_length),
          "raw");
  };
  ratio(
      "1 KiB, octets to verdict / RSA verify", 200,
      [&] {
        P7_CONTENT_INFO *read = nullptr;
        check(readDER_P7_CONTENT_INFO_from_Binary(&read, der, length), "read");
        const Message owner(read);
        check(verify_PKCS7(read, nullptr, nullptr, 0), "verify");
      },
      raw);
  ratio(
      "1 KiB, octets to strict verdict / RSA verify", 200,
      [&] {
        P7_CONTENT_INFO *read = nullptr;
        check(readBER_P7_CONTENT_INFO_from_Binary(&read, der, length), "read");
        const Message owner(read);
        check(verify_PKCS7_strict(read, nullptr, nullptr, nullptr, 0, 0, nullptr, nullptr), "verify");
      },
      raw);
  ratio(
      "1 KiB, decoded before / RSA verify", 200, [&] { check(verify_PKCS7(p7.get(), nullptr, nullptr, 0), "verify"); },
      raw);
  const Bytes octets(der, der + length);
  ratio(
      "1 KiB, libcrypto, octets to verdict / RSA verify", 200,
      [&] { check(peer::verify_message(octets) ? 0 : 1, "libcrypto"); }, raw);
  PKV_Free(der, __FILE__, __LINE__);
}

}  // namespace

int main(int count, char **arguments) {
  const size_t mebibytes = count > 1 ? size_t(std::atoi(arguments[1])) : 64;
  small(Bytes(1024, 0x5A));
  large(Bytes(mebibytes << 20, 0x5A));
}
