// The library's exception and the platform's standard error messages.
#include "runtime/error.h"

#include <utility>

#include "runtime/error_numbers.h"

namespace brix {

Error::Error(std::int32_t number, std::string source, std::string description,
             std::string help_file, std::int32_t help_context)
    : std::runtime_error(description),
      number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      help_file_(std::move(help_file)),
      help_context_(help_context) {}

void Raise(std::int32_t number, std::string source, std::string description, std::string help_file,
           std::int32_t help_context) {
  throw Error(number, std::move(source), std::move(description), std::move(help_file),
              help_context);
}

std::string StandardMessage(std::int32_t number) {
  switch (number) {
    case kErrInvalidProcedureCall:
      return "Invalid procedure call or argument";
    case kErrOverflow:
      return "Overflow";
    case kErrOutOfMemory:
      return "Out of memory";
    case kErrSubscriptOutOfRange:
      return "Subscript out of range";
    case kErrTypeMismatch:
      return "Type mismatch";
    case kErrObjectVariableNotSet:
      return "Object variable or With block variable not set";
    case kErrInvalidUseOfNull:
      return "Invalid use of Null";
    case kErrObjectRequired:
      return "Object required";
    case kErrObjectDoesntSupport:
      return "Object doesn't support this property or method";
    case kErrArgumentNotOptional:
      return "Argument not optional";
    case kErrKeyAlreadyAssociated:
      return "This key is already associated with an element of this collection";
    default:
      return "Application-defined or object-defined error";
  }
}

void RaiseRuntimeError(std::int32_t number) {
  Raise(number, std::string(kLibraryName), StandardMessage(number), {}, 1000000 + number);
}

std::string TrappedDescription(std::string_view message, std::string_view reason_label,
                               const Error& trapped) {
  std::string text(message);
  text += "\r\n";
  text += reason_label;
  text += trapped.Description();
  return text;
}

}  // namespace brix
