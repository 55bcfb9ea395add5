// The saved properties of the query, its tables, fields and conditions, in document order.
#include "querybuilder/definition_rows.h"

#include "runtime/conversions.h"

namespace brix {
namespace {

using namespace property_rows;

// An empty saved clause list means "the defaults of the field's type", rebuilt on reading.
Row<xqb_Field> AvailableClausesRow() {
  return {"AvailableClauses", [](const xqb_Field& f) { return Variant(f.AvailableClauses()); },
          [](xqb_Field& f, const Variant& v) {
            std::string clauses = CStr(v);
            if (clauses.empty()) {
              f.ConstructDefaultAvailableClauses();
            } else {
              f.SetAvailableClauses(std::move(clauses));
            }
          }};
}

}  // namespace

const std::vector<Row<xqb_Query>>& QueryRows() {
  using Q = xqb_Query;
  static const std::vector<Row<Q>> rows = {
      {"Version", [](const Q& q) { return Variant(q.GetVersion()); }, nullptr},
      Text<Q>("QueryName", &Q::QueryName, &Q::SetQueryName),
      Text<Q>("QueryDescription", &Q::QueryDescription, &Q::SetQueryDescription),
      Long("QueryType", &Q::QueryType, &Q::SetQueryType),
      Long("StatementType", &Q::StatementType, &Q::SetStatementType),
      Boolean("DistinctRows", &Q::DistinctRows, &Q::SetDistinctRows),
      Boolean("GroupsCollapsed", &Q::GroupsCollapsed, &Q::SetGroupsCollapsed),
      Long("GridLineStyle", &Q::GridLineStyle, &Q::SetGridLineStyle),
      Long("GridLines", &Q::GridLines, &Q::SetGridLines),
      Boolean("ShadeGroupHeadings", &Q::ShadeGroupHeadings, &Q::SetShadeGroupHeadings),
      Text<Q>("Tag", &Q::Tag, &Q::SetTag),
      Text<Q>("AccessRights", &Q::AccessRights, &Q::SetAccessRights),
      Boolean("bUseNaturalLanguage", &Q::bUseNaturalLanguage, &Q::SetbUseNaturalLanguage),
      Boolean("bUsePhonicSearching", &Q::bUsePhonicSearching, &Q::SetbUsePhonicSearching),
      Boolean("bUseStemming", &Q::bUseStemming, &Q::SetbUseStemming),
      Boolean("bUseWordNetSynonyms", &Q::bUseWordNetSynonyms, &Q::SetbUseWordNetSynonyms),
      Boolean("bSYN", &Q::bSYN, &Q::SetbSYN),
  };
  return rows;
}

const std::vector<Row<xqb_Table>>& TableRows() {
  using T = xqb_Table;
  static const std::vector<Row<T>> rows = {
      Text<T>("DBName", &T::DBName, &T::SetDBName),
      Text<T>("Description", &T::Description, &T::SetDescription),
      Text<T>("Tag", &T::Tag, &T::SetTag),
  };
  return rows;
}

const std::vector<Row<xqb_Field>>& FieldRows() {
  using F = xqb_Field;
  static const std::vector<Row<F>> rows = {
      Text<F>("DBName", &F::DBName, &F::SetDBName),
      Boolean("UseInStatement", &F::UseInStatement, &F::SetUseInStatement),
      Long("DBType", &F::DBType, &F::SetDBType),
      Long("ShowAsType", &F::ShowAsType, &F::SetShowAsType),
      Text<F>("Alias", &F::Alias, &F::SetAlias),
      Text<F>("Caption", &F::Caption, &F::SetCaption),
      Text<F>("CalculatedFormula", &F::CalculatedFormula, &F::SetCalculatedFormula),
      Integer("OrderByLevel", &F::OrderByLevel, &F::SetOrderByLevel),
      Long("OrderByOrder", &F::OrderByOrder, &F::SetOrderByOrder),
      Integer("GroupByLevel", &F::GroupByLevel, &F::SetGroupByLevel),
      Text<F>("LinksWithField", &F::LinksWithField, &F::SetLinksWithField),
      Boolean("HasScriptAsSource", &F::HasScriptAsSource, &F::SetHasScriptAsSource),
      Text<F>("Script", &F::Script, &F::SetScript),
      Text<F>("ScriptLanguage", &F::ScriptLanguage, &F::SetScriptLanguage),
      Text<F>("RunAt", &F::RunAt, &F::SetRunAt),
      Text<F>("DefaultScriptProc", &F::DefaultScriptProc, &F::SetDefaultScriptProc),
      Boolean("ExecScriptAfterRetrieve", &F::ExecScriptAfterRetrieve,
              &F::SetExecScriptAfterRetrieve),
      Boolean("IsEditable", &F::IsEditable, &F::SetIsEditable),
      Boolean("IsRequired", &F::IsRequired, &F::SetIsRequired),
      Long("ControlType", &F::ControlType, &F::SetControlType),
      Boolean("IsAvailable", &F::IsAvailable, &F::SetIsAvailable),
      Long("Latime", &F::Latime, &F::SetLatime),
      Boolean("IsVisible", &F::IsVisible, &F::SetIsVisible),
      Boolean("IsReturned", &F::IsReturned, &F::SetIsReturned),
      Long("AggregateFunction", &F::AggregateFunction, &F::SetAggregateFunction),
      Boolean("IsGroupField", &F::IsGroupField, &F::SetIsGroupField),
      Integer("GroupLevel", &F::GroupLevel, &F::SetGroupLevel),
      Long("GroupOrder", &F::GroupOrder, &F::SetGroupOrder),
      Boolean("IsSortField", &F::IsSortField, &F::SetIsSortField),
      Integer("SortLevel", &F::SortLevel, &F::SetSortLevel),
      Long("SortOrder", &F::SortOrder, &F::SetSortOrder),
      Integer("AppearanceOrder", &F::AppearanceOrder, &F::SetAppearanceOrder),
      Integer("UIOrder", &F::UIOrder, &F::SetUIOrder),
      Text<F>("ValueListSource", &F::ValueListSource, &F::SetValueListSource),
      AvailableClausesRow(),
      Boolean("IsDTIndex", &F::IsDTIndex, &F::SetIsDTIndex),
      Text<F>("Tag", &F::Tag, &F::SetTag),
  };
  return rows;
}

const std::vector<Row<xqb_Condition>>& ConditionRows() {
  using C = xqb_Condition;
  static const std::vector<Row<C>> rows = {
      Long("ConditionID", &C::ConditionID, &C::SetConditionID),
      Text<C>("ParamName", &C::ParamName, &C::SetParamName),
      Long("Clause", &C::Clause, &C::SetClause),
      Long("WhereClauseLogic", &C::WhereClauseLogic, &C::SetWhereClauseLogic),
      Value("Value", &C::Value, &C::SetValue),
      Value("SecondaryValue", &C::SecondaryValue, &C::SetSecondaryValue),
      Boolean("IsEditable", &C::IsEditable, &C::SetIsEditable),
      Text<C>("Tag", &C::Tag, &C::SetTag),
  };
  return rows;
}

}  // namespace brix
