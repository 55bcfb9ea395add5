// The filter text of a query: its fields' conditions as SQL, and the equalities that link its
// tables.
#pragma once

#include <memory>
#include <string>

#include "querybuilder/xqb_table.h"

namespace brix {

class xqb_Query;

/// Writes the WHERE text of a query; it reads the tree and changes nothing.
///
/// Each field with conditions gives "(c1 OR c2 ...)" and the fields are joined by " AND ", in
/// tree order. A condition is the field expression (the field's `DBName` alone, or
/// "[table].field" when not simple) followed by its clause text; a condition whose `ParamName` is
/// not empty is skipped, and a full-text kind (25 to 27) empties what its field had written so
/// far. A field whose `LinksWithField` is not empty adds " (table.field = link) AND " to the join
/// text.
///
/// Values and delimiters:
/// - The delimiter follows the field's `DBType`: none for 1, 2, 5 and 12, "#" for 3, "'" for 4
///   and 6. Any other type keeps the delimiter of the field visited before it in the same call
///   (across tables; the call starts with none), whether or not that field had conditions.
/// - Inside "'" every single quote of a value is doubled (O'Brien gives 'O''Brien'); nothing
///   else is escaped. The LIKE wildcard is "%" for every statement type. The lists of the IN
///   kinds (17, 19) are written as they stand.
/// - A value is its string form as a concatenation gives it (Null gives ""), except on a Date
///   field (`DBType` 3), where the ranges and relative kinds write whole day numbers: Between
///   converts both operands to days (`OperandDay`: a number or number text is a day number, a
///   date or date text gives its day, the time of day is dropped, Empty is day 0, True day -1,
///   Null raises 94, other text 13); Today is the query's
///   `Today`; this week runs Monday to Sunday, this month and this year from their first to their
///   last day, all of the clock's date; the year kind takes the year `CLng(Value)`; the last X /
///   next X / over X kinds move `Today` by `CDbl(Value)` days, months or years. Equality and the
///   comparisons (3, 4, 5, 8, 9, 11) write the value formatted "dd-MMM-yyyy" (`OperandDateText`:
///   "43051" is 12-Nov-2017, text that is no date stays as it is); the LIKE and list
///   kinds write the string form.
/// - The time kinds (30 to 32) write the clock's time as "hh:mm" on any field.
/// - A Boolean field writes its operators like any other field (" = ", " <> ") with no
///   delimiter, so its value reads True or False.
/// - Empty tests (6, 20) on a Memo or String `DBType` repeat the bare `DBName`:
///   "F = '' OR name IS NULL ".
class WhereRenderer {
 public:
  explicit WhereRenderer(const xqb_Query& query) : query_(query) {}

  /// The filter text; "" when nothing is filtered. `tabela`, when given, narrows the walk to that
  /// table's fields (conditions and join equalities). With `with_join_conditions` the join text
  /// comes first: join + " AND " + filter, or whichever is not empty; without it the join text is
  /// not written. Errors of the tree and of value conversions reach the caller unchanged.
  std::string ReturnWHEREConditions(bool simple_fields = true,
                                    std::shared_ptr<xqb_Table> tabela = nullptr,
                                    bool with_join_conditions = false) const;

 private:
  const xqb_Query& query_;
};

}  // namespace brix
