// Runs the built brixq command as a child process and captures what it prints.
#pragma once

#include <string>
#include <vector>

namespace brix::test_support {

struct CommandResult {
  std::string out;  ///< standard output
  std::string err;  ///< standard error
  int status = -1;  ///< exit status; -1 when the command did not exit normally
};

/// Runs brixq with `args`, `input` as its standard input.
CommandResult RunBrixq(const std::vector<std::string>& args, const std::string& input = "");

/// The content of a file, as bytes.
std::string ReadFileBytes(const std::string& path);

}  // namespace brix::test_support
