// The dtSearch request of a query: the conditions of its first table's indexed fields as the
// search text of the full-text engine.
#pragma once

#include <cstdint>
#include <string>

#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

class xqb_Condition;
class xqb_Field;
class xqb_Query;

/// The platform's `value <> ""` taken as a condition: True when `value` compares less or greater
/// than the empty string. Null compares Null and is no difference; Empty equals "". Raises what
/// `Compare` raises (13 for an error value or an array, 91 for Nothing).
bool DiffersFromEmptyString(const Variant& value);

/// Writes the request text of the dtSearch engine; it reads the tree and changes nothing.
///
/// Only the first table takes part (a query without tables raises the collection's 9), and of it
/// only the fields marked `IsDTIndex`. Each condition whose `ParamName` is empty writes
/// "(" + field + its clause text + a joiner; the document text field "Textul_documentului" writes
/// no "(" + field. A field's text loses its last joiner and is wrapped in "(" ")"; "(())" is left
/// out, and the fields are joined by " AND ". Ranges read "(Field contains (low~~high))", words on
/// the document text "(alfa* AND beta*)". A clause the engine cannot search (4 to 13, 17, 19, 20,
/// 31, 32) empties its field's text, so a field that ends with one writes "()"; a clause outside
/// 1..32 writes only "(" + field.
///
/// The operand texts text1 and text2 live for the whole call and start empty: a rule that leaves
/// one unchanged keeps the text of the condition before, even of another field. Hosts rely on
/// this (a Boolean condition without value repeats the previous operand), so it stays.
///
/// Operands, by the field's `DBType`; "non-empty" is `DiffersFromEmptyString`:
/// - Boolean: non-empty gives "True" or "False" by `CBool`; empty keeps the previous text.
/// - Date: non-empty gives the operand formatted "dd-MMM-yyyy" (`OperandDateText`: a day-number
///   text such as "43051" is that day, 12-Nov-2017; text that is neither a date nor a day number
///   stays as it is, so no text operand of an indexed Date field raises); empty gives "".
/// - Memo, String, 8, 9, 10: non-empty gives the operand's concatenation text (`ConcatText`);
///   when `ShowAsType` is Boolean, an operand equal to True (`VarEqual`, as held: the text "True"
///   is not True) gives "1", one equal to False "0", any other keeps the previous text. Empty
///   gives "".
/// - Numeric: see below. BLOB, 7, Time, Decimal and values outside 1..12 keep the previous texts.
///
/// Numeric fields not shown as dates give the concatenation text of a numeric operand
/// (`IsNumeric`) or of any operand of the in-list clause, else "". Numeric fields shown as dates
/// hold day numbers: a date operand (except for the in-list clause) or a numeric one gives its
/// 32-bit day number (`OperandDayNumber`: as `CLng`, a date or date text read as a date first;
/// halves round to even);
/// otherwise the in-list clause and the counted clauses 18, 21, 23, 24 give the concatenation
/// text and any other clause "". The clause then sets the bounds: Between both operands as day
/// numbers; Today the query's `Today`; this week the clock's date and, after it, the date minus 7
/// plus its Monday-based weekday (a reversed range on every day but Sunday, kept as hosts send
/// it); this month and this year their first and last days of the clock's date; Year the year
/// `CInt(Value)`; the last/next/over X days move `Today` by `CDbl(Value)` days, the last X
/// months and years by `DateAdd` (rounded). Last, both texts are reformatted "YYYYMM" (`Format`:
/// a day-number text reads as a date, text that is no date stays as it is).
///
/// Operands that do not convert raise the platform's errors (13 type mismatch, 6 overflow, 94 for
/// Null), which reach the caller unchanged.
class FullTextRenderer {
 public:
  explicit FullTextRenderer(const xqb_Query& query) : query_(query) {}

  /// The request text, or "" when no indexed field has a usable condition. The proximity
  /// operator is " w/n " for `use_near_operator_value` n in 1..100, else " w/33 ".
  std::string ReturnDTConditions(std::int16_t use_near_operator_value = 33);

 private:
  std::string FieldText(const xqb_Field& field);
  void SetOperandTexts(const xqb_Field& field, const xqb_Condition& condition);
  void SetOperandText(const xqb_Field& field, qbe_ClauseOperator clause, const Variant& operand,
                      std::string& text) const;
  void SetDayNumberBounds(const xqb_Condition& condition);
  void AppendClauseText(qbe_ClauseOperator clause, bool document_text, std::string& field_text);

  const xqb_Query& query_;
  std::string near_;
  std::string text1_;
  std::string text2_;
};

}  // namespace brix
