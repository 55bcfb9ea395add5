// brixq serve as a client sees it: the real process on a free port, a temporary SQLite
// catalogue or the test run's PostgreSQL, httplib's client.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "persistence/c_marshall.h"
#include "persistence/cls_qsom_dm.h"
#include "runtime/conversions.h"
#include "tests/serve/server_process.h"

namespace brix {
namespace {

using nlohmann::json;
using testing::ServerProcess;
namespace fs = std::filesystem;

constexpr const char* kJson = "application/json";
const std::string kExamples = BRIX_EXAMPLES_DIR;
constexpr std::int32_t kLoadFailed = -2147211403;  // 0x80042775
const std::string kLoadSource = "[OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]";

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string TempDir() {
  std::string pattern = (fs::temp_directory_path() / "brix-serve.XXXXXX").string();
  return mkdtemp(pattern.data());
}

// What brixq prints for `args`, its last line end removed.
std::string RunBrixq(const std::string& args) {
  std::FILE* pipe = popen((std::string(BRIXQ_PATH) + " " + args).c_str(), "r");
  std::string out;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
  pclose(pipe);
  if (!out.empty() && out.back() == '\n') out.pop_back();
  return out;
}

json Record(const std::string& name, const std::string& sample, bool editable = true) {
  return {{"Name", name},
          {"Category", "Vanzari"},
          {"QueryDef", ReadFile(kExamples + "/" + sample)},
          {"IsEditable", editable},
          {"CodSectiune", 7}};
}

// The status of an answer; -1 when there was none (the connection failed).
int StatusOf(const httplib::Result& result) { return result ? result->status : -1; }
json Body(const httplib::Result& result) { return json::parse(result ? result->body : "null"); }

// The PostgreSQL of the test run, its catalogue tables dropped; "" outside a ctest run.
std::string FreshPostgres() {
  std::string conninfo = ReadFile(BRIX_POSTGRES_INFO_FILE);
  while (!conninfo.empty() && conninfo.back() == '\n') conninfo.pop_back();
  if (conninfo.empty()) return "";
  PGconn* connection = PQconnectdb(conninfo.c_str());
  PQclear(PQexec(connection, "DROP TABLE IF EXISTS brix_saved_queries, brix_catalog_schema"));
  PQfinish(connection);
  return conninfo;
}

enum class Backend { kSqlite, kPostgres };

class Catalogue : public ::testing::TestWithParam<Backend> {
 protected:
  void SetUp() override {
    dir_ = TempDir();
    catalog_ = "sqlite:" + dir_ + "/catalog.db";
    if (GetParam() == Backend::kPostgres) {
      catalog_ = FreshPostgres();
      if (catalog_.empty()) GTEST_SKIP() << "no PostgreSQL: run through ctest";
    }
    server_ = Start();
  }
  void TearDown() override {
    server_.reset();
    fs::remove_all(dir_);
  }
  std::unique_ptr<ServerProcess> Start() {
    auto server = std::make_unique<ServerProcess>(std::vector<std::string>{"--catalog", catalog_},
                                                  dir_ + "/server.log");
    EXPECT_NE(server->port(), 0) << ReadFile(dir_ + "/server.log");
    return server;
  }
  httplib::Result Put(const std::string& id, const json& record, httplib::Headers headers = {}) {
    return server_->Client().Put(("/api/queries/" + id).c_str(), headers, record.dump(), kJson);
  }

