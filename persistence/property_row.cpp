// The string forms shared by the saved rows.
#include "persistence/property_row.h"

#include <charconv>

namespace brix {

std::string_view WholeNumberText(std::int32_t value, std::string& scratch) {
  char digits[16];
  scratch.assign(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  return scratch;
}

std::optional<std::int32_t> PlainWholeNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  const std::string_view digits = text.substr(negative ? 1 : 0);
  if (digits.empty() || digits.size() > 9 || (digits.size() > 1 && digits.front() == '0')) {
    return std::nullopt;
  }
  std::int32_t value = 0;  // nine digits always fit
  for (const char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  if (negative && value == 0) return std::nullopt;
  return negative ? -value : value;
}

}  // namespace brix
