// The error trace: its exact layout, how it grows through ErrRaise, its text report, its limits.
#include "diagnostics/error_trace.h"

#include <gtest/gtest.h>

#include <string>

#include "runtime/error_numbers.h"
#include "tests/diagnostics/logger_fixture.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::LoggerTest;
using test_support::RaisesRuntimeError;

const std::string kStack = R"(computer="WS042 time: 02.03.2010 09:30:00" line="120" )"
                           R"(routine="ReturnSQL" module="xqb_Query")";

const std::string kExampleTrace =
    "<errortrace>\r\n"
    "\t<user>OFFICE\\ana</user>\r\n"
    "\t<program>hostapp</program>\r\n"
    "\t<path>C:\\Apps\\Host</path>\r\n"
    "\t<computer>WS042 time: 02.03.2010 09:30:00</computer>\r\n"
    "\t<version>Version 4.0.17</version>\r\n"
    "\t<nicetext></nicetext>\r\n"
    "\t<helptext></helptext>\r\n"
    "\t<description>Invalid procedure call</description>\r\n"
    "\t<number>5</number>\r\n"
    "\t<helpfile></helpfile>\r\n"
    "\t<helpcontext>0</helpcontext>\r\n"
    "\t<severity>Eroare</severity>\r\n"
    "\t\t<stack " +
    kStack + "/></errortrace>";

const std::string kExampleReport =
    "Gravitate:       Eroare\r\n"
    "Numar eroare:    5\r\n"
    "Descriere:       Invalid procedure call\r\n"
    "\r\n"
    "Solutionare:     \r\n"
    "Help text:       \r\n"
    "Nume utilizator: OFFICE\\ana\r\n"
    "Computer:        WS042 time: 02.03.2010 09:30:00\r\n"
    "Nume fisier:     hostapp\r\n"
    "Cale fisier:     C:\\Apps\\Host\r\n"
    "Versiune:        Version 4.0.17\r\n"
    "Fisier ajutor:   \r\n"
    "Context:         0\r\n"
    "\r\n"
    "Stiva apeluri:\r\n" +
    kStack + "\r\n";

TEST_F(LoggerTest, ReportsTheDocumentedExampleByteForByte) {
  auto logger = NewLogger(eDebugModes{0});
  EXPECT_FALSE(logger->ErrReport(Error(5, "hostapp", "Invalid procedure call"), 120, "xqb_Query",
                                 "ReturnSQL"));
  EXPECT_EQ(logger->XMLDescription(), kExampleTrace);
  EXPECT_EQ(logger->TXTDescription(), kExampleReport);
}

// Inner raises; Middle and Outer pass the error on; Top reports it.
TEST_F(LoggerTest, ErrRaiseTwiceThenReportGivesOneTraceWithThreeStackElements) {
  auto logger = NewLogger(eDebugModes{0});
  const Error original(kObjectErrorBase + 7, "Inner", "Rows < 0 & more", "help.chm", 42);
  auto middle = [&] {
    try {
      throw original;
    } catch (const Error& e) {
      logger->ErrRaise(e, 20, "modA", "Middle", 2, "", "first help");
    }
  };
  auto outer = [&] {
    try {
      middle();
    } catch (const Error& e) {
      logger->ErrRaise(e, 30, "modB", "Outer", 4, "first nice", "second help");
    }
  };
  try {
    outer();
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), original.Number());
    EXPECT_EQ(e.Description(), original.Description());
    EXPECT_EQ(e.HelpFile(), "help.chm");
    EXPECT_EQ(e.HelpContext(), 42);
    EXPECT_TRUE(CarriesErrorTrace(e.Source()));
    EXPECT_EQ(logger->XMLDescription(), "");  // ErrRaise stores nothing
    logger->ErrReport(e, 40, "modC", "Top", 3, "second nice");
  }
  const std::string& trace = logger->XMLDescription();
  auto stack = [](const char* line, const char* routine, const char* module) {
    return std::string(R"(computer="WS042 time: 02.03.2010 09:30:00" line=")") + line +
           R"(" routine=")" + routine + R"(" module=")" + module + "\"";
  };
  const std::string tail = "\t<severity></severity>\r\n\t\t<stack " +
                           stack("20", "Middle", "modA") + "/>\r\n\t\t<stack " +
                           stack("30", "Outer", "modB") + "/>\r\n\t\t<stack " +
                           stack("40", "Top", "modC") + "/></errortrace>";
  EXPECT_TRUE(trace.ends_with(tail)) << trace;
  EXPECT_EQ(TraceElementText(trace, "nicetext"), "first nice");
  EXPECT_EQ(TraceElementText(trace, "helptext"), "first help");
  EXPECT_EQ(TraceElementText(trace, "description"), "Rows < 0 & more");  // verbatim
  EXPECT_EQ(TraceElementText(trace, "number"), "-2147221497");
  EXPECT_EQ(TraceElementText(trace, "helpcontext"), "42");
  EXPECT_TRUE(logger->TXTDescription().ends_with("Stiva apeluri:\r\n" + stack("40", "Top", "modC") +
                                                 "\r\n" + stack("30", "Outer", "modB") + "\r\n" +
                                                 stack("20", "Middle", "modA") + "\r\n"))
      << logger->TXTDescription();
}

