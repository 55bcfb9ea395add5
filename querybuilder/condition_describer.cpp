// Condition sentences: prefix, operand texts and the clause phrases.
#include "querybuilder/condition_describer.h"

#include <array>
#include <string_view>
#include <utility>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/operand_dates.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace brix {
namespace {

constexpr std::string_view kMonthField = "Publicatie_Luna";
constexpr std::array<std::string_view, 12> kMonthNames = {
    "Ianuarie", "Februarie", "Martie",     "Aprilie",   "Mai",       "Iunie",
    "Iulie",    "August",    "Septembrie", "Octombrie", "Noiembrie", "Decembrie"};

struct OperandTexts {
  std::string first;
  std::string second;
};

std::string YesNo(const Variant& operand) { return VarEqual(operand, Variant(true)) ? "Da" : "Nu"; }

std::string Quoted(const Variant& operand) { return "'" + ConcatText(operand) + "'"; }

OperandTexts TextsOf(const xqb_Field& field, const xqb_Condition& condition) {
  const Variant& value = condition.Value();
  const Variant& secondary = condition.SecondaryValue();
  const qbe_DataType show_as = field.ShowAsType();
  switch (field.DBType()) {
    case qbe_DataBoolean:
      return {YesNo(value), YesNo(secondary)};
    case qbe_DataString:
      if (show_as == qbe_DataMemo || show_as == qbe_DataString) {
        return {Quoted(value), Quoted(secondary)};
      }
      break;
    case qbe_DataNumeric:
    case qbe_DataDecimal:
      if (show_as == qbe_DataDate) {
        if (IsCountedClause(condition.Clause())) return {ConcatText(value), ""};
        return {OperandDateText(value), OperandDateText(secondary)};
      }
      break;
    default:
      break;
  }
  return {ConcatText(value), ConcatText(secondary)};
}

std::string RomanianMonthName(const Variant& value) {
  std::string number = ConcatText(value);
  for (std::size_t i = 0; i < kMonthNames.size(); ++i) {
    if (number == std::to_string(i + 1)) return std::string(kMonthNames[i]);
  }
  return {};
}

std::string Phrase(qbe_ClauseOperator clause, const std::string& t1, const std::string& t2) {
  switch (clause) {
    case qbe_ClauseBetween:
      return "este intre " + t1 + " si " + t2;
    case qbe_ClauseContains:
      return "contine " + t1;
    case qbe_ClauseEqualTo:
      return "sa fie " + t1;
    case qbe_ClauseGreaterOrEqual:
      return "este mai mare sau egal cu " + t1;
    case qbe_ClauseGreaterThan:
      return "este mai mare ca " + t1;
    case qbe_ClauseIsEmpty:
      return "lipseste";
    case qbe_ClauseIsNull:
      return "este <NULL>";
    case qbe_ClauseLessOrEqual:
      return "este mai mic sau egal cu " + t1;
    case qbe_ClauseLessThan:
      return "este mai mic ca " + t1;
    case qbe_ClauseNotContains:
      return "nu contine " + t1;
    case qbe_ClauseNotEqual:
      return "nu este egal cu " + t1;
    case qbe_ClauseNotStartingWith:
      return "nu incepe cu " + t1;
    case qbe_ClauseStartingWith:
      return "incepe cu " + t1;
    case qbe_ClauseToday:
      return "este astazi";
    case qbe_ClauseThisWeek:
      return "este saptamana aceasta";
    case qbe_ClauseThisMonth:
      return "este luna aceasta";
    case qbe_ClauseInList:
      return "este in lista " + t1;
    case qbe_ClauseLastXDays:
      return "este in ultimele " + t1 + " zile";
    case qbe_ClauseNotInList:
      return "nu este in lista " + t1;
    case qbe_ClauseNotIsEmpty:
      return "nu lipseste";
    case qbe_ClauseLastXMonths:
      return "este in ultimele " + t1 + " luni";
    case qbe_ClauseThisYear:
      return "este anul acesta";
    case qbe_ClauseYear:
      return "este in anul " + t1;
    case qbe_ClauseLastXYears:
      return "este in ultimii " + t1 + " ani";
    case qbe_ClauseContainsWordsNear:
      return "contine apropiat cuvintele " + t1;
    case qbe_ClauseContainsWords:
      return "contine cuvintele " + t1;
    case qbe_ClauseContainsExpression:
      return "contine expresia " + t1;
    case qbe_ClauseNextXDays:
      return "in urmatoarele " + t1 + " zile";
    case qbe_ClauseOverXDays:
      return "peste " + t1 + " zile";
    case qbe_ClauseTimeNow:
      return "este ora curenta";
    case qbe_ClauseTimeGreaterThanNow:
      return "este mai mare decat ora curenta";
    case qbe_ClauseTimeLessThanNow:
      return "este mai mic decat ora curenta";
  }
  return {};
}

}  // namespace

std::string ConditionDescriber::ReturnConditionDescription(std::int32_t condition_id) const {
  std::string description;
  FindInConditions(
      query_, [&](const xqb_Table& table, const xqb_Field& field, const xqb_Condition& condition) {
        if (condition.ConditionID() != condition_id) return false;
        description = Describe(table, field, condition);
        return true;
      });
  return description;
}

std::string ConditionDescriber::Describe(const xqb_Table& table, const xqb_Field& field,
                                         const xqb_Condition& condition) const {
  std::string prefix = field.Caption();
  prefix += query_.Tables()->Count() < 2 ? " " : " (" + table.Description() + ") ";
  OperandTexts texts = TextsOf(field, condition);
  if (field.DBName() == kMonthField) texts.first = RomanianMonthName(condition.Value());
  return prefix + Phrase(condition.Clause(), texts.first, texts.second);
}

}  // namespace brix
