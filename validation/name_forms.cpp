// Names and the subtrees that they lie in, by kind (RFC 5280 4.2.1.10).
#include "validation/internal/name_constraints.h"

namespace velpki {

namespace {

// Text. Case is that of ASCII letters.

char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }
bool is_letter_or_digit(char c) noexcept { return (lower(c) >= 'a' && lower(c) <= 'z') || (c >= '0' && c <= '9'); }
bool same_without_case(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}
bool ends_with(std::string_view text, std::string_view end) noexcept {
  return text.size() >= end.size() && same_without_case(text.substr(text.size() - end.size()), end);
}
bool all_of(std::string_view text, bool (*holds)(char) noexcept) noexcept {
  return std::all_of(text.begin(), text.end(), holds);
}
bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

// Hosts. An underscore is no part of a host name, but stands in the names of some.

constexpr size_t kLongestHost = 253, kLongestLabel = 63;

bool is_base_character(char c) noexcept { return is_letter_or_digit(c) || c == '-'; }
bool is_host_character(char c) noexcept { return is_base_character(c) || c == '_'; }

// Labels with dots between them.
bool is_host(std::string_view text, bool (*allowed)(char) noexcept = is_host_character) noexcept {
  if (text.size() > kLongestHost) return false;
  for (size_t start = 0;;) {
    const size_t dot = text.find('.', start);
    const std::string_view label = text.substr(start, dot - start);
    if (label.empty() || label.size() > kLongestLabel || !all_of(label, allowed)) return false;
    if (dot == text.npos) return true;
    start = dot + 1;
  }
}
std::string_view last_label(std::string_view host) noexcept { return host.substr(host.rfind('.') + 1); }
bool starts_with_dot(std::string_view text) noexcept { return !text.empty() && text[0] == '.'; }
bool is_wildcard(std::string_view text) noexcept { return text.substr(0, 2) == "*."; }
std::string_view behind_wildcard(std::string_view text) noexcept { return is_wildcard(text) ? text.substr(2) : text; }

// A host name that no address can be: two labels at least, the last not a number, as inet_aton reads one.
bool is_full_host(std::string_view text) noexcept {
  if (!is_host(text) || text.find('.') == text.npos) return false;
  const std::string_view last = last_label(text);
  const bool hexadecimal = last.size() > 1 && last[0] == '0' && lower(last[1]) == 'x';
  return !hexadecimal && !all_of(last, is_digit);
}

// A host or, with a dot before it, the hosts below one. Nothing is every host.
bool is_host_base(std::string_view base) noexcept {
  return base.empty() || is_host(starts_with_dot(base) ? base.substr(1) : base, is_base_character);
}
// Mail and URIs: without a dot the one host.
bool is_at_host(std::string_view host, std::string_view base) noexcept {
  if (base.empty()) return true;
  return starts_with_dot(base) ? host.size() > base.size() && ends_with(host, base) : same_without_case(host, base);
}
// dNSName: without a dot the host and all below.
bool is_below_host(std::string_view host, std::string_view base) noexcept {
  if (base.empty() || same_without_case(host, base)) return true;
  const bool ends = host.size() > base.size() && ends_with(host, base);
  return ends && (starts_with_dot(base) || host[host.size() - base.size() - 1] == '.');
}

// Mailboxes.

struct Mailbox {
  std::string_view local, host;
};
Mailbox mailbox_in(std::string_view text) noexcept {
  const size_t at = text.rfind('@');
  return at == text.npos ? Mailbox{{}, text} : Mailbox{text.substr(0, at), text.substr(at + 1)};
}
// What stands in a local part without quotes (RFC 5321 4.1.2); a quoted one has several spellings.
bool is_local_character(char c) noexcept {
  return is_letter_or_digit(c) || (c && std::strchr("!#$%&'*+-/=?^_`{|}~.", c));
}
bool is_utf8_local_character(char c) noexcept { return is_local_character(c) || uint8_t(c) >= 0x80; }
bool is_mailbox(const NameView &name) noexcept {
  const auto [local, host] = mailbox_in(name.text);
  return !local.empty() && all_of(local, name.utf8 ? is_utf8_local_character : is_local_character) && is_host(host);
}
bool is_mail_base(const NameView &base) noexcept {
  return base.text.find('@') == base.text.npos ? is_host_base(base.text) : is_mailbox(base);
}
bool is_mail_within(std::string_view name, std::string_view base) noexcept {
  const auto [local, host] = mailbox_in(name);
  const auto [base_local, base_host] = mailbox_in(base);
  return base_local.empty() ? is_at_host(host, base) : local == base_local && same_without_case(host, base_host);
}

// The host of a URI; empty where it has none that is a full name (RFC 3986 3.2).
std::string_view host_of_uri(std::string_view uri) noexcept {
  const size_t colon = uri.find(':');
  if (colon == uri.npos || uri.substr(colon, 3) != "://") return {};
  std::string_view authority = uri.substr(colon + 3);
  authority = authority.substr(0, authority.find_first_of("/?#"));
  const size_t at = authority.find('@');
  std::string_view host = at == authority.npos ? authority : authority.substr(at + 1);
  const size_t port = host.find(':');
  if (port != host.npos && !all_of(host.substr(port + 1), is_digit)) return {};
  host = host.substr(0, port);
  return is_full_host(host) ? host : std::string_view();
}

// Addresses: a base is an address and a mask whose ones stand before its zeros.
bool is_mask(std::string_view mask) noexcept {
  bool ended = false;
  for (const char octet : mask) {
    for (int bit = 7; bit >= 0; --bit) {
      const bool one = uint8_t(octet) >> bit & 1;
      if (one && ended) return false;
      ended = !one;
    }
  }
  return true;
}
bool is_address(std::string_view text, size_t factor) noexcept {
  return text.size() == 4 * factor || text.size() == 16 * factor;
}
bool is_address_within(std::string_view address, std::string_view base) noexcept {
  const size_t size = address.size();
  if (base.size() != 2 * size) return false;
  for (size_t i = 0; i < size; ++i)
    if ((address[i] ^ base[i]) & base[size + i]) return false;
  return true;
}

// Directory names: the base is the beginning, in whole RDNs.
bool is_directory_within(const X509_NAME &name, const X509_NAME &base) noexcept {
  if (base.count > name.count) return false;
  if (base.count > 0 && base.count < name.count) {
    const auto *last = element<X509_NAME_CHILD>(&name, base.count - 1),
               *next = element<X509_NAME_CHILD>(&name, base.count);
    if (last && next && last->rdn > 0 && last->rdn == next->rdn) return false;
  }
  X509_NAME beginning = name;
  beginning.count = base.count;
  return cmp_X509_NAME_RFC5280(&beginning, &base) == 0;
}

}  // namespace

