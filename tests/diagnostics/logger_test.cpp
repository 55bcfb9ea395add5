// The logger: its factory's checks and defaults, each report flag, the log file and the lookups.
#include "diagnostics/logger.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "diagnostics/error_trace.h"
#include "diagnostics/log_file.h"
#include "diagnostics/syslog_identifier.h"
#include "runtime/error_numbers.h"
#include "tests/diagnostics/logger_fixture.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

namespace fs = std::filesystem;
using test_support::LoggerTest;
using test_support::RaisesRuntimeError;

const Error kError(5, "host", "Invalid procedure call");

std::string ReadFile(const fs::path& path) {
  std::stringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// Records each MesajDeEroare event as its seven texts joined by "|", and asks for a retry.
std::shared_ptr<std::vector<std::string>> RecordEvents(Logger& logger) {
  auto seen = std::make_shared<std::vector<std::string>>();
  logger.OnMesajDeEroare([seen](const std::string& level, const std::string& message,
                                const std::string& details, const std::string& help,
                                const std::string& title, const std::string& path,
                                const std::string& root, bool& retry) {
    EXPECT_FALSE(retry);
    seen->push_back(level + "|" + message + "|" + std::to_string(details.size()) + "|" + help +
                    "|" + title + "|" + path + "|" + root);
    retry = true;
  });
  return seen;
}

struct ScratchFolder {
  fs::path path = fs::temp_directory_path() / ("brix_logger_" + std::to_string(getpid()));
  ScratchFolder() { fs::create_directories(path); }
  ~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

class NotAnApp : public Object {
 public:
  std::string TypeName() const override { return "Form"; }
};

class RenamedApp : public App {
 public:
  std::string TypeName() const override { return "MyApp"; }
};

TEST_F(LoggerTest, FactoryRefusesAnythingButAnAppAndFlagsOutside0To63WithOverflow) {
  auto factory = LoggerFactory::Create();
  EXPECT_EQ(factory, LoggerFactory::Create());
  const std::pair<std::int32_t, std::shared_ptr<Object>> refused[] = {
      {0, nullptr},
      {0, std::make_shared<NotAnApp>()},
      {0, std::make_shared<RenamedApp>()},
      {64, app_},
      {-1, app_}};
  for (const auto& [mode, app] : refused) {
    EXPECT_TRUE(RaisesRuntimeError(
        [&] { factory->New_Logger(static_cast<eDebugModes>(mode), app); }, kErrOverflow))
        << mode;
  }
  // Only the factory checks the range; the property stores any 16-bit value.
  auto logger = factory->New_Logger(eDebugModes{63}, app_);
  logger->SetDebugMode(eDebugModes{-32768});
  EXPECT_EQ(logger->DebugMode(), -32768);
  EXPECT_TRUE(RaisesRuntimeError([&] { logger->SetDebugMode(eDebugModes{32768}); }, kErrOverflow));
}

TEST_F(LoggerTest, EachFlagDoesItsOwnPartOnly) {
  enum Written { kNothing, kReport, kTrace };
  // clang-format off
  struct Case { std::int32_t mode; Written file; bool event_log; const char* message; };
  const Case cases[] = {
      {0,  kNothing, false, nullptr},
      {1,  kReport,  false, nullptr},
      {33, kTrace,   false, nullptr},
      {32, kNothing, false, nullptr},
      {2,  kNothing, false, "Verificati datele"},
      {18, kNothing, false, "Invalid procedure call"},
      {16, kNothing, false, nullptr},
      {4,  kNothing, false, nullptr},
      {8,  kNothing, true,  nullptr},
      {63, kTrace,   true,  "Invalid procedure call"},
  };
  // clang-format on
  for (const Case& c : cases) {
    ScratchFolder folder;
    const fs::path log = folder.path / "host.DBG";
    app_->starts.clear();
    app_->events.clear();
    auto logger = NewLogger(static_cast<eDebugModes>(c.mode), log.string());
    auto events = RecordEvents(*logger);
    const bool retry = logger->ErrReport(kError, 7, "m", "r", 1, "Verificati datele");
    const std::string& report = logger->TXTDescription();
    EXPECT_TRUE(report.starts_with("Gravitate:       Eroare\r\n")) << c.mode;
    EXPECT_TRUE(logger->XMLDescription().starts_with("<errortrace>")) << c.mode;
    const std::string file = c.file == kReport  ? report + "\r\n"
                             : c.file == kTrace ? logger->XMLDescription() + "\r\n"
                                                : "";
    EXPECT_EQ(fs::exists(log), c.file != kNothing) << c.mode;
    EXPECT_EQ(ReadFile(log), file) << c.mode;
    EXPECT_EQ(app_->starts,
              c.event_log ? std::vector<std::string>{"|0"} : std::vector<std::string>{})
        << c.mode;
    ASSERT_EQ(app_->events.size(), c.event_log ? 1u : 0u) << c.mode;
    if (c.event_log) {
      EXPECT_EQ(app_->events[0].text, "\r\n\r\n" + report) << c.mode;
    }
    EXPECT_EQ(retry, c.message != nullptr) << c.mode;
    ASSERT_EQ(events->size(), c.message ? 1u : 0u) << c.mode;
    if (c.message) {
      EXPECT_TRUE((*events)[0].starts_with("Eroare|" + std::string(c.message))) << c.mode;
    }
  }
}

TEST_F(LoggerTest, MessageEventCarriesTheReportAndTheFactoryDefaults) {
  auto logger = NewLogger(dbgMessageBox);
  auto events = RecordEvents(*logger);
  logger->ErrReport(kError, 1, "m", "r", 2, "", "Apasati F1");
  const std::string details = std::to_string(logger->TXTDescription().size());
  auto custom = LoggerFactory::Create()->New_Logger(dbgMessageBox, app_, "Titlu", "Mesaj", "/l");
  auto custom_events = RecordEvents(*custom);
  custom->ErrReport(kError, 1, "m", "r", 3);
  EXPECT_EQ(*events, std::vector<std::string>{
                         "Atentie|A aparut o eroare in OrlaErrorHandler. Este posibil sa nu poata "
                         "fi creat fisierul de eroare.|" +
                         details +
                         "|Apasati F1|Host application|C:\\Apps\\Host/hostapp.DBG|"
                         "(5) Invalid procedure call"});
  EXPECT_EQ(*custom_events,
            std::vector<std::string>{"|Mesaj|" + std::to_string(custom->TXTDescription().size()) +
                                     "||Titlu|/l|(5) Invalid procedure call"});
}

TEST_F(LoggerTest, EventLogTypeFollowsTheSeverityText) {
  auto logger = NewLogger(dbgEventLog);
  for (const auto& [severity, type] : {std::pair{1, 1}, {2, 2}, {4, 4}, {3, 0}, {0, 0}}) {
    app_->events.clear();
    logger->ErrReport(kError, 1, "m", "r", severity);
    ASSERT_EQ(app_->events.size(), 1u);
    EXPECT_EQ(app_->events[0].type, type) << severity;
  }
}

TEST_F(LoggerTest, LogFileIsAppendedMadeWritableAndNeverRaises) {
  ScratchFolder folder;
  const fs::path log = folder.path / "host.DBG";
  std::ofstream(log, std::ios::binary) << "old\r\n";
  fs::permissions(log, fs::perms::owner_read);
  auto logger = NewLogger(dbgToLogFile, log.string());
  logger->ErrReport(kError, 1);
  logger->ErrReport(kError, 2);
  EXPECT_NE(fs::status(log).permissions() & fs::perms::owner_write, fs::perms::none);
  const std::string text = ReadFile(log);
  EXPECT_TRUE(text.starts_with("old\r\nGravitate:")) << text;
  EXPECT_TRUE(text.ends_with("\r\n" + logger->TXTDescription() + "\r\n")) << text;
  EXPECT_EQ(text.find("line=\"1\""), text.rfind("line=\"1\""));
  // A missing folder, a folder in place of the file: the report is left out, nothing raised.
  for (const fs::path& path : {folder.path / "missing/host.DBG", folder.path}) {
    EXPECT_FALSE(NewLogger(eDebugModes{33}, path.string())->ErrReport(kError, 1)) << path;
  }
  EXPECT_FALSE(fs::exists(folder.path / "missing"));
}

// What stands at the log path is not trusted: a link is never followed (its target keeps its
// text and mode, a dangling one creates nothing), a FIFO does not block, and a new log is made
// for its user alone.
TEST_F(LoggerTest, LogFileIsNeverReachedThroughALink) {
  ScratchFolder folder;
  const fs::path log = folder.path / "host.DBG";
  const fs::path target = folder.path / "target";
  struct Case {
    const char* what;
    std::function<void()> plant;
    bool target_exists;
  };
  const std::vector<Case> cases = {
      {"a link to a read-only file",
       [&] {
         std::ofstream(target) << "kept";
         fs::permissions(target, fs::perms::owner_read);
         fs::create_symlink(target, log);
       },
       true},
      {"a dangling link", [&] { fs::create_symlink(target, log); }, false},
      {"a FIFO", [&] { ASSERT_EQ(mkfifo(log.c_str(), 0600), 0); }, false},
  };
  for (const Case& c : cases) {
    fs::remove(log);
    fs::remove(target);
    c.plant();
    NewLogger(dbgToLogFile, log.string())->ErrReport(kError, 1);
    EXPECT_EQ(fs::exists(target), c.target_exists) << c.what;
    if (c.target_exists) {
      EXPECT_EQ(ReadFile(target), "kept") << c.what;
      EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read) << c.what;
    }
  }
  fs::remove(log);
  const mode_t old_mask = umask(0);  // the mode asked for, not what a mask leaves of it
  NewLogger(dbgToLogFile, log.string())->ErrReport(kError, 1);
  umask(old_mask);
  EXPECT_EQ(fs::status(log).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(LogFile, DefaultFolderIsTheUsersStateFolderWhenTheProgramsIsNotWritable) {
  struct Case {
    bool writable;
    const char* state_home;
    const char* home;
    const char* folder;
  };
  const std::vector<Case> cases = {
      {true, "/s", "/h", "/usr/bin"},
      {false, "/s", "/h", "/s"},
      {false, "relative", "/h", "/h/.local/state"},  // only an absolute state folder counts
      {false, nullptr, "/h", "/h/.local/state"},
      {false, nullptr, nullptr, "/usr/bin"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DefaultLogFolder("/usr/bin", c.writable, c.state_home, c.home), c.folder)
        << c.writable << " " << (c.state_home ? c.state_home : "-");
  }
}

TEST(SyslogIdentifier, KeepsEveryIdentifierItHandedOut) {
  const char* first = SyslogIdentifier("brix first title");
  const std::string longer(100, 'x');  // would move a reused buffer
  const char* second = SyslogIdentifier(longer);
  EXPECT_STREQ(first, "brix first title");
  EXPECT_STREQ(second, longer.c_str());
  EXPECT_EQ(SyslogIdentifier("brix first title"), first);
}

class ThrowingIdentity : public HostIdentity {
 public:
  std::optional<std::string> AccountName() const override { throw std::runtime_error("x"); }
  std::optional<std::string> AccountDomain(std::string_view) const override { return "D"; }
  std::optional<std::string> ComputerName() const override { throw std::runtime_error("x"); }
};

TEST_F(LoggerTest, UserAndComputerLookupsFailToEmptyText) {
  using Name = std::optional<std::string>;
  const std::string t = " time: 02.03.2010 09:30:00";
  const std::string a254(254, 'a'), c254(254, 'C'), d15(15, 'D');
  // clang-format off
  struct Case { Name account, domain, computer; std::string user, computer_text; };
  const Case cases[] = {
      {std::nullopt,          "OFFICE",             std::nullopt,         "",            ""},
      {"ana",                 std::nullopt,         "WS042",              "",            "WS042" + t},
      {"ana",                 d15,                  c254,                 d15 + "\\ana", c254 + t},
      {"ana",                 std::string(16, 'D'), std::string(255, 'C'), "",           ""},
      {a254,                  "D",                  "C",                  "D\\" + a254,  "C" + t},
      {std::string(255, 'a'), "D",                  "C",                  "",            "C" + t},
  };
  // clang-format on
  for (const Case& c : cases) {
    ScopedHostIdentity identity(
        std::make_shared<FixedHostIdentity>(c.account, c.domain, c.computer));
    auto logger = NewLogger(eDebugModes{0});
    logger->ErrReport(kError, 1);
    const std::string& trace = logger->XMLDescription();
    EXPECT_EQ(TraceElementText(trace, "user"), c.user);
    EXPECT_EQ(TraceElementText(trace, "computer"), c.computer_text);
    EXPECT_NE(trace.find("<stack computer=\"" + c.computer_text + "\" line"), std::string::npos);
  }
  ScopedHostIdentity throwing(std::make_shared<ThrowingIdentity>());
  auto logger = NewLogger(eDebugModes{0});
  logger->ErrReport(kError, 1);
  EXPECT_TRUE(logger->XMLDescription().starts_with(
      "<errortrace>\r\n\t<user></user>\r\n\t<program>hostapp</program>\r\n\t<path>C:\\Apps\\Host"
      "</path>\r\n\t<computer></computer>"));
}

TEST(SystemServices, AnswerWithoutRaising) {
  SystemHostIdentity identity;
  EXPECT_NO_THROW(identity.AccountDomain(identity.AccountName().value_or("")));
  EXPECT_NO_THROW(identity.ComputerName());
  auto app = App::Create();
  EXPECT_EQ(app->EXEName(), "diagnostics_tests");
  EXPECT_EQ(app->Title(), "diagnostics_tests");
  EXPECT_NO_THROW(app->LogEvent("brixobjects4 diagnostics test", vbLogEventTypeInformation));
}

}  // namespace
}  // namespace brix
