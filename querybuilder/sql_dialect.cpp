// Identifiers, placeholders, LIKE patterns, typed values and IN lists of parameterized statements.
#include "querybuilder/sql_dialect.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "querybuilder/operand_dates.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

// The pieces of a stored name: split at dots outside brackets, brackets kept.
std::vector<std::string_view> NameParts(std::string_view name) {
  std::vector<std::string_view> parts;
  bool in_brackets = false;
  std::size_t start = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '[' && i == start) in_brackets = true;
    if (name[i] == ']' && in_brackets) {
      if (i + 1 < name.size() && name[i + 1] == ']') {
        ++i;  // "]]" is a bracket inside the name
      } else {
        in_brackets = false;
      }
    }
    if (name[i] == '.' && !in_brackets) {
      parts.push_back(name.substr(start, i - start));
      start = i + 1;
    }
  }
  parts.push_back(name.substr(start));
  return parts;
}

bool IsBracketed(std::string_view part) {
  return part.size() >= 2 && part.front() == '[' && part.back() == ']';
}

// A bracketed part's inner text, "]]" read as "]"; any other part as it stands.
std::string Identifier(std::string_view part) {
  if (!IsBracketed(part)) return std::string(part);
  std::string inner;
  for (std::size_t i = 1; i + 1 < part.size(); ++i) {
    inner += part[i];
    if (part[i] == ']' && part[i + 1] == ']') ++i;
  }
  return inner;
}

// "identifier" with its double quotes doubled; an empty one cannot be written.
void AppendQuoted(std::string& out, std::string_view identifier, std::string_view name) {
  if (identifier.empty()) {
    Raise(kErrUnquotableName, std::string(kParameterizedSource),
          "The name \"" + std::string(name) +
              "\" has an empty part and cannot be written as an identifier.");
  }
  out += '"';
  for (char c : identifier) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

bool IsNameStart(char c) {
  auto u = static_cast<unsigned char>(c);
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || u >= 0x80;
}

bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '$'; }

bool IsPlainIdentifier(std::string_view part) {
  if (part.empty() || !IsNameStart(part[0])) return false;
  for (char c : part) {
    if (!IsNameChar(c)) return false;
  }
  return true;
}

std::string TwoDigits(int value) {
  char text[3] = {static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10), 0};
  return text;
}

std::string IsoDate(double serial) {
  CivilDate date = ToCivil(serial);
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
  return text;
}

// Seconds since midnight of a moment, rounded to the second as the calendar date is.
int SecondsOfDay(double serial) {
  double fraction = std::fabs(serial - std::trunc(serial));
  return static_cast<int>(std::llround(fraction * 86400.0) % 86400);
}

std::string IsoTime(int seconds) {
  return TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) + ":" +
         TwoDigits(seconds % 60);
}

SqlParameter Integer(std::int64_t value) { return {SqlType::kInteger, std::to_string(value)}; }

SqlParameter Real(double value) {
  if (!std::isfinite(value)) RaiseRuntimeError(kErrOverflow);
  char text[32];
  auto result = std::to_chars(text, text + sizeof text, value);
  return {SqlType::kReal, std::string(text, result.ptr)};
}

// A whole number in the 64-bit range is an integer, anything else a real.
SqlParameter Number(double value) {
  if (std::trunc(value) == value && std::fabs(value) < kTwoTo63) {
    return Integer(static_cast<std::int64_t>(value));
  }
  return Real(value);
}

// Integer text ("-42", "+7") read exactly; std::nullopt for anything else.
std::optional<std::int64_t> ExactInteger(std::string_view text) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  std::int64_t value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

SqlParameter BindNumber(const Variant& operand) {
  if (operand.IsString()) {
    if (std::optional<std::int64_t> exact = ExactInteger(operand.AsString())) {
      return Integer(*exact);
    }
  }
  if (operand.Type() == vbDouble || operand.Type() == vbSingle) return Real(CDbl(operand));
  return Number(CDbl(operand));
}

SqlParameter BindDateTime(double serial) {
  return {SqlType::kDateTime, IsoDate(serial) + " " + IsoTime(SecondsOfDay(serial))};
}

// By the operand's own kind, for fields whose type says nothing about their values.
SqlParameter BindByKind(const Variant& operand) {
  switch (operand.Type()) {
    case vbInteger:
    case vbLong:
    case vbByte:
      return Integer(CLng(operand));
    case vbSingle:
    case vbDouble:
    case vbCurrency:
      return Real(CDbl(operand));
    case vbBoolean:
      return {SqlType::kBoolean, CBool(operand) ? "true" : "false"};
    case vbDate:
      return BindDateTime(CDbl(operand));
    default:
      return {SqlType::kText, ConcatText(operand)};
  }
}

// Reads an IN list; every failure names the character where reading stopped.
class InListReader {
 public:
  explicit InListReader(std::string_view text) : text_(text) {}

