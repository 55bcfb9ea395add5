// Feeds arbitrary text to the platform's readers and formatters: number and date parsing,
// conversions, date formatting and name normalisation must succeed or raise brix::Error.
#include <cstddef>
#include <cstdint>
#include <string>

#include "querybuilder/db_name.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/error.h"
#include "runtime/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  brix::Variant value(text);
  brix::ParseNumber(text);
  brix::ParseDate(text);
  brix::FoldCase(text);
  brix::ToUtf8(brix::ToUtf16(text));
  brix::NormalizeDBName(text);
  for (auto convert : {+[](const brix::Variant& v) { brix::CLng(v); },
                       +[](const brix::Variant& v) { brix::CBool(v); },
                       +[](const brix::Variant& v) { brix::CDate(v); },
                       +[](const brix::Variant& v) { brix::CStr(brix::Variant(brix::CDbl(v))); },
                       +[](const brix::Variant& v) { brix::Format(v, "dd-MMM-yyyy hh:mm"); }}) {
    try {
      convert(value);
    } catch (const brix::Error&) {
      // Text that does not convert raises the platform's error: that is the expected outcome.
    }
  }
  return 0;
}
