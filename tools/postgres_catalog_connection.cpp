// PostgreSQL connection of the catalogue: PQexecParams with text parameters, rows as text.
#include "tools/postgres_catalog_connection.h"

#include <charconv>

#include "runtime/error.h"
#include "tools/brixq_errors.h"
#include "tools/postgres_runner.h"

namespace brix::brixq {
PostgresCatalogConnection::PostgresCatalogConnection(const std::string& conninfo)
    : connection_(PQconnectdb(conninfo.c_str()), PQfinish) {
  if (!connection_) RaisePostgres("out of memory");
  if (PQstatus(connection_.get()) != CONNECTION_OK) {
    RaisePostgres(PQerrorMessage(connection_.get()));
  }
  // Notices (a table that already exists) are not errors; they would only clutter the log.
  PQsetNoticeProcessor(
      connection_.get(), [](void*, const char*) {}, nullptr);
}

PostgresCatalogConnection::Result PostgresCatalogConnection::Run(
    const std::string& sql, const std::vector<StoreValue>& params) {
  // A pooled connection whose server went away is opened again before it is used.
  if (PQstatus(connection_.get()) == CONNECTION_BAD) PQreset(connection_.get());
  std::vector<std::string> texts(params.size());
  std::vector<const char*> values(params.size(), nullptr);
  std::vector<int> lengths(params.size(), 0);
  for (std::size_t i = 0; i < params.size(); ++i) {
    if (const auto* text = std::get_if<std::string>(&params[i])) {
      texts[i] = *text;
    } else if (const auto* number = std::get_if<std::int64_t>(&params[i])) {
      texts[i] = std::to_string(*number);
    } else {
      continue;
    }
    values[i] = texts[i].c_str();
    lengths[i] = static_cast<int>(texts[i].size());
  }
  Result result(PQexecParams(connection_.get(), sql.c_str(), static_cast<int>(params.size()),
                             nullptr, values.data(), lengths.data(), nullptr, 0),
                PQclear);
  ExecStatusType status = result ? PQresultStatus(result.get()) : PGRES_FATAL_ERROR;
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
    std::string message = PQerrorMessage(connection_.get());
    // A transaction that failed part-way is ended here, so the pooled connection stays usable.
    if (PQtransactionStatus(connection_.get()) == PQTRANS_INERROR) {
      PQclear(PQexec(connection_.get(), "ROLLBACK"));
    }
    RaisePostgres(message);
  }
  return result;
}

std::vector<StoreRow> PostgresCatalogConnection::Query(const std::string& sql,
                                                       const std::vector<StoreValue>& params) {
  Result result = Run(sql, params);
  std::vector<StoreRow> rows;
  for (int r = 0; r < PQntuples(result.get()); ++r) {
    StoreRow row;
    for (int c = 0; c < PQnfields(result.get()); ++c) {
      if (PQgetisnull(result.get(), r, c)) {
        row.emplace_back();
      } else {
        row.emplace_back(
            std::string(PQgetvalue(result.get(), r, c), PQgetlength(result.get(), r, c)));
      }
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::int64_t PostgresCatalogConnection::Execute(const std::string& sql,
                                                const std::vector<StoreValue>& params) {
  Result result = Run(sql, params);
  std::string_view count = PQcmdTuples(result.get());
  std::int64_t changed = 0;
  std::from_chars(count.data(), count.data() + count.size(), changed);
  return changed;
}

void PostgresCatalogConnection::BeginWrite() { Execute("BEGIN", {}); }

}  // namespace brix::brixq
