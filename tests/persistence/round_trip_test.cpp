// Random trees with every saved property set survive save -> load -> save byte for byte, and the
// text written straight from the objects is the text of the document a bag builds.
#include <gtest/gtest.h>

#include <string>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/xqb_query.h"
#include "tests/support/random_query.h"

namespace brix {
namespace {

constexpr unsigned kSeeds = 2000;

TEST(RoundTrip, SaveLoadSaveIsAFixedPointForRandomTrees) {
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    const std::shared_ptr<xqb_Query> query = test_support::RandomQueryMaker(seed).Make();
    const std::string saved = query->SaveXMLDef();
    auto bag = XMLPropBag::Create();
    bag->SaveState(query.get(), query->QueryName());
    ASSERT_EQ(bag->Contents(), saved) << "seed " << seed;
    auto loaded = xqb_Query::Create();
    loaded->LoadXMLDef(saved);
    ASSERT_EQ(loaded->SaveXMLDef(), saved) << "seed " << seed;
  }
}

}  // namespace
}  // namespace brix