  std::string dir_;
  std::string catalog_;
  std::unique_ptr<ServerProcess> server_;
};

INSTANTIATE_TEST_SUITE_P(Stores, Catalogue, ::testing::Values(Backend::kSqlite, Backend::kPostgres),
                         [](const auto& info) {
                           return info.param == Backend::kSqlite ? "SQLite" : "PostgreSQL";
                         });

void ExpectError(const httplib::Result& result, int status, std::int32_t number,
                 const std::string& source, const std::string& description_start) {
  ASSERT_TRUE(result) << "no answer";
  EXPECT_EQ(result->status, status) << result->body;
  json error = Body(result)["error"];
  EXPECT_EQ(error["number"], number);
  EXPECT_EQ(error["source"], source);
  EXPECT_TRUE(error["description"].get<std::string>().starts_with(description_start))
      << error["description"];
}

TEST_P(Catalogue, RecordsLiveThroughTheirVersions) {
  auto client = server_->Client();
  auto created = Put("orders", Record("Comenzi", "orders.xml"));
  ASSERT_EQ(StatusOf(created), 201);
  EXPECT_EQ(created->get_header_value("ETag"), "\"1\"");
  // Stored as SaveXMLDef writes it; stamps set by the server.
  json stored = Body(client.Get("/api/queries/orders"));
  EXPECT_EQ(stored["QueryDef"], RunBrixq("save " + kExamples + "/orders.xml") + "\n");
  EXPECT_EQ(stored["ID"], "orders");
  EXPECT_EQ(stored["CodSectiune"], 7);
  EXPECT_EQ(stored["ModificatDe"], "brixq serve");
  EXPECT_EQ(stored["CreatData"], stored["ModificatData"]);
  EXPECT_EQ(stored.size(), 36u);

  using H = httplib::Headers;
  // clang-format off
  struct Write { std::string id; json record; H headers; int status; std::string etag; };
  const std::vector<Write> writes = {
      {"orders", Record("Comenzi 2", "orders.xml"),  {},                        428, ""},
      {"orders", Record("Comenzi 2", "orders.xml"),  {{"If-Match", "\"7\""}},   409, ""},
      {"orders", Record("Comenzi 2", "orders.xml"),  {{"If-None-Match", "*"}},  409, ""},
      {"orders", Record("Comenzi 2", "orders.xml"),  {{"If-Match", "\"1\""}},   200, "\"2\""},
      {"legal", Record("Acte", "legal_documents.xml", false), {},              201, "\"1\""},
      {"legal", Record("Acte 2", "legal_documents.xml"), {{"If-Match", "1"}},  403, ""},
      {"absent", Record("x", "orders.xml"),          {{"If-Match", "\"1\""}},   404, ""},
      {"params.v2", Record("cu parametri", "parameter_query.xml"), {},         201, "\"1\""},
  };
  // clang-format on
  for (const Write& write : writes) {
    auto result = Put(write.id, write.record, write.headers);
    EXPECT_EQ(StatusOf(result), write.status) << write.id;
    EXPECT_EQ(result->get_header_value("ETag"), write.etag) << write.id;
  }
  json orders = Body(client.Get("/api/queries/orders"));
  EXPECT_EQ(orders["Name"], "Comenzi 2");
  EXPECT_EQ(orders["CreatData"], stored["CreatData"]);

  json page = Body(client.Get("/api/queries?search=COMENZI"));
  EXPECT_EQ(page["total"], 1);
  page = Body(client.Get("/api/queries?search=vanz&limit=2&offset=1"));
  EXPECT_EQ(page["total"], 3);
  ASSERT_EQ(page["items"].size(), 2u);
  EXPECT_EQ(page["items"][0]["ID"], "orders");  // by Name: "Acte", "Comenzi 2", "cu parametri"
  EXPECT_EQ(page["items"][1]["ID"], "params.v2");
  EXPECT_EQ(Body(client.Get("/api/queries?search=100%"))["total"], 0);

  EXPECT_EQ(StatusOf(client.Delete("/api/queries/legal")), 403);
  EXPECT_EQ(StatusOf(client.Delete("/api/queries/orders", {{"If-Match", "\"1\""}})), 409);
  EXPECT_EQ(StatusOf(client.Delete("/api/queries/orders", {{"If-Match", "\"2\""}})), 204);
  EXPECT_EQ(StatusOf(client.Delete("/api/queries/orders")), 404);
  EXPECT_EQ(StatusOf(client.Get("/api/queries/orders")), 404);
}

TEST_P(Catalogue, OfWritersHoldingOneVersionExactlyOneWins) {
  ASSERT_EQ(StatusOf(Put("shared", Record("v1", "orders.xml"))), 201);
  constexpr int kWriters = 8;
  std::vector<int> statuses(kWriters);
  std::vector<std::thread> writers;
  for (int i = 0; i < kWriters; ++i) {
    writers.emplace_back([&, i] {
      statuses[i] = StatusOf(Put("shared", Record("writer " + std::to_string(i), "orders.xml"),
                                 {{"If-Match", "\"1\""}}));
    });
  }
  for (std::thread& writer : writers) writer.join();
  int winner = -1;
  for (int i = 0; i < kWriters; ++i) {
    if (statuses[i] == 200) {
      EXPECT_EQ(winner, -1) << "two writers won";
      winner = i;
    } else {
      EXPECT_EQ(statuses[i], 409);
    }
  }
  ASSERT_NE(winner, -1);
  auto result = server_->Client().Get("/api/queries/shared");
  EXPECT_EQ(result->get_header_value("ETag"), "\"2\"");
  EXPECT_EQ(Body(result)["Name"], "writer " + std::to_string(winner));
}

TEST_P(Catalogue, EveryRecordSurvivesARestartAndAKillMidWrite) {
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(StatusOf(Put("q" + std::to_string(i), Record("n" + std::to_string(i), "orders.xml"))),
              201);
  }
  EXPECT_EQ(server_->Stop(SIGTERM), 0);
  server_ = Start();
  // Writers busy on every record while the process is killed.
  std::atomic<bool> stop = false;
  std::vector<std::thread> writers;
  for (int w = 0; w < 4; ++w) {
    writers.emplace_back([&, w] {
      auto client = server_->Client();
      for (int round = 0; !stop; ++round) {
        std::string id = "q" + std::to_string((w + round) % 10);
        auto got = client.Get(("/api/queries/" + id).c_str());
        if (!got || got->status != 200) break;
        json record = Record("n" + std::to_string(round), "legal_documents.xml");
        client.Put(("/api/queries/" + id).c_str(), {{"If-Match", got->get_header_value("ETag")}},
                   record.dump(), kJson);
      }
    });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(server_->Stop(SIGKILL), 128 + SIGKILL);
  stop = true;
  for (std::thread& writer : writers) writer.join();
  server_ = Start();
  auto client = server_->Client();
  EXPECT_EQ(Body(client.Get("/api/queries"))["total"], 10);
  for (int i = 0; i < 10; ++i) {
    auto result = client.Get(("/api/queries/q" + std::to_string(i)).c_str());
    ASSERT_EQ(StatusOf(result), 200);
    // Whole records only: the definition loads and renders.
    json render = {{"definition", Body(result)["QueryDef"]}};
    EXPECT_EQ(StatusOf(client.Post("/api/render", render.dump(), kJson)), 200);
  }
}

class Serve : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = TempDir();
    fs::create_directory(dir_ + "/web");
    std::ofstream(dir_ + "/web/index.html") << "<p>pagina</p>";
    server_ = std::make_unique<ServerProcess>(
        std::vector<std::string>{"--catalog", "sqlite:" + dir_ + "/catalog.db", "--web",
                                 dir_ + "/web", "--error-log", dir_ + "/errors.log", "--timeout",
                                 "1"},
        dir_ + "/server.log");
    ASSERT_NE(server_->port(), 0);
  }
  void TearDown() override {
    server_.reset();
    fs::remove_all(dir_);
  }
  std::string dir_;
  std::unique_ptr<ServerProcess> server_;
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The fields as `brixq clauses` lists them: table, field, clause numbers.
std::vector<std::string> ClauseLines(const json& fields) {
  std::vector<std::string> lines;
  for (const json& field : fields) {
    std::string numbers;
    for (const json& clause : field["clauses"]) {
      numbers += (numbers.empty() ? "" : " ") + std::to_string(clause["number"].get<int>());
    }
    lines.push_back(field["table"].get<std::string>() + "\t" + field["field"].get<std::string>() +
                    "\t" + numbers);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST_F(Serve, RendersTheTextsOfTheCommandLine) {
  struct Case {
    std::string sample;
    std::string options;  // as brixq takes them
    json request;         // the same, as the endpoint takes them
  };
  const std::vector<Case> cases = {
      {"orders.xml", "", json::object()},
      {"legal_documents.xml", "--date 2024-03-15", {{"date", "2024-03-15"}}},
      {"parameter_query.xml",
       "--param Oras=Cluj,Iasi",
       {{"params", {{{"name", "Oras"}, {"values", {"Cluj", "Iasi"}}}}}}},
  };
  auto client = server_->Client();
  for (const Case& c : cases) {
    const std::string file = kExamples + "/" + c.sample + " " + c.options;
    json request = c.request;
    request["definition"] = ReadFile(kExamples + "/" + c.sample);
    request["top"] = 3;
    request["near"] = 5;
    auto result = client.Post("/api/render", request.dump(), kJson);
    ASSERT_EQ(StatusOf(result), 200) << result->body;
    json answer = Body(result);
    EXPECT_EQ(answer["sql"], RunBrixq("sql --top 3 " + file)) << c.sample;
    EXPECT_EQ(answer["where"], RunBrixq("where " + file)) << c.sample;
    EXPECT_EQ(answer["fullText"], RunBrixq("dt --near 5 " + file)) << c.sample;
    // Conditions made from parameter values get drawn IDs: those are compared by text alone.
    const bool drawn_ids = c.request.contains("params");
    std::vector<std::string> described;
    for (const json& d : answer["descriptions"]) {
      described.push_back((drawn_ids ? "" : std::to_string(d["id"].get<int>())) + "\t" +
                          d["text"].get<std::string>());
    }
    std::vector<std::string> expected_descriptions = Lines(RunBrixq("describe " + file));
    for (std::string& line : expected_descriptions) {
      if (drawn_ids) line.erase(0, line.find('\t'));
    }
    EXPECT_EQ(described, expected_descriptions) << c.sample;
    std::vector<std::string> clauses = Lines(RunBrixq("clauses " + file));
    std::sort(clauses.begin(), clauses.end());
    EXPECT_EQ(ClauseLines(answer["fields"]), clauses) << c.sample;
    for (std::string dialect : {"sqlite", "postgresql"}) {
      json expected = json::parse(RunBrixq("sql --json --top 3 --dialect " + dialect + " " + file));
      json statement = answer["statements"][dialect];
      EXPECT_EQ(statement["sql"], expected["sql"]) << c.sample << " " << dialect;
      ASSERT_EQ(statement["parameters"].size(), expected["parameters"].size());
      for (std::size_t i = 0; i < expected["parameters"].size(); ++i) {
        EXPECT_EQ(statement["parameters"][i]["type"], expected["parameters"][i]["type"]);
        EXPECT_EQ(statement["parameters"][i]["value"], expected["parameters"][i]["value"]);
      }
    }
  }
}

// The document posted as it is, its options in the query string, answers as the JSON form does;
// the answer holds the texts asked for and no others.
TEST_F(Serve, RendersADefinitionPostedAsXmlAsTheJsonForm) {
  struct Case {
    std::string sample;
    std::string query;
    json options;
    std::size_t members;
  };
  const std::vector<Case> cases = {
      {"orders.xml",
       "top=3&near=5&dialect=sqlite",
       {{"top", 3}, {"near", 5}, {"dialect", "sqlite"}},
       6},
      {"legal_documents.xml",
       "date=2024-03-15&parts=fullText,descriptions",
       {{"date", "2024-03-15"}, {"parts", {"fullText", "descriptions"}}},
       2},
      // Parameter values make conditions with drawn IDs: their descriptions are left out.
      {"parameter_query.xml",
       "param=Oras%3DCluj,Iasi&param=Oras%3DBrasov&parts=sql,statements",
       {{"params",
         {{{"name", "Oras"}, {"values", {"Cluj", "Iasi"}}},
          {{"name", "Oras"}, {"values", {"Brasov"}}}}},
        {"parts", {"sql", "statements"}}},
       2},
  };
  auto client = server_->Client();
  for (const Case& c : cases) {
    const std::string definition = ReadFile(kExamples + "/" + c.sample);
    json request = c.options;
    request["definition"] = definition;
    auto as_json = client.Post("/api/render", request.dump(), kJson);
    auto as_xml = client.Post(("/api/render?" + c.query).c_str(), definition, "application/xml");
    ASSERT_EQ(StatusOf(as_xml), 200) << as_xml->body;
    EXPECT_EQ(Body(as_xml), Body(as_json)) << c.query;
    EXPECT_EQ(Body(as_xml).size(), c.members) << c.query;
  }
  struct Bad {
    std::string query;
    std::string description_start;
  };
  for (const Bad& bad : std::vector<Bad>{{"top=x", "top must be a whole number"},
                                         {"param=Oras", "each \"param\" must be NAME="},
                                         {"param=Oras=Cluj", "each \"param\" must be NAME="},
                                         {"parts=sql,all", "\"parts\" must be"},
                                         {"dialect=oracle", "\"dialect\" must be"}}) {
    ExpectError(client.Post(("/api/render?" + bad.query).c_str(), "<x/>", "application/xml"), 400,
                0, "brixq serve", bad.description_start);
  }
}

// The definition's problems come only when asked for, one per line of brixq check.
TEST_F(Serve, ListsTheProblemsOfADefinitionWhenAsked) {
  std::string faulty = ReadFile(kExamples + "/orders.xml");
  const std::string quantity = "<Value>2</Value>";
  faulty.replace(faulty.find(quantity), quantity.size(), "<Value>two</Value>");
  const std::string dir = TempDir();
  std::ofstream(dir + "/faulty.xml", std::ios::binary) << faulty;
  std::vector<std::string> expected = Lines(RunBrixq("check " + dir + "/faulty.xml"));
  fs::remove_all(dir);
  ASSERT_FALSE(expected.empty());

  auto client = server_->Client();
  json request = {{"definition", faulty}, {"parts", {"problems", "where"}}};
  json answer = Body(client.Post("/api/render", request.dump(), kJson));
  std::vector<std::string> problems;
  for (const json& problem : answer["problems"]) {
    problems.push_back(problem["path"].get<std::string>() + ": " +
                       problem["message"].get<std::string>());
  }
  EXPECT_EQ(problems, expected);
  request.erase("parts");
  EXPECT_FALSE(Body(client.Post("/api/render", request.dump(), kJson)).contains("problems"));
}

TEST_F(Serve, AnswersHostileRequestsWithErrorsAndKeepsServing) {
  const std::string orders = ReadFile(kExamples + "/orders.xml");
  auto with = [&](json extra) {
    extra["definition"] = orders;
    return extra.dump();
  };
  const std::string ours = "brixq serve";
  struct Case {
    std::string method, path, body;
    int status;
    std::int32_t number;
    std::string source, description;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"POST", "/api/render", "{\"definition\": ",           400, 0, ours, "the body is not valid JSON"},
      {"POST", "/api/render", "{\"definition\": \"\xff\xfe\"}", 400, 0, ours, "the body is not valid JSON"},
      {"POST", "/api/render", "[1, 2]",                      400, 0, ours, "the body must be a JSON object"},
      {"POST", "/api/render", "{\"top\": 1e999}",           400, 0, ours, "the body is not valid JSON"},
      {"PUT", "/api/queries/x", "{\"Name\": -1e999}",        400, 0, ours, "the body is not valid JSON"},
      {"POST", "/api/render", "{\"definition\": 5}",         400, 0, ours, "\"definition\" is required"},
      {"POST", "/api/render", with({{"date", "2024-02-30"}}), 400, 0, ours, "\"date\" must be"},
      {"POST", "/api/render", with({{"top", -1}}),           400, 0, ours, "\"top\" must be a whole number from 0"},
      {"POST", "/api/render", with({{"near", 40000}}),       400, 0, ours, "\"near\" must be a whole number"},
      {"POST", "/api/render", with({{"dialect", "oracle"}}), 400, 0, ours, "\"dialect\" must be"},
      {"POST", "/api/render", with({{"params", {{{"name", 1}}}}}), 400, 0, ours, "\"params\" must be"},
      {"POST", "/api/render", with({{"parts", {"sql", "all"}}}), 400, 0, ours, "\"parts\" must be"},
      {"POST", "/api/render", "{\"definition\": \"<PropertyBag><x\"}", 422, kLoadFailed, kLoadSource,
       "Couldn't load xml query definition!\r\n"},
      {"GET", "/api/queries/bad%21id",  "",                  400, 0, ours, "a record ID is 1 to 128"},
      {"GET", "/api/queries/" + std::string(129, 'a'), "",   400, 0, ours, "a record ID is 1 to 128"},
      {"GET", "/api/queries/none",      "",                  404, 0, ours, "no record \"none\""},
      {"GET", "/api/queries?limit=501", "",                  400, 0, ours, "limit must be from 0 to 500"},
      {"GET", "/api/queries?offset=x",  "",                  400, 0, ours, "offset must be a whole number"},
      {"GET", "/nowhere",               "",                  404, 0, ours, "there is nothing at this path"},
      {"PUT", "/api/queries/x", "{\"Nope\": 1}",             400, 0, ours, "unknown member \"Nope\""},
      {"PUT", "/api/queries/x", "{\"IsEditable\": \"yes\"}", 400, 0, ours, "member \"IsEditable\" must be"},
      {"PUT", "/api/queries/x", "{\"CodSectiune\": 4294967296}", 400, 0, ours, "member \"CodSectiune\" must be"},
      {"PUT", "/api/queries/x", "{\"ID\": \"y\"}",           400, 0, ours, "the record's ID \"y\" is not"},
      {"PUT", "/api/queries/x", "{\"QueryDef\": \"<bad\"}",  422, kLoadFailed, kLoadSource,
       "Couldn't load xml query definition!"},
      {"PUT", "/api/queries/x", "null",                      400, 0, ours, "the record must be a JSON object"},
      {"POST", "/api/render", std::string(17u << 20, ' '),   413, 0, ours, "the request body is over"},
  };
  // clang-format on
  auto client = server_->Client();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.method + " " + c.path + " " + c.body.substr(0, 60));
    httplib::Result result = c.method == "POST"  ? client.Post(c.path.c_str(), c.body, kJson)
                             : c.method == "PUT" ? client.Put(c.path.c_str(), c.body, kJson)
                                                 : client.Get(c.path.c_str());
    ExpectError(result, c.status, c.number, c.source, c.description);
    EXPECT_EQ(StatusOf(server_->Client().Get("/api/version")), 200);
  }
  // One line per request on standard error; the library's failures reported by the logger.
  EXPECT_EQ(Lines(ReadFile(dir_ + "/server.log")).size(), 2 * cases.size());
  EXPECT_NE(ReadFile(dir_ + "/errors.log").find("Couldn't load xml query definition!"),
            std::string::npos);
}

