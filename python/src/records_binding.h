// The records, the call envelope and Base64 in Python.
#pragma once

#include <pybind11/pybind11.h>

namespace brix::python {

void BindRecords(pybind11::module_& module);

}  // namespace brix::python
