// Properties bound under the library's own names from one table per class; the same table serves
// keyword construction and the conversion of records to and from dicts.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "python_values.h"
#include "runtime/variant.h"

namespace brix::python {

namespace py = pybind11;

/// The Python enumeration (in brixobjects4._enums) that stands for a library enumeration.
template <class E>
struct EnumName;

/// `value` as a member of the Python enumeration `enum_name`, or as a plain int when it is none
/// of its members (stored values are not validated).
py::object EnumMember(const char* enum_name, std::int32_t value);

/// An int checked against the range of `Integer` (TypeError for a non-int, OverflowError beyond).
template <class Integer>
Integer IntegerFrom(py::handle value) {
  if (!py::isinstance<py::int_>(value)) {
    throw py::type_error("expected an int, got " +
                         py::str(py::type::of(value).attr("__name__")).cast<std::string>());
  }
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
  if (overflow != 0 || number < std::numeric_limits<Integer>::min() ||
      number > std::numeric_limits<Integer>::max()) {
    PyErr_Format(PyExc_OverflowError, "%S does not fit in %d bits", value.ptr(),
                 static_cast<int>(sizeof(Integer) * 8));
    throw py::error_already_set();
  }
  return static_cast<Integer>(number);
}

template <class V>
py::object ToPython(const V& value) {
  if constexpr (std::is_same_v<V, std::string>) {
    return Text(value);
  } else if constexpr (std::is_same_v<V, bool>) {
    return py::bool_(value);
  } else if constexpr (std::is_enum_v<V>) {
    return EnumMember(EnumName<V>::value, static_cast<std::int32_t>(value));
  } else if constexpr (std::is_integral_v<V>) {
    return py::int_(value);
  } else if constexpr (std::is_same_v<V, Variant>) {
    return FromVariant(value);
  } else {
    return py::cast(value);
  }
}

template <class V>
V FromPython(py::handle value) {
  if constexpr (std::is_same_v<V, std::string>) {
    if (!py::isinstance<py::str>(value)) throw py::type_error("expected a str");
    return value.cast<std::string>();
  } else if constexpr (std::is_same_v<V, bool>) {
    if (!py::isinstance<py::bool_>(value) && !py::isinstance<py::int_>(value)) {
      throw py::type_error("expected a bool");
    }
    return value.cast<bool>();
  } else if constexpr (std::is_enum_v<V>) {
    return static_cast<V>(IntegerFrom<std::int32_t>(value));
  } else if constexpr (std::is_integral_v<V>) {
    return IntegerFrom<V>(value);
  } else if constexpr (std::is_same_v<V, Variant>) {
    return ToVariant(value);
  } else {
    return value.cast<V>();
  }
}

template <class T>
struct Property {
  std::string name;
  std::function<py::object(T&)> get;
  std::function<void(T&, py::handle)> set;  // empty for a read-only property
};

template <class T>
using Properties = std::vector<Property<T>>;

/// Adds the property `name` read by `getter` and written by `setter`.
template <class T, class R, class A>
void AddProperty(Properties<T>& properties, const char* name, R (T::*getter)() const,
                 void (T::*setter)(A)) {
  using Value = std::decay_t<R>;
  using Given = std::decay_t<A>;
  using Stored = std::conditional_t<std::is_same_v<Given, std::string_view>, std::string, Given>;
  properties.push_back({name, [getter](T& object) { return ToPython<Value>((object.*getter)()); },
                        [setter](T& object, py::handle value) {
                          Stored stored = FromPython<Stored>(value);
                          (object.*setter)(std::move(stored));
                        }});
}

/// Binds every property of the table under its name.
template <class T, class... Options>
void BindProperties(py::class_<T, Options...>& cls, const Properties<T>& properties) {
  for (const Property<T>& property : properties) {
    auto get = property.get;
    py::cpp_function getter([get](T& object) { return get(object); });
    if (property.set) {
      auto set = property.set;
      cls.def_property(property.name.c_str(), getter,
                       py::cpp_function([set](T& object, py::handle v) { set(object, v); }));
    } else {
      cls.def_property_readonly(property.name.c_str(), getter);
    }
  }
}

/// Sets the properties named in `keywords`; an unknown name raises TypeError as Python does for an
/// unexpected keyword argument.
template <class T>
void SetProperties(T& object, const Properties<T>& properties, const py::dict& keywords,
                   const char* type_name) {
  for (auto [key, value] : keywords) {
    const std::string name = py::str(key).cast<std::string>();
    const Property<T>* found = nullptr;
    for (const Property<T>& property : properties) {
      if (property.name == name) found = &property;
    }
    if (!found || !found->set) {
      throw py::type_error(std::string(type_name) + "() got an unexpected keyword argument '" +
                           name + "'");
    }
    found->set(object, value);
  }
}

/// The properties as a dict in table order.
template <class T>
py::dict PropertyDict(T& object, const Properties<T>& properties) {
  py::dict dict;
  for (const Property<T>& property : properties) dict[property.name.c_str()] = property.get(object);
  return dict;
}

/// Binds a constructor taking the properties as keyword arguments.
template <class T, class... Options>
void BindKeywordConstructor(py::class_<T, Options...>& cls, const Properties<T>& properties,
                            const char* type_name) {
  cls.def(py::init([&properties, type_name](py::kwargs keywords) {
    std::shared_ptr<T> object = T::Create();
    SetProperties(*object, properties, keywords, type_name);
    return object;
  }));
}

}  // namespace brix::python
