// Builds an SQLite database from an SQL script: sample_database_builder SCRIPT DATABASE.
// The database is written under a temporary name and renamed, so a failed build leaves none.
#include <sqlite3.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: sample_database_builder SCRIPT DATABASE\n";
    return 2;
  }
  std::ifstream script_file(argv[1], std::ios::binary);
  std::stringstream script;
  script << script_file.rdbuf();
  if (!script_file) {
    std::cerr << "sample_database_builder: cannot read " << argv[1] << "\n";
    return 1;
  }
  std::string target = argv[2];
  std::string temporary = target + ".tmp";
  std::remove(temporary.c_str());
  sqlite3* db = nullptr;
  char* message = nullptr;
  bool ok = sqlite3_open(temporary.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, script.str().c_str(), nullptr, nullptr, &message) == SQLITE_OK;
  if (!ok)
    std::cerr << "sample_database_builder: " << (message ? message : sqlite3_errmsg(db)) << "\n";
  sqlite3_free(message);
  sqlite3_close(db);
  if (!ok || std::rename(temporary.c_str(), target.c_str()) != 0) {
    std::remove(temporary.c_str());
    return 1;
  }
  return 0;
}
