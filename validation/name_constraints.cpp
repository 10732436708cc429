// The name constraints that a path has collected, and the names of its certificates.
#include "validation/internal/name_constraints.h"

#include <velpki/asn1_error.h>

namespace velpki {

namespace {

constexpr std::string_view kEmailAddress = "1.2.840.113549.1.9.1", kCommonName = "2.5.4.3",
                           kUtf8Mailbox = "1.3.6.1.5.5.7.8.9";
constexpr size_t kOctetsOfOneStep = 64, kMostSteps = 1 << 20;

bool is_zero(const BIGINT *number) noexcept { return PKV_Get_BIGINT_Bit_Length(number) == 0; }

// Minimum and maximum are not used (RFC 5280 4.2.1.10).
bool is_proper(const GENERAL_SUBTREE *tree) noexcept {
  return tree && tree->base && (!tree->minimum || is_zero(tree->minimum)) && !tree->maximum &&
         is_proper_base(view_of(*tree->base));
}
bool are_proper(const STACK *trees) noexcept {
  for (const GENERAL_SUBTREE *tree : elements<GENERAL_SUBTREE>(trees))
    if (!is_proper(tree)) return false;
  return true;
}
int check_constraints(const NAME_CONSTRAINTS &constraints) noexcept {
  const bool proper = are_proper(constraints.permittedSubtrees) && are_proper(constraints.excludedSubtrees);
  return proper ? 0 : path_failure(ERR_NAME_CONSTRAINTS);
}

// Kinds that cannot be compared here.
bool is_opaque(int kind) noexcept {
  return kind == GENERAL_NAME_OTHER || kind == GENERAL_NAME_X400 || kind == GENERAL_NAME_EDIPARTY ||
         kind == GENERAL_NAME_REGISTERED;
}

size_t size_of(const NameView &name) noexcept {
  size_t size = name.text.size();
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(name.directory))
    if (child && child->value) size += size_t(child->value->length) + kOctetsOfOneStep;
  return size;
}

// The mailbox of a SmtpUTF8Mailbox (RFC 9598 3), which is a UTF8String.
NameView utf8_mailbox(const OTHERNAME &name) noexcept {
  NameView out{GENERAL_NAME_RFC822, {}, nullptr, true};
  Rules rules = kStandardRules;
  Tlv tlv;
  if (Tlv::parse(octets(*name.value), rules, tlv) && tlv.identifier == TYPE_UTF8_STRING) {
    out.text = {reinterpret_cast<const char *>(tlv.content.data()), tlv.content.size()};
  }
  return out;
}

}  // namespace

int NameConstraints::check_first() const noexcept { return check_constraints(first_); }

int NameConstraints::add(const X509_EXTENSION *extension) noexcept {
  NAME_CONSTRAINTS *read = nullptr;
  if (!extension) return 0;
  if (const int code = X509_EXTENSION_to_NAME_CONSTRAINTS_RFC5280(extension, &read)) return code;
  owned<NAME_CONSTRAINTS> constraints(read);
  const bool empty = !constraints->permittedSubtrees && !constraints->excludedSubtrees;
  if (empty) return path_failure(ERR_NAME_CONSTRAINTS);
  if (const int code = check_constraints(*constraints)) return code;
  STACK *&list = extension->critical ? critical_ : other_;
  if (!list) list = new_STACK();
  return append(list, constraints) ? 0 : path_failure(kNoMemory);
}

int NameConstraints::check(const X509_CERT &cert, const X509_EXTENSION *alternative_names, bool end_entity) noexcept {
  STACK *names = nullptr;
  int code = alternative_names ? X509_EXTENSION_to_GENERAL_NAMES_RFC5280(alternative_names, &names) : 0;
  if (!code) code = check_subject(cert, !alternative_names, end_entity);
  for (const GENERAL_NAME *each : elements<GENERAL_NAME>(names))
    if (!code) code = check_alternative(*each);
  free_GENERAL_NAMES(names);
  return code;
}

