// The brixq commands: load the definition, apply the parameters, print what the command asks.
#pragma once

#include <string>

#include "tools/command_line.h"

namespace brix::brixq {

/// Loads `options.file` into a new query (after the clock is fixed by --date), adds the --param
/// values in order, and returns everything the command prints on standard output: its text and
/// one "\n" - except `save`, whose document already ends in CR LF and is returned exactly as
/// `SaveXMLDef` gives it. Errors of the library, the files and SQLite are raised as `brix::Error`.
std::string RunCommand(const Options& options);

}  // namespace brix::brixq
