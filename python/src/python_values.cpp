// Values across the language boundary.
#include "python_values.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string>

#include "persistence/cls_qsom_dm.h"
#include "persistence/cls_user.h"
#include "property_table.h"

namespace py = pybind11;

namespace brix::python {
namespace {

constexpr double kSecondsPerDay = 86400.0;

// Days since 1 January 1970 of a proleptic Gregorian date, and back (H. Hinnant's algorithms).
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

struct Civil {
  std::int64_t year;
  unsigned month;
  unsigned day;
};

Civil CivilFromDays(std::int64_t z) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  const unsigned d = doy - (153 * mp + 2) / 5 + 1;
  const unsigned m = mp < 10 ? mp + 3 : mp - 9;
  return {static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2), m, d};
}

// Day 0 of the platform's dates, 30 December 1899, in days since 1970.
const std::int64_t kDayZero = DaysFromCivil(1899, 12, 30);

// A module imported once, when the extension initialises, and kept for the life of the process:
// never released, so that nothing touches it after the interpreter has finalised.
const py::module_& Imported(const char* name) {
  static auto* modules = new std::map<std::string, py::module_>();
  auto found = modules->find(name);
  if (found == modules->end()) found = modules->emplace(name, py::module_::import(name)).first;
  return found->second;
}

const py::module_& Datetime() { return Imported("datetime"); }

double TimeFraction(py::handle value) {
  const double seconds =
      value.attr("hour").cast<double>() * 3600 + value.attr("minute").cast<double>() * 60 +
      value.attr("second").cast<double>() + value.attr("microsecond").cast<double>() / 1e6;
  return seconds / kSecondsPerDay;
}

// Arrays nest at most this deep; a list that holds itself would otherwise recurse without end.
constexpr int kMaxArrayDepth = 64;
thread_local int array_depth = 0;

Variant ToArray(py::handle sequence) {
  if (array_depth >= kMaxArrayDepth) {
    throw py::value_error("lists nest deeper than " + std::to_string(kMaxArrayDepth) + " levels");
  }
  struct Nesting {
    Nesting() { ++array_depth; }
    ~Nesting() { --array_depth; }
  } nesting;
  VariantArray array;
  for (py::handle item : sequence) array.items.push_back(ToVariant(item));
  return Variant(std::move(array));
}

Variant IntegerVariant(py::handle value) {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
  if (overflow == 0 && number >= std::numeric_limits<std::int32_t>::min() &&
      number <= std::numeric_limits<std::int32_t>::max()) {
    return Variant(static_cast<std::int32_t>(number));
  }
  // Beyond a Long the platform holds a number as a Double, as it does a large literal.
  const double real = PyLong_AsDouble(value.ptr());
  if (real == -1.0 && PyErr_Occurred()) throw py::error_already_set();
  return Variant(real);
}

// Model and record objects a variant may refer to.
template <class T>
bool TryObject(py::handle value, Variant& result) {
  if (!py::isinstance<T>(value)) return false;
  result = Variant(value.cast<std::shared_ptr<T>>());
  return true;
}

template <class T>
bool TryFromObject(const Variant::ObjectRef& object, py::object& result) {
  auto typed = std::dynamic_pointer_cast<T>(object);
  if (!typed) return false;
  result = py::cast(typed);
  return true;
}

py::object Decimal(const Currency& money) {
  return Imported("decimal").attr("Decimal")(money.scaled).attr("scaleb")(-4);
}

}  // namespace

py::object EnumMember(const char* enum_name, std::int32_t value) {
  py::object members = Imported("brixobjects4._enums").attr(enum_name).attr("_value2member_map_");
  py::int_ key(value);
  if (members.contains(key)) return members[key];
  return key;
}

py::str Text(const std::string& text) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape"));
}

void BindValueTypes(py::module_& module) {
  // Imported now, while one thread initialises the extension, so that later lookups only read.
  for (const char* name : {"datetime", "decimal", "brixobjects4._enums"}) Imported(name);

  py::class_<NullValue>(module, "NullType", "The type of `Null`, the platform's null value.")
      .def("__repr__", [](const NullValue&) { return "Null"; })
      .def("__bool__", [](const NullValue&) { return false; })
      .def("__eq__",
           [](const NullValue&, py::handle other) { return py::isinstance<NullValue>(other); })
      .def("__hash__", [](const NullValue&) { return 0x6e756c6c; });
  module.attr("Null") = NullValue{};

  py::class_<ErrorValue>(module, "ErrorValue", "An error code held as a value.")
      .def(py::init([](std::int32_t code) { return ErrorValue{code}; }), py::arg("code"))
      .def_readonly("code", &ErrorValue::code)
      .def("__repr__",
           [](const ErrorValue& e) { return "ErrorValue(" + std::to_string(e.code) + ")"; })
      .def("__eq__",
           [](const ErrorValue& a, py::handle b) {
             return py::isinstance<ErrorValue>(b) && b.cast<ErrorValue>().code == a.code;
           })
      .def("__hash__", [](const ErrorValue& e) { return e.code; });
}

double ToDaySerial(py::handle value) {
  const py::module_& datetime = Datetime();
  if (py::isinstance(value, datetime.attr("time"))) return TimeFraction(value);
  if (!py::isinstance(value, datetime.attr("date"))) {
    throw py::type_error("expected a datetime.date, datetime.datetime or datetime.time");
  }
  const double day = static_cast<double>(DaysFromCivil(value.attr("year").cast<int>(),
                                                       value.attr("month").cast<unsigned>(),
                                                       value.attr("day").cast<unsigned>()) -
                                         kDayZero);
  if (!py::isinstance(value, datetime.attr("datetime"))) return day;
  // Before day 0 the sign belongs to the day alone: the time is subtracted (day -1 at 06:00 is
  // -1.25).
  const double time = TimeFraction(value);
  return day < 0 ? day - time : day + time;
}

