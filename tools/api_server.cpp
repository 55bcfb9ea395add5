// Routes and plumbing of brixq serve over cpp-httplib.
#include "tools/api_server.h"

#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "querybuilder/xqb_query.h"
#include "runtime/error_numbers.h"
#include "tools/api_error.h"
#include "tools/command_line.h"
#include "tools/file_access.h"
#include "tools/render_body.h"
#include "tools/render_service.h"
#include "tools/statement_json.h"

namespace brix::brixq {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// With the charset named, cpp-httplib leaves answers uncompressed: its brotli at full quality
// took a second or more for a large render, far longer than sending it.
constexpr const char* kJson = "application/json; charset=utf-8";

thread_local Clock::time_point request_start;

fs::path ExecutableFolder() {
  std::error_code ignored;
  return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

// The first of `candidates` that is a folder, or empty.
fs::path FirstFolder(std::initializer_list<fs::path> candidates) {
  std::error_code ignored;
  for (const fs::path& candidate : candidates) {
    if (fs::is_directory(candidate, ignored)) return candidate.lexically_normal();
  }
  return {};
}

fs::path WebFolder(const ServeOptions& options) {
  if (options.web) return *options.web;
  fs::path folder = ExecutableFolder();
  return FirstFolder({folder / "../share/brixobjects4/web", folder / "../web/dist"});
}

fs::path SamplesFolder() {
  fs::path folder = ExecutableFolder();
  std::error_code ignored;
  if (fs::is_regular_file(folder / "../share/brixobjects4/orders.xml", ignored)) {
    return (folder / "../share/brixobjects4").lexically_normal();
  }
  return BRIXQ_SOURCE_EXAMPLES;
}

std::string ErrorHex(std::int32_t number) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08X", static_cast<std::uint32_t>(number));
  return hex;
}

void SendJson(httplib::Response& response, int status, const nlohmann::json& body) {
  response.status = status;
  // What set_content does, without copying a large answer once more.
  response.body = DumpJson(body);
  response.headers.erase("Content-Type");
  response.set_header("Content-Type", kJson);
}

nlohmann::json ErrorBody(const ApiError& error) {
  nlohmann::json body = error.extra;
  body["error"] = {{"number", error.number},
                   {"hex", ErrorHex(error.number)},
                   {"source", error.source},
                   {"description", error.what()}};
  if (body.contains("conditionErrors")) {
    for (nlohmann::json& item : body["conditionErrors"]) {
      item["hex"] = ErrorHex(item["number"].get<std::int32_t>());
    }
  }
  return body;
}

void SendError(httplib::Response& response, const ApiError& error) {
  try {
    SendJson(response, error.status, ErrorBody(error));
  } catch (const Error&) {
    // A description that JSON cannot carry (bytes of the request echoed back): say so instead.
    SendJson(response, error.status,
             ErrorBody(ApiError(error.status, error.number, error.source,
                                "the error's description is not valid UTF-8 text")));
  }
}

nlohmann::json ParseBody(const httplib::Request& request) {
  try {
    return nlohmann::json::parse(request.body);
  } catch (const nlohmann::json::parse_error& error) {
    throw ApiError(400, "the body is not valid JSON (byte " + std::to_string(error.byte) + ")");
  } catch (const nlohmann::json::out_of_range&) {
    throw ApiError(400, "the body is not valid JSON (a number beyond the range of a double)");
  }
}

std::int64_t QueryNumber(const httplib::Request& request, const char* name, std::int64_t fallback) {
  if (!request.has_param(name)) return fallback;
  const std::string text = request.get_param_value(name);
  try {
    std::size_t used = 0;
    std::int64_t value = std::stoll(text, &used);
    if (used == text.size()) return value;
  } catch (const std::logic_error&) {
  }
  throw ApiError(400, std::string(name) + " must be a whole number");
}

// The version in an If-Match header: "5", W/"5" or 5.
std::optional<std::int64_t> IfMatch(const httplib::Request& request) {
  if (!request.has_header("If-Match")) return std::nullopt;
  std::string text = request.get_header_value("If-Match");
  if (text.starts_with("W/")) text = text.substr(2);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  try {
    std::size_t used = 0;
    std::int64_t version = std::stoll(text, &used);
    if (used == text.size() && version > 0) return version;
  } catch (const std::logic_error&) {
  }
  throw ApiError(400, "If-Match must be a version this server gave as ETag, like \"3\"");
}

void SendRecord(httplib::Response& response, int status, const StoredRecord& stored) {
  response.set_header("ETag", "\"" + std::to_string(stored.version) + "\"");
  SendJson(response, status, RecordToJson(*stored.record));
}

void LogLine(const httplib::Request& request, const httplib::Response& response) {
  const double milliseconds =
      std::chrono::duration<double, std::milli>(Clock::now() - request_start).count();
  std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &utc);
  char head[160];
  std::snprintf(head, sizeof head, "%s %s %d %zu %.2fms ", stamp, request.remote_addr.c_str(),
                response.status, response.body.size(), milliseconds);
  // The path as received may hold any byte; it is written escaped like a JSON string.
  std::string line =
      head + request.method + ' ' +
      nlohmann::json(request.path).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) +
      '\n';
  // One write per line: standard error is unbuffered, so each piece would be a system call of
  // its own, and the stream's lock keeps lines of concurrent requests whole.
  std::fwrite(line.data(), 1, line.size(), stderr);
}

