// Conversions between variant kinds, the number syntax and the en-US date reader.
#include "runtime/conversions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/rounding.h"
#include "runtime/text.h"

namespace brix {
namespace {

// Day numbers just outside the date range.
constexpr double kBeforeFirstDate = kFirstDateSerial - 1;
constexpr double kAfterLastDate = kLastDateSerial + 1;
// The platform's number for an omitted argument used as a value ("Named argument not found").
constexpr std::int32_t kMissingArgumentNumber = 448;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Reads one number text: leading symbols, the digits, trailing symbols, nothing else.
class NumberReader {
 public:
  explicit NumberReader(std::string_view text) : text_(text) {}

  std::optional<double> Read() {
    ReadSymbols(/*leading=*/true);
    bool based = Peek() == '&';
    std::optional<double> magnitude = based ? ReadBased() : ReadDecimal();
    if (!magnitude) return std::nullopt;
    ReadSymbols(/*leading=*/false);
    if (pos_ != text_.size()) return std::nullopt;
    if (based && dollar_) return std::nullopt;
    if (open_paren_ && (!close_paren_ || sign_)) return std::nullopt;
    bool negative = sign_ == '-' || open_paren_;
    return negative ? -*magnitude : *magnitude;
  }

 private:
  char Peek() const { return pos_ < text_.size() ? text_[pos_] : '\0'; }

  // Blanks, one sign, one "$" and one parenthesis, in any order, before or after the digits.
  void ReadSymbols(bool leading) {
    for (char c = Peek(); pos_ < text_.size(); c = Peek()) {
      if (IsBlank(c)) {
      } else if ((c == '+' || c == '-') && !sign_) {
        sign_ = c;
      } else if (c == '$' && !dollar_) {
        dollar_ = true;
      } else if (leading && c == '(' && !open_paren_) {
        open_paren_ = true;
      } else if (!leading && c == ')' && open_paren_ && !close_paren_) {
        close_paren_ = true;
      } else {
        return;
      }
      ++pos_;
    }
  }

  // Digits with thousands separators and a decimal point, then an optional exponent.
  std::optional<double> ReadDecimal() {
    std::string mantissa;
    bool point = false;
    for (char c = Peek(); pos_ < text_.size(); c = Peek()) {
      if (IsDigit(c)) {
        mantissa += c;
      } else if (c == ',' && !point && !mantissa.empty()) {
        // Thousands separators are not checked for grouping.
      } else if (c == '.' && !point) {
        mantissa += c;
        point = true;
      } else {
        break;
      }
      ++pos_;
    }
    if (mantissa.find_first_of("0123456789") == std::string::npos) return std::nullopt;
    std::optional<long> exponent = ReadExponent();
    if (!exponent) return std::nullopt;
    return ToDouble(mantissa, *exponent);
  }

  // "E" or "D", an optional sign and at least one digit; 0 when there is no exponent.
  std::optional<long> ReadExponent() {
    char marker = LowerAscii(Peek());
    if (marker != 'e' && marker != 'd') return 0L;
    ++pos_;
    bool negative = Peek() == '-';
    if (Peek() == '+' || Peek() == '-') ++pos_;
    if (!IsDigit(Peek())) return std::nullopt;
    long exponent = 0;
    for (; IsDigit(Peek()); ++pos_) {
      exponent = std::min(exponent * 10 + (Peek() - '0'), 1000000L);  // saturates far out
    }
    return negative ? -exponent : exponent;
  }

  static double ToDouble(const std::string& mantissa, long exponent) {
    std::string text = mantissa + "e" + std::to_string(exponent);
    double value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc::result_out_of_range) return value;
    // Out of range: infinity when the decimal magnitude is large, zero when it is tiny.
    std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    std::size_t first = mantissa.find_first_not_of("0.");
    long magnitude =
        first < point ? static_cast<long>(point - first) : -static_cast<long>(first - point - 1);
    return magnitude + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  }

