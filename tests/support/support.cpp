#include "support/support.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <velpki/pkv.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace test {

Bytes hex(std::string_view text) {
  Bytes out;
  std::string digits;
  for (const char c : text)
    if (c != ' ' && c != '\n') digits += c;
  if (digits.size() % 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos) std::abort();
  for (size_t i = 0; i < digits.size(); i += 2) out.push_back(uint8_t(std::stoul(digits.substr(i, 2), nullptr, 16)));
  return out;
}

std::string to_hex(const uint8_t *data, size_t length) {
  std::string out;
  for (size_t i = 0; i < length; ++i) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", data[i]);
    out += pair;
  }
  return out;
}

Bytes read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

bool write_file(const std::string &path, const void *data, size_t length) {
  std::ofstream out(path, std::ios::binary);
  out.write(static_cast<const char *>(data), std::streamsize(length));
  return bool(out.flush());
}

namespace {
struct TemporaryDirectory {
  std::string path;
  TemporaryDirectory() {
    char pattern[] = "/tmp/velpki-test-XXXXXX";
    if (!mkdtemp(pattern)) std::abort();
    path = pattern;
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};
}  // namespace

std::string temporary_path(std::string_view name) {
  static const TemporaryDirectory directory;
  return directory.path + "/" + std::string(name);
}

std::string vectors(std::string_view below) {
  const char *given = std::getenv("VELPKI_VECTORS");
  const std::string path = std::string(given ? given : VELPKI_DEFAULT_VECTORS) + "/" + std::string(below);
  return std::filesystem::exists(path) ? path : std::string();
}

std::vector<Row> read_tsv(const std::string &path) {
  std::ifstream in(path);
  std::vector<std::string> names;
  std::vector<Row> rows;
  for (std::string line; std::getline(in, line);) {
    const std::vector<std::string> cells = split(line, '\t');
    if (names.empty()) {
      names = cells;
      continue;
    }
    auto &row = rows.emplace_back();
    for (size_t i = 0; i < names.size(); ++i) row[names[i]] = i < cells.size() ? cells[i] : "";
  }
  return rows;
}

std::vector<Row> table(const std::string &name) {
  const std::vector<Row> rows = read_tsv(VELPKI_SOURCE_DIR "/tests/data/" + name + ".tsv");
  if (rows.empty()) std::abort();
  return rows;
}

std::vector<std::string> split(const std::string &list, char separator) {
  std::vector<std::string> parts;
  for (size_t at = 0; at < list.size();) {
    const size_t end = std::min(list.find(separator, at), list.size());
    parts.push_back(list.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

int digest_id(const std::string &name) {
  static const std::map<std::string, int> ids = {{"md5", PKV_DIGEST_MD5},       {"sha1", PKV_DIGEST_SHA1},
                                                 {"sha224", PKV_DIGEST_SHA224}, {"sha256", PKV_DIGEST_SHA256},
                                                 {"sha384", PKV_DIGEST_SHA384}, {"sha512", PKV_DIGEST_SHA512},
                                                 {"has160", PKV_DIGEST_HAS160}, {"mdc2", PKV_DIGEST_MDC2}};
  std::string plain;
  for (const char c : name)
    if (c != '-') plain += char(std::tolower(c));
  const auto found = ids.find(plain);
  return found == ids.end() ? 0 : found->second;
}

std::string run(const std::string &command, int *status) {
  std::string out;
  FILE *pipe = popen(command.c_str(), "r");
  if (!pipe) return out;
  char piece[4096];
  for (size_t n; (n = fread(piece, 1, sizeof piece, pipe)) > 0;) out.append(piece, n);
  const int result = pclose(pipe);
  if (status) *status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
  return out;
}

int status_of(const std::string &command) {
  int status = -1;
  const std::string said = run(command + " 2>&1", &status);
  if (status) std::fprintf(stderr, "%s\n%s\n", command.c_str(), said.c_str());
  return status;
}

std::string captured_stdout(const std::function<void()> &print) {
  std::fflush(stdout);
  const std::string path = temporary_path("stdout");
  const int saved = dup(1);
  FILE *file = std::fopen(path.c_str(), "wb");
  if (!file || dup2(fileno(file), 1) < 0) std::abort();
  print();
  std::fflush(stdout);
  dup2(saved, 1);
  close(saved);
  std::fclose(file);
  const Bytes octets = read_file(path);
  return std::string(octets.begin(), octets.end());
}

size_t live_blocks() {
  PKV_ACCOUNT account{};
  PKV_Get_Account(&account);
  return account.live_blocks;
}

void fail_allocation(long n) { PKV_Fail_Allocation(n); }

GuardedBytes::GuardedBytes(size_t capacity) {
  const size_t page = size_t(sysconf(_SC_PAGESIZE));
  end_ = (capacity + page - 1) / page * page + page;
  mapped_ = end_ + page;
  void *mapping = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) std::abort();
  base_ = static_cast<uint8_t *>(mapping);
  if (mprotect(base_ + end_, page, PROT_NONE)) std::abort();
}
GuardedBytes::~GuardedBytes() { munmap(base_, mapped_); }
const uint8_t *GuardedBytes::place(const uint8_t *data, size_t length) {
  uint8_t *at = base_ + end_ - length;
  if (length) std::memcpy(at, data, length);
  return at;
}

}  // namespace test
