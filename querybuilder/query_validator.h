// The check of a query definition for what makes its statement fail or mean something else.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brix {

class xqb_Query;

/// One thing wrong with a definition: where it is and what is wrong.
struct QueryProblem {
  /// The element that holds it, named as the saved document names it:
  /// "xqb_Query/Table2/Field1/Condition3" (positions 1-based, in collection order).
  std::string path;
  /// What is wrong, in one line of English.
  std::string message;
};

/// Walks a query (tables, fields, conditions in collection order) and lists its problems; it
/// reads the tree and changes nothing. See `xqb_Query::Validate` for what is reported.
class QueryValidator {
 public:
  explicit QueryValidator(const xqb_Query& query) : query_(query) {}

  /// The problems in tree order, a field's own before its conditions'.
  std::vector<QueryProblem> Problems() const;

  /// Hands each problem to `report` as it is found, in the same order, keeping none: a large
  /// definition with a problem on every condition is reported in the memory of one.
  void ReportProblems(const std::function<void(const QueryProblem&)>& report) const;

 private:
  const xqb_Query& query_;
};

}  // namespace brix
