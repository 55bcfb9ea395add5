// The two normalisation rules of database names: plain and dotted.
#include "querybuilder/db_name.h"

#include "runtime/text.h"

namespace brix {
namespace {

bool Holds(std::string_view text, char c) { return text.find(c) != std::string_view::npos; }

std::string NormalizePlainName(std::string_view name) {
  std::string_view trimmed = TrimBlanks(name);
  if (Holds(trimmed, ' ') && !Holds(trimmed, '(') && !trimmed.starts_with('[')) {
    return "[" + std::string(trimmed) + "]";
  }
  return std::string(trimmed);
}

// Dotted names look at ")" and at "[" anywhere in a part, and enclose a part without trimming:
// saved definitions and hosts' SQL hold names built by exactly this rule.
std::string NormalizeNamePart(std::string_view part) {
  if (!Holds(part, ' ') || Holds(part, '(') || Holds(part, ')') || Holds(part, '[')) {
    return std::string(TrimBlanks(part));
  }
  return "[" + std::string(part) + "]";
}

}  // namespace

std::string NormalizeDBName(std::string_view name) {
  if (!Holds(name, '.')) return NormalizePlainName(name);
  std::string result;
  std::size_t start = 0;
  while (true) {
    std::size_t dot = name.find('.', start);
    result += NormalizeNamePart(name.substr(start, dot - start));
    if (dot == std::string_view::npos) break;
    result += '.';
    start = dot + 1;
  }
  return result;
}

}  // namespace brix
