// The root of a query definition: query-wide settings, the tables, and the walks over the tree.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "persistence/ixml_prop_bag.h"
#include "querybuilder/load_limits.h"
#include "querybuilder/parameterized_statement.h"
#include "querybuilder/query_validator.h"
#include "querybuilder/xqb_definitions.h"
#include "querybuilder/xqb_fields.h"
#include "querybuilder/xqb_tables.h"
#include "runtime/error.h"  // what every method here raises
#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

/// A query: its settings are plain stored values (none validates); `Tables` starts as a new empty
/// collection and `Today` as the library clock's date when the query is created. Walks visit the
/// tables, each table's fields and each field's conditions in collection order; the first match
/// wins. Errors of the tree reach the caller unchanged.
class xqb_Query : public IXMLPropBag {
 public:
  static std::shared_ptr<xqb_Query> Create();
  xqb_Query(const xqb_Query&) = delete;
  xqb_Query& operator=(const xqb_Query&) = delete;

  std::string TypeName() const override;

  // Persistence in a query definition document (defined with the document's code).
  void WriteProperties(XMLPropBag& PropertyBag) override;
  void ReadProperties(XMLPropBag& PropertyBag) override;

  // Full-text options, default False.
  bool bSYN() const { return b_syn_; }
  void SetbSYN(bool value) { b_syn_ = value; }
  bool bUsePhonicSearching() const { return b_use_phonic_searching_; }
  void SetbUsePhonicSearching(bool value) { b_use_phonic_searching_ = value; }
  bool bUseStemming() const { return b_use_stemming_; }
  void SetbUseStemming(bool value) { b_use_stemming_ = value; }
  bool bUseNaturalLanguage() const { return b_use_natural_language_; }
  void SetbUseNaturalLanguage(bool value) { b_use_natural_language_ = value; }
  bool bUseWordNetSynonyms() const { return b_use_word_net_synonyms_; }
  void SetbUseWordNetSynonyms(bool value) { b_use_word_net_synonyms_ = value; }

  /// Opaque rights text kept for the host. Default "".
  const std::string& AccessRights() const { return access_rights_; }
  void SetAccessRights(std::string value) { access_rights_ = std::move(value); }

  // Presentation settings kept for the host. Defaults 0, 0, False.
  qbe_GridLineStyle GridLineStyle() const { return grid_line_style_; }
  void SetGridLineStyle(qbe_GridLineStyle value) { grid_line_style_ = value; }
  qbe_GridLines GridLines() const { return grid_lines_; }
  void SetGridLines(qbe_GridLines value) { grid_lines_ = value; }
  bool ShadeGroupHeadings() const { return shade_group_headings_; }
  void SetShadeGroupHeadings(bool value) { shade_group_headings_ = value; }

  /// Reference day of relative date conditions, a whole day number. Default the clock's date at
  /// creation.
  std::int32_t Today() const { return today_; }
  void SetToday(std::int32_t value) { today_ = value; }

  const std::string& QueryName() const { return query_name_; }
  void SetQueryName(std::string value) { query_name_ = std::move(value); }
  const std::string& QueryDescription() const { return query_description_; }
  void SetQueryDescription(std::string value) { query_description_ = std::move(value); }

  /// Kind of linking between tables. Default `qbe_LinksNone` (1).
  qbe_LinksType QueryType() const { return query_type_; }
  void SetQueryType(qbe_LinksType value) { query_type_ = value; }

  /// SQL dialect. Default `qbe_StatementAccess` (1).
  qbe_StatementType StatementType() const { return statement_type_; }
  void SetStatementType(qbe_StatementType value) { statement_type_ = value; }

  /// SELECT DISTINCT. Default False.
  bool DistinctRows() const { return distinct_rows_; }
  void SetDistinctRows(bool value) { distinct_rows_ = value; }

  bool GroupsCollapsed() const { return groups_collapsed_; }
  void SetGroupsCollapsed(bool value) { groups_collapsed_ = value; }

  /// The tables (the held collection itself). Raises 91 when a null collection was assigned.
  std::shared_ptr<xqb_Tables> Tables() const;
  /// Replaces the whole tree by the given collection itself (shared, not copied); null makes the
  /// getter raise 91.
  void SetTables(std::shared_ptr<xqb_Tables> value) { tables_ = std::move(value); }

  const std::string& Tag() const { return tag_; }
  void SetTag(std::string value) { tag_ = std::move(value); }

