// The service's logger: made once, used under a lock (a logger is not shared between threads).
#include "tools/failure_reporter.h"

#include "diagnostics/app.h"
#include "diagnostics/logger.h"
#include "diagnostics/logger_factory.h"

namespace brix::brixq {

FailureReporter::FailureReporter(const std::optional<std::string>& log_file, bool syslog) {
  int flags = (log_file ? dbgToLogFile : 0) | (syslog ? dbgEventLog : 0);
  auto app = App::Create();
  app->SetTitle("brixq serve");
  logger_ = LoggerFactory::Create()->New_Logger(static_cast<eDebugModes>(flags), app, {}, {},
                                                log_file.value_or(""));
}

void FailureReporter::Report(const Error& error, const std::string& routine) {
  std::lock_guard lock(mutex_);
  try {
    logger_->ErrReport(error, 0, "brixq serve", routine);
  } catch (const Error&) {
    // A trace too long for the report: the request's own answer still carries the error.
  }
}

}  // namespace brix::brixq