  // "&H" hex or "&O" octal, read as a 16-bit Integer literal when it fits, else a 32-bit Long.
  std::optional<double> ReadBased() {
    ++pos_;
    char kind = LowerAscii(Peek());
    if (kind != 'h' && kind != 'o') return std::nullopt;
    ++pos_;
    const std::uint64_t base = kind == 'h' ? 16 : 8;
    std::uint64_t value = 0;
    std::size_t digits = 0;
    for (int digit; (digit = DigitValue(Peek(), base)) >= 0; ++pos_, ++digits) {
      value = std::min<std::uint64_t>(value * base + static_cast<std::uint64_t>(digit),
                                      std::uint64_t{1} << 40);
    }
    if (digits == 0) return std::nullopt;
    if (value <= 0xFFFF) return static_cast<std::int16_t>(value);
    if (value <= 0xFFFFFFFF) return static_cast<std::int32_t>(value);
    return std::numeric_limits<double>::infinity();
  }

  static int DigitValue(char c, std::uint64_t base) {
    int value = IsDigit(c) ? c - '0' : IsLetter(c) ? LowerAscii(c) - 'a' + 10 : -1;
    return value >= 0 && static_cast<std::uint64_t>(value) < base ? value : -1;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  char sign_ = 0;
  bool dollar_ = false;
  bool open_paren_ = false;
  bool close_paren_ = false;
};

// The simple value of `value`, without a copy when it is one already; `held` keeps the default
// value of an object.
const Variant& SimpleRef(const Variant& value, Variant& held) {
  if (!value.IsObject()) return value;
  held = SimpleValue(value);
  return held;
}

// The number value of a variant for the numeric conversions: Empty is 0, text is read as a
// number (13 when it is not one), an object gives its default value, Null raises 94.
double ToNumber(const Variant& value) {
  Variant held;
  const Variant& v = SimpleRef(value, held);
  if (v.IsEmpty()) return 0;
  if (v.IsNull()) RaiseRuntimeError(kErrInvalidUseOfNull);
  if (!v.IsString()) return v.NumericValue();
  std::optional<double> number = ParseNumber(v.AsString());
  if (!number) RaiseRuntimeError(kErrTypeMismatch);
  return *number;
}

template <class Integer>
Integer ToWhole(const Variant& v) {
  return RoundToWhole<Integer>(ToNumber(v));
}

// %G with the given precision: shortest of fixed and exponent form, no trailing zeros.
std::string SignificantDigits(double value, int precision) {
  if (value == 0) return "0";  // negative zero too
  std::array<char, 64> buffer{};
  auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::general, precision);
  std::string text(buffer.data(), end);
  for (char& c : text) c = static_cast<char>(c == 'e' ? 'E' : c);
  return text;
}

std::int32_t ErrorNumber(std::int32_t code) {
  if (code == kParamNotFound) return kMissingArgumentNumber;
  auto bits = static_cast<std::uint32_t>(code);
  if ((bits & 0xFFFF0000u) == 0x800A0000u) return static_cast<std::int32_t>(bits & 0xFFFFu);
  return code;
}

// A date text cut into numbers, words and separators; blanks only separate.
struct DateToken {
  enum Kind { kNumber, kWord, kSeparator } kind;
  int value = 0;          // number value, or the separator character
  std::size_t width = 0;  // digits of a number
  std::string word;       // lower-case word
};

// 1..12 for a month name or its first three or more letters; `word` is lower-case ASCII, as are
// the month names once folded.
std::optional<int> MonthOfName(std::string_view word) {
  if (word.size() < 3) return std::nullopt;
  auto folded_equal = [](char w, char n) { return w == LowerAscii(n); };
  for (int month = 1; month <= 12; ++month) {
    std::string_view name = MonthName(month);
    if (name.size() >= word.size() &&
        std::equal(word.begin(), word.end(), name.begin(), folded_equal)) {
      return month;
    }
  }
  return std::nullopt;
}

std::optional<std::vector<DateToken>> LexDate(std::string_view text) {
  std::vector<DateToken> tokens;
  for (std::size_t pos = 0; pos < text.size();) {
    char c = text[pos];
    if (IsBlank(c)) {
      ++pos;
    } else if (IsDigit(c)) {
      std::size_t start = pos;
      int value = 0;
      for (; pos < text.size() && IsDigit(text[pos]); ++pos) {
        if (pos - start >= 4) return std::nullopt;  // no date part has more than 4 digits
        value = value * 10 + (text[pos] - '0');
      }
      tokens.push_back({DateToken::kNumber, value, pos - start, {}});
    } else if (IsLetter(c)) {
      std::string word;
      for (; pos < text.size() && IsLetter(text[pos]); ++pos) word += LowerAscii(text[pos]);
      // Any word but a month name or AM/PM fails the date later on; most texts stop here.
      if (word != "am" && word != "pm" && !MonthOfName(word)) return std::nullopt;
      tokens.push_back({DateToken::kWord, 0, 0, std::move(word)});
    } else if (c == '/' || c == '-' || c == '.' || c == ',' || c == ':') {
      tokens.push_back({DateToken::kSeparator, c, 0, {}});
      ++pos;
    } else {
      return std::nullopt;
    }
  }
  return tokens;
}

bool IsSeparator(const DateToken& t, char c) {
  return t.kind == DateToken::kSeparator && t.value == c;
}

// 0 for "am", 12 for "pm", nullopt for any other token.
std::optional<int> HalfDayOffset(const DateToken& t) {
  if (t.kind != DateToken::kWord) return std::nullopt;
  if (t.word == "am") return 0;
  if (t.word == "pm") return 12;
  return std::nullopt;
}

struct DatePiece {
  int value;
  std::size_t width;
  bool IsYear() const { return width >= 3 || value > 31; }
};

int FullYear(const DatePiece& year) {
  if (year.width > 2) return year.value;
  return year.value < 30 ? 2000 + year.value : 1900 + year.value;
}

int CurrentYear() { return Year(SystemDate()); }

// The day number of a checked calendar date; nullopt when it is not one.
std::optional<double> ValidDate(int year, int month, int day) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1) return std::nullopt;
  if (day > Day(DateSerial(year, month + 1, 0))) return std::nullopt;
  return DateSerial(year, month, day);
}

