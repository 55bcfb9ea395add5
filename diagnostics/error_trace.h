// The error trace: an XML-like text read and written by plain text search, and its text report.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brix {

/// What a new trace records, each value written verbatim.
struct TraceFacts {
  std::string user;
  std::string program;
  std::string path;
  std::string computer;
  std::string version;
  std::string nice_text;
  std::string help_text;
  std::string description;
  std::string number;
  std::string help_file;
  std::string help_context;
  std::string severity;
  std::string line;
  std::string routine;
  std::string module;
};

/// True when `source` already holds a trace (contains "<errortrace>").
bool CarriesErrorTrace(std::string_view source);

/// A new trace: the root, one element per line (CR LF and a TAB before each), then CR LF, two
/// TABs and the first stack element, and the closing root tag right after it. Nothing is
/// escaped, so a value holding "<" or "&" leaves text that is not well-formed XML; the trace is
/// only ever read back by text search.
std::string NewErrorTrace(const TraceFacts& facts);

/// The attribute text of a stack element: computer, line, routine and module, each as
/// name="value", separated by single blanks.
std::string StackAttributes(std::string_view computer, std::string_view line,
                            std::string_view routine, std::string_view module);

/// The text between the first "<name>" and the first "</name>" after it; empty when either is
/// missing.
std::string TraceElementText(std::string_view trace, std::string_view name);

/// Replaces the text that `TraceElementText` reads; a trace without the element is unchanged.
void SetTraceElementText(std::string& trace, std::string_view name, std::string_view value);

/// Inserts CR LF, two TABs, "<" `tag` " ", `attributes` trimmed of blanks and `closing` right
/// after the first `closing` that follows the last "<" `tag` " ". The trace is unchanged when it,
/// `tag`, the trimmed attributes or `closing` is empty, or when no such element is found.
/// Positions in the trace are 16-bit: a trace longer than 32767 UTF-16 code units raises the
/// overflow error 6.
void AppendTraceElement(std::string& trace, std::string_view tag, std::string_view attributes,
                        std::string_view closing);

/// The Romanian text report of a trace: thirteen labelled rows aligned at one column (the
/// fourth an empty line), an empty line, "Stiva apeluri:" and the stack elements' attribute
/// texts, the most recently appended first; blank stack entries are skipped. Every line ends
/// in CR LF.
std::string ErrorTraceReport(std::string_view trace);

}  // namespace brix
