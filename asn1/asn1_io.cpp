// DER and PEM in memory and in files, over the conversion functions of any structure.
#include <velpki/asn1_io.h>

#include <velpki/pem.h>

#include <algorithm>
#include <cstdio>

#include "asn1/internal/io.h"

namespace velpki {

namespace {

struct CloseFile {
  void operator()(FILE *file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

// Without a buffer, of which a key would stay behind; everything is read and written in one call.
File open_file(const char *path, const char *mode) noexcept {
  File file(std::fopen(path, mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

// The size of a file from its start to its end, with the position back at the start; -1 when it cannot be told.
int64_t size_of(FILE *file) noexcept {
  if (fseeko(file, 0, SEEK_END)) return -1;
  const int64_t size = ftello(file);
  return fseeko(file, 0, SEEK_SET) ? -1 : size;
}

// Everything that cannot be told from a length: numbers that are codes.
bool looks_like_a_code(size_t length) noexcept { return length < 2 || length >= 0x41000000; }

// A smaller code of a conversion function would be taken for a length.
int as_writer_code(int code) noexcept { return looks_like_a_code(size_t(unsigned(code))) ? code : 1; }

}  // namespace

Block read_file(const char *path) noexcept {
  unsigned char *data = nullptr;
  const int length = File_to_binary(path, &data);
  return Block(owned<uint8_t>(data), length < 0 ? 0 : length);
}

Block decode_pem(Octets text) noexcept {
  unsigned char *data = nullptr;
  const int length = decode_PEM(reinterpret_cast<const char *>(text.data()), int(text.size()), &data);
  return {owned<uint8_t>(data), length};
}

Block decode_pem_after_text(Octets text) noexcept {
  const std::string_view whole(reinterpret_cast<const char *>(text.data()), text.size());
  const size_t begin = whole.find("-----BEGIN ");
  return decode_pem(begin == whole.npos ? text : text.subspan(begin));
}

int give(owned<uint8_t> octets, size_t length, unsigned char **out) noexcept {
  if (!octets || looks_like_a_code(length)) return kBadInput;
  *out = octets.release();
  return int(length);
}

int give_pem(Octets der, std::string_view label, char **out) noexcept {
  char *text = nullptr;
  const int length = encode_PEM(der.data(), int(der.size()), label.data(), int(label.size()), &text, 1);
  owned<char> owner(text);
  if (!text || looks_like_a_code(size_t(length))) return kBadInput;
  *out = owner.release();
  return length;
}

int give_to_file(Octets octets, const char *path) noexcept {
  const int length = int(octets.size());
  return binary_to_File_n(octets.data(), length, 0, length, path);
}

namespace {

// A unit through which any structure passes, a key perhaps.
struct WipeUnit {
  void operator()(ASN1_UNIT *unit) const noexcept {
    PKV_Wipe(unit->value, unit->value ? size_t(std::max(0, getASN1ValueLength(unit))) : 0);
    free_ASN1_UNIT(unit);
  }
};
using PassingUnit = std::unique_ptr<ASN1_UNIT, WipeUnit>;

// A structure's DER octets through its conversion function; null with the writer's code.
Block flat_structure(void *structure, ASN1_TO_UNIT *to_unit, int &code) noexcept {
  code = kBadInput;
  if (!structure || !to_unit) return {};
  ASN1_UNIT *unit = nullptr;
  const int converted = to_unit(structure, &unit);
  const PassingUnit owner(unit);
  if (converted) code = as_writer_code(converted);
  if (converted || !unit) return {};
  unsigned char *flat = nullptr;
  const int length = ASN1_to_binary(unit, &flat);
  return {owned<uint8_t>(flat), length < 0 ? 0 : length};
}

int from_octets(void **structure, ASN1_FROM_UNIT *from_unit, Octets octets) noexcept {
  if (octets.empty() || !from_unit) return kBadInput;
  const PassingUnit unit(decodeToBERSequence_n(octets.data(), int(octets.size())));
  return unit ? from_unit(unit.get(), structure) : kNotOneUnit;
}

int from_octets_strict(void **structure, ASN1_FROM_UNIT *from_unit, Octets octets) noexcept {
  if (octets.empty()) return kBadInput;
  Tlv unit;
  Rules rules;
  if (!Tlv::parse(octets, rules, unit)) return kNotOneUnit;
  return is_der(octets) ? from_octets(structure, from_unit, octets) : kIoModule | ERR_NOT_CANONICAL;
}

}  // namespace

}  // namespace velpki

using namespace velpki;

int writeDER_to_Binary(void *structure, ASN1_TO_UNIT *to_unit, unsigned char **out) noexcept {
  if (!out) return kBadInput;
  int code;
  Block flat = flat_structure(structure, to_unit, code);
  return flat.data ? give(std::move(flat.data), size_t(flat.length), out) : code;
}

int writeDER_to_FILE(void *structure, ASN1_TO_UNIT *to_unit, const char *path) noexcept {
  if (!path) return kBadInput;
  int code;
  const Block flat = flat_structure(structure, to_unit, code);
  return flat.data ? give_to_file(flat.octets(), path) : code;
}

int readDER_from_Binary(void **structure, ASN1_FROM_UNIT *from_unit, const unsigned char *data, int length) noexcept {
  return from_octets(structure, from_unit, octets_of(data, length));
}

int readDER_from_Binary_strict(void **structure, ASN1_FROM_UNIT *from_unit, const unsigned char *data,
                               int length) noexcept {
  return from_octets_strict(structure, from_unit, octets_of(data, length));
}

int readDER_from_File(void **structure, ASN1_FROM_UNIT *from_unit, const char *path) noexcept {
  return from_octets(structure, from_unit, read_file(path).octets());
}

int writePEM_to_Binary(void *structure, ASN1_TO_UNIT *to_unit, const char *label, int label_length,
                       char **out) noexcept {
  if (!out || !label || label_length < 0) return kBadInput;
  int code;
  const Block flat = flat_structure(structure, to_unit, code);
  return flat.data ? give_pem(flat.octets(), {label, size_t(label_length)}, out) : code;
}

int writePEM_to_FILE(void *structure, ASN1_TO_UNIT *to_unit, const char *label, int label_length,
                     const char *path) noexcept {
  if (!path) return kBadInput;
  char *text = nullptr;
  const int length = writePEM_to_Binary(structure, to_unit, label, label_length, &text);
  const owned<char> owner(text);
  const WipeAtEnd wipe(text, text ? size_t(length) : 0);
  return text ? give_to_file(octets_of(reinterpret_cast<uint8_t *>(text), length), path) : length;
}

int readPEM_from_Binary(void **structure, ASN1_FROM_UNIT *from_unit, const char *text, int length) noexcept {
  const Octets octets = octets_of(reinterpret_cast<const unsigned char *>(text), length);
  return from_octets(structure, from_unit, decode_pem(octets).octets());
}

int readPEM_from_Binary_strict(void **structure, ASN1_FROM_UNIT *from_unit, const char *text, int length) noexcept {
  unsigned char *der = nullptr;
  const int der_length = decode_PEM_strict(text, length, &der);
  const Block block(owned<uint8_t>(der), der ? der_length : 0);
  return from_octets_strict(structure, from_unit, block.octets());
}

int readPEM_from_File(void **structure, ASN1_FROM_UNIT *from_unit, const char *path) noexcept {
  return from_octets(structure, from_unit, decode_pem(read_file(path).octets()).octets());
}

int File_to_binary(const char *path, unsigned char **out) noexcept {
  if (!path || !out) return -1;
  const File file = open_file(path, "rb");
  if (!file) return -1;
  const int64_t size = size_of(file.get());
  if (size < 1 || size > INT_MAX) return -1;
  owned<uint8_t> data = new_octets(size_t(size));
  if (!data || std::fread(data.get(), 1, size_t(size), file.get()) != size_t(size)) return -1;
  *out = data.release();
  return int(size);
}

namespace {

int write_file(Octets octets, const char *path) noexcept {
  File file = open_file(path, "wb");
  if (!file) return -1;
  const size_t written = std::fwrite(octets.data(), 1, octets.size(), file.get());
  return std::fclose(file.release()) ? -1 : int(written);
}

}  // namespace

int binary_to_File(const unsigned char *data, int offset, int length, const char *path) noexcept {
  if (!path || !data || offset < 0 || length < 1 || length <= offset) return -1;
  return write_file(Octets(data + offset, size_t(length)), path);
}

int binary_to_File_n(const unsigned char *data, int data_length, int offset, int length, const char *path) noexcept {
  if (!path || !data || offset < 0 || length < 1 || offset > data_length || length > data_length - offset) return -1;
  return write_file(Octets(data + offset, size_t(length)), path) == length ? length : -1;
}

int ASN1_to_FILE(const ASN1_UNIT *unit, const char *path) noexcept {
  unsigned char *flat = nullptr;
  const int length = path ? ASN1_to_binary(unit, &flat) : -1;
  const owned<uint8_t> owner(flat);
  return length < 0 ? -1 : write_file(octets_of(flat, length), path);
}

int get_ASN1_hash(void *structure, ASN1_TO_UNIT *encoder, int digest_id, unsigned char *out) noexcept {
  if (!structure || !out) return 0;
  int code, digest_length = 0;
  const Block flat = flat_structure(structure, encoder, code);
  if (!flat.data || PKV_DIGEST(digest_id, flat.data.get(), flat.length, out, &digest_length)) return 0;
  return digest_length;
}