std::optional<double> FirstValidDate(int year, int month, int day, int other_month, int other_day) {
  if (auto date = ValidDate(year, month, day)) return date;
  return ValidDate(year, other_month, other_day);
}

// Reads the date part once the time part is cut out.
class DatePartReader {
 public:
  std::optional<double> Read(const std::vector<DateToken>& tokens) {
    if (tokens.empty()) return 0.0;
    if (!Collect(tokens)) return std::nullopt;
    return month_name_ ? WithMonthName() : Numeric();
  }

 private:
  // Checks the alternation of parts and separators and gathers the numbers and the month name.
  bool Collect(const std::vector<DateToken>& tokens) {
    bool after_part = false;
    for (const DateToken& t : tokens) {
      if (t.kind == DateToken::kSeparator) {
        if (!after_part || t.value == ':') return false;
        separators_ += static_cast<char>(t.value);
        after_part = false;
        continue;
      }
      if (t.kind == DateToken::kNumber) {
        numbers_.push_back({t.value, t.width});
      } else if (auto month = MonthOfName(t.word); month && !month_name_) {
        month_name_ = month;
      } else {
        return false;
      }
      after_part = true;
    }
    return after_part;
  }

  std::optional<double> WithMonthName() const {
    int month = *month_name_;
    if (numbers_.size() == 1) {
      const DatePiece& n = numbers_[0];
      return n.IsYear() ? ValidDate(FullYear(n), month, 1)
                        : ValidDate(CurrentYear(), month, n.value);
    }
    if (numbers_.size() != 2) return std::nullopt;
    bool year_first = numbers_[0].IsYear();
    const DatePiece& year = numbers_[year_first ? 0 : 1];
    const DatePiece& day = numbers_[year_first ? 1 : 0];
    return ValidDate(FullYear(year), month, day.value);
  }