std::string StatusText(int status) {
  switch (status) {
    case 400:
      return "the request is malformed or incomplete (a client slower than the timeout)";
    case 404:
      return "there is nothing at this path";
    case 405:
      return "this path does not take this method";
    case 413:
      return "the request body is over the server's limit";
    case 414:
      return "the request's path is too long";
    default:
      return "the request failed with HTTP status " + std::to_string(status);
  }
}

// The render options of a definition posted as XML, from the query string: what curl sends most
// simply. "parts" is a comma-separated list, each "param" NAME=V1,V2 as brixq --param takes it.
nlohmann::json XmlRenderOptions(const httplib::Request& request) {
  nlohmann::json options = nlohmann::json::object();
  for (const char* name : {"top", "near"}) {
    if (request.has_param(name)) options[name] = QueryNumber(request, name, 0);
  }
  for (const char* name : {"date", "dialect"}) {
    if (request.has_param(name)) options[name] = request.get_param_value(name);
  }
  if (request.has_param("parts")) {
    nlohmann::json& parts = options["parts"] = nlohmann::json::array();
    for (const std::string& part : SplitCommas(request.get_param_value("parts"))) {
      parts.push_back(part);
    }
  }
  const std::size_t params = request.get_param_value_count("param");
  if (params > 0) {
    nlohmann::json& list = options["params"] = nlohmann::json::array();
    for (std::size_t i = 0; i < params; ++i) {
      ParamValues param;
      try {
        param = ParseParam(request.get_param_value("param", i));
      } catch (const UsageError&) {
        throw ApiError(400, "each \"param\" must be NAME=V1,V2,...");
      }
      nlohmann::json& item = list.emplace_back(nlohmann::json::object());
      item["name"] = std::move(param.name);
      item["values"] = std::move(param.values);
    }
  }
  return options;
}

// cpp-httplib listens with a backlog of 5: a burst of new connections (a page's assets, a load
// balancer's pool) overflows it, and the dropped handshakes are retried by the clients only after
// a second or more. Listening again on the bound socket widens the queue.
void WidenListenBacklog(int port) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  const int last = static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65536));
  for (int fd = 3; fd < last; ++fd) {
    int accepting = 0;
    socklen_t size = sizeof accepting;
    if (getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, &accepting, &size) != 0 || !accepting) continue;
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) continue;
    const int bound = address.ss_family == AF_INET6
                          ? ntohs(reinterpret_cast<sockaddr_in6*>(&address)->sin6_port)
                          : ntohs(reinterpret_cast<sockaddr_in*>(&address)->sin_port);
    if (bound == port) listen(fd, SOMAXCONN);
  }
}

}  // namespace

