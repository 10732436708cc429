// Any BER into the one form with definite lengths of the fewest octets and strings in one piece.
#include <velpki/ber.h>

#include "asn1/internal/string.h"
#include "asn1/internal/writer.h"

namespace velpki {

namespace {

// Two walks over the same octets: the first checks them and notes what every constructed value will contain, in the
// order of the walk, the second writes. Nothing is read more than twice, however deep it is nested.
class Normalizer {
 public:
  explicit Normalizer(Octets in) noexcept : in_(in) {}
  ~Normalizer() { velpki::release(sizes_); }
  Normalizer(const Normalizer &) = delete;
  Normalizer &operator=(const Normalizer &) = delete;

  // The octets of the result, or 0 for what is not exactly one value.
  size_t measure() noexcept {
    size_t size = 0;
    return value(in_.size(), kMaximumDepth, size) && at_ == in_.size() ? size : 0;
  }
  void write(uint8_t *out) noexcept {
    at_ = next_size_ = 0;
    out_ = out;
    write_value();
  }

 private:
  struct Header {
    uint8_t identifier = 0;
    bool indefinite = false;
    size_t end = 0;  // of the content, when it is definite
    bool constructed() const noexcept { return identifier & tag::kConstructed; }
  };

  // Reads identifier and length of the value here, all of which lies before `limit` when it is definite.
  bool header(size_t limit, Header &out) noexcept {
    if (limit - at_ < 2 || tag::number(in_[at_]) == 31) return false;
    const size_t size = length_size(in_.data() + at_ + 1, limit - at_ - 1);
    if (size == 0) return false;
    out.identifier = in_[at_];
    out.indefinite = in_[at_ + 1] == 0x80;
    out.end = limit;
    const int length = out.indefinite ? 0 : stated_length(in_.data() + at_ + 1, size);
    at_ += 1 + size;
    if (length < 0 || size_t(length) > limit - at_) return false;
    if (!out.indefinite) out.end = at_ + size_t(length);
    return out.constructed() || !out.indefinite;
  }

  // Whether another child follows. The end of an indefinite value is stepped over; where it is missing, or stands where
  // none may, the child that is read next fails.
  bool more(const Header &parent) noexcept {
    if (!parent.indefinite) return at_ < parent.end;
    if (parent.end - at_ < 2 || in_[at_] || in_[at_ + 1]) return true;
    at_ += 2;
    return false;
  }

  static bool is_joined(const Header &value) noexcept {
    constexpr uint32_t kStrings = 1u << 3 | 1u << 4 | 1u << 12 | 0x1FFu << 18 | 1u << 27 | 1u << 28 | 1u << 30;
    return value.identifier >> 6 == 0 && value.constructed() && kStrings >> tag::number(value.identifier) & 1;
  }
  static bool is_bits(const Header &value) noexcept { return tag::number(value.identifier) == TYPE_BIT_STRING; }

  // First walk.

  bool value(size_t limit, int depth, size_t &size) noexcept {
    Header here;
    if (depth == 0 || !header(limit, here) || here.identifier == 0) return false;
    size_t content = 0;
    if (!here.constructed()) {
      content = here.end - at_;
      at_ = here.end;
    } else if (!(is_joined(here) ? joined(here, depth, content) : children(here, depth, content))) {
      return false;
    }
    uint8_t unused[8];
    size += 1 + write_length(content, unused) + content;
    return size <= size_t(INT_MAX);
  }

  bool children(const Header &parent, int depth, size_t &content) noexcept {
    const size_t slot = note();
    if (slot == kNoSlot) return false;
    while (more(parent))
      if (!value(parent.end, depth - 1, content)) return false;
    sizes_[slot] = uint32_t(content);
    return true;
  }

