// brixq envelope: what a call envelope's bytes carry, as a host would look at it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brix::brixq {

/// What "brixq envelope FILE [--compressed]" asks for.
struct EnvelopeOptions {
  bool help = false;
  bool compressed = false;  ///< --compressed: the bytes were compressed (bMakeCompress)
  std::string file;         ///< "-" reads standard input
};

/// True when the command line is an envelope command (its first argument is "envelope").
bool IsEnvelopeCommand(const std::vector<std::string_view>& args);

/// Parses "envelope FILE [--compressed]"; anything else raises `UsageError`.
EnvelopeOptions ParseEnvelopeCommandLine(const std::vector<std::string_view>& args);

/// The envelope in `bytes` as lines: class, procedure, session, error, return value and each
/// parameter with its type.
std::string DescribeEnvelope(const EnvelopeOptions& options, const std::string& bytes);

}  // namespace brix::brixq
