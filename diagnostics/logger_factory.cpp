// The logger factory: validates its arguments and fills the logger's host-facing texts.
#include "diagnostics/logger_factory.h"

#include "diagnostics/app.h"
#include "diagnostics/log_file.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

std::shared_ptr<LoggerFactory> LoggerFactory::Create() {
  static const std::shared_ptr<LoggerFactory> factory(new LoggerFactory());
  return factory;
}

std::shared_ptr<Logger> LoggerFactory::New_Logger(eDebugModes debug_mode,
                                                  const std::shared_ptr<Object>& app_object,
                                                  const std::string& message_title,
                                                  const std::string& default_message,
                                                  const std::string& log_file_path) const {
  // Both refusals reach the caller as the overflow error, whatever their message would say:
  // hosts test for failure, not for the text.
  const auto app = std::dynamic_pointer_cast<App>(app_object);
  if (!app || app->TypeName() != "App") RaiseRuntimeError(kErrOverflow);
  if (debug_mode < 0 || debug_mode > 63) RaiseRuntimeError(kErrOverflow);
  std::shared_ptr<Logger> logger(new Logger());
  logger->SetDebugMode(debug_mode);
  logger->app_ = app;
  logger->log_file_path_ = log_file_path.empty()
                               ? DefaultLogFolder(app->Path()) + "/" + app->EXEName() + ".DBG"
                               : log_file_path;
  logger->default_message_ = default_message.empty()
                                 ? "A aparut o eroare in OrlaErrorHandler. Este posibil sa nu "
                                   "poata fi creat fisierul de eroare."
                                 : default_message;
  logger->message_title_ = message_title.empty() ? app->Title() : message_title;
  return logger;
}

}  // namespace brix
