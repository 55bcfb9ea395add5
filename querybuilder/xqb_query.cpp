// Query: creation defaults and the walks over tables, fields and conditions.
#include "querybuilder/xqb_query.h"

#include <limits>
#include <new>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/clause_catalogue.h"
#include "querybuilder/condition_describer.h"
#include "querybuilder/definition_rows.h"
#include "querybuilder/full_text_renderer.h"
#include "querybuilder/parameter_expander.h"
#include "querybuilder/parameterized_where.h"
#include "querybuilder/regular_definition_reader.h"
#include "querybuilder/statement_builder.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/vocabulary_lists.h"
#include "querybuilder/where_renderer.h"
#include "runtime/clock.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/version.h"

namespace brix {
namespace {

// Every field of the query, tables and their fields in collection order.
std::vector<std::shared_ptr<xqb_Field>> FieldsInTreeOrder(const xqb_Tables& tables) {
  std::vector<std::shared_ptr<xqb_Field>> fields;
  for (const auto& table : tables) {
    const std::shared_ptr<xqb_Fields> table_fields = table->Fields();
    fields.insert(fields.end(), table_fields->begin(), table_fields->end());
  }
  return fields;
}

// Fields with a free place 1..n by UIOrder first, in that order, then the others in tree order.
std::vector<std::shared_ptr<xqb_Field>> FieldsInUIOrder(
    const std::vector<std::shared_ptr<xqb_Field>>& fields) {
  const auto count = static_cast<std::int64_t>(fields.size());
  std::vector<std::shared_ptr<xqb_Field>> places(fields.size());
  std::vector<std::shared_ptr<xqb_Field>> others;
  for (const auto& field : fields) {
    std::int64_t place = field->UIOrder();
    if (place >= 1 && place <= count && !places[place - 1]) {
      places[place - 1] = field;
    } else {
      others.push_back(field);
    }
  }
  std::erase(places, nullptr);
  places.insert(places.end(), others.begin(), others.end());
  return places;
}

}  // namespace

xqb_Query::xqb_Query()
    : today_(static_cast<std::int32_t>(SystemDate())), tables_(xqb_Tables::Create()) {}

std::shared_ptr<xqb_Query> xqb_Query::Create() {
  return std::shared_ptr<xqb_Query>(new xqb_Query());
}

std::shared_ptr<xqb_Tables> xqb_Query::Tables() const {
  if (!tables_) RaiseRuntimeError(kErrObjectVariableNotSet);
  return tables_;
}

void xqb_Query::TableFieldFromCondition(std::int32_t condition_id, std::string& table,
                                        std::string& field) {
  FindInConditions(*this, [&](const xqb_Table& each_table, const xqb_Field& each_field,
                              const xqb_Condition& condition) {
    if (condition.ConditionID() != condition_id) return false;
    table = each_table.DBName();
    field = each_field.DBName();
    return true;
  });
}

void xqb_Query::DeleteAllConditions() {
  for (const auto& field : FieldsInTreeOrder(*Tables())) field->Conditions()->Clear();
}

Variant xqb_Query::ReturnAllClauses() {
  VariantArray rows;
  ForEachCondition(
      *this, [&](const xqb_Table& table, const xqb_Field& field, const xqb_Condition& condition) {
        rows.items.emplace_back(VariantArray{{
            Variant(table.DBName()),
            Variant(field.DBName()),
            Variant(condition.ConditionID()),
            Variant(static_cast<std::int32_t>(condition.Clause())),
            Variant(condition.ClauseDescription()),
            condition.Value(),
            condition.SecondaryValue(),
            Variant(static_cast<std::int32_t>(condition.WhereClauseLogic())),
            Variant(condition.ParamName()),
        }});
      });
  return Variant(std::move(rows));
}

std::string xqb_Query::ReturnTables() const { return StatementBuilder(*this).ReturnTables(); }

std::string xqb_Query::ReturnAllFields(bool simple_fields) const {
  return StatementBuilder(*this).ReturnAllFields(simple_fields);
}

std::string xqb_Query::ReturnOrderByFields() const {
  return StatementBuilder(*this).ReturnOrderByFields();
}

std::string xqb_Query::ReturnSQL(std::int32_t top_records) const {
  return StatementBuilder(*this).ReturnSQL(top_records);
}

ParameterizedStatement xqb_Query::ReturnParameterizedSQL(const StatementOptions& options) const {
  return StatementBuilder(*this).ReturnParameterizedSQL(options);
}

ParameterizedStatement xqb_Query::ReturnParameterizedWHERE(const StatementOptions& options,
                                                           bool simple_fields,
                                                           std::shared_ptr<xqb_Table> tabela,
                                                           bool with_join_conditions) const {
  return brix::ReturnParameterizedWHERE(*this, options, simple_fields, std::move(tabela),
                                        with_join_conditions);
}

std::string xqb_Query::ReturnWHEREConditions(bool simple_fields, std::shared_ptr<xqb_Table> tabela,
                                             bool with_join_conditions) const {
  return WhereRenderer(*this).ReturnWHEREConditions(simple_fields, std::move(tabela),
                                                    with_join_conditions);
}

std::shared_ptr<xqb_Fields> xqb_Query::Fields(qbe_OrderType order_type) {
  std::vector<std::shared_ptr<xqb_Field>> fields = FieldsInTreeOrder(*Tables());
  if (order_type == qbe_OrderUI) fields = FieldsInUIOrder(fields);
  auto result = xqb_Fields::Create();
  for (auto& field : fields) result->AddListed(std::move(field));
  return result;
}

std::int32_t xqb_Query::ReturnConditionsCount() {
  std::int64_t count = 0;
  for (const auto& field : FieldsInTreeOrder(*Tables())) count += field->Conditions()->Count();
  if (count > std::numeric_limits<std::int32_t>::max()) RaiseRuntimeError(kErrOverflow);
  return static_cast<std::int32_t>(count);
}

std::string xqb_Query::ReturnDTConditions(std::int16_t use_near_operator_value) const {
  return FullTextRenderer(*this).ReturnDTConditions(use_near_operator_value);
}

void xqb_Query::AddParamValues(std::string_view param_name, const Variant& param_values) {
  ParameterExpander(*this).AddParamValues(param_name, param_values);
}

std::string xqb_Query::ReturnConditionDescription(std::int32_t condition_id) const {
  return ConditionDescriber(*this).ReturnConditionDescription(condition_id);
}

std::string xqb_Query::DescribeCondition(const xqb_Table& table, const xqb_Field& field,
                                         const xqb_Condition& condition) const {
  return ConditionDescriber(*this).Describe(table, field, condition);
}

std::string xqb_Query::GetVersion() const {
  return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
         std::to_string(kVersionRevision);
}

bool xqb_Query::FieldExists(std::string_view db_name) {
  for (const auto& table : *Tables()) {
    if (table->Fields()->FieldExists(db_name)) return true;
  }
  return false;
}

Variant xqb_Query::GetDataTypes() const { return DataTypeList(); }
Variant xqb_Query::GetControlTypes() const { return ControlTypeList(); }
Variant xqb_Query::GetSortTypes() const { return SortTypeList(); }
Variant xqb_Query::GetAggregateFunctions() const { return AggregateFunctionList(); }

namespace {

constexpr const char* kLoadSource = "[OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]";
constexpr const char* kLoadMessage = "Couldn't load xml query definition!";
constexpr const char* kSaveSource = "[OrlaXML_qb].[xqb_Persistence].[SaveXMLDef]";
constexpr const char* kSaveMessage = "Couldn't save xml query definition!";

/// Memory running out is the platform's "Out of memory" (7), raised with the operation's text.
[[noreturn]] void RaiseOutOfMemory(const char* source, const char* message) {
  const Error out_of_memory(kErrOutOfMemory, "", StandardMessage(kErrOutOfMemory));
  Raise(kErrOutOfMemory, source, TrappedDescription(message, "", out_of_memory));
}

}  // namespace

// A document that runs the process out of memory leaves the query as it was: the definition is
// kept aside (the tables by reference: a load builds new collections) and swapped back.
void xqb_Query::LoadXMLDef(std::string_view XMLDef) {
  std::shared_ptr<xqb_Query> before;
  bool kept = false;  // nothing of the query changes before the copy is whole
  try {
    before.reset(new xqb_Query());
    before->DefinitionMembers() = DefinitionMembers();
    kept = true;
    XMLReadBudget budget(load_limits_);
    if (ReadRegularDefinition(XMLDef, *this, budget)) return;
    DefinitionMembers() = before->DefinitionMembers();  // undoes what the direct reading set
    ReadDefinitionThroughBag(XMLDef, *this, load_limits_);
  } catch (const Error& trapped) {
    Raise(kErrLoadXMLDef, kLoadSource, TrappedDescription(kLoadMessage, "", trapped));
  } catch (const std::bad_alloc&) {
    if (kept) {
      auto mine = DefinitionMembers();
      auto kept = before->DefinitionMembers();
      mine.swap(kept);
      before.reset();  // frees what the load had built before raising
    }
    RaiseOutOfMemory(kLoadSource, kLoadMessage);
  }
}

namespace {

/// About what a saved definition takes: the markup of each object with short values. Room the
/// text does not use is never touched, so erring large costs no memory in use.
std::size_t ExpectedDefinitionSize(const xqb_Query& query) {
  constexpr std::size_t kQuery = 1024, kTable = 256, kField = 1536, kCondition = 256;
  std::size_t size = kQuery;
  for (const auto& table : *query.Tables()) {
    size += kTable;
    for (const auto& field : *table->Fields()) {
      size += kField + kCondition * static_cast<std::size_t>(field->Conditions()->Count());
    }
  }
  return size;
}

}  // namespace

std::string xqb_Query::SaveXMLDef() {
  try {
    return XMLPropBag::SaveStateText(*this, QueryName(), ExpectedDefinitionSize(*this));
  } catch (const Error& trapped) {
    Raise(kErrSaveXMLDef, kSaveSource, TrappedDescription(kSaveMessage, "", trapped));
  } catch (const std::bad_alloc&) {
    RaiseOutOfMemory(kSaveSource, kSaveMessage);
  }
}

}  // namespace brix
