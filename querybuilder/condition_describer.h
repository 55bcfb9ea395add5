// One condition of a query as a Romanian sentence for the host's screens.
#pragma once

#include <cstdint>
#include <string>

namespace brix {

class xqb_Condition;
class xqb_Field;
class xqb_Query;
class xqb_Table;

/// Describes a condition: the field's `Caption`, then " " (one table) or
/// " (" + the table's `Description` + ") " (two tables or more), then the clause's phrase with
/// the operand texts, for example "Activ sa fie Da" or "Suma este intre 1 si 9".
///
/// Operand texts, by the field's `DBType`:
/// - Boolean: "Da" when the operand equals True by the platform's comparison on the operand as
///   held (`VarEqual`: -1 is True, the text "True" of a definition read back is not), else "Nu".
/// - String: shown as Memo or String, the concatenation text (`ConcatText`) in single quotes;
///   otherwise the concatenation text.
/// - Numeric and Decimal shown as Date: for the counted clauses (18, 21, 23, 24, 28, 29) the
///   first operand's concatenation text and "" (the second operand is not read); for any other
///   clause both operands formatted "dd-MMM-yyyy" (`OperandDateText`: numbers and number texts
///   are day numbers, text that is no date stays as it is, Empty and Null give ""). Shown as
///   another type: the concatenation texts.
/// - Any other type: the concatenation texts.
/// On the field "Publicatie_Luna" the first text is the Romanian name of the month whose number
/// is the first operand's concatenation text, "1" to "12" exactly, and "" for any other text.
///
/// The phrases are kept apart from the clause catalogue on purpose: they read as sentences (with
/// the operands in place) and change independently of the catalogue's menu texts. A clause
/// outside 1..32 has no phrase and gives the prefix alone.
class ConditionDescriber {
 public:
  explicit ConditionDescriber(const xqb_Query& query) : query_(query) {}

  /// The sentence for the first condition in tree order whose `ConditionID` is `condition_id`, or
  /// "" when none is. Errors of operands that do not convert reach the caller unchanged.
  std::string ReturnConditionDescription(std::int32_t condition_id) const;

  /// The sentence for `condition`, held by `field` of `table` in this query.
  std::string Describe(const xqb_Table& table, const xqb_Field& field,
                       const xqb_Condition& condition) const;

 private:
  const xqb_Query& query_;
};

}  // namespace brix
