// The logger: its factory's checks and defaults, each report flag, the log file and the lookups.
#include "diagnostics/logger.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <unistd.h>

#include "diagnostics/error_trace.h"
#include "runtime/error_numbers.h"
#include "tests/diagnostics/logger_fixture.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

namespace fs = std::filesystem;
using test_support::LoggerTest;
using test_support::RaisesRuntimeError;

const Error kError(5, "host", "Invalid procedure call");

// What one MesajDeEroare event carried.
struct Message {
  std::string warning_level, message, details, help, title, log_file_path, root_error;
};

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class ScratchFolder {
 public:
  ScratchFolder() : path_(fs::temp_directory_path() / ("brix_logger_" + std::to_string(getpid()))) {
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  fs::path operator/(const std::string& name) const { return path_ / name; }

 private:
  fs::path path_;
};

class NotAnApp : public Object {
 public:
  std::string TypeName() const override { return "Form"; }
};

class RenamedApp : public App {
 public:
  RenamedApp() = default;
  std::string TypeName() const override { return "MyApp"; }
};

TEST_F(LoggerTest, FactoryRefusesAnythingButAnAppAndFlagsOutside0To63WithOverflow) {
  auto factory = LoggerFactory::Create();
  EXPECT_EQ(factory, LoggerFactory::Create());
  // clang-format off
  struct Case { const char* what; std::int32_t mode; std::shared_ptr<Object> app; };
  const Case cases[] = {
      {"no object",          0,  nullptr},
      {"another object",     0,  std::make_shared<NotAnApp>()},
      {"another type name",  0,  std::make_shared<RenamedApp>()},
      {"flags above 63",     64, app_},
      {"negative flags",     -1, app_},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_TRUE(RaisesRuntimeError(
        [&] { factory->New_Logger(static_cast<eDebugModes>(c.mode), c.app); }, kErrOverflow))
        << c.what;
  }
  EXPECT_EQ(factory->New_Logger(eDebugModes{63}, app_)->DebugMode(), 63);
  EXPECT_EQ(factory->New_Logger(eDebugModes{0}, App::Create())->DebugMode(), 0);
}

TEST_F(LoggerTest, DebugModeSetterStoresAny16BitValue) {
  auto logger = NewLogger(eDebugModes{0});
  logger->SetDebugMode(eDebugModes{100});
  EXPECT_EQ(logger->DebugMode(), 100);
  logger->SetDebugMode(eDebugModes{-32768});
  EXPECT_EQ(logger->DebugMode(), -32768);
  EXPECT_TRUE(RaisesRuntimeError([&] { logger->SetDebugMode(eDebugModes{32768}); }, kErrOverflow));
  EXPECT_EQ(logger->DebugMode(), -32768);
}

TEST_F(LoggerTest, EachFlagDoesItsOwnPartOnly) {
  enum Written { kNothing, kReport, kTrace };
  // clang-format off
  struct Case { std::int32_t mode; Written file; bool event_log; bool message_box;
                const char* message; };
  const Case cases[] = {
      {0,  kNothing, false, false, ""},
      {1,  kReport,  false, false, ""},
      {33, kTrace,   false, false, ""},
      {32, kNothing, false, false, ""},
      {2,  kNothing, false, true,  "Verificati datele"},
      {18, kNothing, false, true,  "Invalid procedure call"},
      {16, kNothing, false, false, ""},
      {4,  kNothing, false, false, ""},
      {8,  kNothing, true,  false, ""},
      {63, kTrace,   true,  true,  "Invalid procedure call"},
  };
  // clang-format on
  for (const Case& c : cases) {
    ScratchFolder folder;
    const fs::path log = folder / "host.DBG";
    app_->starts.clear();
    app_->events.clear();
    auto logger = NewLogger(static_cast<eDebugModes>(c.mode), log.string());
    std::vector<std::string> messages;
    logger->OnMesajDeEroare([&](const std::string&, const std::string& message,
                                const std::string&, const std::string&, const std::string&,
                                const std::string&, const std::string&, bool& retry) {
      messages.push_back(message);
      retry = true;
    });
    const bool retry = logger->ErrReport(kError, 7, "m", "r", 1, "Verificati datele");
    const std::string& report = logger->TXTDescription();
    const std::string& trace = logger->XMLDescription();
    EXPECT_TRUE(trace.starts_with("<errortrace>")) << c.mode;
    EXPECT_TRUE(report.starts_with("Gravitate:")) << c.mode;
    const std::string expected_file = c.file == kNothing ? ""
                                      : c.file == kReport ? report + "\r\n"
                                                          : trace + "\r\n";
    EXPECT_EQ(fs::exists(log), c.file != kNothing) << c.mode;
    EXPECT_EQ(ReadFile(log), expected_file) << c.mode;
    if (c.event_log) {
      EXPECT_EQ(app_->starts, std::vector<std::string>{"|0"}) << c.mode;
      ASSERT_EQ(app_->events.size(), 1u) << c.mode;
      EXPECT_EQ(app_->events[0].text, "\r\n\r\n" + report) << c.mode;
      EXPECT_EQ(app_->events[0].type, vbLogEventTypeError) << c.mode;
    } else {
      EXPECT_TRUE(app_->starts.empty() && app_->events.empty()) << c.mode;
    }
    EXPECT_EQ(retry, c.message_box) << c.mode;
    EXPECT_EQ(messages, c.message_box ? std::vector<std::string>{c.message}
                                      : std::vector<std::string>{})
        << c.mode;
  }
}

TEST_F(LoggerTest, MessageEventCarriesTheReportAndTheFactoryDefaults) {
  auto logger = NewLogger(dbgMessageBox);
  std::vector<Message> seen;
  logger->OnMesajDeEroare([&](const std::string& level, const std::string& message,
                              const std::string& details, const std::string& help,
                              const std::string& title, const std::string& path,
                              const std::string& root, bool& retry) {
    EXPECT_FALSE(retry);
    seen.push_back({level, message, details, help, title, path, root});
  });
  EXPECT_FALSE(logger->ErrReport(kError, 1, "m", "r", 2, "", "Apasati F1"));
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].warning_level, "Atentie");
  EXPECT_EQ(seen[0].message,
            "A aparut o eroare in OrlaErrorHandler. Este posibil sa nu poata fi creat fisierul "
            "de eroare.");
  EXPECT_EQ(seen[0].details, logger->TXTDescription());
  EXPECT_EQ(seen[0].help, "Apasati F1");
  EXPECT_EQ(seen[0].title, "Host application");
  EXPECT_EQ(seen[0].log_file_path, "C:\\Apps\\Host/hostapp.DBG");
  EXPECT_EQ(seen[0].root_error, "(5) Invalid procedure call");

  auto custom = LoggerFactory::Create()->New_Logger(dbgMessageBox, app_, "Titlu", "Mesaj", "/x.log");
  custom->OnMesajDeEroare([&](const std::string& level, const std::string& message,
                              const std::string& details, const std::string& help,
                              const std::string& title, const std::string& path,
                              const std::string& root, bool&) {
    seen.push_back({level, message, details, help, title, path, root});
  });
  custom->ErrReport(kError, 1, "m", "r", 3);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[1].warning_level, "");
  EXPECT_EQ(seen[1].message, "Mesaj");
  EXPECT_EQ(seen[1].help, "");
  EXPECT_EQ(seen[1].title, "Titlu");
  EXPECT_EQ(seen[1].log_file_path, "/x.log");
}

