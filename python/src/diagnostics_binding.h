// The logger and the library's clock in Python.
#pragma once

#include <pybind11/pybind11.h>

namespace brix::python {

void BindDiagnostics(pybind11::module_& module);

}  // namespace brix::python
