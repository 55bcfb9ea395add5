// Load and save under an allocator that fails once at the n-th request, for every n up to the
// total a run makes: each run ends in the saved text or a clean brix::Error, never an escaping
// std::bad_alloc, a crash or a leak.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <new>
#include <string>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "tests/alloc/failing_allocator.h"

namespace brix {
namespace {

using test_support::AllocationFailed;
using test_support::DisarmAllocator;
using test_support::FailAllocationAfter;

std::string ReadSample(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

enum class Outcome { kDone, kError, kBadAlloc };

// Runs `action` with the n-th allocation refused and says how it ended.
template <class Action>
Outcome RunFailingAt(std::int64_t n, Action&& action, std::int32_t* error_number) {
  FailAllocationAfter(n);
  Outcome outcome = Outcome::kDone;
  try {
    action();
  } catch (const Error& error) {
    *error_number = error.Number();
    outcome = Outcome::kError;
  } catch (const std::bad_alloc&) {
    outcome = Outcome::kBadAlloc;
  }
  DisarmAllocator();
  return outcome;
}

template <class Action>
std::int64_t CountAllocations(Action&& action) {
  FailAllocationAfter(INT64_MAX);
  action();
  return DisarmAllocator();
}

class AllocationFailure : public testing::TestWithParam<const char*> {};

// Running out of memory raises "Out of memory" (7) and leaves the query as it was; a refusal the
// load meets in another way (a conversion that cannot build its text) is the load error.
TEST_P(AllocationFailure, EveryRefusedAllocationInALoadEndsInAnErrorLeavingTheQueryAsItWas) {
  ScopedClock clock(45000.5);
  const std::string text = ReadSample(GetParam());
  ASSERT_FALSE(text.empty()) << GetParam();
  std::string expected;
  const std::int64_t total = CountAllocations([&] {
    auto query = xqb_Query::Create();
    query->LoadXMLDef(text);
    expected = query->SaveXMLDef();
  });
  auto earlier = xqb_Query::Create();
  earlier->Tables()->Add("Earlier")->Fields()->Add("Field");
  earlier->SetQueryName("Earlier definition");
  earlier->LoadXMLDef(earlier->SaveXMLDef());  // a fixed point of load and save
  const std::string before = earlier->SaveXMLDef();
  for (std::int64_t n = 0; n < total; ++n) {
    auto query = xqb_Query::Create();
    query->LoadXMLDef(before);
    std::int32_t number = 0;
    const Outcome outcome = RunFailingAt(
        n, [&] { query->LoadXMLDef(text); }, &number);
    ASSERT_NE(outcome, Outcome::kBadAlloc) << "allocation " << n << " of " << total;
    if (outcome == Outcome::kDone) {
      if (!AllocationFailed()) {
        EXPECT_EQ(query->SaveXMLDef(), expected) << "allocation " << n;
      }
    } else if (number == kErrOutOfMemory) {
      ASSERT_EQ(query->SaveXMLDef(), before) << "allocation " << n;
    } else {
      EXPECT_EQ(number, kErrLoadXMLDef) << "allocation " << n;
    }
  }
}

TEST_P(AllocationFailure, EveryRefusedAllocationInASaveEndsInTheSaveError) {
  ScopedClock clock(45000.5);
  auto query = xqb_Query::Create();
  query->LoadXMLDef(ReadSample(GetParam()));
  const std::string expected = query->SaveXMLDef();
  const std::int64_t total = CountAllocations([&] { query->SaveXMLDef(); });
  for (std::int64_t n = 0; n < total; ++n) {
    std::string saved;
    std::int32_t number = 0;
    const Outcome outcome = RunFailingAt(
        n, [&] { saved = query->SaveXMLDef(); }, &number);
    ASSERT_NE(outcome, Outcome::kBadAlloc) << "allocation " << n << " of " << total;
    if (outcome == Outcome::kError) {
      EXPECT_TRUE(number == kErrOutOfMemory || number == kErrSaveXMLDef) << "allocation " << n;
    } else {
      EXPECT_EQ(saved, expected) << "allocation " << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, AllocationFailure,
                         testing::Values(BRIX_EXAMPLES_DIR "/orders.xml",
                                         BRIX_EXAMPLES_DIR "/parameter_query.xml",
                                         BRIX_TEST_DATA_DIR "/query_definition.xml"));

}  // namespace
}  // namespace brix
