// One saved property of a persisted class: its element name, how its value is written and how a
// read value is converted back. The records and the query definition's classes describe their
// saved properties as tables of these rows.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "runtime/conversions.h"
#include "runtime/variant.h"

namespace brix {

/// A property held as text, number or Boolean also gives its string form straight away (into
/// `scratch` when it has to be made), and takes a read text without a variant: the definition
/// reader's fast path.
template <class T>
struct PropertyRow {
  const char* name;
  std::function<Variant(const T&)> get;
  std::function<void(T&, const Variant&)> set;  // empty: written but never read
  std::function<std::string_view(const T&, std::string& scratch)> text = nullptr;
  std::function<void(T&, std::string_view)> set_text = nullptr;  // empty: through `set`
  const Variant& (T::*held)() const = nullptr;  // a property held as a variant, read in place
};

/// The string form CStr gives a whole number, made in `scratch`.
std::string_view WholeNumberText(std::int32_t value, std::string& scratch);

/// A whole number written the way the string form writes one ("-" and up to nine digits, no
/// leading zero), which every conversion reads as that number; nothing for any other text.
std::optional<std::int32_t> PlainWholeNumber(std::string_view text);

/// The row builders: a property reached through its getter and setter, or held in a member.
namespace property_rows {

template <class T, class G, class S>
PropertyRow<T> Text(const char* name, G get, S set) {
  return {name, [get](const T& o) { return Variant(std::string((o.*get)())); },
          [set](T& o, const Variant& v) { (o.*set)(CStr(v)); },
          [get](const T& o, std::string&) { return std::string_view((o.*get)()); },
          [set](T& o, std::string_view text) { (o.*set)(std::string(text)); }};
}

template <class T, class A>
PropertyRow<T> Long(const char* name, A (T::*get)() const, void (T::*set)(A)) {
  return {name, [get](const T& o) { return Variant(static_cast<std::int32_t>((o.*get)())); },
          [set](T& o, const Variant& v) { (o.*set)(static_cast<A>(CLng(v))); },
          [get](const T& o, std::string& scratch) {
            return WholeNumberText(static_cast<std::int32_t>((o.*get)()), scratch);
          },
          [set](T& o, std::string_view text) {
            const std::optional<std::int32_t> plain = PlainWholeNumber(text);
            (o.*set)(static_cast<A>(plain ? *plain : CLng(Variant(std::string(text)))));
          }};
}

template <class T>
PropertyRow<T> Integer(const char* name, std::int16_t (T::*get)() const,
                       void (T::*set)(std::int16_t)) {
  return {name, [get](const T& o) { return Variant((o.*get)()); },
          [set](T& o, const Variant& v) { (o.*set)(CInt(v)); },
          [get](const T& o, std::string& scratch) { return WholeNumberText((o.*get)(), scratch); },
          [set](T& o, std::string_view text) {
            const std::optional<std::int32_t> plain = PlainWholeNumber(text);
            (o.*set)(plain ? CInt(Variant(*plain)) : CInt(Variant(std::string(text))));
          }};
}

template <class T>
PropertyRow<T> Boolean(const char* name, bool (T::*get)() const, void (T::*set)(bool)) {
  return {
      name, [get](const T& o) { return Variant((o.*get)()); },
      [set](T& o, const Variant& v) { (o.*set)(CBool(v)); },
      [get](const T& o, std::string&) { return std::string_view((o.*get)() ? "True" : "False"); },
      [set](T& o, std::string_view text) {
        if (text == "True" || text == "False") {
          (o.*set)(text == "True");
        } else {
          (o.*set)(CBool(Variant(std::string(text))));
        }
      }};
}

template <class T>
PropertyRow<T> Value(const char* name, const Variant& (T::*get)() const,
                     void (T::*set)(const Variant&)) {
  return {name,
          [get](const T& o) { return (o.*get)(); },
          [set](T& o, const Variant& v) { (o.*set)(v); },
          nullptr,
          nullptr,
          get};
}

/// A text, 32-bit whole number or Boolean held in a member, converted as the platform converts.
template <class T, class Held>
PropertyRow<T> Member(const char* name, Held T::*member) {
  return {name, [member](const T& o) { return Variant(o.*member); },
          [member](T& o, const Variant& v) {
            if constexpr (std::is_same_v<Held, std::string>) {
              o.*member = CStr(v);
            } else if constexpr (std::is_same_v<Held, std::int32_t>) {
              o.*member = CLng(v);
            } else {
              static_assert(std::is_same_v<Held, bool>, "a text, whole number or Boolean");
              o.*member = CBool(v);
            }
          }};
}

}  // namespace property_rows
}  // namespace brix
