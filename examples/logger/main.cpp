// The logger at work: an error arises in one routine, two routines pass it on with ErrRaise, and
// the outermost reports it. Prints the event's message, the XML trace and the text report.
// `logger_example --fixed` fixes the clock, the user and the computer, so the output is the same
// on every machine.
#include <cstring>
#include <iostream>
#include <string>

#include "diagnostics/app.h"
#include "diagnostics/host_identity.h"
#include "diagnostics/logger.h"
#include "diagnostics/logger_factory.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace {

using brix::Error;
using brix::Logger;

// Reads a quantity typed by the user; text that is not a number raises Type mismatch (13).
std::int32_t ParseQuantity(Logger& logger, const std::string& typed) {
  try {
    return brix::CLng(brix::Variant(typed));
  } catch (const Error& error) {
    logger.ErrRaise(error, 12, "OrderForm", "ParseQuantity", 2,
                    "Cantitatea trebuie sa fie un numar intreg.");
  }
}

std::int32_t AddOrderLine(Logger& logger, const std::string& typed) {
  try {
    return ParseQuantity(logger, typed) * 10;
  } catch (const Error& error) {
    logger.ErrRaise(error, 40, "Orders", "AddOrderLine", 1, "", "Vezi capitolul Comenzi.");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool fixed = argc > 1 && std::strcmp(argv[1], "--fixed") == 0;
  if (fixed) {
    brix::Clock::Set(std::make_shared<brix::FixedClock>(brix::DateSerial(2010, 3, 2) + 9.5 / 24));
    brix::HostIdentity::Set(std::make_shared<brix::FixedHostIdentity>("ana", "OFFICE", "WS042"));
  }
  auto app = brix::App::Create();  // the running program: its name, folder and title
  if (fixed) app->SetPath("/opt/hostapp");
  app->SetMajor(4);
  app->SetRevision(17);

  auto logger = brix::LoggerFactory::Create()->New_Logger(brix::dbgMessageBox, app);
  logger->OnMesajDeEroare([](const std::string& level, const std::string& message,
                             const std::string&, const std::string& help, const std::string& title,
                             const std::string&, const std::string& root_error, bool& retry) {
    std::cout << "[" << title << "] " << level << ": " << message << " (" << root_error
              << "; help: " << help << ")\n";
    retry = false;
  });

  try {
    AddOrderLine(*logger, "doua");
  } catch (const Error& error) {
    logger->ErrReport(error, 7, "Main", "main");
  }
  std::cout << "\n" << logger->XMLDescription() << "\n\n" << logger->TXTDescription();
  return 0;
}
