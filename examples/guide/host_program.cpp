// One host program: builds a query, runs it on SQLite, saves it, and logs what goes wrong.
#include <sqlite3.h>

#include <iostream>

#include "diagnostics/app.h"
#include "diagnostics/logger.h"
#include "diagnostics/logger_factory.h"
#include "querybuilder/xqb_query.h"

using namespace brix;

// Runs the query's statement on `db` and prints the first column of each row.
void Run(const xqb_Query& query, sqlite3* db) {
  const ParameterizedStatement statement = query.ReturnParameterizedSQL();
  sqlite3_stmt* select = nullptr;
  if (sqlite3_prepare_v2(db, statement.text.c_str(), -1, &select, nullptr) != SQLITE_OK) {
    throw Error(20001, "Run", sqlite3_errmsg(db));
  }
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    sqlite3_bind_text(select, static_cast<int>(i + 1), statement.parameters[i].text.c_str(), -1,
                      SQLITE_TRANSIENT);
  }
  while (sqlite3_step(select) == SQLITE_ROW) {
    std::cout << sqlite3_column_text(select, 0) << "\n";
  }
  sqlite3_finalize(select);
}

int main() {
  // dbgToLogFile would append each report to <program folder>/<program>.DBG instead.
  auto logger = LoggerFactory::Create()->New_Logger(dbgMessageBox, App::Create());
  logger->OnMesajDeEroare([](const std::string&, const std::string&, const std::string&,
                             const std::string&, const std::string&, const std::string&,
                             const std::string& root, bool&) { std::cout << root << "\n"; });
  sqlite3* db = nullptr;
  sqlite3_open(":memory:", &db);
  sqlite3_exec(db,
               "CREATE TABLE Customers (Name TEXT, City TEXT);"
               "INSERT INTO Customers VALUES ('Ana', 'Cluj'), ('Dan', 'Iasi');",
               nullptr, nullptr, nullptr);
  try {
    auto query = xqb_Query::Create();
    auto customers = query->Tables()->Add("Customers");
    customers->Fields()->Add("Name");
    customers->Fields()->Add("City")->Conditions()->Add(qbe_ClauseEqualTo, Variant("Cluj"));
    Run(*query, db);
    const std::string saved = query->SaveXMLDef();  // what a host stores
    xqb_Query::Create()->LoadXMLDef(saved);
    std::cout << "saved, and loads again\n";

    customers->SetDBName("Clients");  // no such table: the run fails and is logged
    Run(*query, db);
  } catch (const Error& error) {
    logger->ErrReport(error, 0, "Main", "main");
  }
  sqlite3_close(db);
}
