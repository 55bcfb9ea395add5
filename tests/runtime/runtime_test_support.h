// Shared by the runtime tests: an error expectation and an object with a chosen default value.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "runtime/error.h"
#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix::test_support {

template <class Action>
void ExpectRuntimeError(Action&& action, std::int32_t number, const std::string& description) {
  try {
    action();
    ADD_FAILURE() << "expected error " << number << " (" << description << ")";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number);
    EXPECT_EQ(error.Source(), "brixobjects4");
    EXPECT_EQ(error.Description(), description);
  }
}

inline constexpr const char* kOverflow = "Overflow";
inline constexpr const char* kTypeMismatch = "Type mismatch";
inline constexpr const char* kInvalidUseOfNull = "Invalid use of Null";
inline constexpr const char* kInvalidProcedureCall = "Invalid procedure call or argument";

/// An object whose default member holds `value` (none when `value` is empty).
class ValueObject : public Object {
 public:
  static std::shared_ptr<ValueObject> Create(std::optional<Variant> value) {
    auto object = std::make_shared<ValueObject>();
    object->value_ = std::move(value);
    return object;
  }
  std::string TypeName() const override { return "ValueObject"; }
  std::optional<Variant> DefaultValue() const override { return value_; }

 private:
  std::optional<Variant> value_;
};

inline Variant ObjectWith(Variant value) { return Variant(ValueObject::Create(std::move(value))); }
inline Variant ObjectWithoutDefault() { return Variant(ValueObject::Create(std::nullopt)); }

}  // namespace brix::test_support
