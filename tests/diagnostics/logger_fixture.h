// A logger test bench: fixed clock, user and computer, and a host object that records its events.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "diagnostics/app.h"
#include "diagnostics/host_identity.h"
#include "diagnostics/logger.h"
#include "diagnostics/logger_factory.h"
#include "runtime/clock.h"
#include "runtime/dates.h"

namespace brix::test_support {

/// An application object whose event log is a list.
class RecordingApp : public App {
 public:
  struct Event {
    std::string text;
    std::int32_t type;
  };
  void StartLogging(std::string_view target, std::int32_t mode) override {
    starts.push_back(std::string(target) + "|" + std::to_string(mode));
  }
  void LogEvent(std::string_view text, std::int32_t type) override {
    events.push_back({std::string(text), type});
  }
  std::vector<std::string> starts;
  std::vector<Event> events;
};

/// The host of the documented example: OFFICE\ana on WS042, 2 March 2010 09:30:00, hostapp
/// version 4.0.17 in C:\Apps\Host.
class LoggerTest : public ::testing::Test {
 protected:
  LoggerTest()
      : clock_(DateSerial(2010, 3, 2) + 9.5 / 24),
        identity_(std::make_shared<FixedHostIdentity>("ana", "OFFICE", "WS042")),
        app_(std::make_shared<RecordingApp>()) {
    app_->SetEXEName("hostapp");
    app_->SetPath("C:\\Apps\\Host");
    app_->SetTitle("Host application");
    app_->SetMajor(4);
    app_->SetMinor(0);
    app_->SetRevision(17);
  }

  std::shared_ptr<Logger> NewLogger(eDebugModes mode, const std::string& log_path = {}) {
    return LoggerFactory::Create()->New_Logger(mode, app_, {}, {}, log_path);
  }

  ScopedClock clock_;
  ScopedHostIdentity identity_;
  std::shared_ptr<RecordingApp> app_;
};

}  // namespace brix::test_support
