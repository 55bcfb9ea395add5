// Statements run on real engines: every clause kind selects the expected rows through the
// parameterized statement on SQLite and on a PostgreSQL server started for the tests, and through
// the compatible text on SQLite; the samples agree on all of them.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "tests/support/query_tree.h"
#include "tools/postgres_runner.h"
#include "tools/sqlite_runner.h"

namespace brix {
namespace {

using brixq::ResultTable;
using test_support::BuildQuery;
using V = Variant;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  return content.str();
}

// One engine and the statement it is given: how a query's rows are read from it.
struct Engine {
  const char* name;
  std::function<ResultTable(const xqb_Query&)> run;
};

ParameterizedStatement Bound(const xqb_Query& query, SqlDialect dialect) {
  StatementOptions options;
  options.dialect = dialect;
  return query.ReturnParameterizedSQL(options);
}

class Engines : public ::testing::Test {
 protected:
  // Failures here are kept for SetUp: a failure raised in SetUpTestSuite itself would turn every
  // test of the suite into a skip, which CTest counts as passed.
  static void SetUpTestSuite() {
    // CTest runs each test in a process of its own, several at once: each builds its own file.
    sqlite_path_ = ::testing::TempDir() + "brix_engines." + std::to_string(getpid()) + ".db";
    std::remove(sqlite_path_.c_str());
    sqlite3* db = nullptr;
    if (sqlite3_open(sqlite_path_.c_str(), &db) != SQLITE_OK) {
      setup_error_ = "cannot open: " + sqlite_path_;
    }
    for (const std::string& file : {std::string(BRIX_EXAMPLES_DIR "/sample_database.sql"),
                                    std::string(BRIX_ENGINE_DATA_DIR "/visits.sql")}) {
      char* error = nullptr;
      if (sqlite3_exec(db, ReadFile(file).c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        setup_error_ += file + ": " + (error ? error : "") + "\n";
      }
      sqlite3_free(error);
    }
    sqlite3_close(db);
    postgres_ = ReadFile(BRIX_POSTGRES_INFO_FILE);
    while (!postgres_.empty() && postgres_.back() == '\n') postgres_.pop_back();
    // Later keywords of a connection string win over earlier ones.
    postgres_legacy_ = postgres_ + " dbname=brix_legacy";
  }

  void SetUp() override { ASSERT_EQ(setup_error_, ""); }

  static void TearDownTestSuite() { std::remove(sqlite_path_.c_str()); }

  static std::vector<Engine> All() {
    return {{kSqlite,
             [](const xqb_Query& q) {
               return brixq::RunOnSqlite(sqlite_path_, Bound(q, SqlDialect::kSQLite));
             }},
            {"PostgreSQL",
             [](const xqb_Query& q) {
               return brixq::RunOnPostgres(postgres_, Bound(q, SqlDialect::kPostgreSQL));
             }},
            {"PostgreSQL, standard_conforming_strings off",
             [](const xqb_Query& q) {
               return brixq::RunOnPostgres(postgres_legacy_, Bound(q, SqlDialect::kPostgreSQL));
             }},
            {kCompatible, [](const xqb_Query& q) {
               return brixq::RunOnSqlite(sqlite_path_, ParameterizedStatement{q.ReturnSQL(), {}});
             }}};
  }

  // Whether `engine` is given a statement it can read for `query` with `value` as an operand: the
  // compatible text writes dates as #...# literals and times bare, which SQLite does not read,
  // and leaves LIKE wildcards in operands as they are, as the hosts' own engines expect.
  static bool Reads(const Engine& engine, const xqb_Query& query, const std::string& value = "",
                    qbe_DataType type = qbe_DataString) {
    if (engine.name != std::string_view(kCompatible)) return true;
    return type != qbe_DataTime && query.ReturnSQL().find('#') == std::string::npos &&
           value.find_first_of("%_") == std::string::npos;
  }

  // The first column of every row, joined by ",", or the error.
  static std::string FirstColumn(const Engine& engine, const xqb_Query& query) {
    try {
      ResultTable table = engine.run(query);
      std::string ids;
      for (const auto& row : table.rows) ids += (ids.empty() ? "" : ",") + row[0];
      return ids;
    } catch (const Error& error) {
      return "error " + std::to_string(error.Number()) + ": " + error.Description();
    }
  }

  static constexpr const char* kSqlite = "SQLite";
  static constexpr const char* kCompatible = "SQLite, compatible text";
  static std::string sqlite_path_;
  static std::string postgres_;
  static std::string postgres_legacy_;
  static std::string setup_error_;
};

std::string Engines::sqlite_path_;
std::string Engines::postgres_;
std::string Engines::postgres_legacy_;
std::string Engines::setup_error_;

struct KindRow {
  const char* field;
  qbe_DataType type;
  int kind;
  V value;
  V secondary;
  const char* ids;
};

TEST_F(Engines, EveryClauseKindSelectsTheExpectedRows) {
  // Friday 15 March 2024, 10:30:20; the week runs from Monday 11 to Sunday 17 March.
  ScopedClock clock(45366 + (10.5 * 3600 + 20) / 86400);
  constexpr auto D = qbe_DataDate, N = qbe_DataNumeric, S = qbe_DataString;
  // clang-format off
  const std::vector<KindRow> rows = {
      {"Amount", N, 1,  V("10"),        V("100"),        "1,4"},
      {"Day",    D, 1,  V("2024-03-01"), V("16-Mar-2024"), "1,2"},
      {"Note",   S, 2,  V("50%"),       V(""), "1"},           // % is a character, not a wildcard
      {"Note",   S, 2,  V("_"),         V(""), "2"},           // and so is _
      {"Name",   S, 3,  V("O'Brien"),   V(""), "2"},
      {"Day",    D, 3,  V("45366"),     V(""), "1"},
      {"Paid",   qbe_DataBoolean, 3, V("True"), V(""), "1,3,5"},
      {"Amount", N, 4,  V("80"),        V(""), "3,4"},
      {"Day",    D, 5,  V("2024-03-15"), V(""), "5"},
      {"Note",   S, 6,  V(""),          V(""), "3,4"},
      {"Amount", N, 7,  V(""),          V(""), "2"},
      {"Amount", N, 8,  V("10.5"),      V(""), "1,5"},
      {"Name",   S, 9,  V("B"),         V(""), "1"},
      {"Note",   S, 10, V("O"),         V(""), "2,3,5"},       // letter case ignored on both
      {"Name",   S, 11, V("Ana"),       V(""), "2,3,4,5"},
      {"Name",   S, 12, V("AN"),        V(""), "2,3,5"},
      {"Name",   S, 13, V("o'"),        V(""), "2"},
      {"Note",   S, 13, V("back\\"),    V(""), "5"},
      {"Day",    D, 14, V(""),          V(""), "1"},
      {"Day",    D, 15, V(""),          V(""), "1,2"},
      {"Day",    D, 16, V(""),          V(""), "1,2,5"},
      {"Name",   S, 17, V("('Ana', 'Dan')"), V(""), "1,5"},
      {"ID",     N, 17, V("(1, 3)"),    V(""), "1,3"},
      {"Day",    D, 18, V("5"),         V(""), "1,2"},
      {"Amount", N, 19, V("(10.5, 80)"), V(""), "3,5"},
      {"Note",   S, 20, V(""),          V(""), "1,2,3,5"},     // "<> '' OR IS NOT NULL", as always
      {"Day",    D, 21, V("1"),         V(""), "1,2,3"},
      {"Day",    D, 22, V(""),          V(""), "1,2,3,5"},
      {"Day",    D, 23, V("2023"),      V(""), "4"},
      {"Day",    D, 24, V("1"),         V(""), "1,2,3,4"},
      {"Day",    D, 28, V("3"),         V(""), "1,5"},
      {"Day",    D, 29, V("3"),         V(""), "5"},
      {"Start",  qbe_DataTime, 30, V(""), V(""), "1,4"},
      {"Start",  qbe_DataTime, 31, V(""), V(""), "1,3,4,5"},
      {"Start",  qbe_DataTime, 32, V(""), V(""), "1,2,4"},
  };
  // clang-format on
  for (const Engine& engine : All()) {
    for (const KindRow& row : rows) {
      test_support::FieldRow id{"ID", N};
      id.sort = qbe_SortAscending;
      auto query = BuildQuery({{"Visits", {id}}});
      auto field = test_support::AddField(*query->Tables()->Item(V("Visits")), "Tested", row.type);
      field->SetDBName(row.field);
      field->SetUseInStatement(false);
      test_support::AddCondition(*field, 1, static_cast<qbe_ClauseOperator>(row.kind), row.value,
                                 row.secondary);
      if (!Reads(engine, *query, CStr(row.value), row.type)) continue;
      EXPECT_EQ(FirstColumn(engine, *query), row.ids)
          << engine.name << ", kind " << row.kind << " on " << row.field;
    }
  }
}

TEST_F(Engines, TheSamplesSelectTheSameRowsOnBoth) {
  ScopedClock clock(45366);  // 15 March 2024
  const std::vector<std::pair<std::string, std::string>> samples = {
      {"orders.xml", "1007,1008,1003,1002"},
      {"legal_documents.xml", "Legea nr. 88/2023 pentru modificarea Codului muncii"},
      {"parameter_query.xml", "1,2,3,4,5,6"},
  };
  for (const Engine& engine : All()) {
    for (const auto& [file, first_column] : samples) {
      auto query = xqb_Query::Create();
      query->LoadXMLDef(ReadFile(BRIX_EXAMPLES_DIR "/" + file));
      if (!Reads(engine, *query)) continue;
      EXPECT_EQ(FirstColumn(engine, *query), first_column) << engine.name << ", " << file;
    }
  }
}

TEST_F(Engines, AwkwardOperandsAreValuesOnBoth) {
  for (const Engine& engine : All()) {
    for (const char* value :
         {"x' OR '1'='1", "\\'; DROP TABLE \"Visits\"; --", "\xE2\x80\x99", "%", "_", "\\"}) {
      auto query = BuildQuery({{"Visits", {{"ID", qbe_DataNumeric}}}});
      auto field = test_support::AddField(*query->Tables()->Item(V("Visits")), "Name");
      field->SetUseInStatement(false);
      test_support::AddCondition(*field, 1, qbe_ClauseEqualTo, V(value));
      test_support::AddCondition(*field, 2, qbe_ClauseContains, V(value));
      if (!Reads(engine, *query, value)) continue;
      EXPECT_EQ(FirstColumn(engine, *query), "") << engine.name << ", " << value;
    }
  }
}

// A field name that would turn a LIKE's escape literal into "... OR 1=1" where backslashes
// escape quotes in string literals: the filter keeps its meaning on every engine.
TEST_F(Engines, ALikeEscapeEndsWhereItIsWrittenOnEveryServerSetting) {
  for (const Engine& engine : All()) {
    if (engine.name == std::string_view(kCompatible)) continue;  // it writes names as stored
    test_support::FieldRow id{"ID", qbe_DataNumeric};
    id.sort = qbe_SortAscending;
    auto query = BuildQuery({{"Guests", {id}}});
    auto& table = *query->Tables()->Item(V("Guests"));
    test_support::AddCondition(*test_support::AddField(table, "Name"), 1, qbe_ClauseContains,
                               V("Ana"));
    auto hostile = test_support::AddField(table, "x'::char OR 1=1) --");
    hostile->SetUseInStatement(false);
    test_support::AddCondition(*hostile, 2, qbe_ClauseEqualTo, V("a"));
    EXPECT_EQ(FirstColumn(engine, *query), "1") << engine.name;
  }
}

}  // namespace
}  // namespace brix