  std::optional<double> Numeric() const {
    if (separators_.find(',') != std::string::npos) return std::nullopt;
    if (numbers_.size() == 3) {
      const DatePiece& a = numbers_[0];
      const DatePiece& b = numbers_[1];
      const DatePiece& c = numbers_[2];
      if (a.IsYear()) return ValidDate(FullYear(a), b.value, c.value);
      return FirstValidDate(FullYear(c), a.value, b.value, b.value, a.value);
    }
    // "12.5" is a decimal number, not a date.
    if (numbers_.size() != 2 || separators_ == ".") return std::nullopt;
    const DatePiece& a = numbers_[0];
    const DatePiece& b = numbers_[1];
    if (b.IsYear()) return ValidDate(FullYear(b), a.value, 1);
    if (a.IsYear()) return ValidDate(FullYear(a), b.value, 1);
    return FirstValidDate(CurrentYear(), a.value, b.value, b.value, a.value);
  }

  std::vector<DatePiece> numbers_;
  std::optional<int> month_name_;
  std::string separators_;
};

// Finds the time ("h:mm", "h:mm:ss", each with an optional AM/PM, or "h AM"), removes its
// tokens and returns it as a fraction of a day; 0 without a time, nullopt when it is invalid.
std::optional<double> TakeTime(std::vector<DateToken>& tokens) {
  auto is_number = [&](std::size_t i) {
    return i < tokens.size() && tokens[i].kind == DateToken::kNumber;
  };
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!is_number(i)) continue;
    std::array<int, 3> parts = {tokens[i].value, 0, 0};
    std::size_t end = i + 1;
    std::size_t count = 1;
    while (count < 3 && end + 1 < tokens.size() && IsSeparator(tokens[end], ':') &&
           is_number(end + 1)) {
      parts[count++] = tokens[end + 1].value;
      end += 2;
    }
    std::optional<int> half_day = end < tokens.size() ? HalfDayOffset(tokens[end]) : std::nullopt;
    if (count == 1 && !half_day) continue;
    if (half_day) ++end;
    tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i),
                 tokens.begin() + static_cast<std::ptrdiff_t>(end));
    int hour = parts[0];
    if (half_day) {
      if (hour > 12) return std::nullopt;
      hour = hour % 12 + *half_day;
    }
    if (hour > 23 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
    for (const DateToken& t : tokens) {
      if (IsSeparator(t, ':') || HalfDayOffset(t)) return std::nullopt;  // a second time
    }
    return (hour * 3600.0 + parts[1] * 60.0 + parts[2]) / 86400.0;
  }
  return 0.0;
}

// The day number a Format value stands for, or nullopt when it is not one.
std::optional<double> FormatSerial(const Variant& v) {
  std::optional<double> number;
  if (v.IsString()) {
    if (std::optional<double> date = ParseDate(v.AsString())) return date;
    number = ParseNumber(v.AsString());
  } else if (v.IsNumericKind()) {
    number = v.NumericValue();
  }
  if (number && *number > kBeforeFirstDate && *number < kAfterLastDate) return number;
  return std::nullopt;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  // A run of up to 15 digits, the form of every whole number the library writes, is exact in a
  // double when read digit by digit.
  constexpr std::size_t kExactDigits = 15;
  if (!text.empty() && text.size() <= kExactDigits &&
      std::all_of(text.begin(), text.end(), IsDigit)) {
    double value = 0;
    for (const char c : text) value = value * 10 + (c - '0');
    return value;
  }
  return NumberReader(text).Read();
}

std::optional<double> ParseDate(std::string_view text) {
  std::optional<std::vector<DateToken>> tokens = LexDate(text);
  if (!tokens || tokens->empty()) return std::nullopt;
  std::optional<double> time = TakeTime(*tokens);
  if (!time) return std::nullopt;
  std::optional<double> day = DatePartReader().Read(*tokens);
  if (!day) return std::nullopt;
  return CombineDateTime(*day, *time);
}

