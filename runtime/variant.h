// The platform's tagged value: type codes, constructors per kind, typed access and comparison.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "runtime/object.h"

namespace brix {

/// The platform's type codes, as `VarType` reports them. An array reports its element code plus
/// `vbArray` (a byte array 8209, a variant array 8204).
enum VarType : std::int32_t {
  vbEmpty = 0,
  vbNull = 1,
  vbInteger = 2,
  vbLong = 3,
  vbSingle = 4,
  vbDouble = 5,
  vbCurrency = 6,
  vbDate = 7,
  vbString = 8,
  vbObject = 9,
  vbError = 10,
  vbBoolean = 11,
  vbVariant = 12,
  vbDataObject = 13,
  vbDecimal = 14,
  vbByte = 17,
  vbArray = 8192,
};

/// Fixed-point money: the value times 10,000.
struct Currency {
  /// Currency holds ten-thousandths.
  static constexpr double kScale = 10000.0;
  /// `value` rounded half to even to four decimals; beyond the 64-bit range raises 6.
  static Currency FromNumber(double value);

  std::int64_t scaled = 0;
  friend bool operator==(Currency, Currency) = default;
};

/// A date as a day number: whole days since 30 December 1899, the time of day as a fraction.
struct Date {
  double serial = 0;
  friend bool operator==(Date, Date) = default;
};

/// An error value (SCODE), as held by a variant.
struct ErrorValue {
  std::int32_t code = 0;
  friend bool operator==(ErrorValue, ErrorValue) = default;
};

using ByteArray = std::vector<std::uint8_t>;
class Variant;

/// An array of variants with its lower bound (0 unless said otherwise).
struct VariantArray {
  std::vector<Variant> items;
  std::int32_t lower_bound = 0;
};

/// A value of any of the platform's kinds. Constructors are explicit and exact: `Variant(5)` is a
/// 32-bit Long, `Variant(std::int16_t{5})` an Integer, `Variant("x")` a String, `Variant(true)` a
/// Boolean. Typed accessors raise the platform's type-mismatch error (13) for another kind.
class Variant {
 public:
  using ObjectRef = std::shared_ptr<Object>;

  Variant() = default;  ///< Empty.
  Variant(const Variant& other) : value_(CopyOf(other.value_)) {}
  Variant(Variant&&) noexcept = default;
  Variant& operator=(const Variant& other) {
    value_ = CopyOf(other.value_);
    return *this;
  }
  Variant& operator=(Variant&&) noexcept = default;
  ~Variant() = default;
  explicit Variant(std::int16_t v) : value_(v) {}
  explicit Variant(std::int32_t v) : value_(v) {}
  explicit Variant(float v) : value_(v) {}
  explicit Variant(double v) : value_(v) {}
  explicit Variant(Currency v) : value_(v) {}
  explicit Variant(Date v) : value_(v) {}
  explicit Variant(std::string v) : value_(std::move(v)) {}
  explicit Variant(std::string_view v) : value_(std::string(v)) {}
  explicit Variant(const char* v) : value_(std::string(v)) {}
  explicit Variant(bool v) : value_(v) {}
  explicit Variant(std::uint8_t v) : value_(v) {}
  explicit Variant(ErrorValue v) : value_(v) {}
  explicit Variant(ByteArray v) : value_(std::move(v)) {}
  explicit Variant(VariantArray v) : value_(std::make_shared<VariantArray>(std::move(v))) {}
  /// An object reference; a null pointer is the platform's `Nothing`.
  template <class T, class = std::enable_if_t<std::is_base_of_v<Object, T>>>
  explicit Variant(std::shared_ptr<T> v) : value_(ObjectRef(std::move(v))) {}

  static Variant Null() { return Variant(NullTag{}); }
  /// The marker of an omitted optional argument: error value 0x80020004.
  static Variant Missing() { return Variant(ErrorValue{static_cast<std::int32_t>(0x80020004u)}); }
  /// A null object reference.
  static Variant Nothing() { return Variant(ObjectRef()); }

