// Cost of saving and restoring object trees through the XML property bag, next to the cost of
// parsing and printing the same text with the DOM alone.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "persistence/ixml_prop_bag.h"
#include "persistence/xml_prop_bag.h"
#include "runtime/conversions.h"

namespace brix {
namespace {

/// One level of a query-like tree: a few properties, a count, then the children by number.
class TreeNode : public IXMLPropBag {
 public:
  TreeNode(int level, int fan_out_of_leaves) : level_(level), leaves_(fan_out_of_leaves) {}

  std::string TypeName() const override { return kLevels[level_].type; }

  void WriteProperties(XMLPropBag& bag) override {
    bag.WriteProperty("Name", Variant(std::string(kLevels[level_].type) + "Name"));
    bag.WriteProperty("Kind", Variant(level_ + 1));
    bag.WriteProperty("Flag", Variant(level_ % 2 == 0));
    bag.WriteProperty("Value", Variant("a < b"));
    bag.WriteProperty("Empty", Variant());
    bag.WriteProperty("Tag", Variant(""));
    bag.WriteProperty(std::string(kLevels[level_].word) + "sCount",
                      Variant(static_cast<std::int32_t>(children_.size())));
    for (std::size_t n = 0; n < children_.size(); ++n) {
      bag.WriteProperty(kLevels[level_].word + std::to_string(n + 1), Variant(children_[n]));
    }
  }

  void ReadProperties(XMLPropBag& bag) override {
    for (const char* name : {"Name", "Kind", "Flag", "Value", "Empty", "Tag"}) {
      benchmark::DoNotOptimize(bag.ReadProperty(name));
    }
    children_.clear();
    if (level_ + 1 >= static_cast<int>(std::size(kLevels))) return;
    const int count = CLng(bag.ReadProperty(std::string(kLevels[level_].word) + "sCount"));
    for (int n = 1; n <= count; ++n) {
      auto child = std::make_shared<TreeNode>(level_ + 1, leaves_);
      bag.ReadProperty(kLevels[level_].word + std::to_string(n), Variant(child));
      children_.push_back(child);
    }
  }

  /// A root with 10 tables of 10 fields and the leaves spread evenly over the fields, or with
  /// `one_field` all leaves under a single field of a single table.
  static std::shared_ptr<TreeNode> Build(int leaves, bool one_field) {
    auto root = std::make_shared<TreeNode>(0, leaves);
    const int fan_out[] = {one_field ? 1 : 10, one_field ? 1 : 10,
                           one_field ? leaves : leaves / 100};
    root->Grow(fan_out);
    return root;
  }

 private:
  struct Level {
    const char* type;
    const char* word;
  };
  static constexpr Level kLevels[] = {{"bench_Query", "Table"},
                                      {"bench_Table", "Field"},
                                      {"bench_Field", "Condition"},
                                      {"bench_Condition", "None"}};

  void Grow(const int* fan_out) {
    if (level_ == 3) return;
    for (int n = 0; n < fan_out[level_]; ++n) {
      auto child = std::make_shared<TreeNode>(level_ + 1, leaves_);
      child->Grow(fan_out);
      children_.push_back(child);
    }
  }

  int level_;
  int leaves_;
  std::vector<std::shared_ptr<TreeNode>> children_;
};

// Benchmarks take the number of leaves and the tree shape (0: spread, 1: one field).
std::shared_ptr<TreeNode> BuildTree(const benchmark::State& state) {
  return TreeNode::Build(static_cast<int>(state.range(0)), state.range(1) == 1);
}

std::string SavedText(const benchmark::State& state) {
  auto bag = XMLPropBag::Create();
  bag->SaveState(BuildTree(state).get(), "Q1");
  return bag->Contents();
}

void SetCounters(benchmark::State& state, std::size_t bytes) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_BagSaveStateAndContents(benchmark::State& state) {
  auto root = BuildTree(state);
  std::size_t bytes = 0;
  for (auto _ : state) {
    auto bag = XMLPropBag::Create();
    bag->SaveState(root.get(), "Q1");
    bytes = bag->Contents().size();
  }
  SetCounters(state, bytes);
}

void BM_BagSetContentsAndRestoreState(benchmark::State& state) {
  const std::string text = SavedText(state);
  for (auto _ : state) {
    auto bag = XMLPropBag::Create();
    bag->SetContents(text);
    auto root = std::make_shared<TreeNode>(0, 0);
    bag->RestoreState(root.get(), "Q1");
  }
  SetCounters(state, text.size());
}

void BM_DomParse(benchmark::State& state) {
  const std::string text = SavedText(state);
  bench::TimeDomParse(state, text);
  SetCounters(state, text.size());
}

void BM_DomSave(benchmark::State& state) {
  const std::string text = SavedText(state);
  bench::TimeDomSave(state, text);
  SetCounters(state, text.size());
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"leaves", "one_field"});
  for (int shape : {0, 1}) {
    for (int leaves : {1000, 10000, 100000}) benchmark->Args({leaves, shape});
  }
}

BENCHMARK(BM_BagSaveStateAndContents)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BagSetContentsAndRestoreState)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DomParse)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DomSave)->Apply(Sizes)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brix