  std::vector<Variant> Read() {
    SkipBlanks();
    Expect('(', "\"(\"");
    std::vector<Variant> items;
    do {
      SkipBlanks();
      items.push_back(Item());
      SkipBlanks();
    } while (Accept(','));
    Expect(')', "\",\" or \")\"");
    SkipBlanks();
    if (at_ != text_.size()) Fail("nothing after \")\"");
    return items;
  }

 private:
  [[noreturn]] void Fail(std::string_view expected) const {
    Raise(kErrInListSyntax, std::string(kParameterizedSource),
          "The IN list \"" + std::string(text_) + "\" does not read as (item, item, ...) of " +
              "numbers and 'quoted texts': expected " + std::string(expected) + " at character " +
              std::to_string(at_ + 1) + ".");
  }

  void SkipBlanks() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r' || text_[at_] == '\n')) {
      ++at_;
    }
  }

  bool Accept(char c) {
    if (at_ < text_.size() && text_[at_] == c) {
      ++at_;
      return true;
    }
    return false;
  }

  void Expect(char c, std::string_view what) {
    if (!Accept(c)) Fail(what);
  }

  bool AcceptDigits() {
    std::size_t start = at_;
    while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') ++at_;
    return at_ > start;
  }

  Variant Item() {
    if (Accept('\'')) return Variant(QuotedText());
    std::size_t start = at_;
    if (!Accept('+')) Accept('-');
    bool whole = AcceptDigits();
    bool fraction = Accept('.') && AcceptDigits();
    if (!whole && !fraction) Fail("a number or a 'quoted text'");
    if (Accept('e') || Accept('E')) {
      if (!Accept('+')) Accept('-');
      if (!AcceptDigits()) Fail("the digits of an exponent");
    }
    return Variant(std::string(text_.substr(start, at_ - start)));
  }

  std::string QuotedText() {
    std::string content;
    for (;;) {
      if (at_ == text_.size()) Fail("the closing quote of a text");
      char c = text_[at_++];
      if (c == '\'' && !Accept('\'')) return content;
      content += c;
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::string QuotedName(std::string_view stored_name) {
  std::string quoted;
  for (std::string_view part : NameParts(stored_name)) {
    if (!quoted.empty()) quoted += '.';
    AppendQuoted(quoted, Identifier(part), stored_name);
  }
  return quoted;
}

std::string QuotedAlias(std::string_view alias) {
  std::string quoted;
  AppendQuoted(quoted, Identifier(alias), alias);
  return quoted;
}

bool ReadsAsName(std::string_view text) {
  for (std::string_view part : NameParts(text)) {
    if (IsBracketed(part) ? Identifier(part).empty() : !IsPlainIdentifier(part)) return false;
  }
  return true;
}

std::string Placeholder(SqlDialect dialect, std::size_t number) {
  return (dialect == SqlDialect::kPostgreSQL ? "$" : "?") + std::to_string(number);
}

std::string_view LikeOperator(SqlDialect dialect, bool negated) {
  if (dialect == SqlDialect::kPostgreSQL) return negated ? " NOT ILIKE " : " ILIKE ";
  return negated ? " NOT LIKE " : " LIKE ";
}

std::string_view LikeEscapeClause(SqlDialect dialect) {
  return dialect == SqlDialect::kPostgreSQL ? " ESCAPE E'\\\\'" : " ESCAPE '\\'";
}

std::string EscapeLikePattern(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (char c : text) {
    if (c == '\\' || c == '%' || c == '_') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

SqlParameter BindOperand(const Variant& operand, qbe_DataType type) {
  switch (type) {
    case qbe_DataString:
    case qbe_DataMemo:
      return {SqlType::kText, ConcatText(operand)};
    case qbe_DataNumeric:
    case qbe_DataDecimal:
      return BindNumber(operand);
    case qbe_DataBoolean:
      return {SqlType::kBoolean, CBool(operand) ? "true" : "false"};
    case qbe_DataDate:
      return BindDay(OperandDay(operand));
    case qbe_DataUTCDate:
      return BindDateTime(OperandSerial(operand));
    case qbe_DataTime:
      return {SqlType::kTime, IsoTime(SecondsOfDay(OperandSerial(operand)))};
    default:
      return BindByKind(operand);
  }
}

SqlParameter BindDay(double day) { return {SqlType::kDate, IsoDate(std::trunc(day))}; }

SqlParameter BindTimeOfMinute(double moment) {
  return {SqlType::kTime, IsoTime(SecondsOfDay(moment) / 60 * 60)};
}

std::vector<Variant> ReadInList(std::string_view stored_text) {
  return InListReader(stored_text).Read();
}

const char* SqlTypeName(SqlType type) {
  switch (type) {
    case SqlType::kText:
      return "text";
    case SqlType::kInteger:
      return "integer";
    case SqlType::kReal:
      return "real";
    case SqlType::kBoolean:
      return "boolean";
    case SqlType::kDate:
      return "date";
    case SqlType::kDateTime:
      return "datetime";
    case SqlType::kTime:
      return "time";
  }
  return "text";
}

const char* SqlDialectName(SqlDialect dialect) {
  return dialect == SqlDialect::kPostgreSQL ? "postgresql" : "sqlite";
}

}  // namespace brix
