// Errors across the language boundary.
#include "error_translation.h"

#include <new>
#include <string>

#include "runtime/error_numbers.h"

namespace py = pybind11;

namespace brix::python {
namespace {

// A library text as Python text. Library texts are UTF-8; a byte that is not is shown as U+FFFD
// rather than failing while an error is being raised.
py::object Text(const std::string& text) {
  return py::reinterpret_steal<py::object>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

const char* ClassNameFor(std::int32_t number) {
  if (number == kErrTypeMismatch) return "TypeMismatchError";
  if (number == kErrOutOfMemory) return "OutOfMemoryError";
  return "BrixError";
}

void SetPythonError(const Error& error) {
  py::object errors = py::module_::import("brixobjects4._errors");
  py::object type = errors.attr(ClassNameFor(error.Number()));
  py::object value = type(error.Number(), Text(error.Source()), Text(error.Description()),
                          Text(error.HelpFile()), error.HelpContext());
  PyErr_SetObject(type.ptr(), value.ptr());
}

void Translate(std::exception_ptr pending) {
  try {
    std::rethrow_exception(pending);
  } catch (const Error& error) {
    try {
      SetPythonError(error);
    } catch (py::error_already_set& failure) {
      failure.restore();
    }
  } catch (const std::bad_alloc&) {
    try {
      SetPythonError(
          Error(kErrOutOfMemory, std::string(kLibraryName), StandardMessage(kErrOutOfMemory)));
    } catch (py::error_already_set& failure) {
      failure.restore();
    }
  }
}

}  // namespace

void RegisterErrorTranslation() { py::register_exception_translator(&Translate); }

Error ToLibraryError(py::handle exception) {
  py::object brix_error = py::module_::import("brixobjects4._errors").attr("BrixError");
  if (!py::isinstance(exception, brix_error)) {
    throw py::type_error("expected a BrixError, got " +
                         py::str(py::type::of(exception).attr("__name__")).cast<std::string>());
  }
  return Error(exception.attr("number").cast<std::int32_t>(),
               exception.attr("source").cast<std::string>(),
               exception.attr("description").cast<std::string>(),
               exception.attr("help_file").cast<std::string>(),
               exception.attr("help_context").cast<std::int32_t>());
}

}  // namespace brix::python
