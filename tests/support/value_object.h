// An object with a chosen default value, for tests of conversions and comparisons of objects.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix::test_support {

/// An object whose default member holds `value` (none when `value` is empty).
class ValueObject : public Object {
 public:
  explicit ValueObject(std::optional<Variant> value) : value_(std::move(value)) {}
  std::string TypeName() const override { return "ValueObject"; }
  std::optional<Variant> DefaultValue() const override { return value_; }

 private:
  std::optional<Variant> value_;
};

inline Variant ObjectWith(Variant value) {
  return Variant(std::make_shared<ValueObject>(std::move(value)));
}
inline Variant ObjectWithoutDefault() {
  return Variant(std::make_shared<ValueObject>(std::nullopt));
}

}  // namespace brix::test_support
