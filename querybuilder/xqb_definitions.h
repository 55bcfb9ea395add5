// The published vocabulary of the query model: every enumeration hosts and saved definitions use.
// The logger's flags, `eDebugModes`, live with the logger in diagnostics/logger.h.
#pragma once

#include <cstdint>

namespace brix {

/// Carries the enumerations below in the library's type information; it has no members.
class xqb_Definitions {};

/// Error numbers of the XML property bag.
enum epbtErrorConstants : std::int32_t {
  eeXMLPropertyBagErrorBase = 29450,
  eeInvalidVariantType = 29451,
  eeInvalidXMLFile = 29452,
};

/// The comparison of a condition. Values are stored in saved definitions: never renumber.
enum qbe_ClauseOperator : std::int32_t {
  qbe_ClauseBetween = 1,
  qbe_ClauseContains = 2,
  qbe_ClauseEqualTo = 3,
  qbe_ClauseGreaterOrEqual = 4,
  qbe_ClauseGreaterThan = 5,
  qbe_ClauseIsEmpty = 6,
  qbe_ClauseIsNull = 7,
  qbe_ClauseLessOrEqual = 8,
  qbe_ClauseLessThan = 9,
  qbe_ClauseNotContains = 10,
  qbe_ClauseNotEqual = 11,
  qbe_ClauseNotStartingWith = 12,
  qbe_ClauseStartingWith = 13,
  qbe_ClauseToday = 14,
  qbe_ClauseThisWeek = 15,
  qbe_ClauseThisMonth = 16,
  qbe_ClauseInList = 17,
  qbe_ClauseLastXDays = 18,
  qbe_ClauseNotInList = 19,
  qbe_ClauseNotIsEmpty = 20,
  qbe_ClauseLastXMonths = 21,
  qbe_ClauseThisYear = 22,
  qbe_ClauseYear = 23,
  qbe_ClauseLastXYears = 24,
  qbe_ClauseContainsWordsNear = 25,
  qbe_ClauseContainsWords = 26,
  qbe_ClauseContainsExpression = 27,
  qbe_ClauseNextXDays = 28,
  qbe_ClauseOverXDays = 29,
  qbe_ClauseTimeNow = 30,
  qbe_ClauseTimeGreaterThanNow = 31,
  qbe_ClauseTimeLessThanNow = 32,
};

/// How a condition joins the one before it.
enum qbe_WhereClauseLogic : std::int32_t {
  qbe_LogicAnd = 1,
  qbe_LogicOr = 2,
  qbe_LogicNone = 3,
};

/// A field's type in the database and the type as which it is shown.
enum qbe_DataType : std::int32_t {
  qbe_DataBLOB = 1,
  qbe_DataBoolean = 2,
  qbe_DataDate = 3,
  qbe_DataMemo = 4,
  qbe_DataNumeric = 5,
  qbe_DataString = 6,
  qbe_DataUTCDate = 7,
  qbe_DataUserDefined1 = 8,
  qbe_DataUserDefined2 = 9,
  qbe_DataUserDefined3 = 10,
  qbe_DataTime = 11,
  qbe_DataDecimal = 12,
};

/// The SQL dialect a query produces.
enum qbe_StatementType : std::int32_t {
  qbe_StatementAccess = 1,
  qbe_StatementDTSearch = 2,
  qbe_StatementSQLServer = 3,
};

/// How a query's tables are linked.
enum qbe_LinksType : std::int32_t {
  qbe_LinksNone = 1,
  qbe_LinksSimpleJoin = 2,
  qbe_LinksFullJoin = 3,
  qbe_LinksLeftJoin = 4,
  qbe_LinksRightJoin = 5,
  qbe_LinksUnion = 6,
};

/// Sort direction of ordering, grouping and sorting levels.
enum qbe_SortType : std::int32_t {
  qbe_SortNone = 0,
  qbe_SortAscending = 1,
  qbe_SortDescending = -1,
};

/// Aggregate applied to a returned field.
enum qbe_AggregateFunctionType : std::int32_t {
  qbe_AggregateNone = 0,
  qbe_AggregateCount = 1,
  qbe_AggregateSum = 2,
  qbe_AggregateAvg = 3,
  qbe_AggregateMin = 4,
  qbe_AggregateMax = 5,
  qbe_AggregateStdDev = 6,
  qbe_AggregateValueCount = 7,
};

enum qbe_GridLineStyle : std::int32_t {
  qbe_GridLineStyleSolid = 0,
  qbe_GridLineStyleDashes = 1,
  qbe_GridLineStyleSmallDots = 2,
};

enum qbe_GridLines : std::int32_t {
  qbe_GridLinesBoth = -1,
  qbe_GridLinesNone = 0,
  qbe_GridLinesVertical = 1,
  qbe_GridLinesHorizontal = 2,
};

/// The input control a user interface offers for a field's condition values.
enum qbe_ControlType : std::int32_t {
  qbe_ControlText = 0,
  qbe_ControlCombo = 1,
  qbe_ControlDate = 2,
  qbe_ControlTime = 3,
};

/// Order of the fields that `xqb_Query::Fields` returns.
enum qbe_OrderType : std::int32_t {
  qbe_OrderUI = 0,
  qbe_Unordered = 100,
};

}  // namespace brix