  /// The platform's type code (`VarType`).
  VarType Type() const;

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  bool IsNull() const { return std::holds_alternative<NullTag>(value_); }
  bool IsMissing() const;
  bool IsError() const { return std::holds_alternative<ErrorValue>(value_); }
  /// True for any object reference, `Nothing` included.
  bool IsObject() const { return std::holds_alternative<ObjectRef>(value_); }
  bool IsNothing() const { return IsObject() && !std::get<ObjectRef>(value_); }
  bool IsArray() const { return IsByteArray() || IsVariantArray(); }
  bool IsByteArray() const { return std::holds_alternative<ByteArray>(value_); }
  bool IsVariantArray() const {
    return std::holds_alternative<std::shared_ptr<const VariantArray>>(value_);
  }
  bool IsString() const { return std::holds_alternative<std::string>(value_); }
  /// True for Integer, Long, Single, Double, Currency, Date, Boolean and Byte.
  bool IsNumericKind() const;

  // Typed access; each raises error 13 when the variant holds another kind.
  std::int16_t AsInteger() const { return Get<std::int16_t>(); }
  std::int32_t AsLong() const { return Get<std::int32_t>(); }
  float AsSingle() const { return Get<float>(); }
  double AsDouble() const { return Get<double>(); }
  Currency AsCurrency() const { return Get<Currency>(); }
  Date AsDate() const { return Get<Date>(); }
  const std::string& AsString() const { return Get<std::string>(); }
  bool AsBoolean() const { return Get<bool>(); }
  std::uint8_t AsByte() const { return Get<std::uint8_t>(); }
  ErrorValue AsError() const { return Get<ErrorValue>(); }
  const ObjectRef& AsObject() const { return Get<ObjectRef>(); }
  const ByteArray& AsByteArray() const { return Get<ByteArray>(); }
  const VariantArray& AsVariantArray() const;

  /// The numeric value of a numeric kind (Boolean True is -1, a Date its day number).
  /// Raises error 13 for any other kind.
  double NumericValue() const;

 private:
  struct NullTag {};
  explicit Variant(NullTag t) : value_(t) {}

  template <class T>
  const T& Get() const {
    if (const T* p = std::get_if<T>(&value_)) return *p;
    ThrowTypeMismatch();
  }
  [[noreturn]] static void ThrowTypeMismatch();

  // Variant arrays are shared and immutable, so copying a variant stays cheap.
  using Storage = std::variant<std::monostate, NullTag, std::int16_t, std::int32_t, float, double,
                               Currency, Date, std::string, bool, std::uint8_t, ErrorValue,
                               ObjectRef, ByteArray, std::shared_ptr<const VariantArray>>;

  // A copy made by constructing the held alternative in place: the library's own copy
  // constructor of std::variant (GCC 12) destroys an alternative it never built when copying a
  // text or an array runs out of memory.
  static Storage CopyOf(const Storage& value) {
    return std::visit(
        [](const auto& held) {
          return Storage(std::in_place_type<std::decay_t<decltype(held)>>, held);
        },
        value);
  }

  Storage value_;
};

/// The simple value behind a variant: the variant itself, or for an object the value of its default
/// member (followed through objects). Raises 91 for `Nothing` and 438 for an object without a
/// default value. Conversions and comparisons work on this value.
Variant SimpleValue(const Variant& v);

/// The platform's comparison of two variant values (Option Compare Binary).
enum class Comparison { kLess, kEqual, kGreater, kNull };

/// Compares as the platform's `=`/`<` do for two variant operands: Null on either side gives
/// `kNull`; numbers compare numerically (a Double is rounded to Single against a Single, any other
/// number against a Single compares as Double, a float becomes Currency against a Currency);
/// strings compare by UTF-16 code units; a number is less than a string; Empty is 0 against a
/// number and "" against a string; two error values are equal. Raises 13 for exactly one error
/// value or for arrays, 91 for `Nothing`, and compares an object's default value (438 without one).
Comparison Compare(const Variant& a, const Variant& b);

/// `Compare(a, b) == kEqual`: a Null comparison counts as not equal.
bool VarEqual(const Variant& a, const Variant& b);

}  // namespace brix
