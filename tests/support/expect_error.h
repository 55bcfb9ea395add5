// Error expectations for any test binary: number, source and description checked together.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/error.h"

namespace brix::test_support {

/// Success when `action` raises `brix::Error` with exactly this number, source and description.
template <class Action>
::testing::AssertionResult RaisesError(Action&& action, std::int32_t number,
                                       std::string_view source, std::string_view description) {
  try {
    action();
  } catch (const Error& error) {
    if (error.Number() == number && error.Source() == source &&
        error.Description() == description) {
      return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "raised " << error.Number() << " \"" << error.Source() << "\" \""
           << error.Description() << "\"; expected " << number << " \"" << source << "\" \""
           << description << "\"";
  }
  return ::testing::AssertionFailure() << "nothing raised; expected " << number;
}

/// Success when `action` raises the platform run-time error `number` (library source, standard
/// message).
template <class Action>
::testing::AssertionResult RaisesRuntimeError(Action&& action, std::int32_t number) {
  return RaisesError(action, number, kLibraryName, StandardMessage(number));
}

/// What `action` returns, or the `brix::Error` it raised as "<number> <source>: <description>":
/// for tables whose rows end either in a result or in an error.
template <class Action>
std::string Outcome(Action&& action) {
  try {
    return action();
  } catch (const Error& error) {
    return std::to_string(error.Number()) + " " + error.Source() + ": " + error.Description();
  }
}

}  // namespace brix::test_support
