// What a definition document loads to, read one way or another: the tree saved again, or the
// error. Compares the direct reading with the bag's.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/regular_definition_reader.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error.h"

namespace brix::test_support {

struct Outcome {
  bool loaded = false;
  std::string saved;  // the tree saved again, when it loaded
  std::int32_t number = 0;
  std::string description;
};

inline bool operator==(const Outcome& a, const Outcome& b) {
  return a.loaded == b.loaded && a.saved == b.saved && a.number == b.number &&
         a.description == b.description;
}

inline std::ostream& operator<<(std::ostream& out, const Outcome& o) {
  return out << (o.loaded ? "loaded: " + o.saved
                          : "error " + std::to_string(o.number) + " " + o.description);
}

inline Outcome Run(const std::function<void(xqb_Query&)>& read) {
  try {
    auto query = xqb_Query::Create();
    read(*query);
    return {true, query->SaveXMLDef(), 0, {}};
  } catch (const Error& error) {
    return {false, {}, error.Number(), error.Description()};
  }
}

inline Outcome ThroughBag(const std::string& text) {
  return Run([&](xqb_Query& query) {
    auto bag = XMLPropBag::Create();
    bag->SetContents(text);
    bag->RestoreState(&query);
  });
}

/// LoadXMLDef, which reads directly when it can; its errors come wrapped, so only their
/// inner description is compared.
inline Outcome ThroughLoad(const std::string& text) {
  return Run([&](xqb_Query& query) { query.LoadXMLDef(text); });
}

/// Whether the load and the bag agree: the same tree, or the bag's error inside the load's.
inline ::testing::AssertionResult LoadsAsThroughBag(const std::string& text) {
  const Outcome bag = ThroughBag(text);
  const Outcome load = ThroughLoad(text);
  const bool same = load.loaded == bag.loaded &&
                    (bag.loaded ? load.saved == bag.saved
                                : load.description.find(bag.description) != std::string::npos);
  if (same) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "load " << load << "\nbag " << bag;
}

inline bool ReadsDirectly(const std::string& text) {
  auto query = xqb_Query::Create();
  XMLReadBudget budget;
  return ReadRegularDefinition(text, *query, budget);
}

}  // namespace brix::test_support
