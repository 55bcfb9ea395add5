// Values across the language boundary: the library's variant, day-number dates and bound
// statement parameters as Python objects, and back.
#pragma once

#include <pybind11/pybind11.h>

#include "querybuilder/parameterized_statement.h"
#include "runtime/variant.h"

namespace brix::python {

/// The Null marker of the platform's variant, which Python's None (Empty) cannot stand for.
struct NullValue {};

/// Registers `NullType`, the `Null` instance and `ErrorValue` in `module`.
void BindValueTypes(pybind11::module_& module);

/// A Python value as a variant: None Empty, `Null` Null, bool Boolean, int Long (a Double beyond
/// 32 bits), float Double, str String, bytes-like a byte array, `datetime.date`,
/// `datetime.datetime` and `datetime.time` a Date, `decimal.Decimal` Currency, a list or tuple an
/// array, a record object an object reference. Anything else raises TypeError.
Variant ToVariant(pybind11::handle value);

/// A variant as a Python value, the reverse of `ToVariant`: a Date on a whole day is a
/// `datetime.date`, on day 0 with a time a `datetime.time`, otherwise a `datetime.datetime`.
pybind11::object FromVariant(const Variant& value);

/// The day number of a `datetime.date`, `datetime.datetime` or `datetime.time`; TypeError else.
double ToDaySerial(pybind11::handle value);
/// A day number as `FromVariant` gives a Date.
pybind11::object FromDaySerial(double serial);

/// The bytes of a bytes, bytearray or memoryview; TypeError for anything else.
ByteArray BytesFrom(pybind11::handle value);

/// A bound parameter as the typed Python value database clients take.
pybind11::object FromSqlParameter(const SqlParameter& parameter);

/// A library text (UTF-8) as Python text.
pybind11::str Text(const std::string& text);

}  // namespace brix::python
