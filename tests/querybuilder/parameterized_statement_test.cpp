// Parameterized statements: placeholders and typed values per clause kind, quoted names, LIKE
// escapes, IN lists, host SQL, and a text that never depends on the operands.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "querybuilder/parameterized_where.h"
#include "querybuilder/sql_dialect.h"
#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::Outcome;
using test_support::TableRow;
using V = Variant;

// Wednesday 3 March 2010, 14:30:50; the query's Today is Friday 31 July 2009 (40025).
constexpr double kClock = 40240 + (14.5 * 3600 + 50) / 86400;
constexpr std::int32_t kToday = 40025;
constexpr auto D = qbe_DataDate;
constexpr auto N = qbe_DataNumeric;
constexpr auto S = qbe_DataString;

auto K(int kind) { return static_cast<qbe_ClauseOperator>(kind); }

// "type:text" per parameter, joined by " | ".
std::string Parameters(const ParameterizedStatement& statement) {
  std::string text;
  for (const SqlParameter& p : statement.parameters) {
    if (!text.empty()) text += " | ";
    text += std::string(SqlTypeName(p.type)) + ":" + p.text;
  }
  return text;
}

// The text, then " ; " and the parameters, or the error.
std::string Where(const std::vector<TableRow>& tables, SqlDialect dialect = SqlDialect::kSQLite,
                  bool joins = false) {
  return Outcome([&] {
    auto query = BuildQuery(tables);
    query->SetToday(kToday);
    StatementOptions options;
    options.dialect = dialect;
    ParameterizedStatement s = query->ReturnParameterizedWHERE(options, true, nullptr, joins);
    return s.text + " ; " + Parameters(s);
  });
}

std::string WhereOne(qbe_DataType type, int kind, V value, V secondary = V("")) {
  return Where({{"T", {{"F", type, {{K(kind), value, secondary}}}}}});
}

