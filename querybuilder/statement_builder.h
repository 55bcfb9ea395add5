// The SELECT statement of a query and the lists it is made of: select list, tables, GROUP BY and
// ORDER BY.
#pragma once

#include <cstdint>
#include <string>

#include "querybuilder/parameterized_statement.h"

namespace brix {

class xqb_Field;
class xqb_Query;
class xqb_Table;

/// How a statement spells its names. The base class is the compatible spelling: names as the
/// tree stores them (stored names are already bracketed where they hold a blank).
class StatementNames {
 public:
  virtual ~StatementNames() = default;
  /// An item of the FROM list: "[table]".
  virtual std::string Table(const xqb_Table& table) const;
  /// An item of the select list: `CalculatedFormula` + " AS " + `DBName` for a calculated field,
  /// else the `DBName` alone when `simple_fields`, else "[table].field AS alias" (an empty
  /// `Alias` leaves "AS " followed by nothing).
  virtual std::string SelectItem(const xqb_Table& table, const xqb_Field& field,
                                 bool simple_fields) const;
  /// An item of the ORDER BY list, before its direction: "table.field".
  virtual std::string SortItem(const xqb_Table& table, const xqb_Field& field) const;
  /// An item of the GROUP BY list: "[table].field".
  virtual std::string GroupItem(const xqb_Table& table, const xqb_Field& field) const;
};

/// The names of a parameterized statement: every table and field a quoted identifier
/// (`QuotedName`), "table"."field" wherever a field is named, an alias written only when set.
/// A calculated field's formula is host SQL: it passes as it stands, or raises
/// kErrHostSqlRefused with `refuse_host_sql`.
class QuotedStatementNames : public StatementNames {
 public:
  explicit QuotedStatementNames(bool refuse_host_sql) : refuse_host_sql_(refuse_host_sql) {}
  std::string Table(const xqb_Table& table) const override;
  std::string SelectItem(const xqb_Table& table, const xqb_Field& field,
                         bool simple_fields) const override;
  std::string SortItem(const xqb_Table& table, const xqb_Field& field) const override;
  std::string GroupItem(const xqb_Table& table, const xqb_Field& field) const override;

 private:
  bool refuse_host_sql_;
};

/// Writes the statement of a query and its lists; it reads the tree and changes nothing.
///
/// The three field lists place each item by a position of its field (`AppearanceOrder`,
/// `OrderByLevel`, `GroupByLevel`) into slots 1..n, n being the number of fields of all tables:
/// the first item for a free slot takes it, every other item (position 0 where that means
/// unplaced, above n, or a taken slot) follows the placed ones in tree order. A position below
/// the lowest slot raises 9. Names are spelled by a `StatementNames`.
///
/// The GROUP BY list takes every field with a non-zero `GroupByLevel`, whatever its
/// `UseInStatement` (as the ORDER BY list does); `GroupOrder` is not written, since GROUP BY has
/// no direction and sorting belongs to the ORDER BY list.
class StatementBuilder {
 public:
  explicit StatementBuilder(const xqb_Query& query, const StatementNames& names = kCompatible)
      : query_(query), names_(names) {}

  /// "SELECT [DISTINCT ]" fields " FROM " tables, then " WHERE ", " GROUP BY ", " ORDER BY "
  /// where their texts are not empty, and " LIMIT " `top_records` when it is not 0 (for every
  /// statement type; a negative count is written as it stands). "" for a query without tables.
  /// The WHERE text (with join equalities, table-qualified fields) is computed once to decide
  /// whether the clause is written and once more for the text written.
  std::string ReturnSQL(std::int32_t top_records = 0) const;

  /// The same statement for `options.dialect`, from the same lists and the same conditions, its
  /// names quoted and every operand a placeholder (see parameterized_where.h); the WHERE text is
  /// computed once. A negative `top_records` raises 5.
  ParameterizedStatement ReturnParameterizedSQL(const StatementOptions& options) const;

  /// "[table], [table2]" in collection order; "" without tables.
  std::string ReturnTables() const;

  /// The select list of the fields whose `UseInStatement` is True, placed by `AppearanceOrder`
  /// (0 means unplaced); items as `StatementNames::SelectItem` writes them.
  std::string ReturnAllFields(bool simple_fields = true) const;

  /// The sort item + " ASC" / " DESC" for every field sorted ascending or descending, placed
  /// by `OrderByLevel`. Level 0 is a slot of its own that is never written: the first field
  /// sorted at level 0 is left out, later ones follow the placed fields.
  std::string ReturnOrderByFields() const;

 private:
  /// The group item of every field with a non-zero `GroupByLevel`, placed by that level.
  std::string ReturnGroupByFields() const;

  static const StatementNames kCompatible;
  const xqb_Query& query_;
  const StatementNames& names_;
};

}  // namespace brix
