// The tables of a query: a keyed collection by stored DBName, with the existence test.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_table.h"

namespace brix {

template <class T>
class NameIndex;

/// A query's tables in insertion order, keyed by each table's stored (normalised) `DBName`.
/// Key lookup ignores letter case; the existence test does not.
class xqb_Tables : public ModelCollection<xqb_Table, NameIndex<xqb_Table>> {
 public:
  static std::shared_ptr<xqb_Tables> Create();

  std::string TypeName() const override { return "xqb_Tables"; }

  /// Creates a table with `DBName` = the normalised name and `Description` = `description`, or
  /// `db_name` as given when `description` is "", adds it under its stored `DBName` and returns
  /// it. Raises 1000 "[Add Table]" when `TableExists(db_name)`; a name that only normalisation or
  /// letter case tells apart from a held key fails with the collection's 457 instead.
  std::shared_ptr<xqb_Table> Add(std::string_view db_name, std::string_view description = "");

  /// Adds `table` itself under its `DBName`. Raises 1000 "[AddObjectTable]" when
  /// `TableExists(table->DBName())`, 91 for null.
  void AddObjectTable(std::shared_ptr<xqb_Table> table);

  /// True when a held table's `DBName` equals `table_name` exactly (case-sensitive, the argument
  /// is not normalised). A search past position 32767 without a match raises 6.
  bool TableExists(std::string_view table_name);

 private:
  xqb_Tables() = default;
};

}  // namespace brix
