// What typed readers and writers are made of: one description of a type's codec, and the eight functions over it.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/asn1_io.h>

#include <string_view>

#include "asn1/internal/codec.h"
#include "asn1/internal/cursor.h"
#include "asn1/internal/writer.h"

namespace velpki {

inline constexpr int kIoModule = 0x4E000000;
inline constexpr int kBadInput = kIoModule | kBadValue;
inline constexpr int kNotOneUnit = kIoModule | 0x4F;

template <class R>
struct Codec {
  int from_function;
  int to_function;
  int (*decode)(const Tlv &, R &) noexcept;
  int (*encode)(const R &, DerWriter &) noexcept;
  std::string_view label;
  Content content = Content::open;
};

// A block read from a file or decoded from text. It may be a key, so it is wiped.
struct Block {
  Block() noexcept = default;
  Block(owned<uint8_t> made, int size) noexcept : data(std::move(made)), length(size) {}
  Block(Block &&) noexcept = default;
  ~Block() { PKV_Wipe(data.get(), data ? size_t(length) : 0); }
  owned<uint8_t> data;
  int length = 0;
  Octets octets() const noexcept { return octets_of(data.get(), length); }
};
Block read_file(const char *path) noexcept;
Block decode_pem(Octets text) noexcept;

// Hands finished octets over as a writer's result: their number, or kBadInput where it would be taken for a code.
int give(owned<uint8_t> octets, size_t length, unsigned char **out) noexcept;
int give_pem(Octets der, std::string_view label, char **out) noexcept;
int give_to_file(Octets octets, const char *path) noexcept;

template <class R>
int read_der(const Codec<R> &codec, R **out, Octets octets, Rules rules = {}) noexcept {
  if (octets.empty()) return kBadInput;
  Tlv tlv;
  if (!Tlv::parse(octets, rules, tlv)) return kNotOneUnit;
  if (!out) return fail(codec.from_function, kNullArgument);
  return from_tlv(codec.from_function, tlv, out, codec.decode);
}
// A record as others send it, in standard form: DER, any BER, or PEM, perhaps behind other text, told apart by the
// first octet.
Block decode_pem_after_text(Octets text) noexcept;
template <class R>
int read_ber(const Codec<R> &codec, R **out, Octets octets) noexcept {
  const Block text = !octets.empty() && octets[0] != tag::kSequence ? decode_pem_after_text(octets) : Block();
  if (text.data) octets = text.octets();
  if (octets.empty()) return kBadInput;
  Tlv tlv;
  Rules rules = kStandardRules;
  if (!Tlv::parse(octets, rules, tlv)) return kNotOneUnit;
  if (is_der(tlv.whole)) return read_der(codec, out, tlv.whole, kStandardRules);
  unsigned char *definite = nullptr;
  const int length = normalize_BER(tlv.whole.data(), int(tlv.whole.size()), &definite);
  const Block block(owned<uint8_t>(definite), length < 0 ? 0 : length);
  return length < 0 ? kNotOneUnit : read_der(codec, out, block.octets(), kStandardRules);
}
template <class R>
int write_der(const Codec<R> &codec, const R *record, DerWriter &writer) noexcept {
  if (!record) return fail(codec.to_function, kNullArgument);
  if (const int code = codec.encode(*record, writer)) return code;
  return writer.result(codec.to_function);
}
template <class R>
int write_der(const Codec<R> &codec, const R *record, unsigned char **out, Rules rules = {}) noexcept {
  if (!out) return kBadInput;
  DerWriter writer(rules, codec.content);
  if (const int code = write_der(codec, record, writer)) return code;
  const size_t length = writer.size();
  return give(writer.release(), length, out);
}
template <class R>
int write_pem(const Codec<R> &codec, const R *record, char **out, Rules rules = {}) noexcept {
  if (!out) return kBadInput;
  DerWriter writer(rules, codec.content);
  if (const int code = write_der(codec, record, writer)) return code;
  return give_pem(writer.written(), codec.label, out);
}
template <class R>
int write_der_file(const Codec<R> &codec, const R *record, const char *path) noexcept {
  if (!path) return kBadInput;
  DerWriter writer({}, codec.content);
  if (const int code = write_der(codec, record, writer)) return code;
  return give_to_file(writer.written(), path);
}
template <class R>
int write_pem_file(const Codec<R> &codec, const R *record, const char *path) noexcept {
  if (!path) return kBadInput;
  char *text = nullptr;
  const int length = write_pem(codec, record, &text);
  const owned<char> owner(text);
  const WipeAtEnd wipe(text, text && codec.content == Content::secret ? size_t(length) : 0);
  return text ? give_to_file(octets_of(reinterpret_cast<uint8_t *>(text), length), path) : length;
}

}  // namespace velpki

// The eight typed functions of T over a Codec<T>.
#define VELPKI_IO(T, codec)                                                                                        \
  int writeDER_##T##_to_Binary(T *in, unsigned char **out) noexcept { return velpki::write_der(codec, in, out); }  \
  int writeDER_##T##_to_FILE(T *in, const char *path) noexcept { return velpki::write_der_file(codec, in, path); } \
  int writePEM_##T##_to_Binary(T *in, char **out) noexcept { return velpki::write_pem(codec, in, out); }           \
  int writePEM_##T##_to_FILE(T *in, const char *path) noexcept { return velpki::write_pem_file(codec, in, path); } \
  int readDER_##T##_from_Binary(T **out, const unsigned char *data, int length) noexcept {                         \
    return velpki::read_der(codec, out, velpki::octets_of(data, length));                                          \
  }                                                                                                                \
  int readDER_##T##_from_File(T **out, const char *path) noexcept {                                                \
    return velpki::read_der(codec, out, velpki::read_file(path).octets());                                         \
  }                                                                                                                \
  int readPEM_##T##_from_Binary(T **out, const char *text, int length) noexcept {                                  \
    const velpki::Octets octets = velpki::octets_of(reinterpret_cast<const unsigned char *>(text), length);        \
    return velpki::read_der(codec, out, velpki::decode_pem(octets).octets());                                      \
  }                                                                                                                \
  int readPEM_##T##_from_File(T **out, const char *path) noexcept {                                                \
    return velpki::read_der(codec, out, velpki::decode_pem(velpki::read_file(path).octets()).octets());            \
  }
