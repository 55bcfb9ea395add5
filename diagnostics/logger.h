// The error logger: passes an error up with its call trace and reports it where the flags say.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "runtime/error.h"

namespace brix {

class App;
class LoggerFactory;

/// What `Logger::ErrReport` does; flags, combinable.
enum eDebugModes : std::int32_t {
  dbgToLogFile = 1,              ///< append the report to the log file
  dbgMessageBox = 2,             ///< raise the MesajDeEroare event
  dbgImmediateWindow = 4,        ///< accepted and stored; has no effect
  dbgEventLog = 8,               ///< write the report to the host's event log
  dbgDisplayOriginalError = 16,  ///< the event's message is the error's own description
  dbgWriteXMLOut = 32,           ///< the log file receives the XML trace instead of the report
};

/// The MesajDeEroare event: `WarningLevel`, `Message`, `Details`, `Help`, `Title`,
/// `LogFilePath`, `RootError`, then `bRetry`, False on entry, which the host may set to True to
/// ask the caller to retry.
using MesajDeEroareHandler = std::function<void(
    const std::string& warning_level, const std::string& message, const std::string& details,
    const std::string& help, const std::string& title, const std::string& log_file_path,
    const std::string& root_error, bool& b_retry)>;

/// Error reporting for a host application, made by `LoggerFactory::New_Logger`. A routine that
/// catches an error calls `ErrRaise` to add itself to the error's trace and pass it on; the
/// outermost routine calls `ErrReport`. The trace travels in the error's source text.
///
/// Severity 1 is written "Eroare", 2 "Atentie", 4 "Informatie", any other value as empty text.
/// User and computer come from `HostIdentity`, the time in the computer text from the library's
/// clock as "dd.mm.yyyy hh:nn:ss" (24-hour). The user text is domain, "\" and account; it is
/// empty when either lookup fails, when the account name has 255 characters or more, or when
/// the domain has 16 or more. The computer text is empty when the computer's name is unknown
/// or has 255 characters or more.
class Logger {
 public:
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  /// The report flags. Stored as a 16-bit value: the setter raises 6 outside -32768..32767 but
  /// otherwise checks nothing (only `New_Logger` checks the range 0..63).
  eDebugModes DebugMode() const { return static_cast<eDebugModes>(debug_mode_); }
  void SetDebugMode(eDebugModes value);

  /// The text report of the last `ErrReport`; empty before the first.
  const std::string& TXTDescription() const { return txt_description_; }
  /// The XML trace of the last `ErrReport`; empty before the first.
  const std::string& XMLDescription() const { return xml_description_; }

  /// Registers the host's handler of the MesajDeEroare event, replacing any earlier one; an
  /// empty handler unregisters it.
  void OnMesajDeEroare(MesajDeEroareHandler handler) { handler_ = std::move(handler); }

  /// Builds or extends the trace of `error`, stores it and its text report, then as the flags
  /// say appends the report (or, with `dbgWriteXMLOut`, the trace) and CR LF to the log file,
  /// writes CR LF CR LF and the report to the host's event log, and raises MesajDeEroare.
  /// Returns the `bRetry` the handler left (False without the event). The log file and the
  /// event log never raise; a trace longer than 32767 characters raises 6.
  bool ErrReport(const Error& error, std::int32_t err_line,
                 const std::string& module_name = "Unspecified",
                 const std::string& proc_name = "Unspecified", std::int32_t severity = 1,
                 const std::string& nice_text = {}, const std::string& help_text = {});

  /// Builds or extends the trace of `error` as `ErrReport` does and raises the error again with
  /// its number, description, help file and help context, and the trace as its source. Neither
  /// logs nor raises the event.
  [[noreturn]] void ErrRaise(const Error& error, std::int32_t err_line,
                             const std::string& module_name = "Unspecified",
                             const std::string& proc_name = "Unspecified",
                             std::int32_t severity = 1, const std::string& nice_text = {},
                             const std::string& help_text = {});

 private:
  friend class LoggerFactory;
  Logger() = default;

  // The trace of `error` with this routine added: a new one, or the one its source carries.
  std::string Trace(const Error& error, std::int32_t line, const std::string& module,
                    const std::string& routine, std::int32_t severity, const std::string& nice_text,
                    const std::string& help_text) const;
  void WriteLogFile(const std::string& text) const;
  void WriteEventLog(const std::string& severity_text) const;
  bool RaiseMesajDeEroare(const Error& error, const std::string& trace) const;

  std::int16_t debug_mode_ = 0;
  std::string message_title_;
  std::string default_message_;
  std::shared_ptr<App> app_;
  std::string log_file_path_;
  std::string txt_description_;
  std::string xml_description_;
  MesajDeEroareHandler handler_;
};

}  // namespace brix
