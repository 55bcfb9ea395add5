// The query model in Python: the classes under their published property names, the collections as
// Python sequences, and the renderings as methods that release the GIL while they run.
#include "query_binding.h"

#include <string>
#include <utility>
#include <vector>

#include "error_translation.h"
#include "placeholder_style.h"
#include "property_table.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix::python {

template <>
struct EnumName<qbe_ClauseOperator> {
  static constexpr const char* value = "Clause";
};
template <>
struct EnumName<qbe_WhereClauseLogic> {
  static constexpr const char* value = "Logic";
};
template <>
struct EnumName<qbe_DataType> {
  static constexpr const char* value = "DataType";
};
template <>
struct EnumName<qbe_StatementType> {
  static constexpr const char* value = "StatementType";
};
template <>
struct EnumName<qbe_LinksType> {
  static constexpr const char* value = "LinksType";
};
template <>
struct EnumName<qbe_SortType> {
  static constexpr const char* value = "SortType";
};
template <>
struct EnumName<qbe_AggregateFunctionType> {
  static constexpr const char* value = "AggregateFunction";
};
template <>
struct EnumName<qbe_GridLineStyle> {
  static constexpr const char* value = "GridLineStyle";
};
template <>
struct EnumName<qbe_GridLines> {
  static constexpr const char* value = "GridLines";
};
template <>
struct EnumName<qbe_ControlType> {
  static constexpr const char* value = "ControlType";
};