ApiServer::ApiServer(const ServeOptions& options, CatalogStore& store, std::string token)
    : options_(options),
      store_(store),
      token_(std::move(token)),
      reporter_(options.error_log, options.syslog),
      catalog_(store),
      rpc_(catalog_, reporter_) {
  const int threads = options.threads;
  server_.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
  server_.set_payload_max_length(options.max_body);
  server_.set_read_timeout(options.timeout_seconds);
  server_.set_write_timeout(options.timeout_seconds);
  server_.set_keep_alive_timeout(5);
  server_.set_keep_alive_max_count(10000);
  server_.set_tcp_nodelay(true);
  server_.set_pre_routing_handler([](const Request&, Response&) {
    request_start = Clock::now();
    return httplib::Server::HandlerResponse::Unhandled;
  });
  server_.set_logger(LogLine);
  server_.set_error_handler(
      httplib::Server::HandlerWithResponse([](const Request&, Response& response) {
        if (!response.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
        SendError(response, ApiError(response.status, StatusText(response.status)));
        return httplib::Server::HandlerResponse::Handled;
      }));
  server_.set_exception_handler([this](const Request&, Response& response, std::exception_ptr) {
    SendError(response, ApiError(500, "the server failed to answer"));
  });
  Routes();
}

void ApiServer::Routes() {
  auto route = [this](auto handler) {
    return [this, handler](const Request& request, Response& response) {
      Handle(request, response, handler);
    };
  };
  server_.Post("/api/render", route(&ApiServer::Render));
  server_.Get("/api/queries", route(&ApiServer::ListQueries));
  server_.Get(R"(/api/queries/(.*))", route(&ApiServer::GetQuery));
  server_.Put(R"(/api/queries/(.*))", route(&ApiServer::PutQuery));
  server_.Delete(R"(/api/queries/(.*))", route(&ApiServer::DeleteQuery));
  server_.Get("/api/catalogue/clauses", route(&ApiServer::Clauses));
  server_.Get("/api/version", route(&ApiServer::Version));
  server_.Get("/api/samples", route(&ApiServer::Samples));
  server_.Post("/rpc", route(&ApiServer::Rpc));
  fs::path web = WebFolder(options_);
  if (web.empty() || !server_.set_mount_point("/", web.string())) {
    server_.Get("/", [](const Request&, Response& response) {
      SendError(response, ApiError(404, "the page is not installed: give --web DIR"));
    });
  }
}

void ApiServer::Handle(const Request& request, Response& response,
                       void (ApiServer::*handler)(const Request&, Response&)) {
  try {
    (this->*handler)(request, response);
  } catch (const ApiError& error) {
    if (error.status >= 500 || error.number != 0) {
      reporter_.Report(Error(error.number, error.source, error.what()), request.path);
    }
    SendError(response, error);
  } catch (const Error& error) {
    // Failures of the store or of writing the answer: the library's error, reported.
    reporter_.Report(error, request.path);
    int status = error.Number() == kErrInvalidProcedureCall ? 422 : 500;
    SendError(response, ApiError(status, error));
  } catch (const std::bad_alloc&) {
    SendError(response, ApiError(500, 7, "brixq serve", "out of memory"));
  }
}

bool ApiServer::MayWrite(const Request& request) const {
  if (token_.empty()) return true;
  const std::string header = request.get_header_value("Authorization");
  const std::string expected = "Bearer " + token_;
  if (header.size() != expected.size()) return false;
  // Constant time: every byte is compared whatever the first difference.
  unsigned char difference = 0;
  for (std::size_t i = 0; i < header.size(); ++i) {
    difference |= static_cast<unsigned char>(header[i] ^ expected[i]);
  }
  return difference == 0;
}

void ApiServer::RequireWrite(const Request& request) const {
  if (!MayWrite(request)) {
    throw ApiError(401, "this server takes writes only with \"Authorization: Bearer TOKEN\"");
  }
}

std::string ApiServer::User(const Request& request) const {
  std::string user = request.get_header_value("X-Brix-User");
  if (user.empty() || user.size() > 128) return "brixq serve";
  return user;
}

void ApiServer::Render(const Request& request, Response& response) {
  const std::string type = request.get_header_value("Content-Type");
  const bool xml = type.starts_with("application/xml") || type.starts_with("text/xml");
  if (xml) {
    SendJson(response, 200, RenderDefinition(request.body, XmlRenderOptions(request)));
  } else if (std::optional<RenderBody> body = ReadRenderBody(request.body)) {
    SendJson(response, 200, RenderDefinition(std::move(body->definition), body->options));
  } else {
    SendJson(response, 200, brixq::Render(ParseBody(request)));
  }
}

void ApiServer::ListQueries(const Request& request, Response& response) {
  std::string search = request.has_param("search") ? request.get_param_value("search") : "";
  SendJson(
      response, 200,
      catalog_.List(search, QueryNumber(request, "offset", 0), QueryNumber(request, "limit", 50)));
}

void ApiServer::GetQuery(const Request& request, Response& response) {
  SendRecord(response, 200, catalog_.Load(request.matches[1]));
}

void ApiServer::PutQuery(const Request& request, Response& response) {
  RequireWrite(request);
  const std::string id = CheckedId(request.matches[1]);
  std::shared_ptr<clsQSOM_DM> record;
  try {
    record = RecordFromJson(ParseBody(request));
  } catch (const std::invalid_argument& error) {
    throw ApiError(400, error.what());
  }
  WriteCondition condition;
  condition.if_match = IfMatch(request);
  condition.create_only = request.get_header_value("If-None-Match") == "*";
  SavedRecord saved = catalog_.Save(id, record, condition, User(request));
  SendRecord(response, saved.created ? 201 : 200, saved.stored);
}

void ApiServer::DeleteQuery(const Request& request, Response& response) {
  RequireWrite(request);
  WriteCondition condition;
  condition.if_match = IfMatch(request);
  condition.require_match = false;
  catalog_.Remove(request.matches[1], condition);
  response.status = 204;
}

void ApiServer::Clauses(const Request&, Response& response) {
  SendJson(response, 200, ClauseCatalogue());
}

void ApiServer::Version(const Request&, Response& response) {
  const std::string version = xqb_Query::Create()->GetVersion();
  SendJson(response, 200,
           {{"brixq", version}, {"library", version}, {"schema", store_.SchemaVersion()}});
}

void ApiServer::Samples(const Request&, Response& response) {
  std::vector<fs::path> files;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(SamplesFolder(), ignored)) {
    if (entry.path().extension() == ".xml") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  nlohmann::json samples = nlohmann::json::array();
  for (const fs::path& file : files) {
    samples.push_back(
        {{"name", file.stem().string()}, {"definition", ReadDefinition(file.string())}});
  }
  SendJson(response, 200, {{"samples", samples}});
}

void ApiServer::Rpc(const Request& request, Response& response) {
  response.set_content(rpc_.Handle(request.body, MayWrite(request), User(request)),
                       "application/octet-stream");
}

int ApiServer::Bind() {
  int port = options_.port;
  if (port == 0) {
    port = server_.bind_to_any_port(options_.host);
    if (port <= 0) throw std::runtime_error("cannot listen on " + options_.host);
  } else if (!server_.bind_to_port(options_.host, port)) {
    throw std::runtime_error("cannot listen on " + options_.host + ":" + std::to_string(port));
  }
  WidenListenBacklog(port);
  return port;
}

void ApiServer::Run() { server_.listen_after_bind(); }

void ApiServer::Stop() { server_.stop(); }

}  // namespace brix::brixq