TEST_F(Serve, ServesThePageAndDropsSlowClients) {
  auto page = server_->Client().Get("/");
  ASSERT_EQ(StatusOf(page), 200);
  EXPECT_EQ(page->body, "<p>pagina</p>");
  // A client that never finishes its request is answered 400 after the timeout (1 s here).
  int socket_fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(server_->port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(socket_fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const std::string partial =
      "POST /api/render HTTP/1.1\r\nHost: x\r\nContent-Length: 100\r\n\r\n{";
  ASSERT_EQ(send(socket_fd, partial.data(), partial.size(), 0),
            static_cast<ssize_t>(partial.size()));
  timeval wait{5, 0};
  setsockopt(socket_fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  char buffer[512] = {};
  const auto start = std::chrono::steady_clock::now();
  ASSERT_GT(recv(socket_fd, buffer, sizeof buffer - 1, 0), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  EXPECT_TRUE(std::string(buffer).starts_with("HTTP/1.1 400 ")) << buffer;
  close(socket_fd);
  EXPECT_EQ(StatusOf(server_->Client().Get("/api/version")), 200);
}

TEST_F(Serve, ImportedSamplesAreServed) {
  const std::string catalog = "--catalog sqlite:" + dir_ + "/catalog.db";
  EXPECT_EQ(RunBrixq("catalog import " + catalog + " " + kExamples + "/orders.xml " + kExamples +
                     "/legal_documents.xml"),
            "created orders (version 1)\ncreated legal_documents (version 1)");
  json exported = json::parse(RunBrixq("catalog export " + catalog));
  ASSERT_EQ(exported.size(), 2u);
  EXPECT_EQ(exported[1]["ID"], "orders");
  EXPECT_EQ(exported[1]["Category"], "Exemple");
  EXPECT_EQ(exported[1]["Name"], "Comenzi martie 2024");
  json page = Body(server_->Client().Get("/api/queries"));
  EXPECT_EQ(page["total"], 2);
  json clauses = Body(server_->Client().Get("/api/catalogue/clauses"))["clauses"];
  ASSERT_EQ(clauses.size(), 32u);
  EXPECT_EQ(
      clauses[0],
      json({{"number", 1}, {"name", "qbe_ClauseBetween"}, {"description", "intre ___ si ___"}}));
}

TEST(ServeToken, WritesNeedTheTokenAndOtherAddressesNeedOne) {
  const std::string dir = TempDir();
  std::ofstream(dir + "/token") << "s3cret\n";
  const std::string catalog = "sqlite:" + dir + "/catalog.db";
  ServerProcess server({"--catalog", catalog, "--token-file", dir + "/token"}, dir + "/log");
  auto client = server.Client();
  const std::string record = Record("x", "orders.xml").dump();
  struct Case {
    httplib::Headers headers;
    int status;
  };
  for (const Case& c : std::vector<Case>{{{}, 401},
                                         {{{"Authorization", "Bearer s3cre"}}, 401},
                                         {{{"Authorization", "Bearer s3cret!"}}, 401},
                                         {{{"Authorization", "Bearer s3cret"}}, 201}}) {
    EXPECT_EQ(StatusOf(client.Put("/api/queries/x", c.headers, record, kJson)), c.status);
  }
  EXPECT_EQ(StatusOf(client.Delete("/api/queries/x")), 401);
  EXPECT_EQ(StatusOf(client.Get("/api/queries/x")), 200);

  ServerProcess open({"--catalog", catalog, "--listen", "0.0.0.0:0"}, dir + "/log");
  EXPECT_EQ(open.port(), 0);
  EXPECT_EQ(open.Stop(), 1);
  fs::remove_all(dir);
}

// Sends `call` to /rpc and reads the answer.
std::shared_ptr<cMarshall> Call(httplib::Client& client, const cMarshall& call) {
  ByteArray bytes = call.GetContents();
  auto result =
      client.Post("/rpc", std::string(bytes.begin(), bytes.end()), "application/octet-stream");
  EXPECT_EQ(StatusOf(result), 200);
  if (!result) return cMarshall::Create();
  auto answer = cMarshall::Create();
  answer->SetbMakeCompress(call.bMakeCompress());
  answer->SetContents(ByteArray(result->body.begin(), result->body.end()));
  return answer;
}

std::shared_ptr<cMarshall> NewCall(const std::string& procedure, bool compressed = false) {
  auto call = cMarshall::Create();
  call->SetbMakeCompress(compressed);
  call->SetClassName("Catalog.Queries");
  call->SetProcedureName(procedure);
  call->SetSession("s-1");
  return call;
}

TEST_F(Serve, AnswersEnvelopesWithEnvelopes) {
  auto client = server_->Client();
  auto record = clsQSOM_DM::Create();
  record->SetID("orders");
  record->SetName("Comenzi");
  record->SetIsEditable(true);
  record->SetQueryDef(ReadFile(kExamples + "/orders.xml"));
  auto save = NewCall("SaveQuery");
  save->AddParam("Record", Variant(record));
  auto saved = Call(client, *save);
  EXPECT_EQ(saved->ErrorNo(), 0) << saved->ErrorDescription();
  EXPECT_EQ(CLng(saved->Retval()), 1);
  EXPECT_EQ(saved->Session(), "s-1");

  auto load = NewCall("LoadQuery", true);
  load->AddParam("ID", Variant("orders"));
  auto loaded = Call(client, *load);
  auto back = std::dynamic_pointer_cast<clsQSOM_DM>(loaded->Retval().AsObject());
  ASSERT_TRUE(back);
  EXPECT_EQ(back->Name(), "Comenzi");
  EXPECT_EQ(back->QueryDef(), RunBrixq("save " + kExamples + "/orders.xml") + "\n");
  EXPECT_EQ(CLng(loaded->ReadParam("Version")), 1);

  auto list = Call(client, *NewCall("ListQueries"));
  EXPECT_EQ(CLng(list->Retval()), 1);
  EXPECT_EQ(CLng(list->ReadParam("Total")), 1);
  EXPECT_EQ(std::dynamic_pointer_cast<clsQSOM_DM>(list->ReadParam("Query1").AsObject())->ID(),
            "orders");

  auto render = NewCall("RenderSQL");
  render->AddParam("QueryDef", Variant(record->QueryDef()));
  render->AddParam("TopRecords", Variant(2));
  EXPECT_EQ(CStr(Call(client, *render)->Retval()),
            RunBrixq("sql --top 2 " + kExamples + "/orders.xml"));

  auto overwrite = NewCall("SaveQuery");
  overwrite->AddParam("Record", Variant(record));
  overwrite->AddParam("Overwrite", Variant(true));
  overwrite->AddParam("Version", Variant(7));  // stale: Overwrite replaces all the same
  EXPECT_EQ(CLng(Call(client, *overwrite)->Retval()), 2);

  auto stale = NewCall("SaveQuery");
  stale->AddParam("Record", Variant(record));
  stale->AddParam("Version", Variant(7));
  auto unknown_class = NewCall("ListQueries");
  unknown_class->SetClassName("Catalog.Users");
  struct Case {
    std::shared_ptr<cMarshall> call;
    std::int32_t number;
    std::string source, description;
  };
  const std::string rpc = "[brixq serve].[rpc]";
  for (const Case& c :
       std::vector<Case>{{NewCall("DropAll"), 5, rpc, "unknown procedure \"DropAll\""},
                         {unknown_class, 5, rpc, "unknown class \"Catalog.Users\""},
                         {stale, 20409, rpc, "the record \"orders\" is at version 2, not 7"},
                         {NewCall("LoadQuery"), static_cast<std::int32_t>(0x80040205),
                          "[QuillMarshall].[ReadParam]", "Unsupported data type"}}) {
    auto answer = Call(client, *c.call);
    EXPECT_EQ(answer->ErrorNo(), c.number);
    EXPECT_EQ(answer->ErrorSource(), c.source);
    EXPECT_EQ(answer->ErrorDescription(), c.description);
  }
  // Bytes that are no envelope are answered by an envelope that says so.
  auto garbage = client.Post("/rpc", "not an envelope", "application/octet-stream");
  auto answer = cMarshall::Create();
  answer->SetContents(ByteArray(garbage->body.begin(), garbage->body.end()));
  EXPECT_NE(answer->ErrorNo(), 0);
  EXPECT_EQ(StatusOf(client.Get("/api/version")), 200);
}

}  // namespace
}  // namespace brix