TEST(ParameterizedWhere, EveryClauseKindBindsItsOperands) {
  ScopedClock clock(kClock);
  // clang-format off
  const std::vector<std::tuple<qbe_DataType, int, V, V, std::string>> cases = {
      {N, 1,  V("1"),     V("1e2"), "(\"F\" BETWEEN ?1 AND ?2) ; integer:1 | integer:100"},
      {D, 1,  V("40238"), V("3/5/2010"), "(\"F\" BETWEEN ?1 AND ?2) ; date:2010-03-01 | date:2010-03-05"},
      {S, 2,  V("50%_x\\"), V(""), "(\"F\" LIKE ?1 ESCAPE '\\') ; text:%50\\%\\_x\\\\%"},
      {S, 3,  V("O'Brien"), V(""), "(\"F\" = ?1) ; text:O'Brien"},
      {D, 3,  V("43051"), V(""),    "(\"F\" = ?1) ; date:2017-11-12"},
      {N, 4,  V("2.5"),   V(""),    "(\"F\" >= ?1) ; real:2.5"},
      {N, 5,  V(" 7 "),   V(""),    "(\"F\" > ?1) ; integer:7"},
      {S, 6,  V(""),      V(""),    "(\"F\" = '' OR \"F\" IS NULL ) ; "},
      {N, 6,  V(""),      V(""),    "(\"F\" IS NULL ) ; "},
      {S, 7,  V(""),      V(""),    "(\"F\" IS NULL) ; "},
      {D, 8,  V("2010-03-02"), V(""), "(\"F\" <= ?1) ; date:2010-03-02"},
      {N, 9,  V("-9223372036854775808"), V(""), "(\"F\" < ?1) ; integer:-9223372036854775808"},
      {S, 10, V("a"),     V(""),    "(\"F\" NOT LIKE ?1 ESCAPE '\\') ; text:%a%"},
      {qbe_DataBoolean, 11, V("True"), V(""), "(\"F\" <> ?1) ; boolean:true"},
      {S, 12, V("a"),     V(""),    "(\"F\" NOT LIKE ?1 ESCAPE '\\') ; text:a%"},
      {S, 13, V("in "),   V(""),    "(\"F\" LIKE ?1 ESCAPE '\\') ; text:in %"},
      {D, 14, V(""),      V(""),    "(\"F\" = ?1) ; date:2009-07-31"},
      {D, 15, V(""),      V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2010-03-01 | date:2010-03-07"},
      {D, 16, V(""),      V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2010-03-01 | date:2010-03-31"},
      {S, 17, V("('a', 'O''B')"), V(""), "(\"F\" IN (?1, ?2)) ; text:a | text:O'B"},
      {N, 17, V("(1, -2.5, 3e1)"), V(""), "(\"F\" IN (?1, ?2, ?3)) ; integer:1 | real:-2.5 | integer:30"},
      {D, 17, V("(40238, '3/5/2010')"), V(""), "(\"F\" IN (?1, ?2)) ; date:2010-03-01 | date:2010-03-05"},
      {D, 18, V("10"),    V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2009-07-21 | date:2009-07-31"},
      {N, 19, V("(5)"),   V(""),    "(\"F\" NOT IN (?1)) ; integer:5"},
      {S, 20, V(""),      V(""),    "(\"F\" <> '' OR \"F\" IS NOT NULL ) ; "},
      {D, 21, V("1"),     V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2009-06-30 | date:2009-07-31"},
      {D, 22, V(""),      V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2010-01-01 | date:2010-12-31"},
      {D, 23, V("2008"),  V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2008-01-01 | date:2008-12-31"},
      {D, 24, V("2"),     V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2007-07-31 | date:2009-07-31"},
      {D, 28, V("3"),     V(""),    "(\"F\" BETWEEN ?1 AND ?2) ; date:2009-07-31 | date:2009-08-03"},
      {D, 29, V("3"),     V(""),    "(\"F\" = ?1) ; date:2009-08-03"},
      {qbe_DataTime, 30, V(""), V(""), "(\"F\" = ?1) ; time:14:30:00"},
      {qbe_DataTime, 31, V(""), V(""), "(\"F\" >= ?1) ; time:14:30:00"},
      {qbe_DataTime, 32, V(""), V(""), "(\"F\" <= ?1) ; time:14:30:00"},
      // Full-text kinds leave the field out, as in the compatible text.
      {S, 26, V("a"),     V(""),    " ; "},
      // Values that do not read as the field's type raise the platform's errors.
      {N, 3,  V("abc"),   V(""),    "13 brixobjects4: Type mismatch"},
      {N, 3,  V::Null(),  V(""),    "94 brixobjects4: Invalid use of Null"},
      {D, 3,  V("abc"),   V(""),    "13 brixobjects4: Type mismatch"},
  };
  // clang-format on
  for (const auto& [type, kind, value, secondary, expected] : cases) {
    EXPECT_EQ(WhereOne(type, kind, value, secondary), expected) << "kind " << kind;
  }
}

TEST(ParameterizedWhere, OperandsBindByTheFieldsType) {
  // clang-format off
  const std::vector<std::tuple<V, qbe_DataType, std::string>> cases = {
      {V("9007199254740993"), N, "integer:9007199254740993"},  // read exactly, not via a double
      {V("1e300"),            N, "real:1e+300"},
      {V(12.0),               N, "real:12"},
      {V(std::int32_t{12}),   qbe_DataDecimal, "integer:12"},
      {V("0"),                qbe_DataBoolean, "boolean:false"},
      {V("40238.75"),         qbe_DataUTCDate, "datetime:2010-03-01 18:00:00"},
      {V("0.5"),              qbe_DataTime, "time:12:00:00"},
      {V(42.5),               S, "text:42.5"},
      {V::Null(),             S, "text:"},
      // Types that say nothing about their values bind by the operand's own kind.
      {V(std::int16_t{3}),    qbe_DataBLOB, "integer:3"},
      {V(true),               qbe_DataUserDefined1, "boolean:true"},
      {V(Date{40238.5}),      qbe_DataUserDefined2, "datetime:2010-03-01 12:00:00"},
      {V("x"),                qbe_DataUserDefined3, "text:x"},
  };
  // clang-format on
  for (const auto& [value, type, expected] : cases) {
    SqlParameter p = BindOperand(value, type);
    EXPECT_EQ(std::string(SqlTypeName(p.type)) + ":" + p.text, expected) << expected;
  }
}

TEST(ParameterizedWhere, NamesAreQuotedPartByPart) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Orders", "\"Orders\""},
      {"[Order Day]", "\"Order Day\""},
      {"dbo.[Order Items]", "\"dbo\".\"Order Items\""},
      {"[a.b].c", "\"a.b\".\"c\""},
      {"x\"y", "\"x\"\"y\""},
      {"[a]]b]", "\"a]b\""},
      {"Sum(Amount) x", "\"Sum(Amount) x\""},
      {"x\"; DROP TABLE t; --", "\"x\"\"; DROP TABLE t; --\""},
      {"a..b", "The name \"a..b\" has an empty part and cannot be written as an identifier."},
      {"[]", "The name \"[]\" has an empty part and cannot be written as an identifier."},
  };
  const std::string error = std::to_string(kErrUnquotableName) + " " +
                            std::string(kParameterizedSource) + ": ";
  for (const auto& [stored, expected] : cases) {
    std::string outcome = Outcome([&] { return QuotedName(stored); });
    EXPECT_EQ(outcome, expected.starts_with("The") ? error + expected : expected) << stored;
  }
  EXPECT_EQ(QuotedAlias("[a.b]"), "\"a.b\"");
  EXPECT_EQ(QuotedAlias("a.b"), "\"a.b\"");
}

TEST(ParameterizedWhere, JoinLinksThatAreNamesAreQuotedOthersPassAsTheyStand) {
  const std::vector<std::pair<std::string, bool>> cases = {
      {"Orders.CustomerID", true}, {"[Order Items].[Customer ID]", true}, {"dbo.t_1.x$", true},
      {"Ţară.Oraş", true},         {"1x.y", false},  {"a.", false},
      {"a + 1", false},            {"a.b OR 1=1", false}, {"[]", false}, {"", false},
  };
  for (const auto& [text, is_name] : cases) EXPECT_EQ(ReadsAsName(text), is_name) << text;
  std::vector<TableRow> tables = {
      {"C", {{"ID", N, {}, {}, {}, 0, "Orders.CustomerID"}, {"K", N, {}, {}, {}, 0, "O.K + 1"}}}};
  EXPECT_EQ(Where(tables, SqlDialect::kPostgreSQL, true),
            " (\"C\".\"ID\" = \"Orders\".\"CustomerID\") AND  (\"C\".\"K\" = O.K + 1) ; ");
}

TEST(ParameterizedWhere, InListsReadStrictly) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"( 'a' ,'b''c', -1.5e-3 , +2 )", "a|b'c|-1.5e-3|+2|"},
      {"(.5)", ".5|"},
      {"('')", "|"},
      {"1, 2", "expected \"(\" at character 1."},
      {"()", "expected a number or a 'quoted text' at character 2."},
      {"(1,)", "expected a number or a 'quoted text' at character 4."},
      {"(1 2)", "expected \",\" or \")\" at character 4."},
      {"('a)", "expected the closing quote of a text at character 5."},
      {"(1e)", "expected the digits of an exponent at character 4."},
      {"(1) OR 1=1", "expected nothing after \")\" at character 5."},
      {"(SELECT x FROM t)", "expected a number or a 'quoted text' at character 2."},
      {"(\"a\")", "expected a number or a 'quoted text' at character 2."},
  };
  for (const auto& [text, expected] : cases) {
    std::string outcome = Outcome([&] {
      std::string items;
      for (const Variant& item : ReadInList(text)) items += item.AsString() + "|";
      return items;
    });
    if (expected.ends_with("|")) {
      EXPECT_EQ(outcome, expected) << text;
    } else {
      EXPECT_EQ(outcome, std::to_string(kErrInListSyntax) +
                             " brixobjects4.ParameterizedStatement: The IN list \"" + text +
                             "\" does not read as (item, item, ...) of numbers and 'quoted "
                             "texts': " + expected)
          << text;
    }
  }
}

TEST(ParameterizedWhere, FullTextKindDropsTheParametersItsFieldWrote) {
  std::vector<TableRow> tables = {{"T",
                                   {{"A", S, {{K(3), V("x")}, {K(26), V("w")}, {K(3), V("y")}}},
                                    {"B", S, {{K(3), V("z")}}}}}};
  EXPECT_EQ(Where(tables), "(\"A\" = ?1) AND (\"B\" = ?2) ; text:y | text:z");
}

TEST(ParameterizedWhere, PostgreSQLNumbersWithDollarsAndIgnoresCaseInLike) {
  std::vector<TableRow> tables = {{"T", {{"F", S, {{K(3), V("a")}, {K(2), V("b")}}}}}};
  EXPECT_EQ(Where(tables, SqlDialect::kPostgreSQL),
            "(\"F\" = $1 OR \"F\" ILIKE $2 ESCAPE E'\\\\') ; text:a | text:%b%");
}

// Operands that could end a literal or a pattern, for the property below.
std::string AwkwardText(std::mt19937& random) {
  static const std::vector<std::string> pieces = {
      "'", "''", "\"", "\\", std::string(1, '\0'), "%", "_", "\xE2\x80\x99", "\xE2\x80\x9C", ";",
      "--", "/*", "?1", "$1", "a", " ", "\n", "Ş", ")", "("};
  std::string text;
  int count = std::uniform_int_distribution<int>(0, 12)(random);
  for (int i = 0; i < count; ++i) text += pieces[random() % pieces.size()];
  if (random() % 16 == 0) text += std::string(100000, 'x');
  return text;
}

TEST(ParameterizedWhere, TheTextNeverDependsOnTheOperands) {
  std::mt19937 random(20261125);
  const std::vector<int> text_kinds = {2, 3, 4, 5, 8, 9, 10, 11, 12, 13};
  for (SqlDialect dialect : {SqlDialect::kSQLite, SqlDialect::kPostgreSQL}) {
    auto render = [&](const std::vector<V>& values) {
      std::vector<TableRow> tables = {{"T", {}}};
      for (std::size_t i = 0; i < text_kinds.size(); ++i) {
        tables[0].fields.push_back(
            {"F" + std::to_string(i), S, {{K(text_kinds[i]), values[i]}, {K(1), values[i], V("z")}}});
      }
      auto query = BuildQuery(tables);
      StatementOptions options;
      options.dialect = dialect;
      return query->ReturnParameterizedSQL(options);
    };
    const std::string plain = render(std::vector<V>(text_kinds.size(), V("v"))).text;
    for (int round = 0; round < 200; ++round) {
      std::vector<V> values;
      for (std::size_t i = 0; i < text_kinds.size(); ++i) values.emplace_back(AwkwardText(random));
      ParameterizedStatement statement = render(values);
      ASSERT_EQ(statement.text, plain);
      ASSERT_EQ(statement.parameters.size(), 3 * text_kinds.size());
      // The equality kind binds the operand unchanged.
      EXPECT_EQ(statement.parameters[3].text, values[1].AsString());
    }
  }
}

std::string Sql(const std::vector<TableRow>& tables, StatementOptions options = {},
                bool distinct = false) {
  return Outcome([&] {
    auto query = BuildQuery(tables);
    query->SetDistinctRows(distinct);
    ParameterizedStatement s = query->ReturnParameterizedSQL(options);
    return s.text + " ; " + Parameters(s);
  });
}

TEST(ParameterizedStatement, ListsQuotedAndTheFilterBound) {
  std::vector<TableRow> tables = {
      {"Customers", {{"ID", N, {}, {}, {}, 0, "Orders.CustomerID"},
                     {"[Full Name]", S, {{K(13), V("A")}}, {}, std::string("Client"), 1}}},
      {"Orders", {{"CustomerID", N, {}, {}, std::string(""), 2, "", 1},
                  {"Total", N, {}, {}, {}, 3, "", 0, qbe_SortNone, 0, "Qty * Price"},
                  {"[Order Day]", D, {{K(22)}}, {}, {}, 0, "", 0, qbe_SortDescending, 1}}}};
  ScopedClock clock(kClock);
  StatementOptions options;
  options.top_records = 5;
  EXPECT_EQ(Sql(tables, options, true),
            "SELECT DISTINCT \"Customers\".\"Full Name\" AS \"Client\", "
            "\"Orders\".\"CustomerID\", Qty * Price AS \"Total\", \"Customers\".\"ID\" AS \"ID\", "
            "\"Orders\".\"Order Day\" AS \"Order Day\" FROM \"Customers\", \"Orders\" WHERE  "
            "(\"Customers\".\"ID\" = \"Orders\".\"CustomerID\") AND "
            "(\"Customers\".\"Full Name\" LIKE ?1 ESCAPE '\\') AND "
            "(\"Orders\".\"Order Day\" BETWEEN ?2 AND ?3) GROUP BY \"Orders\".\"CustomerID\" "
            "ORDER BY \"Orders\".\"Order Day\" DESC LIMIT 5 ; "
            "text:A% | date:2010-01-01 | date:2010-12-31");
  options.refuse_host_sql = true;
  EXPECT_EQ(Sql(tables, options),
            std::to_string(kErrHostSqlRefused) + " brixobjects4.ParameterizedStatement: The "
            "calculated field Total is SQL written by the host (\"Qty * Price\"), and the options "
            "refuse host SQL.");
  options.top_records = -1;
  EXPECT_EQ(Sql(tables, options), "5 brixobjects4: Invalid procedure call or argument");
  EXPECT_EQ(Sql({}), " ; ");
}

TEST(ParameterizedStatement, RefusesHostWrittenJoinLinks) {
  StatementOptions options;
  options.refuse_host_sql = true;
  EXPECT_EQ(Sql({{"C", {{"ID", N, {}, {}, {}, 0, "Orders.CustomerID"}}}}, options),
            "SELECT \"C\".\"ID\" AS \"ID\" FROM \"C\" WHERE  (\"C\".\"ID\" = "
            "\"Orders\".\"CustomerID\") ; ");
  EXPECT_EQ(Sql({{"C", {{"ID", N, {}, {}, {}, 0, "(SELECT 1)"}}}}, options),
            std::to_string(kErrHostSqlRefused) + " brixobjects4.ParameterizedStatement: The join "
            "link \"(SELECT 1)\" of field ID is SQL written by the host, and the options refuse "
            "host SQL.");
}

}  // namespace
}  // namespace brix