// Where the subject stands alone, what it holds counts as what it would be among the alternative names.
int NameConstraints::check_subject(const X509_CERT &cert, bool alone, bool end_entity) noexcept {
  const X509_NAME *subject = get_X509_subject(&cert);
  const bool named = subject && subject->count > 0;
  if (const int code = named ? check_name(view_of(*subject)) : 0) return code;
  for (const X509_NAME_CHILD *child : elements<X509_NAME_CHILD>(alone ? subject : nullptr)) {
    if (!child || !child->type || !child->value) continue;
    if (const int code = check_attribute(text(*child->type), *child->value, end_entity)) return code;
  }
  return 0;
}

// A common name that cannot be read may be one of a host, and is no proper one.
int NameConstraints::check_attribute(std::string_view type, const ASN1_STRING &value, bool end_entity) noexcept {
  if (type == kEmailAddress) return check_name({GENERAL_NAME_RFC822, text(value), nullptr, false});
  if (type != kCommonName || !end_entity) return 0;
  const NarrowText name(value);
  const bool host = !name.is_readable() || reads_as_host(name.view());
  return host ? check_name({GENERAL_NAME_DNS, name.view(), nullptr, false}) : 0;
}

int NameConstraints::check_alternative(const GENERAL_NAME &name) noexcept {
  if (const int code = check_name(view_of(name))) return code;
  const auto *other = name.type == GENERAL_NAME_OTHER ? static_cast<const OTHERNAME *>(name.value) : nullptr;
  const bool mailbox = other && other->type_id && other->value && text(*other->type_id) == kUtf8Mailbox;
  return mailbox ? check_name(utf8_mailbox(*other)) : 0;
}

int NameConstraints::check_name(NameView name) noexcept {
  name.weight = int(std::min(size_of(name) / kOctetsOfOneStep, kMostSteps)) + 1;
  if (const int code = check_name(name, first_, true)) return code;
  for (const bool critical : {true, false})
    for (const NAME_CONSTRAINTS *each : elements<NAME_CONSTRAINTS>(critical ? critical_ : other_))
      if (const int code = check_name(name, *each, critical)) return code;
  return 0;
}
int NameConstraints::check_name(const NameView &name, const NAME_CONSTRAINTS &constraints, bool critical) noexcept {
  const int code = permit(name, constraints.permittedSubtrees, critical);
  return code ? code : exclude(name, constraints.excludedSubtrees, critical);
}

int NameConstraints::compare_kinds(const NameView &name, const GENERAL_SUBTREE &tree, bool critical,
                                   bool &same) noexcept {
  same = tree.base->type == name.kind;
  work_left_ -= same ? name.weight : 1;
  if (work_left_ < 0) return path_failure(ERR_TOO_MUCH_WORK);
  if (same && is_opaque(name.kind)) return same = false, critical ? path_failure(ERR_NAME_CONSTRAINTS) : 0;
  return same && !is_proper_name(name) ? path_failure(ERR_NAME_UNREADABLE) : 0;
}

// A name is permitted where no subtree is of its kind.
int NameConstraints::permit(const NameView &name, const STACK *subtrees, bool critical) noexcept {
  bool constrained = false;
  for (const GENERAL_SUBTREE *tree : elements<GENERAL_SUBTREE>(subtrees)) {
    bool same_kind = false;
    if (const int code = compare_kinds(name, *tree, critical, same_kind)) return code;
    if (same_kind && is_within(name, view_of(*tree->base))) return 0;
    constrained = constrained || same_kind;
  }
  return constrained ? path_failure(ERR_NAME_NOT_PERMITTED) : 0;
}
int NameConstraints::exclude(const NameView &name, const STACK *subtrees, bool critical) noexcept {
  for (const GENERAL_SUBTREE *tree : elements<GENERAL_SUBTREE>(subtrees)) {
    bool same_kind = false;
    if (const int code = compare_kinds(name, *tree, critical, same_kind)) return code;
    if (same_kind && touches(name, view_of(*tree->base))) return path_failure(ERR_NAME_EXCLUDED);
  }
  return 0;
}

}  // namespace velpki
