// The serve and catalog command lines, the record's JSON form and the checks on IDs and addresses.
#include "tools/serve_options.h"

#include <gtest/gtest.h>

#include "tools/catalog_record.h"
#include "tools/command_line.h"

namespace brix::brixq {
namespace {

std::vector<std::string_view> Args(std::initializer_list<const char*> args) {
  return std::vector<std::string_view>(args.begin(), args.end());
}

TEST(ServeOptions, ParsesEveryOptionAndRefusesWrongLines) {
  ServeOptions options = ParseServeCommandLine(
      Args({"serve", "--listen", "[::1]:0", "--catalog=postgresql://x/y", "--threads", "3",
            "--token-file", "t", "--max-body", "10", "--timeout", "2", "--syslog"}));
  EXPECT_EQ(options.host, "::1");
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.catalog, "postgresql://x/y");
  EXPECT_EQ(options.threads, 3);
  EXPECT_EQ(options.token_file, "t");
  EXPECT_EQ(options.max_body, 10u);
  EXPECT_EQ(options.timeout_seconds, 2);
  EXPECT_TRUE(options.syslog);
  EXPECT_TRUE(ParseServeCommandLine(Args({"serve"})).catalog.starts_with("sqlite:"));

  struct Wrong {
    std::vector<std::string_view> args;
    std::string message;
  };
  for (const Wrong& wrong : std::vector<Wrong>{
           {Args({"serve", "--listen", "8080"}), "--listen needs HOST:PORT, not \"8080\""},
           {Args({"serve", "--listen", "h:70000"}),
            "--listen needs a whole number from 0 to 65535, not \"70000\""},
           {Args({"serve", "--threads", "0"}),
            "--threads needs a whole number from 1 to 1024, not \"0\""},
           {Args({"serve", "--catalog"}), "--catalog needs a value"},
           {Args({"serve", "--bogus"}), "unknown option \"--bogus\" of serve"},
           {Args({"serve", "file.xml"}), "serve takes no argument \"file.xml\""},
           {Args({"catalog"}), "catalog needs import or export"},
           {Args({"catalog", "import"}), "catalog import needs at least one FILE"},
           {Args({"catalog", "export", "x.xml"}), "catalog export takes no FILE"},
           {Args({"catalog", "export", "--category", "x"}),
            "unknown option \"--category\" of catalog"},
       }) {
    try {
      if (wrong.args[0] == "serve") {
        ParseServeCommandLine(wrong.args);
      } else {
        ParseCatalogCommandLine(wrong.args);
      }
      ADD_FAILURE() << "accepted: " << wrong.message;
    } catch (const UsageError& error) {
      EXPECT_EQ(error.what(), wrong.message);
    }
  }
}

TEST(ServeOptions, TellsLoopbackAndValidIds) {
  for (const char* host : {"127.0.0.1", "127.8.0.2", "::1", "localhost"})
    EXPECT_TRUE(IsLoopback(host));
  for (const char* host : {"0.0.0.0", "10.0.0.1", "::", "128.0.0.1", ""})
    EXPECT_FALSE(IsLoopback(host));
  for (const std::string& id :
       std::vector<std::string>{"a", "Q-17", "orders.v2", "x_y", std::string(128, 'z')}) {
    EXPECT_TRUE(IsValidRecordId(id)) << id;
  }
  for (const std::string& id :
       std::vector<std::string>{"", "a b", "a/b", "..%2F", "ș", "a;DROP", std::string(129, 'z')}) {
    EXPECT_FALSE(IsValidRecordId(id)) << id;
  }
}

TEST(CatalogRecord, JsonCarriesEveryPropertyBothWays) {
  nlohmann::json json = RecordToJson(*clsQSOM_DM::Create());
  ASSERT_EQ(json.size(), RecordProperties().size());
  // A distinct value per property, read back through the record. (brixq:: because a test body
  // sees testing::Test::RecordProperty first.)
  int n = 0;
  for (const brixq::RecordProperty& property : RecordProperties()) {
    ++n;
    switch (property.kind) {
      case brixq::RecordProperty::Kind::kText:
        json[property.name] = "v" + std::to_string(n) + " <&>";
        break;
      case brixq::RecordProperty::Kind::kLong:
        json[property.name] = -n * 1000003;
        break;
      case brixq::RecordProperty::Kind::kBoolean:
        json[property.name] = n % 2 == 0;
        break;
    }
  }
  auto record = RecordFromJson(json);
  EXPECT_EQ(RecordToJson(*record), json);
  EXPECT_EQ(record->G6(), "v15 <&>");  // the key order of the record's persistence
  for (const brixq::RecordProperty& property : RecordProperties()) {
    auto copy = clsQSOM_DM::Create();
    StoreValue stored = ReadStoreValue(*record, property);
    WriteStoreText(*copy, property,
                   std::holds_alternative<std::string>(stored)
                       ? std::get<std::string>(stored)
                       : std::to_string(std::get<std::int64_t>(stored)));
    EXPECT_EQ(RecordToJson(*copy)[property.name], json[property.name]) << property.name;
  }
}

}  // namespace
}  // namespace brix::brixq
