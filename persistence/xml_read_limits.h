// How much one read of an XML property bag document may build: documents that claim more are
// refused with a clear error instead of running the process out of memory or time.
#pragma once

#include <cstdint>

namespace brix {

/// The bounds of one read of a document (`XMLPropBag::RestoreState`, `xqb_Query::LoadXMLDef`).
/// A document past them is refused with an error that names the bound.
struct XMLReadLimits {
  /// Nested objects read (a definition's tables, fields and conditions together), those a
  /// count claims without elements included.
  std::int64_t MaxObjects = 4'000'000;
  /// Bytes of one property's text.
  std::int64_t MaxValueLength = std::int64_t{16} << 20;
};

}  // namespace brix
