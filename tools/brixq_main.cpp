// brixq: prints what the library makes of a query definition document (see UsageText).
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/text.h"
#include "tools/base64_command.h"
#include "tools/brixq_errors.h"
#include "tools/command_help.h"
#include "tools/command_line.h"
#include "tools/envelope_command.h"
#include "tools/file_access.h"
#include "tools/query_commands.h"

namespace {

constexpr int kExitError = 1;
constexpr int kExitUsage = 2;

// "brixq: MESSAGE" and where to read more, on standard error.
int ReportUsageError(const brix::brixq::UsageError& error, std::string_view command) {
  std::cerr << "brixq: " << error.what() << "\n";
  if (command.empty()) {
    std::cerr << "see brixq --help\n";
  } else {
    std::cerr << "see brixq " << command << " --help\n";
  }
  return kExitUsage;
}

int Print(const brix::brixq::CommandOutput& output) {
  std::cout << output.text << std::flush;
  if (output.failed) return kExitError;
  return std::cout ? 0 : kExitError;
}

int Main(const std::vector<std::string_view>& args) {
  using namespace brix::brixq;
  Options options;
  Base64Options base64;
  EnvelopeOptions envelope;
  const bool is_base64 = IsBase64Command(args);
  const bool is_envelope = IsEnvelopeCommand(args);
  try {
    if (is_base64) {
      base64 = ParseBase64CommandLine(args);
    } else if (is_envelope) {
      envelope = ParseEnvelopeCommandLine(args);
    } else {
      options = ParseCommandLine(args);
    }
  } catch (const UsageError& error) {
    return ReportUsageError(error, is_base64 ? "b64" : is_envelope ? "envelope" : error.command());
  }
  if (options.help_overview) {
    std::cout << UsageText();
    return 0;
  }
  if (options.help || base64.help || envelope.help) {
    std::cout << CommandHelp(is_base64     ? "b64"
                             : is_envelope ? "envelope"
                                           : CommandName(options.command));
    return 0;
  }
  if (options.version) {
    std::cout << "brixq " << brix::xqb_Query::Create()->GetVersion() << "\n";
    return 0;
  }
  try {
    if (is_base64) {
      std::cout << RunBase64Command(base64, ReadDefinition("-"));
    } else if (is_envelope) {
      std::cout << DescribeEnvelope(envelope, ReadDefinition(envelope.file));
    } else {
      return Print(RunCommand(options, std::cerr));
    }
    std::cout << std::flush;
  } catch (const brix::Error& error) {
    // One line per error: a wrapped library error's CR LF before "Reason: " becomes a blank.
    std::cerr << "brixq: " << brix::ReplaceAll(error.Description(), "\r\n", " ") << " (error "
              << ErrorNumberText(error.Number()) << ")\n";
    return kExitError;
  } catch (const std::bad_alloc&) {
    std::cerr << "brixq: out of memory: the input is too large for the memory this process may "
                 "use (error 7)\n";
    return kExitError;
  }
  return std::cout ? 0 : kExitError;
}

}  // namespace

int main(int argc, char** argv) {
  return Main(std::vector<std::string_view>(argv + 1, argv + argc));
}
