// Name constraints (RFC 5280 4.2.1.10): names, subtrees, and what a path has collected of them.
#pragma once

#include "validation/internal/path_extensions.h"

namespace velpki {

// A name of a certificate, or the base of a subtree. Of those that are neither text nor octets nor a directory name
// only the kind is known.
struct NameView {
  int kind = 0;  // GENERAL_NAME_
  std::string_view text;
  const X509_NAME *directory = nullptr;
  bool utf8 = false;  // a mailbox whose local part may be UTF-8
  int weight = 1;     // steps that one comparison counts for
};
NameView view_of(const GENERAL_NAME &name) noexcept;
NameView view_of(const X509_NAME &name) noexcept;

// Whether a name is a proper one of its kind, so that it can be compared, and a base likewise.
bool is_proper_name(const NameView &name) noexcept;
bool is_proper_base(const NameView &base) noexcept;
// Whether a proper name lies in a subtree of its kind, and whether it may stand for one that does.
bool is_within(const NameView &name, const NameView &base) noexcept;
bool touches(const NameView &name, const NameView &base) noexcept;
// The text of a string of whatever type, one octet a character. Characters of several octets that are not of ASCII
// stand as octets that no host name has; so does text that is longer than any.
class NarrowText {
 public:
  explicit NarrowText(const ASN1_STRING &value) noexcept;
  NarrowText(const NarrowText &) = delete;
  NarrowText &operator=(const NarrowText &) = delete;
  bool is_readable() const noexcept { return readable_; }  // else there is no text
  std::string_view view() const noexcept { return text_; }

 private:
  void narrow(Octets characters, size_t size) noexcept;

  char buffer_[256];
  std::string_view text_;
  bool readable_ = true;
};
// Text that a program without alternative names to look at would take for a host name.
bool reads_as_host(std::string_view text) noexcept;

// The constraints of a path, from its anchor down.
class NameConstraints {
 public:
  NameConstraints(const GENERAL_SUBTREES *permitted, const GENERAL_SUBTREES *excluded) noexcept
      : first_{const_cast<STACK *>(permitted), const_cast<STACK *>(excluded)} {}
  NameConstraints(const NameConstraints &) = delete;
  NameConstraints &operator=(const NameConstraints &) = delete;
  ~NameConstraints() {
    destroy_list<NAME_CONSTRAINTS>(critical_);
    destroy_list<NAME_CONSTRAINTS>(other_);
  }

  int check_first() const noexcept;  // those of the settings
  // The constraints of an authority, for all that it issues. Null adds none.
  int add(const X509_EXTENSION *extension) noexcept;
  // The subject and the alternative names of a certificate; its common names too where it is the last.
  int check(const X509_CERT &cert, const X509_EXTENSION *alternative_names, bool end_entity) noexcept;

 private:
  int check_subject(const X509_CERT &cert, bool alone, bool end_entity) noexcept;
  int check_attribute(std::string_view type, const ASN1_STRING &value, bool end_entity) noexcept;
  int check_alternative(const GENERAL_NAME &name) noexcept;
  int check_name(NameView name) noexcept;
  int check_name(const NameView &name, const NAME_CONSTRAINTS &constraints, bool critical) noexcept;
  int permit(const NameView &name, const STACK *subtrees, bool critical) noexcept;
  int exclude(const NameView &name, const STACK *subtrees, bool critical) noexcept;
  // 0 with whether the subtree is of the name's kind, and of one that can be compared.
  int compare_kinds(const NameView &name, const GENERAL_SUBTREE &tree, bool critical, bool &same) noexcept;

  const NAME_CONSTRAINTS first_;
  STACK *critical_ = nullptr, *other_ = nullptr;  // of NAME_CONSTRAINTS
  int work_left_ = 1 << 21;
};

}  // namespace velpki
