// Database-name normalisation: plain and dotted names.
#include "querybuilder/db_name.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace brix {
namespace {

TEST(NormalizeDBName, PlainAndDottedNamesDifferOnPurpose) {
  // clang-format off
  const std::vector<std::pair<const char*, const char*>> cases = {
      {" Order Date ",      "[Order Date]"},
      {"  Orders  ",        "Orders"},
      {" Sum(Amount) x ",   "Sum(Amount) x"},
      {"[Order Date]",      "[Order Date]"},
      {"a)b c",             "[a)b c]"},  // only the dotted rule looks at ")"
      {"x [y]",             "[x [y]]"},  // only the dotted rule looks at "[" inside
      {"a\tb",              "a\tb"},
      {"   ",               ""},
      {"dbo.Order Date",    "dbo.[Order Date]"},
      {"dbo. Order",        "dbo.[ Order]"},
      {" dbo . Orders ",    "[ dbo ].[ Orders ]"},
      {"dbo.a)b c",         "dbo.a)b c"},
      {"dbo.x [y]",         "dbo.x [y]"},
      {"a..b",              "a..b"},
  };
  // clang-format on
  for (const auto& [given, stored] : cases) EXPECT_EQ(NormalizeDBName(given), stored) << given;
}

}  // namespace
}  // namespace brix
