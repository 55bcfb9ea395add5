// brixq envelope: the command line and the listing of an envelope's contents.
#include "tools/envelope_command.h"

#include "persistence/c_marshall.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "tools/brixq_errors.h"
#include "tools/command_line.h"

namespace brix::brixq {
namespace {

/// The name of a stored type code, as the envelope records it.
std::string TypeCodeName(const Variant& value) {
  switch (static_cast<int>(value.Type())) {
    case vbInteger:
      return "Integer";
    case vbLong:
      return "Long";
    case vbSingle:
      return "Single";
    case vbDouble:
      return "Double";
    case vbCurrency:
      return "Currency";
    case vbDate:
      return "Date";
    case vbString:
      return "String";
    case vbObject:
      return "Object";
    case vbBoolean:
      return "Boolean";
    case vbByte:
      return "Byte";
    case vbArray | vbByte:
      return "Byte()";
    default:
      return "Variant()";
  }
}

/// A value as one line's text: the text form, the size of a byte array, the class of an object.
std::string Shown(const Variant& value) {
  if (value.IsByteArray()) return std::to_string(value.AsByteArray().size()) + " bytes";
  if (value.IsArray()) return std::to_string(value.AsVariantArray().items.size()) + " items";
  if (value.IsObject()) {
    if (!value.AsObject()) return "Nothing";
    return value.AsObject()->TypeName();
  }
  return "\"" + CStr(value) + "\"";
}

/// The line of a value read through `read`, or the error that reading it raises.
template <class Read>
std::string ValueLine(Read read) {
  try {
    const Variant value = read();
    return TypeCodeName(value) + " " + Shown(value);
  } catch (const Error& error) {
    return "(" + error.Description() + ", error " + ErrorNumberText(error.Number()) + ")";
  }
}

}  // namespace

bool IsEnvelopeCommand(const std::vector<std::string_view>& args) {
  return !args.empty() && args[0] == "envelope";
}

EnvelopeOptions ParseEnvelopeCommandLine(const std::vector<std::string_view>& args) {
  EnvelopeOptions options;
  for (std::size_t i = 1; i < args.size(); ++i) {
    const std::string_view arg = args[i];
    if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--compressed") {
      options.compressed = true;
    } else if (arg.starts_with("--")) {
      throw UsageError("unknown option \"" + std::string(arg) + "\" for envelope" +
                       (arg.starts_with("--c") ? " (did you mean --compressed?)" : ""));
    } else if (!options.file.empty()) {
      throw UsageError("envelope takes one FILE, not also \"" + std::string(arg) + "\"");
    } else {
      options.file = std::string(arg);
    }
  }
  if (options.file.empty() && !options.help) throw UsageError("missing envelope FILE");
  return options;
}

std::string DescribeEnvelope(const EnvelopeOptions& options, const std::string& bytes) {
  const bool looks_compressed = bytes.starts_with("BXZ1");
  if (looks_compressed != options.compressed) {
    Raise(kErrInvalidProcedureCall, "brixq",
          options.file + (looks_compressed ? " holds a compressed envelope: add --compressed"
                                           : " holds an envelope that is not compressed: leave "
                                             "out --compressed"));
  }
  auto envelope = cMarshall::Create();
  envelope->SetbMakeCompress(options.compressed);
  envelope->SetContents(ByteArray(bytes.begin(), bytes.end()));
  std::string session;
  try {
    session = envelope->Session();
  } catch (const Error&) {
    session = "(none)";
  }
  std::string text = "class: " + envelope->ClassName() + "\n" +
                     "procedure: " + envelope->ProcedureName() + "\n" + "session: " + session +
                     "\n" + "error: " + std::to_string(envelope->ErrorNo()) + ", source \"" +
                     envelope->ErrorSource() + "\", description \"" + envelope->ErrorDescription() +
                     "\"\n" + "return: " + ValueLine([&] { return envelope->Retval(); }) + "\n";
  const std::vector<std::string> names = envelope->ParamNames();
  text += "parameters: " + std::to_string(names.size()) + "\n";
  for (const std::string& name : names) {
    text += "  " + name + ": " + ValueLine([&] { return envelope->ReadParam(name); }) + "\n";
  }
  return text;
}

}  // namespace brix::brixq
