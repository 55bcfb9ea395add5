// What a parameterized statement writes differently per engine, and how an operand becomes a typed
// value: identifiers, placeholders, LIKE patterns, IN lists.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "querybuilder/parameterized_statement.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

/// Source of the errors a parameterized rendering raises.
inline constexpr std::string_view kParameterizedSource = "brixobjects4.ParameterizedStatement";

/// A stored name (`DBName` of a table or field) as a quoted identifier. The name splits at the
/// dots outside brackets, each part being one identifier: a part in brackets is its inner text
/// ("]]" inside stands for "]"), any other part is taken as it stands. Each part is written
/// between double quotes, a double quote inside doubled, so no name can end its quoting early:
/// "dbo.[Order Items]" is "dbo"."Order Items", "[a.b]" is "a.b", 'x"y' is "x""y". An empty part
/// ("a..b", "[]", "") raises kErrUnquotableName.
std::string QuotedName(std::string_view stored_name);

/// An alias as one quoted identifier, never split at dots: in brackets, its inner text; else the
/// alias as it stands. An empty identifier raises kErrUnquotableName.
std::string QuotedAlias(std::string_view alias);

/// True when `text` is a name and nothing else: parts separated by dots, each in brackets or made
/// of letters, digits, "_" and "$" (any non-ASCII character counts as a letter), not starting
/// with a digit. A join link that reads so is quoted like any name; other link text is SQL that
/// the host wrote.
bool ReadsAsName(std::string_view text);

/// " LIKE " / " NOT LIKE " for SQLite, " ILIKE " / " NOT ILIKE " for PostgreSQL.
std::string_view LikeOperator(SqlDialect dialect, bool negated);

/// The text after a LIKE placeholder that names "\" as its escape character. PostgreSQL gets an
/// escape-string literal (E'\\'): a plain '\' there reads as an unterminated literal when the
/// server runs with standard_conforming_strings off, and would swallow the statement's next text.
std::string_view LikeEscapeClause(SqlDialect dialect);

/// `text` with "\", "%" and "_" preceded by "\", so a LIKE pattern matches them literally.
std::string EscapeLikePattern(std::string_view text);

/// The operand as a value of a field of `type`:
/// - String and Memo: text, the operand's string form (Null and Empty give "");
/// - Numeric and Decimal: an integer when the operand is a whole number in the 64-bit range (an
///   integer text is read exactly), else a real; read as `CDbl` reads, so text that is no number
///   raises 13 and Null 94;
/// - Boolean: `CBool`; Date: a date (`OperandDay`); UTCDate: a date-time; Time: a time of day;
/// - any other type: by the operand's own kind (text, integer, real, Boolean, date-time).
SqlParameter BindOperand(const Variant& operand, qbe_DataType type);

/// A day number as a date, with the time of day dropped.
SqlParameter BindDay(double day);

/// The hour and minute of a moment as a time (seconds 00), as the time kinds compare.
SqlParameter BindTimeOfMinute(double moment);

/// The items of an IN list's stored text, read strictly: "(" item ("," item)* ")" with blanks
/// around, each item a number ([+-]digits[.digits][E[+-]digits]) or a text between single quotes
/// ('' inside stands for '). Texts give their content, numbers their text as written. Anything
/// else raises kErrInListSyntax, naming the character where reading stopped.
std::vector<Variant> ReadInList(std::string_view stored_text);

}  // namespace brix
