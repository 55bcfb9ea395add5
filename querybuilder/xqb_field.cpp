// Field: normalised names, the available-clause list and its listing.
#include "querybuilder/xqb_field.h"

#include <charconv>
#include <string_view>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/db_name.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

std::string Enclosed(qbe_ClauseOperator clause) { return "|" + std::to_string(clause) + "|"; }

}  // namespace

xqb_Field::xqb_Field() : conditions_(xqb_Conditions::Create()) {}

std::shared_ptr<xqb_Field> xqb_Field::Create() {
  struct Made : xqb_Field {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

void xqb_Field::SetDBName(std::string_view value) {
  std::string normalized = NormalizeDBName(value);
  ChangeKey([&]() noexcept { db_name_.swap(normalized); });
}

void xqb_Field::SetShowAsType(qbe_DataType value) {
  show_as_type_ = value;
  ConstructDefaultAvailableClauses();
}

bool xqb_Field::ClauseAvailable(qbe_ClauseOperator clause) const {
  // "|N|" written on the stack: this is asked for every clause of every field on each load and
  // each listing of the available clauses.
  char text[24] = {'|'};
  char* end = std::to_chars(text + 1, text + sizeof text - 1, static_cast<long long>(clause)).ptr;
  *end++ = '|';
  return available_clauses_.find(std::string_view(text, end - text)) != std::string::npos;
}

void xqb_Field::SetClauseAvailable(qbe_ClauseOperator clause) {
  if (ClauseAvailable(clause)) return;
  if (available_clauses_.empty()) {
    available_clauses_ = Enclosed(clause);
  } else {
    available_clauses_ += std::to_string(clause) + "|";
  }
}

void xqb_Field::UnsetClauseAvailable(qbe_ClauseOperator clause) {
  if (!ClauseAvailable(clause)) return;
  available_clauses_ = ReplaceAll(available_clauses_, Enclosed(clause), "|");
  if (available_clauses_ == "|") available_clauses_.clear();
}

std::shared_ptr<xqb_Conditions> xqb_Field::Conditions() const {
  if (!conditions_) RaiseRuntimeError(kErrObjectVariableNotSet);
  return conditions_;
}

KeyedCollection<std::int32_t> xqb_Field::ReturnAvailableClauses() const {
  KeyedCollection<std::int32_t> listed;
  bool list_is_empty = available_clauses_.empty();
  for (qbe_ClauseOperator clause : ListingCandidates(show_as_type_, list_is_empty)) {
    if (show_as_type_ == qbe_DataBoolean || list_is_empty || ClauseAvailable(clause)) {
      listed.Add(clause);
    }
  }
  return listed;
}

std::string xqb_Field::ClauseDescription(qbe_ClauseOperator clause) const {
  return brix::ClauseDescription(clause);
}

std::string xqb_Field::DataTypeDescription(qbe_DataType data_type) const {
  return brix::DataTypeDescription(data_type);
}

std::string xqb_Field::SortTypeDescription(qbe_SortType sort_type) const {
  return brix::SortTypeDescription(sort_type);
}

std::string xqb_Field::AggregateFunctionDescription(
    qbe_AggregateFunctionType aggregate_function) const {
  return brix::AggregateFunctionDescription(aggregate_function);
}

Variant xqb_Field::ConstructDefaultAvailableClauses() {
  available_clauses_.clear();
  for (qbe_ClauseOperator clause : DefaultAvailableClauses(show_as_type_)) {
    SetClauseAvailable(clause);
  }
  return Variant();
}

}  // namespace brix