NameView view_of(const GENERAL_NAME &name) noexcept {
  NameView out{name.type, {}, nullptr, false};
  switch (name.type) {
    case GENERAL_NAME_DIRECTORY:
      out.directory = static_cast<const X509_NAME *>(name.value);
      break;
    case GENERAL_NAME_RFC822:
    case GENERAL_NAME_DNS:
    case GENERAL_NAME_URI:
    case GENERAL_NAME_IP:
      if (name.value) out.text = text(*static_cast<const ASN1_STRING *>(name.value));
      break;
    default:
      break;
  }
  return out;
}
NameView view_of(const X509_NAME &name) noexcept { return {GENERAL_NAME_DIRECTORY, {}, &name, false}; }

bool is_proper_name(const NameView &name) noexcept {
  switch (name.kind) {
    case GENERAL_NAME_RFC822:
      return is_mailbox(name);
    case GENERAL_NAME_DNS:
      return is_host(behind_wildcard(name.text));
    case GENERAL_NAME_URI:
      return !host_of_uri(name.text).empty();
    case GENERAL_NAME_IP:
      return is_address(name.text, 1);
    default:
      return name.directory;
  }
}

bool is_proper_base(const NameView &base) noexcept {
  switch (base.kind) {
    case GENERAL_NAME_RFC822:
      return is_mail_base(base);
    case GENERAL_NAME_DNS:
    case GENERAL_NAME_URI:
      return is_host_base(base.text);
    case GENERAL_NAME_IP:
      return is_address(base.text, 2) && is_mask(base.text.substr(base.text.size() / 2));
    default:
      return true;
  }
}

bool is_within(const NameView &name, const NameView &base) noexcept {
  switch (name.kind) {
    case GENERAL_NAME_RFC822:
      return is_mail_within(name.text, base.text);
    case GENERAL_NAME_DNS:
      return is_below_host(name.text, base.text);
    case GENERAL_NAME_URI:
      return is_at_host(host_of_uri(name.text), base.text);
    case GENERAL_NAME_IP:
      return is_address_within(name.text, base.text);
    default:
      return name.directory && base.directory && is_directory_within(*name.directory, *base.directory);
  }
}

// A wildcard stands for each host that has one label more.
bool touches(const NameView &name, const NameView &base) noexcept {
  if (is_within(name, base)) return true;
  if (name.kind != GENERAL_NAME_DNS || !is_wildcard(name.text)) return false;
  const size_t dot = base.text.find('.');
  return dot != base.text.npos && same_without_case(base.text.substr(dot + 1), behind_wildcard(name.text));
}

NarrowText::NarrowText(const ASN1_STRING &value) noexcept {
  constexpr int kUniversalString = 28;
  const int type = value.type & 0x1F;
  const bool wide = type == TYPE_BMP_STRING || type == kUniversalString;
  wide ? narrow(octets(value), type == TYPE_BMP_STRING ? 2 : 4) : void(text_ = text(value));
  readable_ = readable_ && text_.find('\0') == text_.npos;  // where programs in C would end
  if (!readable_) text_ = {};
}

void NarrowText::narrow(Octets characters, size_t size) noexcept {
  constexpr char kOther = char(0x80);
  size_t length = 0;
  readable_ = characters.size() % size == 0;
  for (; readable_ && !characters.empty(); characters = characters.subspan(size)) {
    uint32_t c = 0;
    for (const uint8_t octet : characters.first(size)) c = c << 8 | octet;
    readable_ = c < 0x110000 && (c < 0xD800 || c > 0xDFFF);
    if (length < sizeof buffer_) buffer_[length++] = c < 0x80 ? char(c) : kOther;
  }
  text_ = {buffer_, length};
}

bool reads_as_host(std::string_view text) noexcept { return is_full_host(behind_wildcard(text)); }

}  // namespace velpki
