#include "platform/registry_document_linux.h"

#include <algorithm>
#include <charconv>

#include "platform/text_case.h"

namespace ovf {

namespace {

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

wide_view root_name(registry_root root) {
  return root == registry_root::classes ? u"HKEY_CLASSES_ROOT" : u"HKEY_CURRENT_USER";
}

/// A path without backslashes at its ends.
wide_view bare(wide_view path) {
  while (!path.empty() && path.front() == u'\\') path.remove_prefix(1);
  while (!path.empty() && path.back() == u'\\') path.remove_suffix(1);
  return path;
}

wide full_path(const registry_key& key) {
  wide path(root_name(key.root));
  const wide_view below = bare(key.path);
  if (!below.empty()) path.append(u"\\").append(below);
  return path;
}

wide section_of(const registry_key& key) { return folded(full_path(key)); }

bool is_below(const wide& section, const wide& parent) {
  return section.size() > parent.size() && section.starts_with(parent) && section[parent.size()] == u'\\';
}

/// Reads a text in quotation marks off the front of `rest`.
bool read_quoted(std::string_view& rest, std::string& text) {
  if (rest.empty() || rest.front() != '"') return false;
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] == '"') {
      rest.remove_prefix(i + 1);
      return true;
    }
    if (rest[i] == '\\' && ++i == rest.size()) return false;
    text.push_back(rest[i]);
  }
  return false;
}

std::string in_quotes(wide_view text) {
  std::string result = "\"";
  for (const char letter : utf8_from_wide(text)) {
    if (letter == '"' || letter == '\\') result.push_back('\\');
    result.push_back(letter);
  }
  return result + '"';
}

std::string dword_text(std::uint32_t number) {
  static const char digits[] = "0123456789abcdef";
  std::string result = "dword:";
  for (int shift = 28; shift >= 0; shift -= 4) result.push_back(digits[number >> shift & 15]);
  return result;
}

bool read_dword(std::string_view text, std::uint32_t& number) {
  if (!text.starts_with("dword:")) return false;
  text.remove_prefix(6);
  if (text.empty() || text.size() > 8) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() && end == text.data() + text.size();
}

bool fits_a_line(wide_view text) { return text.find_first_of(wide_view(u"\r\n\0", 3)) == wide_view::npos; }

}  // namespace

registry_document::registry_document(std::string_view content) {
  // More than one where programs put one after the other.
  while (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  wide section;
  while (!content.empty()) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    line next{.raw = std::string(content.substr(0, end))};
    const std::string_view meaning = trimmed(next.raw);
    if (meaning.size() > 2 && meaning.front() == '[' && meaning.back() == ']') {
      next.what = kind::section;
      section = folded(bare(wide_from_utf8(meaning.substr(1, meaning.size() - 2))));
    } else if (!section.empty() && read_value(meaning, next)) {
      next.what = kind::value;
    }
    next.section = section;
    lines_.push_back(std::move(next));
    content.remove_prefix(std::min(end + 1, content.size()));
  }
}

bool registry_document::read_value(std::string_view raw, line& into) {
  std::string name;
  if (raw.starts_with("@")) {
    raw.remove_prefix(1);
  } else if (!read_quoted(raw, name)) {
    return false;
  }
  raw = trimmed(raw);
  if (!raw.starts_with("=")) return false;
  raw = trimmed(raw.substr(1));
  std::uint32_t number = 0;
  std::string text;
  if (read_dword(raw, number)) {
    into.data = number;
  } else if (read_quoted(raw, text) && raw.empty()) {
    into.data = wide_from_utf8(text);
  } else {
    return false;
  }
  into.name = wide_from_utf8(name);
  return true;
}

const registry_document::value* registry_document::find(const registry_key& key, wide_view name) const {
  const wide section = section_of(key);
  // Of two lines for one value the later one holds.
  const auto found = std::find_if(lines_.rbegin(), lines_.rend(), [&](const line& candidate) {
    return candidate.what == kind::value && candidate.section == section &&
           equal_without_case(candidate.name, name);
  });
  return found == lines_.rend() ? nullptr : &found->data;
}

