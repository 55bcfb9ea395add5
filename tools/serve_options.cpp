// Parsing of the serve and catalog command lines, and where the default catalogue lives.
#include "tools/serve_options.h"

#include <cstdlib>

#include "tools/command_line.h"

namespace brix::brixq {
namespace {

constexpr std::string_view kUsage =
    R"(Usage: brixq serve [--listen HOST:PORT] [--catalog URL] [--token-file PATH] [--threads N]
                   [--web DIR] [--error-log PATH] [--syslog] [--max-body BYTES]
                   [--timeout SECONDS]
       brixq catalog import [--catalog URL] [--category NAME] FILE...
       brixq catalog export [--catalog URL]

serve     answers the JSON API and the envelope endpoint over HTTP until SIGINT or SIGTERM
          (default 127.0.0.1:8080; port 0 picks a free port). Without --token-file it listens on
          loopback only; with it, every write needs "Authorization: Bearer TOKEN".
catalog   import: stores each definition FILE as a saved query (ID and Name from the file
          name, Category "Exemple" or --category), replacing a record of that ID;
          export: prints every record as one JSON array.

--catalog URL   sqlite:PATH, postgresql://... or a libpq conninfo; default
                sqlite:$XDG_DATA_HOME/brixobjects4/catalog.db (~/.local/share/... without it)
--threads N     connections served at once (default 128): a kept-alive connection holds a
                worker thread until it closes, so N is at least the clients expected at once
)";

// Splits "--name=value" / "--name value"; returns the value or raises.
struct ArgReader {
  const std::vector<std::string_view>& args;
  std::size_t i = 1;
  bool has_inline_value = false;
  std::string_view inline_value;

  std::string_view Value(std::string_view name) {
    if (has_inline_value) return inline_value;
    if (++i >= args.size()) throw UsageError("--" + std::string(name) + " needs a value");
    return args[i];
  }
};

// Runs `apply(name, reader)` for each option, `positional(arg)` for the rest.
template <class Apply, class Positional>
void ReadArgs(const std::vector<std::string_view>& args, std::size_t first, Apply&& apply,
              Positional&& positional) {
  ArgReader reader{args, first, false, {}};
  for (; reader.i < args.size(); ++reader.i) {
    std::string_view arg = args[reader.i];
    if (!arg.starts_with("--")) {
      positional(arg);
      continue;
    }
    std::string_view name = arg.substr(2);
    reader.has_inline_value = false;
    if (auto equals = name.find('='); equals != std::string_view::npos) {
      reader.has_inline_value = true;
      reader.inline_value = name.substr(equals + 1);
      name = name.substr(0, equals);
    }
    apply(name, reader);
  }
}

void ParseListen(std::string_view text, ServeOptions& options) {
  std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) {
    throw UsageError("--listen needs HOST:PORT, not \"" + std::string(text) + "\"");
  }
  std::string_view host = text.substr(0, colon);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  options.host = std::string(host);
  options.port = ParseLongValue("listen", text.substr(colon + 1), 0, 65535);
}

}  // namespace

bool IsServeCommand(const std::vector<std::string_view>& args) {
  return !args.empty() && args[0] == "serve";
}

bool IsCatalogCommand(const std::vector<std::string_view>& args) {
  return !args.empty() && args[0] == "catalog";
}

ServeOptions ParseServeCommandLine(const std::vector<std::string_view>& args) {
  ServeOptions options;
  ReadArgs(
      args, 1,
      [&](std::string_view name, ArgReader& reader) {
        if (name == "help") {
          options.help = true;
        } else if (name == "listen") {
          ParseListen(reader.Value(name), options);
        } else if (name == "catalog") {
          options.catalog = std::string(reader.Value(name));
        } else if (name == "token-file") {
          options.token_file = std::string(reader.Value(name));
        } else if (name == "threads") {
          options.threads = ParseLongValue(name, reader.Value(name), 1, 1024);
        } else if (name == "web") {
          options.web = std::string(reader.Value(name));
        } else if (name == "error-log") {
          options.error_log = std::string(reader.Value(name));
        } else if (name == "syslog") {
          options.syslog = true;
        } else if (name == "max-body") {
          options.max_body = ParseLongValue(name, reader.Value(name), 1, INT32_MAX);
        } else if (name == "timeout") {
          options.timeout_seconds = ParseLongValue(name, reader.Value(name), 1, 3600);
        } else {
          throw UsageError("unknown option \"--" + std::string(name) + "\" of serve");
        }
      },
      [](std::string_view arg) {
        throw UsageError("serve takes no argument \"" + std::string(arg) + "\"");
      });
  if (options.catalog.empty()) options.catalog = DefaultCatalogUrl();
  return options;
}

CatalogOptions ParseCatalogCommandLine(const std::vector<std::string_view>& args) {
  CatalogOptions options;
  if (args.size() < 2) throw UsageError("catalog needs import or export");
  if (args[1] == "--help") {
    options.help = true;
    return options;
  }
  if (args[1] != "import" && args[1] != "export") {
    throw UsageError("catalog needs import or export, not \"" + std::string(args[1]) + "\"");
  }
  options.import = args[1] == "import";
  ReadArgs(
      args, 2,
      [&](std::string_view name, ArgReader& reader) {
        if (name == "help") {
          options.help = true;
        } else if (name == "catalog") {
          options.catalog = std::string(reader.Value(name));
        } else if (name == "category" && options.import) {
          options.category = std::string(reader.Value(name));
        } else {
          throw UsageError("unknown option \"--" + std::string(name) + "\" of catalog");
        }
      },
      [&](std::string_view arg) { options.files.emplace_back(arg); });
  if (options.import && options.files.empty() && !options.help) {
    throw UsageError("catalog import needs at least one FILE");
  }
  if (!options.import && !options.files.empty()) {
    throw UsageError("catalog export takes no FILE");
  }
  if (options.catalog.empty()) options.catalog = DefaultCatalogUrl();
  return options;
}

std::string DefaultCatalogUrl() {
  const char* data_home = std::getenv("XDG_DATA_HOME");
  std::string folder;
  if (data_home && *data_home) {
    folder = data_home;
  } else {
    const char* home = std::getenv("HOME");
    folder = std::string(home && *home ? home : ".") + "/.local/share";
  }
  return "sqlite:" + folder + "/brixobjects4/catalog.db";
}

bool IsLoopback(std::string_view host) {
  return host == "localhost" || host == "::1" || host.starts_with("127.");
}

std::string_view ServeUsageText() { return kUsage; }

}  // namespace brix::brixq