namespace {

// Runs `work` without the GIL, so that other threads run Python (or render) meanwhile.
template <class Work>
auto WithoutGil(Work&& work) {
  py::gil_scoped_release release;
  return work();
}

const Properties<xqb_Query>& QueryProperties() {
  static const Properties<xqb_Query> properties = [] {
    using Q = xqb_Query;
    Properties<Q> p;
    AddProperty(p, "QueryName", &Q::QueryName, &Q::SetQueryName);
    AddProperty(p, "QueryDescription", &Q::QueryDescription, &Q::SetQueryDescription);
    AddProperty(p, "QueryType", &Q::QueryType, &Q::SetQueryType);
    AddProperty(p, "StatementType", &Q::StatementType, &Q::SetStatementType);
    AddProperty(p, "DistinctRows", &Q::DistinctRows, &Q::SetDistinctRows);
    AddProperty(p, "Today", &Q::Today, &Q::SetToday);
    AddProperty(p, "Tables", &Q::Tables, &Q::SetTables);
    AddProperty(p, "AccessRights", &Q::AccessRights, &Q::SetAccessRights);
    AddProperty(p, "GridLineStyle", &Q::GridLineStyle, &Q::SetGridLineStyle);
    AddProperty(p, "GridLines", &Q::GridLines, &Q::SetGridLines);
    AddProperty(p, "ShadeGroupHeadings", &Q::ShadeGroupHeadings, &Q::SetShadeGroupHeadings);
    AddProperty(p, "GroupsCollapsed", &Q::GroupsCollapsed, &Q::SetGroupsCollapsed);
    AddProperty(p, "Tag", &Q::Tag, &Q::SetTag);
    AddProperty(p, "bSYN", &Q::bSYN, &Q::SetbSYN);
    AddProperty(p, "bUsePhonicSearching", &Q::bUsePhonicSearching, &Q::SetbUsePhonicSearching);
    AddProperty(p, "bUseStemming", &Q::bUseStemming, &Q::SetbUseStemming);
    AddProperty(p, "bUseNaturalLanguage", &Q::bUseNaturalLanguage, &Q::SetbUseNaturalLanguage);
    AddProperty(p, "bUseWordNetSynonyms", &Q::bUseWordNetSynonyms, &Q::SetbUseWordNetSynonyms);
    return p;
  }();
  return properties;
}

const Properties<xqb_Table>& TableProperties() {
  static const Properties<xqb_Table> properties = [] {
    using T = xqb_Table;
    Properties<T> p;
    AddProperty(p, "DBName", &T::DBName, &T::SetDBName);
    AddProperty(p, "Description", &T::Description, &T::SetDescription);
    AddProperty(p, "Fields", &T::Fields, &T::SetFields);
    AddProperty(p, "Tag", &T::Tag, &T::SetTag);
    return p;
  }();
  return properties;
}

const Properties<xqb_Field>& FieldProperties() {
  static const Properties<xqb_Field> properties = [] {
    using F = xqb_Field;
    Properties<F> p;
    AddProperty(p, "DBName", &F::DBName, &F::SetDBName);
    AddProperty(p, "DBType", &F::DBType, &F::SetDBType);
    AddProperty(p, "ShowAsType", &F::ShowAsType, &F::SetShowAsType);
    AddProperty(p, "Alias", &F::Alias, &F::SetAlias);
    AddProperty(p, "Caption", &F::Caption, &F::SetCaption);
    AddProperty(p, "UseInStatement", &F::UseInStatement, &F::SetUseInStatement);
    AddProperty(p, "CalculatedFormula", &F::CalculatedFormula, &F::SetCalculatedFormula);
    AddProperty(p, "LinksWithField", &F::LinksWithField, &F::SetLinksWithField);
    AddProperty(p, "AppearanceOrder", &F::AppearanceOrder, &F::SetAppearanceOrder);
    AddProperty(p, "OrderByLevel", &F::OrderByLevel, &F::SetOrderByLevel);
    AddProperty(p, "OrderByOrder", &F::OrderByOrder, &F::SetOrderByOrder);
    AddProperty(p, "GroupByLevel", &F::GroupByLevel, &F::SetGroupByLevel);
    AddProperty(p, "AggregateFunction", &F::AggregateFunction, &F::SetAggregateFunction);
    AddProperty(p, "IsDTIndex", &F::IsDTIndex, &F::SetIsDTIndex);
    AddProperty(p, "Conditions", &F::Conditions, &F::SetConditions);
    AddProperty(p, "AvailableClauses", &F::AvailableClauses, &F::SetAvailableClauses);
    AddProperty(p, "ControlType", &F::ControlType, &F::SetControlType);
    AddProperty(p, "ValueListSource", &F::ValueListSource, &F::SetValueListSource);
    AddProperty(p, "UIOrder", &F::UIOrder, &F::SetUIOrder);
    AddProperty(p, "Latime", &F::Latime, &F::SetLatime);
    AddProperty(p, "IsVisible", &F::IsVisible, &F::SetIsVisible);
    AddProperty(p, "IsReturned", &F::IsReturned, &F::SetIsReturned);
    AddProperty(p, "IsAvailable", &F::IsAvailable, &F::SetIsAvailable);
    AddProperty(p, "IsEditable", &F::IsEditable, &F::SetIsEditable);
    AddProperty(p, "IsRequired", &F::IsRequired, &F::SetIsRequired);
    AddProperty(p, "IsGroupField", &F::IsGroupField, &F::SetIsGroupField);
    AddProperty(p, "GroupLevel", &F::GroupLevel, &F::SetGroupLevel);
    AddProperty(p, "GroupOrder", &F::GroupOrder, &F::SetGroupOrder);
    AddProperty(p, "IsSortField", &F::IsSortField, &F::SetIsSortField);
    AddProperty(p, "SortLevel", &F::SortLevel, &F::SetSortLevel);
    AddProperty(p, "SortOrder", &F::SortOrder, &F::SetSortOrder);
    AddProperty(p, "HasScriptAsSource", &F::HasScriptAsSource, &F::SetHasScriptAsSource);
    AddProperty(p, "Script", &F::Script, &F::SetScript);
    AddProperty(p, "ScriptLanguage", &F::ScriptLanguage, &F::SetScriptLanguage);
    AddProperty(p, "RunAt", &F::RunAt, &F::SetRunAt);
    AddProperty(p, "DefaultScriptProc", &F::DefaultScriptProc, &F::SetDefaultScriptProc);
    AddProperty(p, "ExecScriptAfterRetrieve", &F::ExecScriptAfterRetrieve,
                &F::SetExecScriptAfterRetrieve);
    AddProperty(p, "Tag", &F::Tag, &F::SetTag);
    return p;
  }();
  return properties;
}

const Properties<xqb_Condition>& ConditionProperties() {
  static const Properties<xqb_Condition> properties = [] {
    using C = xqb_Condition;
    Properties<C> p;
    AddProperty(p, "ConditionID", &C::ConditionID, &C::SetConditionID);
    AddProperty(p, "Clause", &C::Clause, &C::SetClause);
    AddProperty(p, "Value", &C::Value, &C::SetValue);
    AddProperty(p, "SecondaryValue", &C::SecondaryValue, &C::SetSecondaryValue);
    AddProperty(p, "WhereClauseLogic", &C::WhereClauseLogic, &C::SetWhereClauseLogic);
    AddProperty(p, "ParamName", &C::ParamName, &C::SetParamName);
    AddProperty(p, "IsEditable", &C::IsEditable, &C::SetIsEditable);
    AddProperty(p, "Tag", &C::Tag, &C::SetTag);
    return p;
  }();
  return properties;
}

// The key an item of a collection is held under, for its repr.
std::string KeyOf(const xqb_Table& table) { return table.DBName(); }
std::string KeyOf(const xqb_Field& field) { return field.DBName(); }
std::string KeyOf(const xqb_Condition& condition) {
  return std::to_string(condition.ConditionID());
}

// The item at a Python index (from 0, negative from the end); IndexError outside.
template <class Collection>
auto ItemAt(const Collection& collection, std::int64_t index) {
  const std::int64_t count = collection.Count();
  if (index < 0) index += count;
  if (index < 0 || index >= count) throw py::index_error("index out of range");
  return collection.Item(Variant(static_cast<std::int32_t>(index + 1)));
}

// The item held under `key` (letter case ignored), or nullptr when none is.
template <class Collection>
auto FindByKey(const Collection& collection, const std::string& key)
    -> decltype(collection.Item(Variant(key))) {
  try {
    return collection.Item(Variant(key));
  } catch (const Error& error) {
    if (error.Number() != kErrInvalidProcedureCall) throw;
    return nullptr;
  }
}

// Position from 0 or key, as the collection's own Item and Remove take them.
template <class Collection>
Variant IndexOrKey(const Collection& collection, py::handle index_or_key) {
  if (py::isinstance<py::str>(index_or_key)) return Variant(index_or_key.cast<std::string>());
  std::int64_t index = IntegerFrom<std::int32_t>(index_or_key);
  if (index < 0) index += collection.Count();
  return Variant(static_cast<std::int32_t>(index + 1));
}

// A collection as a Python sequence: positions from 0, keys by subscript or attribute.
template <class Collection, class... Options>
void BindSequence(py::class_<Collection, Options...>& cls, const char* name) {
  cls.def("__len__", &Collection::Count)
      .def("__getitem__", [](const Collection& c, std::int64_t index) { return ItemAt(c, index); })
      .def("__getitem__",
           [](const Collection& c, const std::string& key) {
             auto item = FindByKey(c, key);
             if (!item) throw py::key_error(key);
             return item;
           })
      .def("__getattr__",
           [](const Collection& c, const std::string& key) {
             auto item = key.starts_with("_") ? nullptr : FindByKey(c, key);
             if (!item) throw py::attribute_error(key);
             return item;
           })
      .def("__iter__",
           [](const Collection& c) {
             py::list items;
             for (const auto& item : c) items.append(py::cast(item));
             return py::iter(items);
           })
      .def("__contains__",
           [](const Collection& c, py::handle key_or_item) {
             if (py::isinstance<py::str>(key_or_item)) {
               return FindByKey(c, key_or_item.cast<std::string>()) != nullptr;
             }
             for (const auto& item : c) {
               if (py::cast(item).is(key_or_item)) return true;
             }
             return false;
           })
      .def("__repr__",
           [name](const Collection& c) {
             std::string text = std::string("<") + name + " [";
             for (const auto& item : c) {
               if (text.back() != '[') text += ", ";
               text += "'" + KeyOf(*item) + "'";
             }
             return text + "]>";
           })
      .def(
          "remove",
          [](Collection& c, py::handle index_or_key) { c.Remove(IndexOrKey(c, index_or_key)); },
          py::arg("index_or_key"))
      .def("clear", &Collection::Clear);
}

std::shared_ptr<xqb_Field> FieldOf(xqb_Query& query, py::handle table, py::handle field) {
  std::shared_ptr<xqb_Table> held = py::isinstance<xqb_Table>(table)
                                        ? table.cast<std::shared_ptr<xqb_Table>>()
                                        : query.Tables()->Item(ToVariant(table));
  if (py::isinstance<xqb_Field>(field)) return field.cast<std::shared_ptr<xqb_Field>>();
  return held->Fields()->Item(ToVariant(field));
}

// Adds a condition: a random ConditionID as the collection gives one, or the given one.
std::shared_ptr<xqb_Condition> AddCondition(xqb_Field& field, std::int32_t clause, py::handle value,
                                            py::handle secondary_value, py::handle logic,
                                            py::handle param_name, py::handle condition_id) {
  const auto clause_value = static_cast<qbe_ClauseOperator>(clause);
  std::shared_ptr<xqb_Condition> condition;
  if (condition_id.is_none()) {
    condition = field.Conditions()->Add(clause_value, ToVariant(value), ToVariant(secondary_value));
  } else {
    condition = xqb_Condition::Create();
    condition->SetConditionID(IntegerFrom<std::int32_t>(condition_id));
    condition->SetClause(clause_value);
    condition->SetValue(ToVariant(value));
    condition->SetSecondaryValue(ToVariant(secondary_value));
  }
  if (!logic.is_none()) {
    condition->SetWhereClauseLogic(
        static_cast<qbe_WhereClauseLogic>(IntegerFrom<std::int32_t>(logic)));
  }
  if (!param_name.is_none()) condition->SetParamName(FromPython<std::string>(param_name));
  if (!condition_id.is_none()) field.Conditions()->AddObjectCondition(condition);
  return condition;
}

// A definition's text: bytes as they are, a str holding XML as UTF-8, otherwise a file's bytes.
py::bytes DefinitionBytes(py::handle source) {
  if (py::isinstance<py::bytes>(source)) return py::reinterpret_borrow<py::bytes>(source);
  if (py::isinstance<py::bytearray>(source) || py::isinstance<py::memoryview>(source)) {
    const ByteArray bytes = BytesFrom(source);
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  if (py::isinstance<py::str>(source)) {
    const std::string text = source.cast<std::string>();
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    const bool bom = text.starts_with("\xEF\xBB\xBF");
    if ((start != std::string::npos && text[start] == '<') || bom) return py::bytes(text);
  }
  py::object path = py::module_::import("os").attr("fspath")(source);
  py::object file = py::module_::import("builtins").attr("open")(path, "rb");
  py::object data = file.attr("read")();
  file.attr("close")();
  return data;
}

std::int32_t DayNumber(py::handle today) {
  if (py::isinstance<py::int_>(today)) return IntegerFrom<std::int32_t>(today);
  return static_cast<std::int32_t>(ToDaySerial(today));
}

void LoadInto(xqb_Query& query, py::handle source) {
  py::bytes data = DefinitionBytes(source);
  char* text = nullptr;
  Py_ssize_t size = 0;
  PyBytes_AsStringAndSize(data.ptr(), &text, &size);
  // The bytes object stays referenced and unchanged while the GIL is released.
  WithoutGil([&] {
    query.LoadXMLDef(std::string_view(text, static_cast<std::size_t>(size)));
    return 0;
  });
}

SqlDialect DialectOf(const std::string& name) {
  if (name == "sqlite") return SqlDialect::kSQLite;
  if (name == "postgresql") return SqlDialect::kPostgreSQL;
  throw py::value_error("dialect must be \"sqlite\" or \"postgresql\", not \"" + name + "\"");
}

StatementOptions OptionsOf(const std::string& dialect, std::int32_t top, bool refuse_host_sql) {
  StatementOptions options;
  options.dialect = DialectOf(dialect);
  options.top_records = top;
  options.refuse_host_sql = refuse_host_sql;
  return options;
}

// The statement and its values; with the "format" style, %s placeholders in order.
py::tuple StatementTuple(const ParameterizedStatement& statement, const std::string& dialect,
                         const std::string& paramstyle) {
  py::list values;
  if (paramstyle == "native") {
    for (const SqlParameter& parameter : statement.parameters) {
      values.append(FromSqlParameter(parameter));
    }
    return py::make_tuple(Text(statement.text), values);
  }
  if (paramstyle != "format" || dialect != "postgresql") {
    throw py::value_error("paramstyle must be \"native\", or \"format\" for postgresql");
  }
  const FormatStyleStatement format = ToFormatStyle(statement.text, statement.parameters.size());
  for (std::size_t index : format.order)
    values.append(FromSqlParameter(statement.parameters[index]));
  return py::make_tuple(Text(format.text), values);
}

py::list Describe(const xqb_Query& query) {
  std::vector<std::pair<std::int32_t, std::string>> rows = WithoutGil([&] {
    std::vector<std::pair<std::int32_t, std::string>> lines;
    for (const auto& table : *query.Tables()) {
      for (const auto& field : *table->Fields()) {
        for (const auto& condition : *field->Conditions()) {
          lines.emplace_back(condition->ConditionID(),
                             query.DescribeCondition(*table, *field, *condition));
        }
      }
    }
    return lines;
  });
  py::list result;
  for (const auto& [id, text] : rows) result.append(py::make_tuple(id, Text(text)));
  return result;
}

py::list Clauses(const xqb_Query& query) {
  py::list result;
  for (const auto& table : *query.Tables()) {
    for (const auto& field : *table->Fields()) {
      py::list numbers;
      for (std::int32_t clause : field->ReturnAvailableClauses()) numbers.append(clause);
      result.append(py::make_tuple(Text(table->DBName()), Text(field->DBName()), numbers));
    }
  }
  return result;
}

void BindQuery(py::module_& m) {
  py::class_<xqb_Query, std::shared_ptr<xqb_Query>> cls(m, "Query");
  BindProperties(cls, QueryProperties());
  cls.def(py::init([](py::kwargs keywords) {
       std::shared_ptr<xqb_Query> query = xqb_Query::Create();
       if (keywords.contains("today")) {
         query->SetToday(DayNumber(keywords["today"]));
         PyDict_DelItemString(keywords.ptr(), "today");
       }
       SetProperties(*query, QueryProperties(), keywords, "Query");
       return query;
     }))
      .def_static(
          "load",
          [](py::handle source, py::handle today) {
            std::shared_ptr<xqb_Query> query = xqb_Query::Create();
            LoadInto(*query, source);
            if (!today.is_none()) query->SetToday(DayNumber(today));
            return query;
          },
          "Loads a saved definition: bytes, XML text, or a file's path.", py::arg("source"),
          py::kw_only(), py::arg("today") = py::none())
      .def(
          "save", [](xqb_Query& q) { return Text(WithoutGil([&] { return q.SaveXMLDef(); })); },
          "The definition as XML text, as a host stores it.")
      .def_property_readonly("tables", &xqb_Query::Tables)
      .def_property(
          "today", [](const xqb_Query& q) { return FromDaySerial(q.Today()); },
          [](xqb_Query& q, py::handle today) { q.SetToday(DayNumber(today)); })
      .def(
          "sql",
          [](const xqb_Query& q, std::int32_t top) {
            return Text(WithoutGil([&] { return q.ReturnSQL(top); }));
          },
          "The whole SELECT statement, with LIMIT top when top is not 0.", py::arg("top") = 0)
      .def(
          "where",
          [](const xqb_Query& q, bool simple_fields, std::shared_ptr<xqb_Table> table,
             bool with_joins) {
            return Text(WithoutGil(
                [&] { return q.ReturnWHEREConditions(simple_fields, table, with_joins); }));
          },
          "The filter text alone, of every table or of `table`.", py::arg("simple_fields") = true,
          py::arg("table") = nullptr, py::arg("with_joins") = false)
      .def(
          "full_text",
          [](const xqb_Query& q, std::int16_t near) {
            return Text(WithoutGil([&] { return q.ReturnDTConditions(near); }));
          },
          "The dtSearch request of the first table's indexed fields.", py::arg("near") = 33)
      .def("describe", &Describe, "(ConditionID, description) of every condition, in tree order.")
      .def("describe_condition",
           [](const xqb_Query& q, std::int32_t id) {
             return Text(WithoutGil([&] { return q.ReturnConditionDescription(id); }));
           })
      .def("clauses", &Clauses, "(table, field, available clause numbers) of every field.")
      .def("condition_rows", [](xqb_Query& q) { return FromVariant(q.ReturnAllClauses()); })
      .def(
          "add_param_values",
          [](xqb_Query& q, const std::string& name, py::iterable values) {
            VariantArray array;
            for (py::handle value : values) array.items.push_back(ToVariant(value));
            q.AddParamValues(name, Variant(std::move(array)));
          },
          "Adds a condition per run-time value of parameter `name`.", py::arg("name"),
          py::arg("values"))
      .def(
          "parameterized",
          [](const xqb_Query& q, const std::string& dialect, std::int32_t top, bool refuse_host_sql,
             const std::string& paramstyle) {
            const StatementOptions options = OptionsOf(dialect, top, refuse_host_sql);
            return StatementTuple(WithoutGil([&] { return q.ReturnParameterizedSQL(options); }),
                                  dialect, paramstyle);
          },
          "(statement, typed values) for sqlite3 or a PostgreSQL client.",
          py::arg("dialect") = "sqlite", py::arg("top") = 0, py::kw_only(),
          py::arg("refuse_host_sql") = false, py::arg("paramstyle") = "native")
      .def(
          "parameterized_where",
          [](const xqb_Query& q, const std::string& dialect, bool simple_fields,
             std::shared_ptr<xqb_Table> table, bool with_joins, bool refuse_host_sql,
             const std::string& paramstyle) {
            const StatementOptions options = OptionsOf(dialect, 0, refuse_host_sql);
            return StatementTuple(WithoutGil([&] {
                                    return q.ReturnParameterizedWHERE(options, simple_fields, table,
                                                                      with_joins);
                                  }),
                                  dialect, paramstyle);
          },
          "(filter, typed values), the parameterized form of where().",
          py::arg("dialect") = "sqlite", py::kw_only(), py::arg("simple_fields") = true,
          py::arg("table") = nullptr, py::arg("with_joins") = false,
          py::arg("refuse_host_sql") = false, py::arg("paramstyle") = "native")
      .def(
          "add_condition",
          [](xqb_Query& q, py::handle table, py::handle field, std::int32_t clause,
             py::handle value, py::handle secondary_value, py::handle logic, py::handle param_name,
             py::handle condition_id) {
            return AddCondition(*FieldOf(q, table, field), clause, value, secondary_value, logic,
                                param_name, condition_id);
          },
          "Adds a condition to the field `field` of table `table`.", py::arg("table"),
          py::arg("field"), py::arg("clause"), py::arg("value") = "",
          py::arg("secondary_value") = "", py::kw_only(), py::arg("logic") = py::none(),
          py::arg("param_name") = py::none(), py::arg("condition_id") = py::none())
      .def("delete_all_conditions", &xqb_Query::DeleteAllConditions)
      .def("fields_in_ui_order", [](xqb_Query& q) {
        py::list fields;
        for (const auto& field : *q.Fields(qbe_OrderUI)) fields.append(py::cast(field));
        return fields;
      });
}

void BindTableAndField(py::module_& m) {
  py::class_<xqb_Table, std::shared_ptr<xqb_Table>> table(m, "Table");
  BindProperties(table, TableProperties());
  BindKeywordConstructor(table, TableProperties(), "Table");
  table.def_property_readonly("fields", &xqb_Table::Fields).def("__repr__", [](const xqb_Table& t) {
    return "<Table '" + t.DBName() + "'>";
  });

  py::class_<xqb_Field, std::shared_ptr<xqb_Field>> field(m, "Field");
  BindProperties(field, FieldProperties());
  BindKeywordConstructor(field, FieldProperties(), "Field");
  field.def_property_readonly("conditions", &xqb_Field::Conditions)
      .def("available_clauses",
           [](const xqb_Field& f) {
             py::list numbers;
             for (std::int32_t clause : f.ReturnAvailableClauses()) {
               numbers.append(EnumMember("Clause", clause));
             }
             return numbers;
           })
      .def(
          "add_condition",
          [](xqb_Field& f, std::int32_t clause, py::handle value, py::handle secondary_value,
             py::handle logic, py::handle param_name, py::handle condition_id) {
            return AddCondition(f, clause, value, secondary_value, logic, param_name, condition_id);
          },
          py::arg("clause"), py::arg("value") = "", py::arg("secondary_value") = "", py::kw_only(),
          py::arg("logic") = py::none(), py::arg("param_name") = py::none(),
          py::arg("condition_id") = py::none())
      .def("__repr__", [](const xqb_Field& f) { return "<Field '" + f.DBName() + "'>"; });

  py::class_<xqb_Condition, std::shared_ptr<xqb_Condition>> condition(m, "Condition");
  BindProperties(condition, ConditionProperties());
  BindKeywordConstructor(condition, ConditionProperties(), "Condition");
  condition.def("__repr__", [](const xqb_Condition& c) {
    return "<Condition " + std::to_string(c.ConditionID()) + ": " + c.ClauseDescription() + ">";
  });
}

void BindCollections(py::module_& m) {
  py::class_<xqb_Tables, std::shared_ptr<xqb_Tables>> tables(m, "Tables");
  tables.def(py::init(&xqb_Tables::Create));
  BindSequence(tables, "Tables");
  tables.def("add", &xqb_Tables::Add, py::arg("db_name"), py::arg("description") = "")
      .def("append", &xqb_Tables::AddObjectTable, py::arg("table"))
      .def("exists", &xqb_Tables::TableExists, py::arg("db_name"));

  py::class_<xqb_Fields, std::shared_ptr<xqb_Fields>> fields(m, "Fields");
  fields.def(py::init(&xqb_Fields::Create));
  BindSequence(fields, "Fields");
  fields.def("add", &xqb_Fields::Add, py::arg("db_name"))
      .def("append", &xqb_Fields::AddObjectField, py::arg("field"))
      .def("exists", &xqb_Fields::FieldExists, py::arg("db_name"));

  py::class_<xqb_Conditions, std::shared_ptr<xqb_Conditions>> conditions(m, "Conditions");
  conditions.def(py::init(&xqb_Conditions::Create));
  BindSequence(conditions, "Conditions");
  conditions
      .def(
          "add",
          [](xqb_Conditions& c, std::int32_t clause, py::handle value, py::handle secondary) {
            return c.Add(static_cast<qbe_ClauseOperator>(clause), ToVariant(value),
                         ToVariant(secondary));
          },
          py::arg("clause"), py::arg("value") = "", py::arg("secondary_value") = "")
      .def("append", &xqb_Conditions::AddObjectCondition, py::arg("condition"))
      .def(
          "exists",
          [](xqb_Conditions& c, std::int32_t clause, py::handle value) {
            return c.ConditionExists(
                static_cast<qbe_ClauseOperator>(clause),
                value.is(py::ellipsis()) ? Variant::Missing() : ToVariant(value));
          },
          py::arg("clause"), py::arg("value") = py::ellipsis());
}

}  // namespace

void BindQueryModel(py::module_& m) {
  // Collections and items first, so that signatures name them.
  BindTableAndField(m);
  BindCollections(m);
  BindQuery(m);
}

}  // namespace brix::python
