// The brixq commands: load the definition, apply the parameters, print what the command asks.
#pragma once

#include <ostream>
#include <string>

#include "tools/command_line.h"

namespace brix::brixq {

/// What a command prints and how it ends.
struct CommandOutput {
  std::string text;     ///< standard output
  bool failed = false;  ///< exit status 1
};

/// Loads `options.file` into a new query (after the clock is fixed by --date), adds the --param
/// values in order, and returns everything the command prints on standard output: its text and
/// one "\n" - except `save`, whose document already ends in CR LF and is returned exactly as
/// `SaveXMLDef` gives it. sql, where and run write the definition's problems to `diagnostics`
/// first, one "brixq: warning: " line each (as errors, failing, with --strict); check prints
/// them and fails when there is any. A --param
/// that names no parameter condition raises 5. Errors of the library, the files and SQLite are
/// raised as `brix::Error`.
CommandOutput RunCommand(const Options& options, std::ostream& diagnostics);

/// The clause catalogue, one line per clause: number, TAB, name, TAB, Romanian text.
std::string ClauseNames();

}  // namespace brix::brixq
