// Gives any bytes to a call envelope, compressed or not as the first byte says: they load or
// raise brix::Error; every property and parameter of an envelope that loads reads or raises.
#include <cstddef>
#include <cstdint>

#include "persistence/c_marshall.h"
#include "runtime/error.h"

namespace {

template <class Read>
void ReadOrRaise(Read read) {
  try {
    read();
  } catch (const brix::Error&) {
    // a missing Session, an unsupported type code: expected outcomes
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  auto envelope = brix::cMarshall::Create();
  envelope->SetbMakeCompress(data[0] & 1);
  try {
    envelope->SetContents(brix::ByteArray(data + 1, data + size));
  } catch (const brix::Error&) {
    return 0;
  }
  ReadOrRaise([&] { envelope->ClassName(); });
  ReadOrRaise([&] { envelope->Session(); });
  ReadOrRaise([&] { envelope->ErrorNo(); });
  ReadOrRaise([&] { envelope->Retval(); });
  for (const std::string& name : envelope->ParamNames()) {
    ReadOrRaise([&] { envelope->ReadParam(name); });
  }
  envelope->SetbMakeCompress(!envelope->bMakeCompress());
  envelope->SetContents(envelope->GetContents());
  return 0;
}
