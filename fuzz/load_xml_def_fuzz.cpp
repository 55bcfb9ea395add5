// Feeds arbitrary text to LoadXMLDef and, when it loads, through every text generator: each step
// must either succeed or raise brix::Error. What the direct reading of the text reads must be what
// the bag reads.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/regular_definition_reader.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/error.h"

namespace {

/// Traps when the text reads directly but the bag reads it otherwise, or refuses it.
void CompareDirectReading(std::string_view text) {
  auto direct = brix::xqb_Query::Create();
  brix::XMLReadBudget budget;
  if (!brix::ReadRegularDefinition(text, *direct, budget)) return;
  auto through_bag = brix::xqb_Query::Create();
  try {
    auto bag = brix::XMLPropBag::Create();
    bag->SetContents(text);
    bag->RestoreState(through_bag.get());
  } catch (const brix::Error&) {
    __builtin_trap();
  }
  if (direct->SaveXMLDef() != through_bag->SaveXMLDef()) __builtin_trap();
}

template <class Action>
void Attempt(Action&& action) {
  try {
    action();
  } catch (const brix::Error&) {
    // Raising the documented error is the expected outcome for bad input.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static brix::ScopedClock clock(40238.5);  // a fixed date keeps runs reproducible
  auto query = brix::xqb_Query::Create();
  std::string_view text(reinterpret_cast<const char*>(data), size);
  Attempt([&] { CompareDirectReading(text); });
  try {
    query->LoadXMLDef(text);
  } catch (const brix::Error&) {
    return 0;
  }
  // The text written straight from the objects must be the text of the document a bag builds.
  Attempt([&] {
    const std::string saved = query->SaveXMLDef();
    auto bag = brix::XMLPropBag::Create();
    bag->SaveState(query.get(), query->QueryName());
    if (bag->Contents() != saved) __builtin_trap();
  });
  Attempt([&] { query->ReturnSQL(5); });
  Attempt([&] { query->ReturnWHEREConditions(true); });
  Attempt([&] { query->ReturnDTConditions(); });
  Attempt([&] {
    for (const auto& table : *query->Tables()) {
      for (const auto& field : *table->Fields()) {
        field->ReturnAvailableClauses();
        for (const auto& condition : *field->Conditions()) {
          query->ReturnConditionDescription(condition->ConditionID());
        }
      }
    }
  });
  return 0;
}
