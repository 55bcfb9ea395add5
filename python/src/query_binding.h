// The query model in Python: Query, Table, Field, Condition and their collections.
#pragma once

#include <pybind11/pybind11.h>

namespace brix::python {

void BindQueryModel(pybind11::module_& module);

}  // namespace brix::python
