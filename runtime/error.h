// The one exception type of the library and the single place that raises it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace brix {

/// Name of the library's module; the source of run-time errors raised by the platform layer.
inline constexpr std::string_view kLibraryName = "brixobjects4";

/// An error as the platform's error object carries it: number, source, description, help file
/// and help context. `what()` returns the description.
class Error : public std::runtime_error {
 public:
  Error(std::int32_t number, std::string source, std::string description,
        std::string help_file = {}, std::int32_t help_context = 0);

  std::int32_t Number() const noexcept { return number_; }
  const std::string& Source() const noexcept { return source_; }
  const std::string& Description() const noexcept { return description_; }
  const std::string& HelpFile() const noexcept { return help_file_; }
  std::int32_t HelpContext() const noexcept { return help_context_; }

 private:
  std::int32_t number_;
  std::string source_;
  std::string description_;
  std::string help_file_;
  std::int32_t help_context_;
};

/// Throws `Error` with the given fields. Every error of the library goes through here.
[[noreturn]] void Raise(std::int32_t number, std::string source, std::string description,
                        std::string help_file = {}, std::int32_t help_context = 0);

/// The platform's message for one of its run-time error numbers (5 "Invalid procedure call or
/// argument", 6 "Overflow", 9, 13, 91, 94, 424, 438, 449, 457 ...); other numbers get
/// "Application-defined or object-defined error".
std::string StandardMessage(std::int32_t number);

/// Raises a platform run-time error: its number, the library's name as source, its standard
/// message and help context 1000000 + number (the platform's help keyword numbering).
[[noreturn]] void RaiseRuntimeError(std::int32_t number);

/// The description of an error that traps another: `message`, CR LF, then `reason_label`
/// (for instance "Reason: ", or empty) and the trapped description.
std::string TrappedDescription(std::string_view message, std::string_view reason_label,
                               const Error& trapped);

}  // namespace brix
