// Shared by the persistence tests: error expectations and persistable objects driven by lambdas.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "persistence/ixml_prop_bag.h"
#include "persistence/xml_prop_bag.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/variant.h"

namespace brix::test_support {

inline constexpr const char* kBagSource = "brixobjects4.kelpXMLPBag";

template <class Action>
void ExpectError(Action&& action, std::int32_t number, const std::string& source,
                 const std::string& description) {
  try {
    action();
    ADD_FAILURE() << "expected error " << number << " (" << description << ")";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number);
    EXPECT_EQ(error.Source(), source);
    EXPECT_EQ(error.Description(), description);
  }
}

template <class Action>
void ExpectObjectNotSet(Action&& action) {
  ExpectError(action, kErrObjectVariableNotSet, "brixobjects4",
              "Object variable or With block variable not set");
}

/// A persistable object whose class name and property writing and reading are given as lambdas.
class Scripted : public IXMLPropBag {
 public:
  using Script = std::function<void(XMLPropBag&)>;

  static std::shared_ptr<Scripted> Create(std::string type_name, Script write = {},
                                          Script read = {}) {
    auto object = std::make_shared<Scripted>();
    object->type_name_ = std::move(type_name);
    object->write_ = std::move(write);
    object->read_ = std::move(read);
    return object;
  }

  std::string TypeName() const override { return type_name_; }
  void WriteProperties(XMLPropBag& bag) override {
    if (write_) write_(bag);
  }
  void ReadProperties(XMLPropBag& bag) override {
    ++reads;
    if (read_) read_(bag);
  }

  int reads = 0;

 private:
  std::string type_name_;
  Script write_;
  Script read_;
};

/// An object that cannot persist itself; its default member holds `value` (none when empty).
class PlainObject : public Object {
 public:
  explicit PlainObject(std::optional<Variant> value) : value_(std::move(value)) {}
  std::string TypeName() const override { return "PlainObject"; }
  std::optional<Variant> DefaultValue() const override { return value_; }

 private:
  std::optional<Variant> value_;
};

/// The contents of a bag after saving one object of class `Holder` that wrote `value` as "P".
inline std::string ContentsWithProperty(const Variant& value) {
  auto bag = XMLPropBag::Create();
  auto holder = Scripted::Create("Holder", [&](XMLPropBag& b) { b.WriteProperty("P", value); });
  bag->SaveState(holder.get());
  return bag->Contents();
}

/// Loads `contents`, restores the object of class `Holder` and reads its property "P".
inline Variant ReadBack(const std::string& contents, const std::string& name = "P") {
  auto bag = XMLPropBag::Create();
  bag->SetContents(contents);
  Variant result = Variant::Missing();
  auto holder =
      Scripted::Create("Holder", {}, [&](XMLPropBag& b) { result = b.ReadProperty(name); });
  bag->RestoreState(holder.get());
  return result;
}

inline std::string HolderDocument(const std::string& element) {
  return "<PropertyBag><Holder>" + element + "</Holder></PropertyBag>\r\n";
}

}  // namespace brix::test_support
