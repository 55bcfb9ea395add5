// How much one definition load may build: documents that claim more are refused with a clear
// error instead of running the process out of memory or time.
#pragma once

#include "persistence/xml_read_limits.h"

namespace brix {

/// The bounds of one `xqb_Query::LoadXMLDef`: those of the bag's reads (`XMLReadLimits`), held
/// on both reading paths. A document past them is refused with the load error and a reason
/// that names the bound.
using xqb_LoadLimits = XMLReadLimits;

}  // namespace brix
