// A large revocation list, made at run time: velpki_crl_bench [ENTRIES [SHARE_WITH_REASON_IN_PERCENT]]. Decode,
// resident growth, index, look-ups and encoding, beside libcrypto's.
#include <sys/wait.h>
#include <unistd.h>
#include <velpki/x509_crl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <memory>
#include <random>

#include "libcrypto_side.h"

namespace {

using peer::Bytes;

struct Release {
  void operator()(X509_CRL *crl) const { free_X509_CRL(crl); }
  void operator()(BIGINT *n) const { PKV_Free_BIGINT(n); }
};
using Crl = std::unique_ptr<X509_CRL, Release>;
using Number = std::unique_ptr<BIGINT, Release>;

constexpr size_t kSerial = 16;
constexpr int kRepetitions = 9;

Bytes tlv(uint8_t identifier, const Bytes &content) {
  Bytes out{identifier};
  size_t octets = 1;
  while (content.size() >> (8 * octets)) ++octets;
  if (content.size() >= 0x80) out.push_back(uint8_t(0x80 | octets));
  for (size_t i = octets; i-- > 0;) out.push_back(uint8_t(content.size() >> (8 * i)));
  out.insert(out.end(), content.begin(), content.end());
  return out;
}
void append(Bytes &to, const Bytes &octets) { to.insert(to.end(), octets.begin(), octets.end()); }

// A list of random serial numbers, and the numbers.
struct Sample {
  Bytes der;
  std::vector<Bytes> serials;
};
Sample make_sample(int entries, int with_reason) {
  std::mt19937_64 random(1);
  Sample sample;
  Bytes list;
  for (int i = 0; i < entries; ++i) {
    Bytes serial(kSerial);
    for (uint8_t &octet : serial) octet = uint8_t(random());
    serial[0] = uint8_t((serial[0] & 0x7F) | 1);
    char date[16];
    std::snprintf(date, sizeof date, "%02d%02d%02d%02d%02d%02dZ", int(random() % 26), 1 + int(random() % 12),
                  1 + int(random() % 28), int(random() % 24), int(random() % 60), int(random() % 60));
    Bytes entry = tlv(0x02, serial);
    append(entry, tlv(0x17, Bytes(date, date + 13)));
    if (int(random() % 100) < with_reason) {
      const uint8_t reason = uint8_t(1 + random() % 5);
      append(entry, {0x30, 0x0C, 0x30, 0x0A, 0x06, 0x03, 0x55, 0x1D, 0x15, 0x04, 0x03, 0x0A, 0x01, reason});
    }
    append(list, tlv(0x30, entry));
    sample.serials.push_back(serial);
  }
  const Bytes algorithm = {0x30, 0x0D, 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B, 0x05, 0x00};
  const char update[] = "260101000000Z", next[] = "270101000000Z";
  Bytes body = {0x02, 0x01, 0x01};
  append(body, algorithm);
  append(body, {0x30, 0x0D, 0x31, 0x0B, 0x30, 0x09, 0x06, 0x03, 0x55, 0x04, 0x03, 0x0C, 0x02, 'C', 'A'});
  append(body, tlv(0x17, Bytes(update, update + 13)));
  append(body, tlv(0x17, Bytes(next, next + 13)));
  append(body, tlv(0x30, list));
  Bytes whole = tlv(0x30, body);
  append(whole, algorithm);
  append(whole, tlv(0x03, Bytes(257)));
  sample.der = tlv(0x30, whole);
  return sample;
}

Crl decoded(const Bytes &der) {
  X509_CRL *crl = nullptr;
  if (readDER_X509_CRL_from_Binary_RFC5280(&crl, der.data(), int(der.size()))) std::abort();
  return Crl(crl);
}

// Processor time, which other processes disturb less.
double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}
double seconds_of(const std::function<void()> &work) {
  const double start = now();
  work();
  return now() - start;
}
double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void compare(const char *what, const std::function<void()> &ours, const std::function<void()> &theirs) {
  std::vector<double> a, b;
  for (int i = 0; i < kRepetitions; ++i) {
    a.push_back(seconds_of(ours));
    b.push_back(seconds_of(theirs));
  }
  const double mine = median(a), peers = median(b);
  std::printf("%-28s %8.1f ms, libcrypto %8.1f ms, ratio %.3f\n", what, mine * 1e3, peers * 1e3, mine / peers);
}

