// PostgreSQL: one connection, one read-only transaction, parameters as typed text.
#include "tools/postgres_runner.h"

#include <libpq-fe.h>

#include <memory>
#include <string_view>
#include <vector>

#include "runtime/error.h"
#include "tools/brixq_errors.h"

namespace brix::brixq {
namespace {

using Connection = std::unique_ptr<PGconn, decltype(&PQfinish)>;
using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

// Type OIDs of the server's built-in types (pg_type.oid), fixed since PostgreSQL 7.
enum TypeOid : Oid {
  kBool = 16, kInt8 = 20, kInt2 = 21, kInt4 = 23, kText = 25, kFloat4 = 700, kFloat8 = 701,
  kDate = 1082, kTime = 1083, kTimestamp = 1114, kNumeric = 1700,
};

Oid OidOf(SqlType type) {
  switch (type) {
    case SqlType::kInteger:
      return kInt8;
    case SqlType::kReal:
      return kFloat8;
    case SqlType::kBoolean:
      return kBool;
    case SqlType::kDate:
      return kDate;
    case SqlType::kDateTime:
      return kTimestamp;
    case SqlType::kTime:
      return kTime;
    default:
      return kText;
  }
}

bool IsNumericOid(Oid type) {
  return type == kInt2 || type == kInt4 || type == kInt8 || type == kFloat4 || type == kFloat8 ||
         type == kNumeric;
}

// The result of a command, raised with the server's message and SQLSTATE when it failed.
Result Check(PGconn* connection, PGresult* raw) {
  Result result(raw, PQclear);
  ExecStatusType status = result ? PQresultStatus(result.get()) : PGRES_FATAL_ERROR;
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return result;
  const char* state = result ? PQresultErrorField(result.get(), PG_DIAG_SQLSTATE) : nullptr;
  RaisePostgres(std::string(result ? PQresultErrorMessage(result.get())
                                   : PQerrorMessage(connection)) +
                (state ? std::string(" (SQLSTATE ") + state + ")" : std::string()));
}

Result Execute(PGconn* connection, const ParameterizedStatement& statement) {
  std::vector<Oid> types;
  std::vector<const char*> values;
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    const SqlParameter& parameter = statement.parameters[i];
    if (parameter.text.find('\0') != std::string::npos) {
      RaisePostgres("parameter " + std::to_string(i + 1) +
                    " holds the NUL character, which PostgreSQL text cannot hold");
    }
    types.push_back(OidOf(parameter.type));
    values.push_back(parameter.text.c_str());
  }
  return Check(connection, PQexecParams(connection, statement.text.c_str(),
                                        static_cast<int>(values.size()), types.data(),
                                        values.data(), nullptr, nullptr, 0));
}

ResultTable Rows(const PGresult* result) {
  ResultTable table;
  int columns = PQnfields(result);
  for (int c = 0; c < columns; ++c) {
    table.columns.emplace_back(PQfname(result, c));
    table.numeric.push_back(IsNumericOid(PQftype(result, c)));
  }
  for (int r = 0; r < PQntuples(result); ++r) {
    std::vector<std::string>& row = table.rows.emplace_back();
    for (int c = 0; c < columns; ++c) {
      row.push_back(PQgetisnull(result, r, c)
                        ? std::string("NULL")
                        : CellText(std::string(PQgetvalue(result, r, c),
                                               std::size_t(PQgetlength(result, r, c)))));
    }
  }
  return table;
}

}  // namespace

[[noreturn]] void RaisePostgres(std::string_view description) {
  std::string line;
  for (char c : description) {
    bool blank = c == '\n' || c == '\t' || c == ' ';
    if (blank && (line.empty() || line.back() == ' ')) continue;
    line += blank ? ' ' : c;
  }
  if (!line.empty() && line.back() == ' ') line.pop_back();
  Raise(kErrPostgres, "brixq", "PostgreSQL: " + line);
}

ResultTable RunOnPostgres(const std::string& conninfo, const ParameterizedStatement& statement) {
  if (statement.text.empty()) RaisePostgres("there is no statement to run (no tables)");
  Connection connection(PQconnectdb(conninfo.c_str()), PQfinish);
  if (!connection || PQstatus(connection.get()) != CONNECTION_OK) {
    RaisePostgres("cannot connect with \"" + conninfo + "\": " +
                  (connection ? PQerrorMessage(connection.get()) : "out of memory"));
  }
  Check(connection.get(), PQexec(connection.get(), "BEGIN READ ONLY"));
  Result result = Execute(connection.get(), statement);
  return Rows(result.get());
}

}  // namespace brix::brixq
