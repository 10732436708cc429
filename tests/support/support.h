// What the test programs share: octets in hex, files, vectors, the openssl command, memory accounting.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

// Octets from hexadecimal text; spaces and line feeds are skipped. Aborts on other characters.
Bytes hex(std::string_view text);
std::string to_hex(const uint8_t *data, size_t length);
inline std::string to_hex(const Bytes &octets) { return to_hex(octets.data(), octets.size()); }

Bytes read_file(const std::string &path);  // empty when it cannot be read
bool write_file(const std::string &path, const void *data, size_t length);

// A directory of this process, removed at its end.
std::string temporary_path(std::string_view name);

// The folder of shared test vectors: VELPKI_VECTORS, or the one beside the project; empty when there is none.
// Tests over it begin with VELPKI_NEED_VECTORS(folder).
std::string vectors(std::string_view below);

// The rows of a tab-separated file with a header line, by column name.
using Row = std::map<std::string, std::string>;
std::vector<Row> read_tsv(const std::string &path);
// The rows of a table of this project's own, tests/data/NAME.tsv; without any the program ends.
std::vector<Row> table(const std::string &name);
inline int number_in(const Row &row, const char *column) { return std::stoi(row.at(column)); }
// The provider's number of a digest, by any spelling; 0 for one that it has not.
int digest_id(const std::string &name);
// A code in hexadecimal.
inline int code_at(const Row &row, const char *column) { return int(std::stoul(row.at(column), nullptr, 16)); }

// The parts of a list; none of an empty one.
std::vector<std::string> split(const std::string &list, char separator = ',');

// Runs a shell command; its standard output, and in `status` its exit status.
std::string run(const std::string &command, int *status = nullptr);
// Its exit status; where that is not 0, the command and what it said go to standard error.
int status_of(const std::string &command);

// What the function writes to standard output.
std::string captured_stdout(const std::function<void()> &print);

// Live blocks of the provider's accounting.
size_t live_blocks();
// Makes the n-th allocation from now, and all after it, fail; -1 ends it.
void fail_allocation(long n);

// The octets at the very end of a page that is followed by an unmapped one, so that any read past them crashes.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t capacity);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes &) = delete;
  GuardedBytes &operator=(const GuardedBytes &) = delete;
  const uint8_t *place(const uint8_t *data, size_t length);  // valid until the next call

 private:
  uint8_t *base_;
  size_t mapped_, end_;
};

}  // namespace test

#define VELPKI_NEED_OPENSSL \
  if (test::run("openssl version").empty()) GTEST_SKIP() << "no openssl command"
#define VELPKI_NEED_VECTORS(folder, variable)         \
  const std::string variable = test::vectors(folder); \
  if (variable.empty()) GTEST_SKIP() << "no vectors here (" folder "); set VELPKI_VECTORS"
