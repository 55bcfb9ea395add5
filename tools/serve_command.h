// brixq serve and brixq catalog: the service's process, and the catalogue's import and export.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/serve_options.h"

namespace brix::brixq {

/// Runs `brixq serve ...` or `brixq catalog ...` (the command's name first) and returns the
/// exit status: 0 done, 1 error (message on standard error), 2 wrong command line.
int RunServiceCommand(const std::vector<std::string_view>& args);

/// Opens the catalogue, listens, prints "brixq serve: listening on http://HOST:PORT/" and
/// serves until SIGINT or SIGTERM. Returns the exit status; failures to start raise
/// `brix::Error` or `std::runtime_error`.
int RunServe(const ServeOptions& options);

/// Imports the files into the catalogue (one line per record on standard output) or returns
/// the whole catalogue as a JSON array.
std::string RunCatalog(const CatalogOptions& options);

}  // namespace brix::brixq
