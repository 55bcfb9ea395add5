// Failures of the service reported through the library's logger: a log file and the system log.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "runtime/error.h"

namespace brix {
class Logger;
}  // namespace brix

namespace brix::brixq {

// The logger's header is kept out: its flags enumeration is declared by the query model's
// definitions too, and the two cannot meet in one translation unit.

/// One logger shared by the server's threads. With neither a file nor the system log it still
/// builds each error's trace, and writes nothing.
class FailureReporter {
 public:
  FailureReporter(const std::optional<std::string>& log_file, bool syslog);
  /// Reports `error` as raised in `routine` of the service; never raises.
  void Report(const Error& error, const std::string& routine);

 private:
  std::mutex mutex_;
  std::shared_ptr<Logger> logger_;
};

}  // namespace brix::brixq
