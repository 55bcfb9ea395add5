// The logger: builds or extends the error trace, re-raises it, and reports it.
#include "diagnostics/logger.h"

#include <exception>
#include <optional>

#include "diagnostics/app.h"
#include "diagnostics/error_trace.h"
#include "diagnostics/host_identity.h"
#include "diagnostics/log_file.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

// The fixed buffers the names are read into, terminator included.
constexpr std::size_t kAccountBuffer = 255;
constexpr std::size_t kDomainBuffer = 16;
constexpr std::size_t kComputerBuffer = 255;

// A looked-up name that fits a buffer of `buffer` UTF-16 units with its terminator.
std::optional<std::string> Fitting(std::optional<std::string> name, std::size_t buffer) {
  if (!name || ToUtf16(*name).size() >= buffer) return std::nullopt;
  return name;
}

// "domain\account", or empty when a lookup fails; a failing lookup never raises.
std::string UserText() {
  try {
    const auto identity = HostIdentity::Current();
    const auto account = Fitting(identity->AccountName(), kAccountBuffer);
    if (!account) return {};
    const auto domain = Fitting(identity->AccountDomain(*account), kDomainBuffer);
    if (!domain) return {};
    return *domain + "\\" + *account;
  } catch (const std::exception&) {
    return {};
  }
}

// The computer's name, " time: " and the clock's date and time; empty when the name is unknown.
std::string ComputerText() {
  std::optional<std::string> name;
  try {
    name = Fitting(HostIdentity::Current()->ComputerName(), kComputerBuffer);
  } catch (const std::exception&) {
    return {};
  }
  if (!name) return {};
  return *name + " time: " + FormatDate(Now(), "dd.mm.yyyy hh:nn:ss");
}

std::string SeverityText(std::int32_t severity) {
  switch (severity) {
    case 1:
      return "Eroare";
    case 2:
      return "Atentie";
    case 4:
      return "Informatie";
    default:
      return {};
  }
}

std::int32_t EventLogType(const std::string& severity_text) {
  if (severity_text == "Eroare") return vbLogEventTypeError;
  if (severity_text == "Atentie") return vbLogEventTypeWarning;
  if (severity_text == "Informatie") return vbLogEventTypeInformation;
  return 0;
}

std::string VersionText(const App& app) {
  return "Version " + std::to_string(app.Major()) + "." + std::to_string(app.Minor()) + "." +
         std::to_string(app.Revision());
}

}  // namespace

void Logger::SetDebugMode(eDebugModes value) {
  if (value < INT16_MIN || value > INT16_MAX) RaiseRuntimeError(kErrOverflow);
  debug_mode_ = static_cast<std::int16_t>(value);
}

std::string Logger::Trace(const Error& error, std::int32_t line, const std::string& module,
                          const std::string& routine, std::int32_t severity,
                          const std::string& nice_text, const std::string& help_text) const {
  const std::string computer = ComputerText();
  if (CarriesErrorTrace(error.Source())) {
    std::string trace = error.Source();
    // The first routine that explained the error keeps its explanation.
    if (TraceElementText(trace, "nicetext").empty()) {
      SetTraceElementText(trace, "nicetext", nice_text);
    }
    if (TraceElementText(trace, "helptext").empty()) {
      SetTraceElementText(trace, "helptext", help_text);
    }
    SetTraceElementText(trace, "severity", SeverityText(severity));
    AppendTraceElement(trace, "stack",
                       StackAttributes(computer, std::to_string(line), routine, module), "/>");
    return trace;
  }
  TraceFacts facts;
  facts.user = UserText();
  facts.program = app_->EXEName();
  facts.path = app_->Path();
  facts.computer = computer;
  facts.version = VersionText(*app_);
  facts.nice_text = nice_text;
  facts.help_text = help_text;
  facts.description = error.Description();
  facts.number = std::to_string(error.Number());
  facts.help_file = error.HelpFile();
  facts.help_context = std::to_string(error.HelpContext());
  facts.severity = SeverityText(severity);
  facts.line = std::to_string(line);
  facts.routine = routine;
  facts.module = module;
  return NewErrorTrace(facts);
}

bool Logger::ErrReport(const Error& error, std::int32_t err_line, const std::string& module_name,
                       const std::string& proc_name, std::int32_t severity,
                       const std::string& nice_text, const std::string& help_text) {
  const std::string trace =
      Trace(error, err_line, module_name, proc_name, severity, nice_text, help_text);
  xml_description_ = trace;
  txt_description_ = ErrorTraceReport(trace);
  if (debug_mode_ & dbgToLogFile) {
    WriteLogFile((debug_mode_ & dbgWriteXMLOut) ? xml_description_ : txt_description_);
  }
  if (debug_mode_ & dbgEventLog) WriteEventLog(TraceElementText(trace, "severity"));
  if (debug_mode_ & dbgMessageBox) return RaiseMesajDeEroare(error, trace);
  return false;
}

void Logger::ErrRaise(const Error& error, std::int32_t err_line, const std::string& module_name,
                      const std::string& proc_name, std::int32_t severity,
                      const std::string& nice_text, const std::string& help_text) {
  Raise(error.Number(),
        Trace(error, err_line, module_name, proc_name, severity, nice_text, help_text),
        error.Description(), error.HelpFile(), error.HelpContext());
}

void Logger::WriteLogFile(const std::string& text) const {
  if (log_file_path_.empty()) return;
  AppendToLogFile(log_file_path_, text);
}

void Logger::WriteEventLog(const std::string& severity_text) const {
  try {
    app_->StartLogging("", vbLogAuto);
    app_->LogEvent("\r\n\r\n" + txt_description_, EventLogType(severity_text));
  } catch (const std::exception&) {
    // An event log that cannot be written leaves the report out of it.
  }
}

bool Logger::RaiseMesajDeEroare(const Error& error, const std::string& trace) const {
  if (!handler_) return false;
  const std::string nice_text = TraceElementText(trace, "nicetext");
  const std::string& message = (debug_mode_ & dbgDisplayOriginalError) ? error.Description()
                               : !nice_text.empty()                    ? nice_text
                                                                       : default_message_;
  const std::string root_error = "(" + std::to_string(error.Number()) + ") " + error.Description();
  bool retry = false;
  handler_(TraceElementText(trace, "severity"), message, txt_description_,
           TraceElementText(trace, "helptext"), message_title_, log_file_path_, root_error, retry);
  return retry;
}

}  // namespace brix