TEST(ErrorTrace, ReadsAndWritesElementsByPlainTextSearch) {
  // clang-format off
  struct Case { std::string trace; const char* name; const char* text; const char* after_set; };
  const Case cases[] = {
      {"<a>x</a><a>y</a>",     "a", "x",  "<a>NEW</a><a>y</a>"},
      {"</a><a>x</a>",         "a", "x",  "</a><a>NEW</a>"},     // closing tag after the opening
      {"<a>x",                 "a", "",   "<a>x"},               // no closing tag: missing
      {"<ab>x</ab><a>y</a>",   "a", "y",  "<ab>x</ab><a>NEW</a>"},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(TraceElementText(c.trace, c.name), c.text) << c.trace;
    std::string trace = c.trace;
    SetTraceElementText(trace, c.name, "NEW");
    EXPECT_EQ(trace, c.after_set) << c.trace;
  }
}

TEST(ErrorTrace, AppendsAfterTheLastStackElementOrLeavesTheTraceAlone) {
  // clang-format off
  struct Case { std::string trace; const char* tag; const char* attributes; const char* closing;
                std::string expected; };
  const Case cases[] = {
      {"<stack a/><stack b/>x", "stack", "  c  ", "/>", "<stack a/><stack b/>\r\n\t\t<stack c/>x"},
      {"<stack a/><x/>",        "stack", "c",     "/>", "<stack a/>\r\n\t\t<stack c/><x/>"},
      {"<stacks a/>",           "stack", "c",     "/>", "<stacks a/>"},  // no "<stack "
      {"<stack a",              "stack", "c",     "/>", "<stack a"},     // no closing text
      {"<stack a/>",            "stack", "   ",   "/>", "<stack a/>"},   // blank attributes
      {"<stack a/>",            "",      "c",     "/>", "<stack a/>"},
      {"<stack a/>",            "stack", "c",     "",   "<stack a/>"},
      {"",                      "stack", "c",     "/>", ""},
  };
  // clang-format on
  for (const Case& c : cases) {
    std::string trace = c.trace;
    AppendTraceElement(trace, c.tag, c.attributes, c.closing);
    EXPECT_EQ(trace, c.expected) << c.trace;
  }
}

TEST(ErrorTrace, StackAppendCountsPositionsIn16Bits) {
  // "ă" is one UTF-16 unit but two UTF-8 bytes: the limit counts characters.
  auto trace_of = [](std::size_t characters) {
    const std::string head = "<stack a/>";
    std::string filler;
    for (std::size_t i = head.size(); i < characters; ++i) filler += "\xC4\x83";
    return head + filler;
  };
  std::string longest = trace_of(32767);
  AppendTraceElement(longest, "stack", "b", "/>");
  EXPECT_TRUE(longest.starts_with("<stack a/>\r\n\t\t<stack b/>"));
  std::string too_long = trace_of(32768);
  const std::string before = too_long;
  EXPECT_TRUE(
      RaisesRuntimeError([&] { AppendTraceElement(too_long, "stack", "b", "/>"); }, kErrOverflow));
  EXPECT_EQ(too_long, before);
}

TEST_F(LoggerTest, ALongDescriptionStartsATraceButCannotBePassedOnAgain) {
  auto logger = NewLogger(eDebugModes{0});
  Error first(5, "x", std::string(33000, 'd'));
  try {
    logger->ErrRaise(first, 1);
  } catch (const Error& e) {
    EXPECT_TRUE(RaisesRuntimeError([&] { logger->ErrRaise(e, 2); }, kErrOverflow));
    EXPECT_TRUE(RaisesRuntimeError([&] { logger->ErrReport(e, 3); }, kErrOverflow));
  }
  EXPECT_EQ(logger->XMLDescription(), "");
}

TEST(ErrorTrace, ReportSkipsBlankStackEntriesAndShowsTheNewestFirst) {
  const std::string trace =
      "<severity>Atentie</severity><stack first/>\r\n\t\t<stack   />\r\n\t\t<stack second/>";
  EXPECT_TRUE(ErrorTraceReport(trace).ends_with("Stiva apeluri:\r\nsecond\r\nfirst\r\n"));
  EXPECT_TRUE(
      ErrorTraceReport(trace).starts_with("Gravitate:       Atentie\r\nNumar eroare:    \r\n"));
}

}  // namespace
}  // namespace brix