TEST_F(LoggerTest, EventLogTypeFollowsTheSeverityText) {
  auto logger = NewLogger(dbgEventLog);
  const std::pair<std::int32_t, std::int32_t> cases[] = {{1, 1}, {2, 2}, {4, 4}, {3, 0}, {0, 0}};
  for (const auto& [severity, type] : cases) {
    app_->events.clear();
    logger->ErrReport(kError, 1, "m", "r", severity);
    ASSERT_EQ(app_->events.size(), 1u);
    EXPECT_EQ(app_->events[0].type, type) << severity;
  }
}

TEST_F(LoggerTest, LogFileIsAppendedMadeWritableAndNeverRaises) {
  ScratchFolder folder;
  const fs::path log = folder / "host.DBG";
  std::ofstream(log, std::ios::binary) << "old\r\n";
  fs::permissions(log, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  auto logger = NewLogger(dbgToLogFile, log.string());
  logger->ErrReport(kError, 1);
  logger->ErrReport(kError, 2);
  EXPECT_NE(fs::status(log).permissions() & fs::perms::owner_write, fs::perms::none);
  const std::string report = logger->TXTDescription();
  const std::string text = ReadFile(log);
  EXPECT_TRUE(text.starts_with("old\r\nGravitate:")) << text;
  EXPECT_TRUE(text.ends_with(report + "\r\n")) << text;

  // A missing folder, a folder in place of the file: the report is left out, nothing raised.
  for (const fs::path& path : {folder / "missing/host.DBG", folder / ""}) {
    auto failing = NewLogger(eDebugModes{dbgToLogFile | dbgWriteXMLOut}, path.string());
    EXPECT_FALSE(failing->ErrReport(kError, 1)) << path;
    EXPECT_FALSE(failing->XMLDescription().empty()) << path;
  }
  EXPECT_FALSE(fs::exists(folder / "missing"));
}

class ThrowingIdentity : public HostIdentity {
 public:
  std::optional<std::string> AccountName() const override { throw std::runtime_error("x"); }
  std::optional<std::string> AccountDomain(std::string_view) const override { return "D"; }
  std::optional<std::string> ComputerName() const override { throw std::runtime_error("x"); }
};

TEST_F(LoggerTest, UserAndComputerLookupsFailToEmptyText) {
  using Name = std::optional<std::string>;
  const std::string stamp = " time: 02.03.2010 09:30:00";
  // clang-format off
  struct Case { Name account, domain, computer; std::string user, computer_text; };
  const Case cases[] = {
      {"ana",                    "OFFICE",               "WS042",                "OFFICE\\ana", "WS042" + stamp},
      {std::nullopt,             "OFFICE",               std::nullopt,           "",            ""},
      {"ana",                    std::nullopt,           "WS042",                "",            "WS042" + stamp},
      {"ana",                    std::string(15, 'D'),   std::string(254, 'C'),
       "DDDDDDDDDDDDDDD\\ana",   std::string(254, 'C') + stamp},
      {"ana",                    std::string(16, 'D'),   std::string(255, 'C'), "",            ""},
      {std::string(254, 'a'),    "D",                    "C",  "D\\" + std::string(254, 'a'), "C" + stamp},
      {std::string(255, 'a'),    "D",                    "C",                    "",            "C" + stamp},
  };
  // clang-format on
  for (const Case& c : cases) {
    ScopedHostIdentity identity(std::make_shared<FixedHostIdentity>(c.account, c.domain, c.computer));
    auto logger = NewLogger(eDebugModes{0});
    logger->ErrReport(kError, 1);
    const std::string& trace = logger->XMLDescription();
    EXPECT_EQ(TraceElementText(trace, "user"), c.user);
    EXPECT_EQ(TraceElementText(trace, "computer"), c.computer_text);
    EXPECT_NE(trace.find("<stack computer=\"" + c.computer_text + "\" line=\"1\""),
              std::string::npos);
  }
  ScopedHostIdentity throwing(std::make_shared<ThrowingIdentity>());
  auto logger = NewLogger(eDebugModes{0});
  logger->ErrReport(kError, 1);
  EXPECT_EQ(TraceElementText(logger->XMLDescription(), "user"), "");
  EXPECT_EQ(TraceElementText(logger->XMLDescription(), "computer"), "");
}

TEST(SystemServices, AnswerWithoutRaising) {
  SystemHostIdentity identity;
  EXPECT_NO_THROW({
    auto account = identity.AccountName();
    identity.AccountDomain(account.value_or(""));
    identity.ComputerName();
  });
  auto app = App::Create();
  EXPECT_EQ(app->EXEName(), "diagnostics_tests");
  EXPECT_EQ(app->Title(), "diagnostics_tests");
  EXPECT_NO_THROW({
    app->StartLogging("", vbLogOff);
    app->LogEvent("not logged", vbLogEventTypeInformation);
  });
}

}  // namespace
}  // namespace brix
