// Random query trees for round-trip tests: every saved property of every class set to a random
// value, condition operands of every kind a document holds, and awkward text throughout.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "querybuilder/xqb_query.h"
#include "runtime/variant.h"
#include "tests/support/query_tree.h"

namespace brix::test_support {

class RandomQueryMaker {
 public:
  explicit RandomQueryMaker(unsigned seed) : random_(seed) {}

  /// A whole tree: up to 3 tables of up to 4 fields of up to 4 conditions.
  std::shared_ptr<xqb_Query> Make() {
    auto query = xqb_Query::Create();
    FillQuery(*query);
    for (int t = Number(0, 3); t > 0; --t) {
      auto table = query->Tables()->Add("T" + std::to_string(t) + Pick({"", " x", "ț"}), Text());
      table->SetTag(Text());
      for (int f = Number(0, 4); f > 0; --f)
        FillField(*table->Fields()->Add("F" + std::to_string(f)));
    }
    return query;
  }

  int Number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  bool Flag() { return Number(0, 1) == 1; }
  std::int16_t Integer() { return static_cast<std::int16_t>(Number(-32768, 32767)); }

  /// Text made of pieces that the document must carry exactly: markup characters, CDATA ends,
  /// line breaks, leading and trailing blanks, tabs, non-ASCII letters.
  std::string Text() {
    static const char* const kPieces[] = {"",    "a",   "Ş",    "<b>",  "&amp",     "x > y",  "\n",
                                          "\r",  "]]>", " ",    "12",   "3/1/2010", "ț ă",    "\"",
                                          "'q'", "\t",  "\r\n", "日本", "  lead",   "trail  "};
    std::string text;
    for (int n = Number(0, 4); n > 0; --n) text += kPieces[Number(0, std::size(kPieces) - 1)];
    return text;
  }

 private:
  template <std::size_t N>
  const char* Pick(const char* const (&choices)[N]) {
    return choices[Number(0, N - 1)];
  }
  std::string Pick(std::initializer_list<const char*> choices) {
    return *(choices.begin() + Number(0, static_cast<int>(choices.size()) - 1));
  }

  void FillQuery(xqb_Query& q) {
    // The query's name is the instance name in the bag's XPath selections, where a double quote
    // would end the string early: hosts never save one.
    std::string name = Text();
    std::erase(name, '"');
    q.SetQueryName(name);
    q.SetQueryDescription(Text());
    q.SetQueryType(static_cast<qbe_LinksType>(Number(-5, 5)));
    q.SetStatementType(static_cast<qbe_StatementType>(Number(0, 4)));
    q.SetGridLineStyle(static_cast<qbe_GridLineStyle>(Number(0, 3)));
    q.SetGridLines(static_cast<qbe_GridLines>(Number(-1, 3)));
    q.SetTag(Text());
    q.SetAccessRights(Text());
    for (auto set : {&xqb_Query::SetDistinctRows, &xqb_Query::SetGroupsCollapsed,
                     &xqb_Query::SetShadeGroupHeadings, &xqb_Query::SetbUseNaturalLanguage,
                     &xqb_Query::SetbUsePhonicSearching, &xqb_Query::SetbUseStemming,
                     &xqb_Query::SetbUseWordNetSynonyms, &xqb_Query::SetbSYN}) {
      (q.*set)(Flag());
    }
  }

  void FillField(xqb_Field& f) {
    f.SetDBType(static_cast<qbe_DataType>(Number(0, 12)));
    f.SetShowAsType(static_cast<qbe_DataType>(Number(0, 12)));
    // An empty list is rebuilt as the type's defaults on loading, so a saved list is never empty.
    f.SetAvailableClauses("|" + std::to_string(Number(1, 32)) + "|" +
                          std::to_string(Number(1, 32)) + "|");
    for (auto set :
         {&xqb_Field::SetAlias, &xqb_Field::SetCaption, &xqb_Field::SetCalculatedFormula,
          &xqb_Field::SetLinksWithField, &xqb_Field::SetScript, &xqb_Field::SetScriptLanguage,
          &xqb_Field::SetRunAt, &xqb_Field::SetDefaultScriptProc, &xqb_Field::SetValueListSource,
          &xqb_Field::SetTag}) {
      (f.*set)(Text());
    }
    for (auto set :
         {&xqb_Field::SetUseInStatement, &xqb_Field::SetHasScriptAsSource,
          &xqb_Field::SetExecScriptAfterRetrieve, &xqb_Field::SetIsEditable,
          &xqb_Field::SetIsRequired, &xqb_Field::SetIsAvailable, &xqb_Field::SetIsVisible,
          &xqb_Field::SetIsReturned, &xqb_Field::SetIsGroupField, &xqb_Field::SetIsSortField,
          &xqb_Field::SetIsDTIndex}) {
      (f.*set)(Flag());
    }
    for (auto set :
         {&xqb_Field::SetOrderByLevel, &xqb_Field::SetGroupByLevel, &xqb_Field::SetGroupLevel,
          &xqb_Field::SetSortLevel, &xqb_Field::SetAppearanceOrder, &xqb_Field::SetUIOrder}) {
      (f.*set)(Integer());
    }
    for (auto set :
         {&xqb_Field::SetOrderByOrder, &xqb_Field::SetGroupOrder, &xqb_Field::SetSortOrder}) {
      (f.*set)(static_cast<qbe_SortType>(Number(-1, 1)));
    }
    f.SetControlType(static_cast<qbe_ControlType>(Number(0, 9)));
    f.SetAggregateFunction(static_cast<qbe_AggregateFunctionType>(Number(0, 9)));
    f.SetLatime(Number(INT32_MIN, INT32_MAX));
    const int conditions = Number(0, 4);
    for (int c = 0; c < conditions; ++c) AddCondition(f, c, conditions == 1);
  }

  // Values differ between a field's conditions (by `salt`), so that reloaded texts stay distinct
  // for the duplicate test. Byte arrays and Nothing make that test raise, so they only appear in
  // a field's only condition.
  Variant Operand(bool exotic_allowed, int salt) {
    switch (Number(0, exotic_allowed ? 10 : 8)) {
      case 0:
        return Variant();
      case 1:
        return Variant::Null();
      case 2:
        return Variant(static_cast<std::int16_t>(Number(-300, 300) * 10 + salt));
      case 3:
        return Variant(Number(-100000, 100000) * 10 + salt);
      case 4:
        return Variant(Number(1, 999) / 8.0 + salt * 1000);
      case 5:
        return Variant(Flag());
      case 6:
        return Variant(Date{static_cast<double>(Number(1, 60000) + salt)});
      case 7:
        return Variant(Currency{Number(-99999, 99999) * 10LL + salt});
      case 8:
        return Variant(Text() + std::to_string(salt));
      case 9:
        return Variant(ByteArray{1, 2, static_cast<std::uint8_t>(Number(0, 255))});
      default:
        return Variant::Nothing();
    }
  }

  void AddCondition(xqb_Field& field, int index, bool only) {
    auto condition =
        MakeCondition(100 * index + Number(0, 99), static_cast<qbe_ClauseOperator>(Number(0, 33)),
                      Operand(only, index), Operand(only, index));
    if (field.Conditions()->ConditionExists(condition->Clause(), condition->Value())) return;
    condition->SetParamName(Text());
    condition->SetWhereClauseLogic(static_cast<qbe_WhereClauseLogic>(Number(0, 3)));
    condition->SetIsEditable(Flag());
    condition->SetTag(Text());
    field.Conditions()->AddObjectCondition(condition);
  }

  std::mt19937 random_;
};

}  // namespace brix::test_support
