// Type codes, typed access and the platform's comparison of variant values.
#include "runtime/variant.h"

#include <cmath>
#include <limits>

#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/rounding.h"
#include "runtime/text.h"

namespace brix {

namespace {

template <class T>
Comparison Order(T a, T b) {
  if (a < b) return Comparison::kLess;
  if (b < a) return Comparison::kGreater;
  return Comparison::kEqual;
}

// A floating value as Currency, as the platform converts it for a comparison with Currency.
std::int64_t ToScaledCurrency(const Variant& v) {
  if (v.Type() == vbCurrency) return v.AsCurrency().scaled;
  return Currency::FromNumber(v.NumericValue()).scaled;
}

Comparison CompareNumbers(const Variant& a, const Variant& b) {
  if (a.Type() == vbCurrency || b.Type() == vbCurrency) {
    return Order(ToScaledCurrency(a), ToScaledCurrency(b));
  }
  // Only a Double is rounded to Single precision; other numbers meet a Single as Doubles.
  bool single_pair = (a.Type() == vbSingle && (b.Type() == vbSingle || b.Type() == vbDouble)) ||
                     (b.Type() == vbSingle && a.Type() == vbDouble);
  if (single_pair) {
    return Order(static_cast<float>(a.NumericValue()), static_cast<float>(b.NumericValue()));
  }
  return Order(a.NumericValue(), b.NumericValue());
}

}  // namespace

Currency Currency::FromNumber(double value) {
  return Currency{RoundToWhole<std::int64_t>(value * kScale)};
}

VarType Variant::Type() const {
  static constexpr VarType kCodes[] = {vbEmpty,  vbNull,     vbInteger, vbLong,   vbSingle,
                                       vbDouble, vbCurrency, vbDate,    vbString, vbBoolean,
                                       vbByte,   vbError,    vbObject,  vbByte,   vbVariant};
  VarType code = kCodes[value_.index()];
  if (IsArray()) code = static_cast<VarType>(code | vbArray);
  return code;
}

bool Variant::IsMissing() const { return IsError() && AsError().code == kParamNotFound; }

bool Variant::IsNumericKind() const {
  switch (Type()) {
    case vbInteger:
    case vbLong:
    case vbSingle:
    case vbDouble:
    case vbCurrency:
    case vbDate:
    case vbBoolean:
    case vbByte:
      return true;
    default:
      return false;
  }
}

const VariantArray& Variant::AsVariantArray() const {
  return *Get<std::shared_ptr<const VariantArray>>();
}

double Variant::NumericValue() const {
  switch (Type()) {
    case vbInteger:
      return AsInteger();
    case vbLong:
      return AsLong();
    case vbSingle:
      return AsSingle();
    case vbDouble:
      return AsDouble();
    case vbCurrency:
      return static_cast<double>(AsCurrency().scaled) / Currency::kScale;
    case vbDate:
      return AsDate().serial;
    case vbBoolean:
      return AsBoolean() ? -1.0 : 0.0;
    case vbByte:
      return AsByte();
    default:
      ThrowTypeMismatch();
  }
}

void Variant::ThrowTypeMismatch() { RaiseRuntimeError(kErrTypeMismatch); }

Variant SimpleValue(const Variant& v) {
  if (!v.IsObject()) return v;
  const Variant::ObjectRef& object = v.AsObject();
  if (!object) RaiseRuntimeError(kErrObjectVariableNotSet);
  std::optional<Variant> value = object->DefaultValue();
  if (!value) RaiseRuntimeError(kErrObjectDoesntSupport);
  return SimpleValue(*value);
}

Comparison Compare(const Variant& a, const Variant& b) {
  if (a.IsObject() || b.IsObject()) {
    Variant left = SimpleValue(a);  // left first, so the left operand's error wins
    return Compare(left, SimpleValue(b));
  }
  if (a.IsNull() || b.IsNull()) return Comparison::kNull;
  if (a.IsError() && b.IsError()) return Comparison::kEqual;
  if (a.IsError() || b.IsError() || a.IsArray() || b.IsArray()) {
    RaiseRuntimeError(kErrTypeMismatch);
  }
  if (a.IsEmpty() && b.IsEmpty()) return Comparison::kEqual;
  if (a.IsString() || b.IsString()) {
    if (!a.IsString() && !a.IsEmpty()) return Comparison::kLess;
    if (!b.IsString() && !b.IsEmpty()) return Comparison::kGreater;
    int order = CompareUtf16Order(a.IsString() ? a.AsString() : std::string_view(),
                                  b.IsString() ? b.AsString() : std::string_view());
    return order < 0 ? Comparison::kLess : order > 0 ? Comparison::kGreater : Comparison::kEqual;
  }
  if (a.IsEmpty()) return CompareNumbers(Variant(std::int16_t{0}), b);
  if (b.IsEmpty()) return CompareNumbers(a, Variant(std::int16_t{0}));
  return CompareNumbers(a, b);
}

bool VarEqual(const Variant& a, const Variant& b) { return Compare(a, b) == Comparison::kEqual; }

}  // namespace brix