ByteArray BytesFrom(py::handle value) {
  py::bytes bytes;
  if (py::isinstance<py::bytes>(value)) {
    bytes = py::reinterpret_borrow<py::bytes>(value);
  } else if (py::isinstance<py::bytearray>(value) || py::isinstance<py::memoryview>(value)) {
    PyObject* copy = PyBytes_FromObject(value.ptr());
    if (!copy) throw py::error_already_set();
    bytes = py::reinterpret_steal<py::bytes>(copy);
  } else {
    throw py::type_error("expected bytes, got " +
                         py::str(py::type::of(value).attr("__name__")).cast<std::string>());
  }
  char* data = nullptr;
  Py_ssize_t size = 0;
  PyBytes_AsStringAndSize(bytes.ptr(), &data, &size);
  return ByteArray(data, data + size);
}

py::object FromDaySerial(double serial) {
  if (!std::isfinite(serial)) throw py::value_error("not a date: " + std::to_string(serial));
  double day = std::trunc(serial);
  long long seconds = std::llround(std::fabs(serial - day) * kSecondsPerDay);
  if (seconds >= static_cast<long long>(kSecondsPerDay)) {
    seconds = 0;
    day += 1;
  }
  const py::module_& datetime = Datetime();
  const long long hour = seconds / 3600, minute = seconds / 60 % 60, second = seconds % 60;
  if (day == 0 && seconds != 0) return datetime.attr("time")(hour, minute, second);
  const Civil civil = CivilFromDays(static_cast<std::int64_t>(day) + kDayZero);
  if (seconds == 0) return datetime.attr("date")(civil.year, civil.month, civil.day);
  return datetime.attr("datetime")(civil.year, civil.month, civil.day, hour, minute, second);
}

Variant ToVariant(py::handle value) {
  if (value.is_none()) return Variant();
  if (py::isinstance<NullValue>(value)) return Variant::Null();
  if (py::isinstance<py::bool_>(value)) return Variant(value.cast<bool>());
  if (py::isinstance<py::int_>(value)) return IntegerVariant(value);
  if (py::isinstance<py::float_>(value)) return Variant(value.cast<double>());
  if (py::isinstance<py::str>(value)) return Variant(value.cast<std::string>());
  if (py::isinstance<py::bytes>(value) || py::isinstance<py::bytearray>(value) ||
      py::isinstance<py::memoryview>(value)) {
    return Variant(BytesFrom(value));
  }
  const py::module_& datetime = Datetime();
  if (py::isinstance(value, datetime.attr("date")) ||
      py::isinstance(value, datetime.attr("time"))) {
    return Variant(Date{ToDaySerial(value)});
  }
  if (py::isinstance(value, Imported("decimal").attr("Decimal"))) {
    return Variant(Currency::FromNumber(value.cast<double>()));
  }
  if (py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) return ToArray(value);
  if (py::isinstance<ErrorValue>(value)) return Variant(value.cast<ErrorValue>());
  Variant object;
  if (TryObject<clsUser>(value, object) || TryObject<clsQSOM_DM>(value, object)) return object;
  throw py::type_error("cannot hold a " +
                       py::str(py::type::of(value).attr("__name__")).cast<std::string>() +
                       " as a value");
}

py::object FromVariant(const Variant& value) {
  if (value.IsByteArray()) {
    const ByteArray& bytes = value.AsByteArray();
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  if (value.IsVariantArray()) {
    py::list list;
    for (const Variant& item : value.AsVariantArray().items) list.append(FromVariant(item));
    return list;
  }
  switch (value.Type()) {
    case vbEmpty:
      return py::none();
    case vbNull:
      return py::cast(NullValue{});
    case vbInteger:
      return py::int_(value.AsInteger());
    case vbLong:
      return py::int_(value.AsLong());
    case vbByte:
      return py::int_(value.AsByte());
    case vbSingle:
      return py::float_(value.AsSingle());
    case vbDouble:
      return py::float_(value.AsDouble());
    case vbCurrency:
      return Decimal(value.AsCurrency());
    case vbDate:
      return FromDaySerial(value.AsDate().serial);
    case vbString:
      return Text(value.AsString());
    case vbBoolean:
      return py::bool_(value.AsBoolean());
    case vbError:
      return py::cast(value.AsError());
    default:
      break;
  }
  if (value.IsObject()) {
    const Variant::ObjectRef& object = value.AsObject();
    py::object result = py::none();
    if (!object || TryFromObject<clsUser>(object, result) ||
        TryFromObject<clsQSOM_DM>(object, result)) {
      return result;
    }
    throw py::type_error("a value refers to a " + object->TypeName() +
                         ", which Python cannot hold");
  }
  throw py::type_error("a value of type code " + std::to_string(value.Type()) +
                       " has no Python form");
}

py::object FromSqlParameter(const SqlParameter& parameter) {
  const std::string& text = parameter.text;
  switch (parameter.type) {
    case SqlType::kText:
      return Text(text);
    case SqlType::kInteger: {
      PyObject* number = PyLong_FromString(text.c_str(), nullptr, 10);
      if (!number) throw py::error_already_set();
      return py::reinterpret_steal<py::object>(number);
    }
    case SqlType::kReal:
      return py::float_(py::str(text));
    case SqlType::kBoolean:
      return py::bool_(text == "true");
    case SqlType::kDate:
      return Datetime().attr("date").attr("fromisoformat")(text);
    case SqlType::kDateTime:
      return Datetime().attr("datetime").attr("fromisoformat")(text);
    case SqlType::kTime:
      return Datetime().attr("time").attr("fromisoformat")(text);
  }
  return Text(text);
}

}  // namespace brix::python