  /// Writes the `DBName` of the table and of the field that hold the first condition whose
  /// `ConditionID` is `condition_id`; when none does, both arguments keep what they held.
  void TableFieldFromCondition(std::int32_t condition_id, std::string& table, std::string& field);

  /// Empties the conditions of every field of every table.
  void DeleteAllConditions();

  /// One row per condition, in tree order: a variant holding an array (lower bound 0) of arrays
  /// (lower bound 0) [table DBName, field DBName, ConditionID (Long), Clause (Long), clause text,
  /// Value, SecondaryValue, WhereClauseLogic (Long), ParamName]. No conditions give an empty
  /// array.
  Variant ReturnAllClauses();

  /// "[table], [table2]" for FROM; "" without tables.
  std::string ReturnTables() const;
  /// The select list, placed by `AppearanceOrder`; a negative position raises 9.
  std::string ReturnAllFields(bool simple_fields = true) const;
  /// The ORDER BY list without the keyword, placed by `OrderByLevel`; a negative level raises 9.
  std::string ReturnOrderByFields() const;
  /// The whole SELECT statement ("" without tables): "SELECT [DISTINCT] fields FROM [t1], [t2]
  /// WHERE joins AND filter GROUP BY ... ORDER BY ...", then " LIMIT " `top_records` when it is
  /// not 0. Operands are written into the text in the compatible (Access) syntax; for an engine
  /// of today use `ReturnParameterizedSQL`. Example output: README, "Generated SQL".
  std::string ReturnSQL(std::int32_t top_records = 0) const;

  /// The filter text without "WHERE": each field's conditions as "(c1 OR c2 ...)", the fields
  /// joined by " AND ", of every table or of `tabela` alone; `simple_fields` False writes
  /// "[table].field"; `with_join_conditions` puts " (table.field = LinksWithField) AND " first.
  /// Parameter conditions are skipped; full-text clauses leave their field out.
  std::string ReturnWHEREConditions(bool simple_fields = true,
                                    std::shared_ptr<xqb_Table> tabela = nullptr,
                                    bool with_join_conditions = false) const;

  /// A new collection holding every field of the query (the field objects themselves), each under
  /// its `DBName`, or without a key when an earlier field took that key (fields of different
  /// tables may share a name).
  /// `qbe_OrderUI`: with n fields in all, a field whose `UIOrder` is in 1..n takes that place
  /// unless an earlier field (tree order) took it; the placed fields come first, in `UIOrder`,
  /// then every other field (`UIOrder` 0, above n, or a taken place) in tree order.
  /// Any other value, `qbe_Unordered` included: tree order.
  std::shared_ptr<xqb_Fields> Fields(qbe_OrderType order_type);

  /// The sum of the condition counts of all fields of all tables.
  std::int32_t ReturnConditionsCount();

  /// The statement of `ReturnSQL` for a real engine: names quoted the dialect's way, every
  /// operand a placeholder bound to a typed value, dates as ISO dates, IN lists read item by
  /// item, the row limit `options.top_records`. It selects what `ReturnSQL` selects, and does
  /// not change the compatible text. Bind `parameters[i]` to placeholder i + 1.
  ParameterizedStatement ReturnParameterizedSQL(const StatementOptions& options = {}) const;
  /// The filter of `ReturnWHEREConditions` the same way, with the same arguments.
  ParameterizedStatement ReturnParameterizedWHERE(const StatementOptions& options = {},
                                                  bool simple_fields = true,
                                                  std::shared_ptr<xqb_Table> tabela = nullptr,
                                                  bool with_join_conditions = false) const;

  /// The dtSearch request of the conditions on the first table's fields marked `IsDTIndex`:
  /// "((Titlu contains (codul muncii))) AND ((contract* AND munca*) AND (concediu w/33 odihna))";
  /// `use_near_operator_value` is the distance of the words-near clause.
  std::string ReturnDTConditions(std::int16_t use_near_operator_value = 33) const;

  /// Adds, beside the first condition whose `ParamName` is exactly `param_name`, one condition
  /// per non-empty element of the array `param_values` (its `Clause`, the element as `Value`,
  /// `IsEditable` False, `Tag` "ConditionFromParam", a random `ConditionID`). No such condition:
  /// nothing happens. Failures raise 0x80042774 "Couldn't add parameter!" with the reason;
  /// conditions added before stay.
  void AddParamValues(std::string_view param_name, const Variant& param_values);

