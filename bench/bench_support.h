// What the benchmark files share: the per-condition counter and the plain DOM baselines.
#pragma once

#include <benchmark/benchmark.h>

#include <pugixml.hpp>
#include <sstream>
#include <string>

namespace brix::bench {

/// Reports items per second and the seconds per condition, where `state.range(0)` counts the
/// conditions (printed with an SI prefix, e.g. "250n").
inline void SetPerCondition(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["per_condition"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Times a plain DOM parse of `text`, a new document each time.
inline void TimeDomParse(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
  }
}

/// Times a plain DOM print of `text` once parsed, without declaration or indentation.
inline void TimeDomSave(benchmark::State& state, const std::string& text) {
  pugi::xml_document document;
  document.load_buffer(text.data(), text.size());
  for (auto _ : state) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    benchmark::DoNotOptimize(out.str());
  }
}

}  // namespace brix::bench