std::string CStr(const Variant& value) {
  Variant held;
  const Variant& v = SimpleRef(value, held);
  switch (v.Type()) {
    case vbEmpty:
      return {};
    case vbNull:
      RaiseRuntimeError(kErrInvalidUseOfNull);
    case vbBoolean:
      return v.AsBoolean() ? "True" : "False";
    case vbInteger:
    case vbLong:
    case vbByte:
      return std::to_string(static_cast<std::int32_t>(v.NumericValue()));
    case vbSingle:
      return SignificantDigits(v.AsSingle(), 7);
    case vbDouble:
    case vbCurrency:
      return SignificantDigits(v.NumericValue(), 15);
    case vbDate:
      return GeneralDate(v.AsDate().serial);
    case vbString:
      return v.AsString();
    case vbError:
      return "Error " + std::to_string(ErrorNumber(v.AsError().code));
    default:
      RaiseRuntimeError(kErrTypeMismatch);
  }
}

std::string ConcatText(const Variant& v) { return v.IsNull() ? std::string() : CStr(v); }

std::int16_t CInt(const Variant& v) { return ToWhole<std::int16_t>(v); }

std::int32_t CLng(const Variant& v) { return ToWhole<std::int32_t>(v); }

std::uint8_t CByte(const Variant& v) { return ToWhole<std::uint8_t>(v); }

bool CBool(const Variant& value) {
  Variant held;
  const Variant& v = SimpleRef(value, held);
  if (v.IsString()) {
    const std::string& text = v.AsString();
    std::string upper = UpperAscii(text);
    if (upper == "TRUE" || text == "#TRUE#") return true;
    if (upper == "FALSE" || text == "#FALSE#") return false;
  }
  return ToNumber(v) != 0;
}

double CDbl(const Variant& v) {
  double value = ToNumber(v);
  if (std::isinf(value)) RaiseRuntimeError(kErrOverflow);
  return value;
}

float CSng(const Variant& v) {
  double value = CDbl(v);
  if (std::fabs(value) > std::numeric_limits<float>::max()) RaiseRuntimeError(kErrOverflow);
  return static_cast<float>(value);
}

Currency CCur(const Variant& value) {
  Variant held;
  const Variant& v = SimpleRef(value, held);
  if (v.Type() == vbCurrency) return v.AsCurrency();
  return Currency::FromNumber(CDbl(v));
}

Date CDate(const Variant& value) {
  Variant held;
  const Variant& v = SimpleRef(value, held);
  if (v.IsEmpty()) return Date{0};
  if (v.IsNull()) RaiseRuntimeError(kErrInvalidUseOfNull);
  if (v.IsString()) {
    std::optional<double> serial = ParseDate(v.AsString());
    if (!serial) RaiseRuntimeError(kErrTypeMismatch);
    return Date{*serial};
  }
  double serial = v.NumericValue();
  if (!(serial > kBeforeFirstDate && serial < kAfterLastDate)) RaiseRuntimeError(kErrOverflow);
  return Date{serial};
}

bool IsNumeric(const Variant& v) {
  if (v.IsEmpty()) return true;
  if (v.IsString()) {
    std::optional<double> number = ParseNumber(v.AsString());
    return number && std::isfinite(*number);
  }
  return v.IsNumericKind() && v.Type() != vbDate;
}

bool IsDate(const Variant& v) {
  if (v.Type() == vbDate) return true;
  return v.IsString() && ParseDate(v.AsString()).has_value();
}

std::string Format(const Variant& value, std::string_view pattern) {
  Variant v = SimpleValue(value);
  if (v.IsNull() || v.IsEmpty()) return {};
  if (v.IsArray()) RaiseRuntimeError(kErrTypeMismatch);
  if (pattern.empty()) return CStr(v);
  if (std::optional<double> serial = FormatSerial(v)) return FormatDate(*serial, pattern);
  return CStr(v);
}

}  // namespace brix
