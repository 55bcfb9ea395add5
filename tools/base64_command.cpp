// brixq b64: the command line of the Base64 commands and their run over clsBase64.
#include "tools/base64_command.h"

#include <array>
#include <limits>

#include "persistence/cls_base64.h"
#include "runtime/error.h"
#include "tools/command_help.h"
#include "tools/command_line.h"

namespace brix::brixq {
namespace {

constexpr std::int32_t kLongMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kLongMax = std::numeric_limits<std::int32_t>::max();

// Applies the option `args[i]` ("--name", "--name=value" or "--name" then the value, which
// moves `i` on).
void ApplyOption(const std::vector<std::string_view>& args, std::size_t& i,
                 Base64Options& options) {
  std::string_view arg = args[i];
  std::string_view name = arg.substr(2);
  std::optional<std::string_view> value;
  if (std::size_t equals = name.find('='); equals != std::string_view::npos) {
    value = name.substr(equals + 1);
    name = name.substr(0, equals);
  }
  if (name != "span") {
    static constexpr std::array<std::string_view, 2> kOptions = {"span", "help"};
    throw UsageError("unknown option \"--" + std::string(name) + "\"" +
                     DidYouMean(name, kOptions, "--") +
                     (name == "date" || name == "param" ? ": b64 reads no definition" : ""));
  }
  if (options.decode) throw UsageError("the command b64 decode takes no option --span");
  if (!value) {
    if (++i == args.size()) throw UsageError("--span needs a value");
    value = args[i];
  }
  options.span = ParseLongValue("span", *value, kLongMin, kLongMax);
}

}  // namespace

bool IsBase64Command(const std::vector<std::string_view>& args) {
  return !args.empty() && args[0] == "b64";
}

Base64Options ParseBase64CommandLine(const std::vector<std::string_view>& args) {
  Base64Options options;
  if (args.size() < 2) throw UsageError("missing b64 action (encode or decode)");
  if (args[1] == "--help" || args[1] == "-h") {
    options.help = true;
    return options;
  }
  if (args[1] != "encode" && args[1] != "decode") {
    static constexpr std::array<std::string_view, 2> kActions = {"encode", "decode"};
    throw UsageError("unknown b64 action \"" + std::string(args[1]) + "\"" +
                     DidYouMean(args[1], kActions));
  }
  options.decode = args[1] == "decode";
  for (std::size_t i = 2; i < args.size(); ++i) {
    std::string_view arg = args[i];
    if (arg == "--help" || arg == "-h") {
      options.help = true;
      return options;
    }
    if (!arg.starts_with("--") || arg == "--") {
      throw UsageError("b64 reads standard input and takes no FILE: \"" + std::string(arg) + "\"");
    }
    ApplyOption(args, i, options);
  }
  return options;
}

std::string RunBase64Command(const Base64Options& options, const std::string& input) {
  auto codec = clsBase64::Create();
  ByteArray bytes(input.begin(), input.end());
  if (options.decode) {
    codec->Unspan(bytes, bytes);
    codec->DecodeB64(bytes, bytes);
  } else {
    codec->EncodeB64(bytes, bytes);
    if (options.span) {
      try {
        codec->Span(*options.span, bytes, bytes);
      } catch (const Error& error) {
        Raise(error.Number(), error.Source(),
              "--span " + std::to_string(*options.span) + ": " + error.Description());
      }
    }
  }
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace brix::brixq
