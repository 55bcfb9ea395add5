// The query definition document: how the query, its tables, fields and conditions write
// themselves into an XML property bag and read themselves back.
#include <functional>
#include <string>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
#include "runtime/conversions.h"

namespace brix {
namespace {

// One saved property: its element name, how its value is written, and how a read value is
// converted back. Each class lists its rows once, in document order, for both directions.
// A property held as text, number or Boolean also gives its string form straight away (into
// `scratch` when it has to be made), which saves building a variant for each element written.
template <class T>
struct Row {
  const char* name;
  std::function<Variant(const T&)> get;
  std::function<void(T&, const Variant&)> set;  // empty: written but never read
  std::function<std::string_view(const T&, std::string& scratch)> text = nullptr;
};

// The string forms CStr gives a whole number and a Boolean.
std::string_view NumberText(std::int32_t value, std::string& scratch) {
  scratch = std::to_string(value);
  return scratch;
}

std::string_view BooleanText(bool value) { return value ? "True" : "False"; }

template <class T, class G, class S>
Row<T> Text(const char* name, G get, S set) {
  return {name, [get](const T& o) { return Variant(std::string((o.*get)())); },
          [set](T& o, const Variant& v) { (o.*set)(CStr(v)); },
          [get](const T& o, std::string&) { return std::string_view((o.*get)()); }};
}

template <class T, class A>
Row<T> Long(const char* name, A (T::*get)() const, void (T::*set)(A)) {
  return {name, [get](const T& o) { return Variant(static_cast<std::int32_t>((o.*get)())); },
          [set](T& o, const Variant& v) { (o.*set)(static_cast<A>(CLng(v))); },
          [get](const T& o, std::string& scratch) {
            return NumberText(static_cast<std::int32_t>((o.*get)()), scratch);
          }};
}

template <class T>
Row<T> Integer(const char* name, std::int16_t (T::*get)() const, void (T::*set)(std::int16_t)) {
  return {name, [get](const T& o) { return Variant((o.*get)()); },
          [set](T& o, const Variant& v) { (o.*set)(CInt(v)); },
          [get](const T& o, std::string& scratch) { return NumberText((o.*get)(), scratch); }};
}

template <class T>
Row<T> Boolean(const char* name, bool (T::*get)() const, void (T::*set)(bool)) {
  return {name, [get](const T& o) { return Variant((o.*get)()); },
          [set](T& o, const Variant& v) { (o.*set)(CBool(v)); },
          [get](const T& o, std::string&) { return BooleanText((o.*get)()); }};
}

template <class T>
Row<T> Value(const char* name, const Variant& (T::*get)() const, void (T::*set)(const Variant&)) {
  return {name, [get](const T& o) { return (o.*get)(); },
          [set](T& o, const Variant& v) { (o.*set)(v); }};
}

template <class T>
void WriteRows(const std::vector<Row<T>>& rows, const T& object, XMLPropBag& bag) {
  std::string scratch;
  for (const Row<T>& row : rows) {
    if (row.text) {
      bag.WriteText(row.name, row.text(object, scratch));
    } else {
      bag.WriteProperty(row.name, row.get(object));
    }
  }
}

// A missing element leaves the property at the value a new object has, so older documents that
// lack a property still load. Those values are taken once per class.
template <class T>
void ReadRows(const std::vector<Row<T>>& rows, T& object, XMLPropBag& bag) {
  static const std::vector<Variant> initial_values = [&rows] {
    const std::shared_ptr<T> fresh = T::Create();
    std::vector<Variant> values;
    for (const Row<T>& row : rows) values.push_back(row.get(*fresh));
    return values;
  }();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].set) rows[i].set(object, bag.ReadProperty(rows[i].name, initial_values[i]));
  }
}

// The owner writes a count and then child n under `prefix` + n, taken by position.
template <class Collection>
void WriteChildren(const Collection& children, const char* count_name, const std::string& prefix,
                   XMLPropBag& bag) {
  std::int32_t count = children.Count();
  bag.WriteProperty(count_name, Variant(count));
  for (std::int32_t n = 1; n <= count; ++n) {
    bag.WriteProperty(prefix + std::to_string(n), Variant(children.Item(Variant(n))));
  }
}

// Children come back in the order of their numbers: child n is filled from the nested element
// named "<prefix>n", whatever its place in the document; a missing one stays at its defaults.
template <class Child, class Collection>
void ReadChildren(Collection& children, void (Collection::*add)(std::shared_ptr<Child>),
                  const char* count_name, const std::string& prefix, XMLPropBag& bag) {
  std::int32_t count = CLng(bag.ReadProperty(count_name, Variant(0)));
  for (std::int32_t n = 1; n <= count; ++n) {
    std::shared_ptr<Child> child = Child::Create();
    bag.ReadProperty(prefix + std::to_string(n), Variant(child));
    (children.*add)(std::move(child));
  }
}

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

}  // namespace

void xqb_Query::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(QueryRows(), *this, PropertyBag);
  WriteChildren(*Tables(), "TablesCount", "Table", PropertyBag);
}

void xqb_Query::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(QueryRows(), *this, PropertyBag);
  SetTables(xqb_Tables::Create());
  ReadChildren(*Tables(), &xqb_Tables::AddObjectTable, "TablesCount", "Table", PropertyBag);
}

void xqb_Table::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(TableRows(), *this, PropertyBag);
  WriteChildren(*Fields(), "FieldsCount", "Field", PropertyBag);
}

void xqb_Table::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(TableRows(), *this, PropertyBag);
  SetFields(xqb_Fields::Create());
  ReadChildren(*Fields(), &xqb_Fields::AddObjectField, "FieldsCount", "Field", PropertyBag);
}

void xqb_Field::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(FieldRows(), *this, PropertyBag);
  WriteChildren(*Conditions(), "ConditionsCount", "Condition", PropertyBag);
}

void xqb_Field::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(FieldRows(), *this, PropertyBag);
  SetConditions(xqb_Conditions::Create());
  ReadChildren(*Conditions(), &xqb_Conditions::AddObjectCondition, "ConditionsCount", "Condition",
               PropertyBag);
}

void xqb_Condition::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(ConditionRows(), *this, PropertyBag);
}

void xqb_Condition::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(ConditionRows(), *this, PropertyBag);
}

}  // namespace brix
