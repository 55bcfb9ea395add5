// The logger for Python hosts (made from the host's names, reporting BrixError objects) and
// fixed_clock, the context manager that fixes the library's clock.
#include "diagnostics_binding.h"

#include <memory>
#include <string>

#include "diagnostics/app.h"
#include "diagnostics/logger.h"
#include "diagnostics/logger_factory.h"
#include "error_translation.h"
#include "property_table.h"
#include "runtime/clock.h"

namespace brix::python {

template <>
struct EnumName<eDebugModes> {
  static constexpr const char* value = "DebugMode";
};

namespace {

// The clock fixed for a `with` block; the clock before it comes back at the end, even when the
// block raises.
class FixedClockScope {
 public:
  explicit FixedClockScope(double serial) : serial_(serial) {}

  void Enter() {
    previous_ = Clock::Current();
    Clock::Set(std::make_shared<FixedClock>(serial_));
  }
  void Exit() {
    if (previous_) Clock::Set(std::move(previous_));
  }

 private:
  double serial_;
  std::shared_ptr<const Clock> previous_;
};

std::shared_ptr<Logger> MakeLogger(std::int32_t debug_mode, const std::string& title,
                                   const std::string& default_message, const std::string& log_path,
                                   py::handle exe_name, py::handle path, py::handle version) {
  std::shared_ptr<App> app = App::Create();
  if (!exe_name.is_none()) app->SetEXEName(FromPython<std::string>(exe_name));
  if (!path.is_none()) app->SetPath(FromPython<std::string>(path));
  if (!title.empty()) app->SetTitle(title);
  if (!version.is_none()) {
    auto parts = py::tuple(py::reinterpret_borrow<py::object>(version));
    if (parts.size() != 3) throw py::value_error("version is (major, minor, revision)");
    app->SetMajor(IntegerFrom<std::int32_t>(parts[0]));
    app->SetMinor(IntegerFrom<std::int32_t>(parts[1]));
    app->SetRevision(IntegerFrom<std::int32_t>(parts[2]));
  }
  return LoggerFactory::Create()->New_Logger(static_cast<eDebugModes>(debug_mode), app, title,
                                             default_message, log_path);
}

void OnMessage(Logger& logger, py::object handler) {
  if (handler.is_none()) {
    logger.OnMesajDeEroare(nullptr);
    return;
  }
  // The handler is called while ErrReport runs, with the GIL held by the caller of report().
  logger.OnMesajDeEroare([handler](const std::string& warning_level, const std::string& message,
                                   const std::string& details, const std::string& help,
                                   const std::string& title, const std::string& log_file_path,
                                   const std::string& root_error, bool& retry) {
    py::object answer = handler(Text(warning_level), Text(message), Text(details), Text(help),
                                Text(title), Text(log_file_path), Text(root_error));
    retry = !answer.is_none() && answer.cast<bool>();
  });
}

void BindLogger(py::module_& m) {
  py::class_<Logger, std::shared_ptr<Logger>>(m, "Logger",
                                              "Reports errors to a log file, syslog or a handler.")
      .def(py::init(&MakeLogger), py::arg("debug_mode") = static_cast<std::int32_t>(dbgToLogFile),
           py::kw_only(), py::arg("title") = "", py::arg("default_message") = "",
           py::arg("log_path") = "", py::arg("exe_name") = py::none(), py::arg("path") = py::none(),
           py::arg("version") = py::none())
      .def_property(
          "DebugMode", [](const Logger& l) { return ToPython(l.DebugMode()); },
          [](Logger& l, py::handle v) { l.SetDebugMode(FromPython<eDebugModes>(v)); })
      .def_property_readonly("TXTDescription",
                             [](const Logger& l) { return Text(l.TXTDescription()); })
      .def_property_readonly("XMLDescription",
                             [](const Logger& l) { return Text(l.XMLDescription()); })
      .def(
          "report",
          [](Logger& l, py::handle error, std::int32_t line, const std::string& module,
             const std::string& routine, std::int32_t severity, const std::string& nice_text,
             const std::string& help_text) {
            return l.ErrReport(ToLibraryError(error), line, module, routine, severity, nice_text,
                               help_text);
          },
          py::arg("error"), py::arg("line") = 0, py::arg("module") = "Unspecified",
          py::arg("routine") = "Unspecified", py::arg("severity") = 1, py::arg("nice_text") = "",
          py::arg("help_text") = "")
      .def(
          "pass_on",
          [](Logger& l, py::handle error, std::int32_t line, const std::string& module,
             const std::string& routine, std::int32_t severity, const std::string& nice_text,
             const std::string& help_text) {
            l.ErrRaise(ToLibraryError(error), line, module, routine, severity, nice_text,
                       help_text);
          },
          py::arg("error"), py::arg("line") = 0, py::arg("module") = "Unspecified",
          py::arg("routine") = "Unspecified", py::arg("severity") = 1, py::arg("nice_text") = "",
          py::arg("help_text") = "")
      .def("on_message", &OnMessage, py::arg("handler"));
}

void BindClock(py::module_& m) {
  py::class_<FixedClockScope>(m, "fixed_clock",
                              "Fixes the library's clock (the system date and time of day it "
                              "reads) for a with block.")
      .def(py::init([](py::handle moment) { return FixedClockScope(ToDaySerial(moment)); }),
           py::arg("moment"))
      .def(
          "__enter__",
          [](FixedClockScope& scope) {
            scope.Enter();
            return &scope;
          },
          py::return_value_policy::reference)
      .def("__exit__", [](FixedClockScope& scope, py::args) {
        scope.Exit();
        return false;
      });
}

}  // namespace

void BindDiagnostics(py::module_& m) {
  BindLogger(m);
  BindClock(m);
}

}  // namespace brix::python
