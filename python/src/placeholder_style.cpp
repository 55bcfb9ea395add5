// Placeholders in the style of format-style database clients.
#include "placeholder_style.h"

namespace brix::python {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The end of the quoted text or name opened at `start`; a doubled quote stays inside.
std::size_t QuotedEnd(const std::string& text, std::size_t start) {
  const char quote = text[start];
  std::size_t i = start + 1;
  while (i < text.size()) {
    if (text[i] != quote) {
      ++i;
    } else if (i + 1 < text.size() && text[i + 1] == quote) {
      i += 2;
    } else {
      return i + 1;
    }
  }
  return i;
}

void AppendDoublingPercent(std::string& out, const std::string& text, std::size_t from,
                           std::size_t to) {
  for (std::size_t i = from; i < to; ++i) {
    out += text[i];
    if (text[i] == '%') out += '%';
  }
}

}  // namespace

FormatStyleStatement ToFormatStyle(const std::string& text, std::size_t parameter_count) {
  FormatStyleStatement result;
  result.text.reserve(text.size() + 8);
  std::size_t i = 0;
  while (i < text.size()) {
    const char c = text[i];
    if (c == '\'' || c == '"') {
      const std::size_t end = QuotedEnd(text, i);
      AppendDoublingPercent(result.text, text, i, end);
      i = end;
      continue;
    }
    if (c == '$' && i + 1 < text.size() && IsDigit(text[i + 1])) {
      std::size_t end = i + 1;
      std::size_t number = 0;
      while (end < text.size() && IsDigit(text[end]) && number <= parameter_count) {
        number = number * 10 + static_cast<std::size_t>(text[end] - '0');
        ++end;
      }
      if (number >= 1 && number <= parameter_count && (end == text.size() || !IsDigit(text[end]))) {
        result.text += "%s";
        result.order.push_back(number - 1);
        i = end;
        continue;
      }
    }
    AppendDoublingPercent(result.text, text, i, i + 1);
    ++i;
  }
  return result;
}

}  // namespace brix::python
