// JSON text of a statement: strings escaped, numbers and Booleans bare.
#include "tools/statement_json.h"

#include <cstdio>
#include <string_view>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix::brixq {
namespace {

// Length of the UTF-8 sequence at `at`, 0 when it is not a valid one.
std::size_t SequenceLength(std::string_view text, std::size_t at) {
  auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned char lead = byte(at);
  std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 && lead <= 0xF4 ? 4
                                       : lead >= 0xE0                 ? 3
                                       : lead >= 0xC2 && lead < 0xE0  ? 2
                                                                      : 0;
  if (length == 0 || at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  // Overlong three- and four-byte forms, surrogates and code points past U+10FFFF.
  unsigned char second = length > 1 ? byte(at + 1) : 0;
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
      (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90)) {
    return 0;
  }
  return length;
}

void AppendString(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    std::size_t length = SequenceLength(text, i);
    if (length == 0) {
      Raise(kErrInvalidProcedureCall, "brixq",
            "a value is not valid UTF-8 text at byte " + std::to_string(i + 1) +
                ", and JSON cannot carry it");
    }
    auto c = static_cast<unsigned char>(text[i]);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else {
      out.append(text.substr(i, length));
    }
    i += length;
  }
  out += '"';
}

void AppendValue(std::string& out, const SqlParameter& parameter) {
  switch (parameter.type) {
    case SqlType::kInteger:
    case SqlType::kReal:
    case SqlType::kBoolean:
      out += parameter.text;
      return;
    default:
      AppendString(out, parameter.text);
  }
}

}  // namespace

std::string StatementJson(const ParameterizedStatement& statement, SqlDialect dialect) {
  std::string out = "{\n  \"dialect\": ";
  AppendString(out, SqlDialectName(dialect));
  out += ",\n  \"sql\": ";
  AppendString(out, statement.text);
  out += ",\n  \"parameters\": [";
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    out += i == 0 ? "\n    {\"type\": " : ",\n    {\"type\": ";
    AppendString(out, SqlTypeName(statement.parameters[i].type));
    out += ", \"value\": ";
    AppendValue(out, statement.parameters[i]);
    out += '}';
  }
  out += statement.parameters.empty() ? "]\n}" : "\n  ]\n}";
  return out;
}

}  // namespace brix::brixq
