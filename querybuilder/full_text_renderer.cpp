// The dtSearch request: field by field, condition by condition, with operand texts that carry
// over between conditions.
#include "querybuilder/full_text_renderer.h"

#include <string_view>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/operand_dates.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/text.h"

namespace brix {
namespace {

constexpr std::string_view kDocumentTextField = "Textul_documentului";

std::string NearOperator(std::int16_t distance) {
  if (distance < 1 || distance > 100) distance = 33;
  return " w/" + std::to_string(distance) + " ";
}

// A day number as the platform writes a number: "40238", "40237.5".
std::string DayText(double day) { return CStr(Variant(day)); }

// The operand of a numeric field shown as a date, before the clause sets its bounds.
std::string DayNumberOperandText(qbe_ClauseOperator clause, const Variant& operand) {
  bool in_list = clause == qbe_ClauseInList;
  bool is_date = IsDate(operand);
  if ((is_date && !in_list) || IsNumeric(operand)) return std::to_string(OperandDayNumber(operand));
  switch (clause) {
    case qbe_ClauseInList:
    case qbe_ClauseLastXDays:
    case qbe_ClauseLastXMonths:
    case qbe_ClauseYear:
    case qbe_ClauseLastXYears:
      return ConcatText(operand);
    default:
      return {};
  }
}

// Words searched on the document text stand alone; on another field they follow its name.
std::string WordsText(const std::string& words, bool document_text) {
  return document_text ? "(" + words + ")" : " contains (" + words + "))";
}

}  // namespace

bool DiffersFromEmptyString(const Variant& value) {
  Comparison comparison = Compare(value, Variant(""));
  return comparison == Comparison::kLess || comparison == Comparison::kGreater;
}

std::string FullTextRenderer::ReturnDTConditions(std::int16_t use_near_operator_value) {
  near_ = NearOperator(use_near_operator_value);
  text1_.clear();
  text2_.clear();
  std::shared_ptr<xqb_Table> table = query_.Tables()->Item(Variant(std::int32_t{1}));
  std::string result;
  for (const auto& field : *table->Fields()) {
    if (!field->IsDTIndex()) continue;
    std::string field_text = FieldText(*field);
    if (!field_text.empty() && field_text != "(())") result += field_text + " AND ";
  }
  if (!result.empty()) result.resize(result.size() - 5);
  return result;
}

std::string FullTextRenderer::FieldText(const xqb_Field& field) {
  const bool document_text = field.DBName() == kDocumentTextField;
  std::string text;
  for (const auto& condition : *field.Conditions()) {
    if (!condition->ParamName().empty()) continue;
    SetOperandTexts(field, *condition);
    if (!document_text) text += "(" + field.DBName();
    AppendClauseText(condition->Clause(), document_text, text);
    text += IsFullTextClause(condition->Clause()) && document_text ? " AND " : " OR ";
  }
  if (text.empty()) return text;
  // Every condition ends in its joiner, so the text always ends in " OR " or " AND ".
  text.resize(text.size() - (text.ends_with(" OR ") ? 4 : 5));
  return "(" + text + ")";
}

void FullTextRenderer::SetOperandTexts(const xqb_Field& field, const xqb_Condition& condition) {
  SetOperandText(field, condition.Clause(), condition.Value(), text1_);
  SetOperandText(field, condition.Clause(), condition.SecondaryValue(), text2_);
  if (field.DBType() == qbe_DataNumeric && field.ShowAsType() == qbe_DataDate) {
    SetDayNumberBounds(condition);
  }
}

void FullTextRenderer::SetOperandText(const xqb_Field& field, qbe_ClauseOperator clause,
                                      const Variant& operand, std::string& text) const {
  switch (field.DBType()) {
    case qbe_DataBoolean:
      if (DiffersFromEmptyString(operand)) text = CBool(operand) ? "True" : "False";
      break;
    case qbe_DataDate:
      text = DiffersFromEmptyString(operand) ? OperandDateText(operand) : std::string();
      break;
    case qbe_DataMemo:
    case qbe_DataString:
    case qbe_DataUserDefined1:
    case qbe_DataUserDefined2:
    case qbe_DataUserDefined3:
      if (!DiffersFromEmptyString(operand)) {
        text.clear();
      } else if (field.ShowAsType() != qbe_DataBoolean) {
        text = ConcatText(operand);
      } else if (VarEqual(operand, Variant(true))) {
        text = "1";
      } else if (VarEqual(operand, Variant(false))) {
        text = "0";
      }
      break;
    case qbe_DataNumeric:
      if (field.ShowAsType() == qbe_DataDate) {
        text = DayNumberOperandText(clause, operand);
      } else {
        text = IsNumeric(operand) || clause == qbe_ClauseInList ? ConcatText(operand) : "";
      }
      break;
    default:
      break;
  }
}

void FullTextRenderer::SetDayNumberBounds(const xqb_Condition& condition) {
  const double today = query_.Today();
  const Variant& value = condition.Value();
  switch (condition.Clause()) {
    case qbe_ClauseBetween:
      text1_ = std::to_string(OperandDayNumber(value));
      text2_ = std::to_string(OperandDayNumber(condition.SecondaryValue()));
      break;
    case qbe_ClauseToday:
      text1_ = text2_ = DayText(today);
      break;
    case qbe_ClauseThisWeek: {
      double date = SystemDate();
      text1_ = DayText(date);
      text2_ = DayText(date - 7 + Weekday(date, vbMonday));
      break;
    }
    case qbe_ClauseThisMonth: {
      double date = SystemDate();
      text1_ = DayText(DateSerial(Year(date), Month(date), 1));
      text2_ = DayText(DateSerial(Year(date), Month(date) + 1, 0));
      break;
    }
    case qbe_ClauseLastXDays:
      text1_ = DayText(today - CDbl(value));
      text2_ = DayText(today);
      break;
    case qbe_ClauseLastXMonths:
      text1_ = DayText(DateAdd(DateInterval::kMonth, -CDbl(value), today));
      text2_ = DayText(today);
      break;
    case qbe_ClauseThisYear: {
      int year = Year(SystemDate());
      text1_ = DayText(DateSerial(year, 1, 1));
      text2_ = DayText(DateSerial(year, 12, 31));
      break;
    }
    case qbe_ClauseYear: {
      int year = CInt(value);
      text1_ = DayText(DateSerial(year, 1, 1));
      text2_ = DayText(DateSerial(year, 12, 31));
      break;
    }
    case qbe_ClauseLastXYears:
      text1_ = DayText(DateAdd(DateInterval::kYear, -CDbl(value), today));
      text2_ = DayText(today);
      break;
    case qbe_ClauseNextXDays:
      text1_ = DayText(today);
      text2_ = DayText(today + CDbl(value));
      break;
    case qbe_ClauseOverXDays:
      text1_ = DayText(today + CDbl(value));
      break;
    default:
      break;
  }
  text1_ = Format(Variant(text1_), "YYYYMM");
  text2_ = Format(Variant(text2_), "YYYYMM");
}

void FullTextRenderer::AppendClauseText(qbe_ClauseOperator clause, bool document_text,
                                        std::string& field_text) {
  if (IsRangeClause(clause) || clause == qbe_ClauseToday) {
    field_text += " contains (" + text1_ + "~~" + text2_ + "))";
    return;
  }
  switch (clause) {
    case qbe_ClauseContains:
    case qbe_ClauseEqualTo:
    case qbe_ClauseOverXDays:
    case qbe_ClauseTimeNow:
      field_text += " contains (" + text1_ + "))";
      break;
    case qbe_ClauseContainsWordsNear:
      // The near form replaces text1 for the conditions that follow.
      text1_ = ReplaceAll(text1_, " ", near_);
      field_text += WordsText(text1_, document_text);
      break;
    case qbe_ClauseContainsWords:
      field_text += WordsText(ReplaceAll(text1_, " ", "* AND ") + "*", document_text);
      break;
    case qbe_ClauseContainsExpression:
      field_text += WordsText(text1_, document_text);
      break;
    case qbe_ClauseGreaterOrEqual:
    case qbe_ClauseGreaterThan:
    case qbe_ClauseIsEmpty:
    case qbe_ClauseIsNull:
    case qbe_ClauseLessOrEqual:
    case qbe_ClauseLessThan:
    case qbe_ClauseNotContains:
    case qbe_ClauseNotEqual:
    case qbe_ClauseNotStartingWith:
    case qbe_ClauseStartingWith:
    case qbe_ClauseInList:
    case qbe_ClauseNotInList:
    case qbe_ClauseNotIsEmpty:
    case qbe_ClauseTimeGreaterThanNow:
    case qbe_ClauseTimeLessThanNow:
      // The engine cannot search these; the field's earlier conditions go with them.
      field_text.clear();
      break;
    default:  // the ranges and Today, written above
      break;
  }
}

}  // namespace brix
