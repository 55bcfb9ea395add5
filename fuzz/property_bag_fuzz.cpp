// Gives any bytes to the runtime property bag: they load or raise brix::Error, in time and
// memory bounded by their length; bytes that load give back every value and the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "runtime/error.h"
#include "runtime/property_bag.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const brix::ByteArray bytes(data, data + size);
  auto bag = brix::PropertyBag::Create();
  try {
    bag->SetContents(bytes);
  } catch (const brix::Error&) {
    return 0;  // damaged bytes are refused: the expected outcome
  }
  for (const std::string& name : bag->Names()) {
    try {
      bag->ReadProperty(name);
    } catch (const brix::Error&) {
      // an object of a class this program does not register
    }
  }
  auto again = brix::PropertyBag::Create();
  again->SetContents(bag->Contents());
  if (again->Contents() != bag->Contents()) std::abort();
  return 0;
}
