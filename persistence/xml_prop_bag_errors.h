// The source under which the XML property bag and its document helpers raise their errors.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/error.h"

namespace brix {

/// "brixobjects4.kelpXMLPBag": the library's module name and the bag's class.
inline std::string XMLPropBagErrorSource() { return std::string(kLibraryName) + ".kelpXMLPBag"; }

[[noreturn]] inline void RaiseXMLPropBagError(std::int32_t number, std::string description) {
  Raise(number, XMLPropBagErrorSource(), std::move(description));
}

}  // namespace brix
