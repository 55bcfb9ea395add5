// The host application's object: its name, folder, title and version, and its event logging.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "runtime/object.h"

namespace brix {

/// How `App::StartLogging` logs.
enum LogModeConstants : std::int32_t {
  vbLogAuto = 0,
  vbLogOff = 1,
  vbLogToFile = 2,
  vbLogToNT = 3,
};

/// Event types of `App::LogEvent`.
enum LogEventTypeConstants : std::int32_t {
  vbLogEventTypeError = 1,
  vbLogEventTypeWarning = 2,
  vbLogEventTypeInformation = 4,
};

/// The host application's object, which the host fills and hands to `LoggerFactory`. Its type
/// name is "App", which is what the factory checks. A new one describes the running program:
/// `EXEName` is the executable's file name without its last extension, `Path` its folder,
/// `Title` the `EXEName`, the version 0.0.0.
///
/// Events go to the system log (syslog, facility user, identified by the `Title`): error as
/// LOG_ERR, warning as LOG_WARNING, information as LOG_INFO, any other type as LOG_NOTICE.
/// Logging never raises.
class App : public Object {
 public:
  static std::shared_ptr<App> Create();
  std::string TypeName() const override { return "App"; }

  const std::string& EXEName() const { return exe_name_; }
  void SetEXEName(std::string value) { exe_name_ = std::move(value); }
  const std::string& Path() const { return path_; }
  void SetPath(std::string value) { path_ = std::move(value); }
  const std::string& Title() const { return title_; }
  void SetTitle(std::string value) { title_ = std::move(value); }
  std::int32_t Major() const { return major_; }
  void SetMajor(std::int32_t value) { major_ = value; }
  std::int32_t Minor() const { return minor_; }
  void SetMinor(std::int32_t value) { minor_ = value; }
  std::int32_t Revision() const { return revision_; }
  void SetRevision(std::int32_t value) { revision_ = value; }

  /// Starts event logging. Every mode except `vbLogOff` writes to the system log, which is the
  /// only event log Linux has; `log_target` (a file name for `vbLogToFile`) is not used.
  virtual void StartLogging(std::string_view log_target, std::int32_t log_mode);
  /// Writes one event of `event_type` (a `LogEventTypeConstants` value, or 0 for none) whose
  /// text is `log_buffer`. Before `StartLogging`, events go to the system log as well.
  virtual void LogEvent(std::string_view log_buffer, std::int32_t event_type);

 protected:
  App();

 private:
  std::string exe_name_;
  std::string path_;
  std::string title_;
  std::int32_t major_ = 0;
  std::int32_t minor_ = 0;
  std::int32_t revision_ = 0;
  std::int32_t log_mode_ = vbLogAuto;
};

}  // namespace brix
