// The serve process (signals, token, clock) and the catalogue's import and export.
#include "tools/serve_command.h"

#include <signal.h>

#include <atomic>
#include <filesystem>
#include <iostream>
#include <thread>

#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "tools/api_error.h"
#include "tools/api_server.h"
#include "tools/catalog_service.h"
#include "tools/command_line.h"
#include "tools/file_access.h"
#include "tools/request_clock.h"
#include "tools/statement_json.h"

namespace brix::brixq {
namespace {

constexpr std::size_t kStoreConnections = 8;

std::string ReadToken(const std::string& path) {
  std::string token = ReadDefinition(path);
  const auto last = token.find_last_not_of(" \t\r\n");
  token.erase(last == std::string::npos ? 0 : last + 1);
  token.erase(0, token.find_first_not_of(" \t\r\n"));
  if (token.empty())
    Raise(kErrInvalidProcedureCall, "brixq", "the token file " + path + " is empty");
  return token;
}

// A record's ID made of a file name: characters outside [A-Za-z0-9._-] become "_".
std::string IdOfFile(const std::string& path) {
  std::string id = std::filesystem::path(path).stem().string().substr(0, 128);
  for (char& c : id) {
    if (!IsValidRecordId(std::string_view(&c, 1))) c = '_';
  }
  return id.empty() ? "query" : id;
}

}  // namespace

int RunServe(const ServeOptions& options) {
  std::string token = options.token_file ? ReadToken(*options.token_file) : "";
  if (token.empty() && !IsLoopback(options.host)) {
    throw std::runtime_error("without --token-file brixq serve listens only on loopback, not on " +
                             options.host);
  }
  // Blocked before any thread starts, so that only the waiter below receives them.
  sigset_t stop_signals;
  sigemptyset(&stop_signals);
  sigaddset(&stop_signals, SIGINT);
  sigaddset(&stop_signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop_signals, nullptr);
  signal(SIGPIPE, SIG_IGN);

  Clock::Set(std::make_shared<RequestClock>());
  auto store = CatalogStore::Open(options.catalog, kStoreConnections);
  ApiServer server(options, *store, token);
  const int port = server.Bind();
  std::cout << "brixq serve: listening on http://" << options.host << ":" << port << "/"
            << std::endl;

  std::atomic<bool> done = false;
  std::thread waiter([&] {
    const timespec tick{0, 200'000'000};
    while (!done) {
      if (sigtimedwait(&stop_signals, nullptr, &tick) > 0) {
        server.Stop();
        return;
      }
    }
  });
  server.Run();
  done = true;
  waiter.join();
  return 0;
}

std::string RunCatalog(const CatalogOptions& options) {
  auto store = CatalogStore::Open(options.catalog, 1);
  if (!options.import) {
    nlohmann::json records = nlohmann::json::array();
    for (const StoredRecord& stored : store->All()) records.push_back(RecordToJson(*stored.record));
    return records.dump(2) + "\n";
  }
  CatalogService catalog(*store);
  std::string out;
  for (const std::string& file : options.files) {
    auto query = xqb_Query::Create();
    std::string definition = ReadDefinition(file);
    query->LoadXMLDef(definition);
    auto record = clsQSOM_DM::Create();
    const std::string id = IdOfFile(file);
    record->SetName(query->QueryName().empty() ? id : query->QueryName());
    record->SetDescription(query->QueryDescription());
    record->SetCategory(options.category);
    record->SetQueryDef(definition);
    record->SetIsEditable(true);
    WriteCondition replace_any;
    replace_any.require_match = false;
    try {
      SavedRecord saved = catalog.Save(id, record, replace_any, "brixq catalog import");
      out += (saved.created ? "created " : "replaced ") + id + " (version " +
             std::to_string(saved.stored.version) + ")\n";
    } catch (const ApiError& error) {
      Raise(error.number != 0 ? error.number : kErrInvalidProcedureCall, "brixq",
            file + ": " + error.what());
    }
  }
  return out;
}

int RunServiceCommand(const std::vector<std::string_view>& args) {
  const bool serve = IsServeCommand(args);
  ServeOptions serve_options;
  CatalogOptions catalog_options;
  try {
    if (serve) {
      serve_options = ParseServeCommandLine(args);
    } else {
      catalog_options = ParseCatalogCommandLine(args);
    }
  } catch (const UsageError& error) {
    std::cerr << "brixq: " << error.what() << "\n\n" << ServeUsageText();
    return 2;
  }
  if (serve_options.help || catalog_options.help) {
    std::cout << ServeUsageText();
    return 0;
  }
  try {
    if (serve) return RunServe(serve_options);
    std::cout << RunCatalog(catalog_options) << std::flush;
    return std::cout ? 0 : 1;
  } catch (const Error& error) {
    std::cerr << "brixq: " << error.Description() << " (error " << error.Number() << ")\n";
  } catch (const std::runtime_error& error) {
    std::cerr << "brixq: " << error.what() << "\n";
  }
  return 1;
}

}  // namespace brix::brixq
