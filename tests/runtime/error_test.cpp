// The platform's run-time errors: number, library source and standard message.
#include "runtime/error.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/expect_error.h"

namespace brix {
namespace {

TEST(RaiseRuntimeError, CarriesTheLibraryNameAndThePlatformMessage) {
  // clang-format off
  struct Case { std::int32_t number; const char* message; };
  const Case cases[] = {
      {5,   "Invalid procedure call or argument"},
      {6,   "Overflow"},
      {9,   "Subscript out of range"},
      {13,  "Type mismatch"},
      {91,  "Object variable or With block variable not set"},
      {94,  "Invalid use of Null"},
      {438, "Object doesn't support this property or method"},
      {457, "This key is already associated with an element of this collection"},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_TRUE(test_support::RaisesError([&] { RaiseRuntimeError(c.number); }, c.number,
                                          "brixobjects4", c.message));
  }
}

}  // namespace
}  // namespace brix