std::optional<std::uint32_t> registry_document::number(const registry_key& key, wide_view name) const {
  const value* found = find(key, name);
  if (found == nullptr || !std::holds_alternative<std::uint32_t>(*found)) return {};
  return std::get<std::uint32_t>(*found);
}

std::optional<wide> registry_document::text(const registry_key& key, wide_view name) const {
  const value* found = find(key, name);
  if (found == nullptr || !std::holds_alternative<wide>(*found)) return {};
  return std::get<wide>(*found);
}

bool registry_document::has_key(const registry_key& key) const {
  const wide section = section_of(key);
  return std::any_of(lines_.begin(), lines_.end(), [&](const line& candidate) {
    return candidate.what == kind::section &&
           (candidate.section == section || is_below(candidate.section, section));
  });
}

bool registry_document::apply(const registry_change& change) {
  using action = registry_change::action;
  if (bare(change.key.path).empty() || !fits_a_line(change.key.path) || !fits_a_line(change.name) ||
      !fits_a_line(change.text)) {
    return false;
  }
  switch (change.what) {
    case action::make_key:
      insertion_point(change.key, section_of(change.key));
      break;
    case action::set_number:
      set(change.key, change.name, change.number);
      break;
    case action::set_text:
      set(change.key, change.name, change.text);
      break;
    case action::delete_tree:
      delete_tree(section_of(change.key));
      break;
    case action::delete_leaf:
      if (is_leaf(section_of(change.key))) delete_tree(section_of(change.key));
      break;
  }
  return true;
}

std::size_t registry_document::insertion_point(const registry_key& key, const wide& section) {
  std::size_t after = 0;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const bool says_something = !trimmed(lines_[i].raw).empty();
    if (lines_[i].section == section && says_something) after = i + 1;
  }
  if (after != 0) return after;
  const wide last = lines_.empty() ? wide() : lines_.back().section;
  if (!lines_.empty() && !trimmed(lines_.back().raw).empty()) lines_.push_back({.raw = {}, .section = last});
  lines_.push_back(
      {.what = kind::section, .raw = '[' + utf8_from_wide(full_path(key)) + ']', .section = section});
  return lines_.size();
}

void registry_document::set(const registry_key& key, wide_view name, value data) {
  const wide section = section_of(key);
  const bool is_number = std::holds_alternative<std::uint32_t>(data);
  const std::string left = name.empty() ? "@" : in_quotes(name);
  const std::string right =
      is_number ? dword_text(std::get<std::uint32_t>(data)) : in_quotes(std::get<wide>(data));
  line fresh{.what = kind::value,
             .raw = left + '=' + right,
             .section = section,
             .name = wide(name),
             .data = std::move(data)};
  const auto same = std::find_if(lines_.rbegin(), lines_.rend(), [&](const line& candidate) {
    return candidate.what == kind::value && candidate.section == section &&
           equal_without_case(candidate.name, name);
  });
  if (same != lines_.rend()) {
    *same = std::move(fresh);
  } else {
    const std::size_t at = insertion_point(key, section);
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), std::move(fresh));
  }
}

bool registry_document::is_leaf(const wide& section) const {
  return std::none_of(lines_.begin(), lines_.end(), [&](const line& candidate) {
    return candidate.what == kind::section && is_below(candidate.section, section);
  });
}

void registry_document::delete_tree(const wide& section) {
  bool gone = false;
  std::erase_if(lines_, [&](const line& candidate) {
    const bool inside = candidate.section == section || is_below(candidate.section, section);
    const bool readable = candidate.what != kind::other || trimmed(candidate.raw).empty();
    gone = gone || inside;
    return inside && readable;
  });
  if (!gone) return;
  // What could not be read stays, below the section that now stands before it.
  *this = registry_document(content());
}

std::string registry_document::content() const {
  std::string result;
  for (const line& each : lines_) result.append(each.raw).push_back('\n');
  return result;
}

}  // namespace ovf
