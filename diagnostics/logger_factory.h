// The only way to make a logger: checks the host's application object and the flags.
#pragma once

#include <memory>
#include <string>

#include "diagnostics/logger.h"
#include "runtime/object.h"

namespace brix {

/// Hands out loggers. There is one factory per process: every `Create` returns it.
class LoggerFactory {
 public:
  static std::shared_ptr<LoggerFactory> Create();

  LoggerFactory(const LoggerFactory&) = delete;
  LoggerFactory& operator=(const LoggerFactory&) = delete;

  /// A logger for the host whose application object is `app_object` (an `App`: its type name
  /// must be "App"). An empty `log_file_path` means the host's folder (or, when the user may not
  /// write there, the user's state folder: `DefaultLogFolder`), "/", its executable name and
  /// ".DBG"; an empty `default_message` means "A aparut o eroare in OrlaErrorHandler. Este
  /// posibil sa nu poata fi creat fisierul de eroare."; an empty `message_title` the host's
  /// title. Any other object, no object, or a `debug_mode` outside 0..63 raises the overflow
  /// error 6.
  std::shared_ptr<Logger> New_Logger(eDebugModes debug_mode,
                                     const std::shared_ptr<Object>& app_object,
                                     const std::string& message_title = {},
                                     const std::string& default_message = {},
                                     const std::string& log_file_path = {}) const;

 private:
  LoggerFactory() = default;
};

}  // namespace brix
