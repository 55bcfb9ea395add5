// brixq b64: standard input through clsBase64, encoded (and spanned) or unspanned and decoded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brix::brixq {

/// What "brixq b64 ..." asks for.
struct Base64Options {
  bool help = false;                 ///< --help: print the usage, do nothing else.
  bool decode = false;               ///< "decode"; else "encode".
  std::optional<std::int32_t> span;  ///< encode --span N: CharsPerLine of Span.
};

/// True when the command line is a b64 command (its first argument is "b64").
bool IsBase64Command(const std::vector<std::string_view>& args);

/// Parses "b64 encode [--span N]" or "b64 decode" ("--span N" or "--span=N", any 32-bit
/// number: the library judges it). Anything else raises `UsageError`.
Base64Options ParseBase64CommandLine(const std::vector<std::string_view>& args);

/// The bytes printed for `input`: `EncodeB64`, then `Span` with --span; or `Unspan`, then
/// `DecodeB64`. Nothing is added: no line feed at the end.
std::string RunBase64Command(const Base64Options& options, const std::string& input);

}  // namespace brix::brixq
