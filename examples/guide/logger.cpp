// The error logger: a routine adds itself to an error's trace, the outermost one reports it.
#include "diagnostics/logger.h"

#include <iostream>

#include "diagnostics/app.h"
#include "diagnostics/host_identity.h"
#include "diagnostics/logger_factory.h"
#include "runtime/clock.h"
#include "runtime/dates.h"

int main() {
  using namespace brix;
  // Fixed clock, user and computer, so that the trace reads the same on every machine.
  Clock::Set(std::make_shared<FixedClock>(DateSerial(2024, 3, 15)));
  HostIdentity::Set(std::make_shared<FixedHostIdentity>("ana", "OFFICE", "WS042"));

  auto logger = LoggerFactory::Create()->New_Logger(dbgMessageBox, App::Create());
  logger->OnMesajDeEroare(
      [](const std::string& level, const std::string& message, const std::string&,
         const std::string&, const std::string&, const std::string&, const std::string& root,
         bool&) { std::cout << level << ": " << message << " [" << root << "]\n"; });
  try {
    try {
      throw Error(13, "Orders", "Type mismatch");
    } catch (const Error& error) {
      logger->ErrRaise(error, 12, "OrderForm", "ParseQuantity", 1, "Cantitatea nu e un numar.");
    }
  } catch (const Error& error) {
    logger->ErrReport(error, 40, "Main", "main");
  }
}
