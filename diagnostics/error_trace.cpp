// Writing, extending and reporting the error trace with plain text search.
#include "diagnostics/error_trace.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "diagnostics/string_builder.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

constexpr std::size_t kMaxPosition = 32767;
constexpr std::string_view kStackOpen = "<stack ";
constexpr std::string_view kStackClose = "/>";

void AppendElement(StringBuilder& out, std::string_view name, std::string_view value) {
  out.Append(u"\r\n\t<").Append(ToUtf16(name)).Append(u">").Append(ToUtf16(value));
  out.Append(u"</").Append(ToUtf16(name)).Append(u">");
}

void AppendAttribute(std::string& out, std::string_view name, std::string_view value) {
  out += name;
  out += "=\"";
  out += value;
  out += '"';
}

// Where the element's text starts and how long it is; npos when the element is missing.
std::pair<std::size_t, std::size_t> FindElementText(std::string_view trace, std::string_view name) {
  const std::string open = "<" + std::string(name) + ">";
  const std::string close = "</" + std::string(name) + ">";
  const std::size_t open_at = trace.find(open);
  if (open_at == std::string_view::npos) return {std::string_view::npos, 0};
  const std::size_t start = open_at + open.size();
  const std::size_t end = trace.find(close, start);
  if (end == std::string_view::npos) return {std::string_view::npos, 0};
  return {start, end - start};
}

// The attribute texts of the stack elements in document order.
std::vector<std::string_view> StackEntries(std::string_view trace) {
  std::vector<std::string_view> entries;
  std::size_t at = trace.find(kStackOpen);
  while (at != std::string_view::npos) {
    const std::size_t start = at + kStackOpen.size();
    const std::size_t end = trace.find(kStackClose, start);
    if (end == std::string_view::npos) break;
    entries.push_back(trace.substr(start, end - start));
    at = trace.find(kStackOpen, end);
  }
  return entries;
}

struct ReportRow {
  std::string_view label;
  std::string_view element;
};

// An empty label is the deliberate empty line between the description and the nice text.
constexpr ReportRow kReportRows[] = {
    {"Gravitate", "severity"},    {"Numar eroare", "number"},
    {"Descriere", "description"}, {"", ""},
    {"Solutionare", "nicetext"},  {"Help text", "helptext"},
    {"Nume utilizator", "user"},  {"Computer", "computer"},
    {"Nume fisier", "program"},   {"Cale fisier", "path"},
    {"Versiune", "version"},      {"Fisier ajutor", "helpfile"},
    {"Context", "helpcontext"},
};

std::size_t LabelColumn() {
  std::size_t longest = 0;
  for (const ReportRow& row : kReportRows) longest = std::max(longest, row.label.size());
  return longest + 1;
}

}  // namespace

bool CarriesErrorTrace(std::string_view source) {
  return source.find("<errortrace>") != std::string_view::npos;
}

std::string StackAttributes(std::string_view computer, std::string_view line,
                            std::string_view routine, std::string_view module) {
  std::string text;
  AppendAttribute(text, "computer", computer);
  text += ' ';
  AppendAttribute(text, "line", line);
  text += ' ';
  AppendAttribute(text, "routine", routine);
  text += ' ';
  AppendAttribute(text, "module", module);
  return text;
}

std::string NewErrorTrace(const TraceFacts& facts) {
  auto out = StringBuilder::Create();
  out->Append(u"<errortrace>");
  AppendElement(*out, "user", facts.user);
  AppendElement(*out, "program", facts.program);
  AppendElement(*out, "path", facts.path);
  AppendElement(*out, "computer", facts.computer);
  AppendElement(*out, "version", facts.version);
  AppendElement(*out, "nicetext", facts.nice_text);
  AppendElement(*out, "helptext", facts.help_text);
  AppendElement(*out, "description", facts.description);
  AppendElement(*out, "number", facts.number);
  AppendElement(*out, "helpfile", facts.help_file);
  AppendElement(*out, "helpcontext", facts.help_context);
  AppendElement(*out, "severity", facts.severity);
  out->Append(u"\r\n\t\t<stack ");
  out->Append(ToUtf16(StackAttributes(facts.computer, facts.line, facts.routine, facts.module)));
  out->Append(u"/></errortrace>");
  return ToUtf8(out->ToString());
}

std::string TraceElementText(std::string_view trace, std::string_view name) {
  const auto [start, size] = FindElementText(trace, name);
  if (start == std::string_view::npos) return {};
  return std::string(trace.substr(start, size));
}

void SetTraceElementText(std::string& trace, std::string_view name, std::string_view value) {
  const auto [start, size] = FindElementText(trace, name);
  if (start == std::string_view::npos) return;
  trace.replace(start, size, value);
}

void AppendTraceElement(std::string& trace, std::string_view tag, std::string_view attributes,
                        std::string_view closing) {
  const std::string_view trimmed = TrimBlanks(attributes);
  if (trace.empty() || tag.empty() || trimmed.empty() || closing.empty()) return;
  // The positions of the search are 16-bit numbers.
  if (ToUtf16(trace).size() > kMaxPosition) RaiseRuntimeError(kErrOverflow);
  const std::string open = "<" + std::string(tag) + " ";
  const std::size_t last = trace.rfind(open);
  if (last == std::string::npos) return;
  const std::size_t close = trace.find(closing, last + open.size());
  if (close == std::string::npos) return;
  std::string element = "\r\n\t\t" + open;
  element += trimmed;
  element += closing;
  trace.insert(close + closing.size(), element);
}

std::string ErrorTraceReport(std::string_view trace) {
  const std::size_t column = LabelColumn();
  auto out = StringBuilder::Create();
  for (const ReportRow& row : kReportRows) {
    if (!row.label.empty()) {
      std::string line(row.label);
      line += ':';
      line.append(column - row.label.size(), ' ');
      line += TraceElementText(trace, row.element);
      out->Append(ToUtf16(line));
    }
    out->Append(u"\r\n");
  }
  out->Append(u"\r\nStiva apeluri:\r\n");
  const std::vector<std::string_view> entries = StackEntries(trace);
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    if (TrimBlanks(*entry).empty()) continue;
    out->Append(ToUtf16(*entry)).Append(u"\r\n");
  }
  return ToUtf8(out->ToString());
}

}  // namespace brix
