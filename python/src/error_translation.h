// Errors across the language boundary: the library's errors become BrixError and its subclasses,
// and a BrixError given back by Python becomes the library's error again.
#pragma once

#include <pybind11/pybind11.h>

#include "runtime/error.h"

namespace brix::python {

/// Registers the translator that turns every C++ exception leaving a bound call into a Python
/// exception: `brix::Error` into BrixError (TypeMismatchError for 13, OutOfMemoryError for 7),
/// `std::bad_alloc` into OutOfMemoryError.
void RegisterErrorTranslation();

/// The library's error that a Python BrixError carries; raises TypeError for another object.
Error ToLibraryError(pybind11::handle exception);

}  // namespace brix::python