  bool joined(const Header &parent, int depth, size_t &content) noexcept {
    bool partial = false;  // a segment of bits that is not whole octets was seen: none may follow
    content = is_bits(parent);
    const size_t slot = note();
    if (slot == kNoSlot || !segments(parent, is_bits(parent), depth, partial, content)) return false;
    sizes_[slot] = uint32_t(content);
    return true;
  }

  bool segments(const Header &parent, bool bits, int depth, bool &partial, size_t &content) noexcept {
    if (depth == 0) return false;
    while (more(parent)) {
      Header segment;
      if (!header(parent.end, segment)) return false;
      const int wanted = bits ? TYPE_BIT_STRING : TYPE_OCTET_STRING;
      if ((segment.identifier & ~tag::kConstructed) != wanted || partial) return false;
      const bool sound = segment.constructed() ? segments(segment, bits, depth - 1, partial, content)
                                               : whole_segment(segment, bits, partial, content);
      if (!sound || content > size_t(INT_MAX)) return false;
    }
    return true;
  }

  bool whole_segment(const Header &segment, bool bits, bool &partial, size_t &content) noexcept {
    const size_t length = segment.end - at_;
    if (bits && (length == 0 || in_[at_] > 7 || (in_[at_] && length == 1))) return false;
    partial = bits && in_[at_];
    content += length - bits;
    at_ = segment.end;
    return true;
  }

  // Sizes, in the order of the walk.

  static constexpr size_t kNoSlot = size_t(-1);
  size_t note() noexcept {
    if (count_ == room_) {
      const size_t room = room_ ? room_ * 2 : 64;
      void *block = PKV_Realloc(sizes_, room * sizeof *sizes_, __FILE__, __LINE__);
      if (!block) return kNoSlot;
      sizes_ = static_cast<uint32_t *>(block);
      room_ = room;
    }
    return count_++;
  }

  // Second walk; everything was checked in the first.

  void write_header(uint8_t identifier, size_t content) noexcept {
    *out_++ = identifier;
    uint8_t length[8];
    const size_t size = write_length(content, length);
    std::memcpy(out_, length, size);
    out_ += size;
  }
  void copy(size_t end) noexcept {
    const Octets octets = in_.subspan(at_, end - at_);
    copy_octets(out_, octets);
    out_ += octets.size();
    at_ = end;
  }

  void write_value() noexcept {
    Header here;
    header(in_.size(), here);
    if (!here.constructed()) return write_header(here.identifier, here.end - at_), copy(here.end);
    const size_t content = sizes_[next_size_++];
    if (is_joined(here)) return write_joined(here, content);
    write_header(here.identifier, content);
    while (more(here)) write_value();
  }

  void write_joined(const Header &parent, size_t content) noexcept {
    write_header(uint8_t(parent.identifier & ~tag::kConstructed), content);
    uint8_t *unused_bits = is_bits(parent) ? out_++ : nullptr;
    if (unused_bits) *unused_bits = 0;
    write_segments(parent, unused_bits);
  }

  void write_segments(const Header &parent, uint8_t *unused_bits) noexcept {
    while (more(parent)) {
      Header segment;
      header(in_.size(), segment);
      if (segment.constructed()) {
        write_segments(segment, unused_bits);
        continue;
      }
      if (unused_bits) *unused_bits = in_[at_++];
      copy(segment.end);
    }
  }

  Octets in_;
  size_t at_ = 0;
  uint8_t *out_ = nullptr;
  uint32_t *sizes_ = nullptr;
  size_t count_ = 0, room_ = 0, next_size_ = 0;
};

}  // namespace

}  // namespace velpki

using namespace velpki;

int normalize_BER(const unsigned char *octets, int length, unsigned char **out) noexcept {
  if (!octets || length < 2 || !out) return -1;
  Normalizer normalizer(octets_of(octets, length));
  const size_t size = normalizer.measure();
  if (size == 0) return -1;
  owned<uint8_t> block = new_octets(size);
  if (!block) return -1;
  normalizer.write(block.get());
  *out = block.release();
  return int(size);
}
