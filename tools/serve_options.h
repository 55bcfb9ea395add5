// The command lines of brixq serve and brixq catalog, parsed strictly.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brix::brixq {

/// What `brixq serve` is told. Defaults are what the server does when told nothing.
struct ServeOptions {
  bool help = false;
  std::string host = "127.0.0.1";  ///< --listen HOST:PORT; port 0 picks a free one
  int port = 8080;
  std::string catalog;                    ///< --catalog URL; empty means the default SQLite file
  std::optional<std::string> token_file;  ///< writes need this token as Bearer
  int threads = 64;                       ///< connections served at once
  std::optional<std::string> web;         ///< the page's folder, served at /
  std::optional<std::string> error_log;   ///< failures appended to this file by the logger
  bool syslog = false;                    ///< failures written to the system log too
  std::size_t max_body = 16u << 20;       ///< larger request bodies are answered 413
  int timeout_seconds = 10;               ///< reading or writing slower than this ends a request
};

/// What `brixq catalog import FILE... | export` is told.
struct CatalogOptions {
  bool help = false;
  bool import = true;  ///< import, else export
  std::vector<std::string> files;
  std::string catalog;
  std::string category = "Exemple";  ///< the Category of imported records
};

/// Whether the arguments are `brixq serve ...` / `brixq catalog ...`.
bool IsServeCommand(const std::vector<std::string_view>& args);
bool IsCatalogCommand(const std::vector<std::string_view>& args);

/// Parse the arguments (the command's name first); a wrong line raises `UsageError`.
ServeOptions ParseServeCommandLine(const std::vector<std::string_view>& args);
CatalogOptions ParseCatalogCommandLine(const std::vector<std::string_view>& args);

/// $XDG_DATA_HOME/brixobjects4/catalog.db, else ~/.local/share/brixobjects4/catalog.db, as a
/// "sqlite:" URL.
std::string DefaultCatalogUrl();

/// Whether `host` is a loopback address (127.0.0.0/8, ::1, localhost).
bool IsLoopback(std::string_view host);

/// The usage text of the two commands.
std::string_view ServeUsageText();

}  // namespace brix::brixq