size_t resident() {
  std::ifstream in("/proc/self/statm");
  size_t total = 0, pages = 0;
  in >> total >> pages;
  return pages * size_t(sysconf(_SC_PAGESIZE));
}

// How much the resident set grows while the value that `hold` returns lives, in a process of its own.
template <class Hold>
double growth(Hold hold) {
  int ends[2];
  if (pipe(ends)) std::abort();
  if (fork() == 0) {
    const size_t before = resident();
    const auto held = hold();
    const double grown = double(resident() - before);
    if (write(ends[1], &grown, sizeof grown) != sizeof grown) _exit(1);
    _exit(0);
  }
  double grown = 0;
  if (read(ends[0], &grown, sizeof grown) != sizeof grown) std::abort();
  close(ends[0]);
  close(ends[1]);
  wait(nullptr);
  return grown / 1e6;
}

void look_up(const Sample &sample, int entries) {
  const Crl crl = decoded(sample.der);
  const auto number = [](const Bytes &octets) {
    return Number(PKV_New_BIGINT_Binary(octets.data(), int(octets.size())));
  };
  const Number one = number(sample.serials[sample.serials.size() / 2]);
  std::printf("%-28s %8.1f ms\n", "first look-up (index)",
              1e3 * seconds_of([&] { find_X509_CRL_revoked(crl.get(), one.get()); }));
  constexpr int kTimes = 1000000;
  const double same = seconds_of([&] {
    for (int i = 0; i < kTimes; ++i)
      if (!find_X509_CRL_revoked(crl.get(), one.get())) std::abort();
  });
  std::printf("%-28s %8.1f ns\n", "one serial number again", same / kTimes * 1e9);
  std::mt19937_64 random(2);
  std::vector<Number> numbers;
  for (int i = 0; i < kTimes; ++i) {
    Bytes serial = sample.serials[random() % size_t(entries)];
    if (i % 2) serial[kSerial - 1] ^= 0x55, serial[3] ^= 0xAA;
    numbers.push_back(number(serial));
  }
  int found = 0;
  const double all = seconds_of([&] {
    for (const Number &each : numbers) found += find_X509_CRL_revoked(crl.get(), each.get()) != nullptr;
  });
  std::printf("%-28s %8.1f ns (%d of %d found)\n", "random serial numbers", all / kTimes * 1e9, found, kTimes);
}

}  // namespace

int main(int argc, char **argv) {
  const int entries = argc > 1 ? std::atoi(argv[1]) : 1000000, with_reason = argc > 2 ? std::atoi(argv[2]) : 0;
  const Sample sample = make_sample(entries, with_reason);
  std::printf("%d entries, %d %% with a reason, %.1f MB\n", entries, with_reason, double(sample.der.size()) / 1e6);
  const double ours = growth([&] { return decoded(sample.der); });
  const double theirs = growth([&] { return std::make_unique<peer::RevocationList>(sample.der); });
  std::printf("%-28s %8.1f MB, libcrypto %8.1f MB, ratio %.3f\n", "resident growth", ours, theirs, ours / theirs);
  compare(
      "decode and release", [&] { decoded(sample.der); }, [&] { peer::RevocationList{sample.der}; });
  const Crl crl = decoded(sample.der);
  const peer::RevocationList peers(sample.der);
  compare(
      "encode from the entries",
      [&] {
        unsigned char *out = nullptr;
        if (writeDER_X509_CRL_to_Binary(crl.get(), &out) < 2) std::abort();
        PKV_Free(out, __FILE__, __LINE__);
      },
      [&] { peers.encode(); });
  look_up(sample, entries);
  return 0;
}
