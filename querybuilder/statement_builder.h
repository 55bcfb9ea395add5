// The SELECT statement of a query and the lists it is made of: select list, tables, GROUP BY and
// ORDER BY.
#pragma once

#include <cstdint>
#include <string>

namespace brix {

class xqb_Query;

/// Writes the statement of a query and its lists; it reads the tree and changes nothing.
///
/// The three field lists place each item by a position of its field (`AppearanceOrder`,
/// `OrderByLevel`, `GroupByLevel`) into slots 1..n, n being the number of fields of all tables:
/// the first item for a free slot takes it, every other item (position 0 where that means
/// unplaced, above n, or a taken slot) follows the placed ones in tree order. A position below
/// the lowest slot raises 9. Names are written as the tree holds them (stored names are already
/// bracketed where they hold a blank), and an empty `Alias` leaves "AS " followed by nothing.
///
/// The GROUP BY list takes every field with a non-zero `GroupByLevel`, whatever its
/// `UseInStatement` (as the ORDER BY list does); `GroupOrder` is not written, since GROUP BY has
/// no direction and sorting belongs to the ORDER BY list.
class StatementBuilder {
 public:
  explicit StatementBuilder(const xqb_Query& query) : query_(query) {}

  /// "SELECT [DISTINCT ]" fields " FROM " tables, then " WHERE ", " GROUP BY ", " ORDER BY "
  /// where their texts are not empty, and " LIMIT " `top_records` when it is not 0 (for every
  /// statement type; a negative count is written as it stands). "" for a query without tables.
  /// The WHERE text (with join equalities, table-qualified fields) is computed once to decide
  /// whether the clause is written and once more for the text written.
  std::string ReturnSQL(std::int32_t top_records = 0) const;

  /// "[table], [table2]" in collection order; "" without tables.
  std::string ReturnTables() const;

  /// The select list of the fields whose `UseInStatement` is True, placed by `AppearanceOrder`
  /// (0 means unplaced). An item is `CalculatedFormula` + " AS " + `DBName` for a calculated
  /// field, else the `DBName` alone when `simple_fields`, else "[table].field AS alias".
  std::string ReturnAllFields(bool simple_fields = true) const;

  /// "table.field ASC" / "table.field DESC" for every field sorted ascending or descending, placed
  /// by `OrderByLevel`. Level 0 is a slot of its own that is never written: the first field
  /// sorted at level 0 is left out, later ones follow the placed fields.
  std::string ReturnOrderByFields() const;

 private:
  /// "[table].field" for every field with a non-zero `GroupByLevel`, placed by that level.
  std::string ReturnGroupByFields() const;

  const xqb_Query& query_;
};

}  // namespace brix
