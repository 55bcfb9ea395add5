// Renders the statement with placeholders and runs it on SQLite, each value bound by its type.
#include <sqlite3.h>

#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  auto name = query->Tables()->Add("Customers")->Fields()->Add("Name");
  name->SetAlias("Client");
  name->Conditions()->Add(qbe_ClauseStartingWith, Variant("D'"));  // a quote: no escaping needed

  const ParameterizedStatement statement = query->ReturnParameterizedSQL();  // SQLite by default
  std::cout << statement.text << "\n";

  sqlite3* db = nullptr;
  sqlite3_open(":memory:", &db);
  sqlite3_exec(db,
               "CREATE TABLE Customers (Name TEXT); INSERT INTO Customers VALUES "
               "('Ana'), ('D''Artagnan'), ('Dan');",
               nullptr, nullptr, nullptr);
  sqlite3_stmt* select = nullptr;
  sqlite3_prepare_v2(db, statement.text.c_str(), -1, &select, nullptr);
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    // Every type has a canonical text (ISO dates, "true"/"false"); text binds all of them here.
    const std::string& text = statement.parameters[i].text;
    sqlite3_bind_text(select, static_cast<int>(i + 1), text.c_str(), -1, SQLITE_TRANSIENT);
  }
  while (sqlite3_step(select) == SQLITE_ROW) {
    std::cout << reinterpret_cast<const char*>(sqlite3_column_text(select, 0)) << "\n";
  }
  sqlite3_finalize(select);
  sqlite3_close(db);
}
