// Feeds arbitrary text to the error trace's readers and writers: a trace is read and changed by
// plain text search, so any text, well-formed or not, must give a result or raise brix::Error.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "diagnostics/error_trace.h"
#include "runtime/error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  // The first byte splits the input into a trace and a value to write into it.
  const std::size_t split = size == 0 ? 0 : data[0] % size;
  std::string trace(input.substr(split));
  const std::string_view value = input.substr(0, split);
  try {
    brix::CarriesErrorTrace(trace);
    brix::TraceElementText(trace, "description");
    brix::SetTraceElementText(trace, "number", value);
    brix::AppendTraceElement(trace, "stack", value, "/>");
    brix::ErrorTraceReport(trace);
    brix::TraceFacts facts;
    facts.description = std::string(value);
    facts.routine = trace;
    brix::ErrorTraceReport(brix::NewErrorTrace(facts));
  } catch (const brix::Error&) {
    // A trace past the 16-bit positions raises the overflow error: an expected outcome.
  }
  return 0;
}