  /// A Romanian sentence describing the first condition whose `ConditionID` is `condition_id`:
  /// the field's `Caption` (and " (" table `Description` ")" with two tables or more), then the
  /// clause's phrase with the operands as text: "Oras sa fie 'Cluj'". "" for an unknown ID.
  std::string ReturnConditionDescription(std::int32_t condition_id) const;
  /// The description `ReturnConditionDescription` gives for `condition`, held by `field` of
  /// `table` in this query, without looking it up by its ID.
  std::string DescribeCondition(const xqb_Table& table, const xqb_Field& field,
                                const xqb_Condition& condition) const;

  /// What would make the statement fail or mean something other than the definition says, one
  /// problem per finding, in tree order; reads the tree and changes nothing (the texts the query
  /// renders stay as they are, problems or not). Reported:
  /// - a `Clause` outside 1..32, or one that its field does not offer (neither listed by
  ///   `ReturnAvailableClauses` nor in its available-clause list);
  /// - a field in the statement, not calculated, whose `Alias` is empty (the statement writes
  ///   "AS" with nothing after it);
  /// - an operand that is no value of its field's `DBType` (text on a Numeric field, a text
  ///   that is no date on a Date field, Null where a value is compared), or a count that is no
  ///   number (last X days and the like); parameter and full-text conditions are not read;
  /// - an IN list that does not read as "(item, item ...)" of numbers and quoted texts, or
  ///   whose items are no values of the field's type;
  /// - a `ConditionID` used by an earlier condition of the query (look-ups find the first);
  /// - a `LinksWithField` that reads as a name but names no field ("table.field" or "field",
  ///   letter case and brackets aside); link text that is SQL is the host's and not read.
  std::vector<QueryProblem> Validate() const;

  /// The distinct non-empty `ParamName`s of the conditions, in tree order; `AddParamValues`
  /// compares them exactly, letter case included.
  std::vector<std::string> ParameterNames() const;

  /// The library's version, "Major.Minor.Revision".
  std::string GetVersion() const;

  /// True when a field of some table has exactly `db_name` as `DBName` (case-sensitive, not
  /// normalised).
  bool FieldExists(std::string_view db_name);

  // Value/caption lists for a host's combo boxes, in their published order: arrays of
  // [value, English caption] pairs.
  Variant GetDataTypes() const;
  Variant GetControlTypes() const;
  Variant GetSortTypes() const;
  Variant GetAggregateFunctions() const;

  /// Replaces the definition by the first query saved in the XML text `XMLDef`. Any failure is
  /// raised as 0x80042775, source "[OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]", description
  /// "Couldn't load xml query definition!", CR LF and the description of the trapped error. A
  /// failure part-way leaves what was read so far.
  void LoadXMLDef(std::string_view XMLDef);

  /// The definition as XML text, saved under `QueryName` as instance name. Any failure is raised
  /// as 0x80042776, source "[OrlaXML_qb].[xqb_Persistence].[SaveXMLDef]", description "Couldn't
  /// save xml query definition!", CR LF and the description of the trapped error.
  std::string SaveXMLDef();
  /// The bounds `LoadXMLDef` holds a document to (see `xqb_LoadLimits` for the defaults).
  const xqb_LoadLimits& LoadLimits() const { return load_limits_; }
  void SetLoadLimits(const xqb_LoadLimits& value) { load_limits_ = value; }

 private:
  xqb_Query();

  /// The members a definition document holds (all but `Today`), as references.
  auto DefinitionMembers() {
    return std::tie(b_syn_, b_use_phonic_searching_, b_use_stemming_, b_use_natural_language_,
                    b_use_word_net_synonyms_, access_rights_, grid_line_style_, grid_lines_,
                    shade_group_headings_, query_name_, query_description_, query_type_,
                    statement_type_, distinct_rows_, groups_collapsed_, tables_, tag_);
  }

  bool b_syn_ = false;
  bool b_use_phonic_searching_ = false;
  bool b_use_stemming_ = false;
  bool b_use_natural_language_ = false;
  bool b_use_word_net_synonyms_ = false;
  std::string access_rights_;
  qbe_GridLineStyle grid_line_style_ = qbe_GridLineStyleSolid;
  qbe_GridLines grid_lines_ = qbe_GridLinesNone;
  bool shade_group_headings_ = false;
  std::int32_t today_ = 0;
  std::string query_name_;
  std::string query_description_;
  qbe_LinksType query_type_ = qbe_LinksNone;
  qbe_StatementType statement_type_ = qbe_StatementAccess;
  bool distinct_rows_ = false;
  bool groups_collapsed_ = false;
  std::shared_ptr<xqb_Tables> tables_;
  std::string tag_;
  xqb_LoadLimits load_limits_;
};

}  // namespace brix
