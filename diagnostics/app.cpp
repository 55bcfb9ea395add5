// The host application's object; its event log is the system log.
#include "diagnostics/app.h"

#include <syslog.h>

#include <filesystem>
#include <system_error>

#include "diagnostics/syslog_identifier.h"

namespace brix {
namespace {

int SyslogPriority(std::int32_t event_type) {
  switch (event_type) {
    case vbLogEventTypeError:
      return LOG_ERR;
    case vbLogEventTypeWarning:
      return LOG_WARNING;
    case vbLogEventTypeInformation:
      return LOG_INFO;
    default:
      return LOG_NOTICE;
  }
}

}  // namespace

App::App() {
  std::error_code error;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return;
  exe_name_ = exe.stem().string();
  path_ = exe.parent_path().string();
  title_ = exe_name_;
}

std::shared_ptr<App> App::Create() { return std::shared_ptr<App>(new App()); }

void App::StartLogging(std::string_view, std::int32_t log_mode) {
  log_mode_ = log_mode;
  if (log_mode_ != vbLogOff) openlog(SyslogIdentifier(title_), LOG_PID, LOG_USER);
}

void App::LogEvent(std::string_view log_buffer, std::int32_t event_type) {
  if (log_mode_ == vbLogOff) return;
  syslog(LOG_USER | SyslogPriority(event_type), "%.*s", static_cast<int>(log_buffer.size()),
         log_buffer.data());
}

}  // namespace brix
