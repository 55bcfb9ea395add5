// The rows of a statement printed as an aligned text table.
#include "tools/result_table.h"

#include <algorithm>
#include <cstddef>

namespace brix::brixq {
namespace {

// Width on screen: UTF-8 characters, not bytes.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void AppendLine(std::string& out, const std::vector<std::string>& cells,
                const std::vector<std::size_t>& widths, const std::vector<bool>& right_aligned) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += "  ";
    std::string padding(widths[i] - Width(cells[i]), ' ');
    line += right_aligned[i] ? padding + cells[i] : cells[i] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out += line + "\n";
}

}  // namespace

std::string CellText(std::string value) {
  std::replace_if(
      value.begin(), value.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; },
      ' ');
  return value;
}

std::string FormatTable(const ResultTable& table) {
  std::vector<std::size_t> widths;
  for (const std::string& column : table.columns) widths.push_back(Width(column));
  for (const auto& row : table.rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  std::vector<std::string> rule;
  for (std::size_t width : widths) rule.emplace_back(width, '-');
  std::vector<bool> header_alignment(table.columns.size(), false);
  std::string out;
  AppendLine(out, table.columns, widths, table.numeric);
  AppendLine(out, rule, widths, header_alignment);
  for (const auto& row : table.rows) AppendLine(out, row, widths, table.numeric);
  std::size_t n = table.rows.size();
  out += '(';
  out += std::to_string(n);
  out += n == 1 ? " row)" : " rows)";
  return out;
}

}  // namespace brix::brixq
