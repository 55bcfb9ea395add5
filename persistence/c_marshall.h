// The call envelope: one remote call and its answer (class, procedure, session, named parameters
// with their types, return value, error) carried as one byte array, optionally compressed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/object.h"
#include "runtime/property_bag.h"
#include "runtime/variant.h"

namespace brix {

/// The envelope keeps everything in one property bag: "ClassName", "ProcedureName", "Session",
/// "ErrorNo", "ErrorDescription", "ErrorSource", the return value under "RetVal" with its type
/// code under "RetValDataType", and each parameter N under N with its type code under
/// N + "ValueType".
///
/// Reading a property that was never set gives "" (ClassName, ProcedureName, ErrorDescription,
/// ErrorSource) or 0 (ErrorNo); Session has no default and raises 327. Errors carry the sources
/// "[QuillMarshall].[...]" named after the operation.
class cMarshall : public Object {
 public:
  /// The key the compressed bytes are tied to. It tells envelopes apart; it is not encryption.
  static constexpr std::string_view kCompressionKey = "5D1F07C3A94E22B8601E9D7F3C8A4B05";

  static std::shared_ptr<cMarshall> Create();
  cMarshall(const cMarshall&) = delete;
  cMarshall& operator=(const cMarshall&) = delete;

  std::string TypeName() const override { return "cMarshall"; }

  /// Whether `GetContents` compresses and `SetContents` decompresses; off on a new envelope.
  bool bMakeCompress() const { return make_compress_; }
  void SetbMakeCompress(bool value) { make_compress_ = value; }

  /// Loads an envelope's bytes (decompressing them first when `bMakeCompress` is set: bytes
  /// compressed under another key, or not compressed data, raise 0x80040207 "Cannot un-compress
  /// data"). Bytes that are not an envelope raise the property bag's error 5.
  void SetContents(const ByteArray& vData);
  /// The envelope's bytes, compressed when `bMakeCompress` is set.
  ByteArray GetContents() const;

  std::string ClassName() const;
  void SetClassName(std::string_view value);
  std::string ProcedureName() const;
  void SetProcedureName(std::string_view value);
  std::string Session() const;
  void SetSession(std::string_view value);
  std::int32_t ErrorNo() const;
  void SetErrorNo(std::int32_t value);
  std::string ErrorDescription() const;
  void SetErrorDescription(std::string_view value);
  std::string ErrorSource() const;
  void SetErrorSource(std::string_view value);

  /// The return value, read by its type code as `ReadParam` reads; an unsupported code (none
  /// stored included) raises 517 "Unsupported data type".
  Variant Retval() const;
  /// Stores the return value and its type code; a value the bag cannot write raises 0x80040209
  /// "Unable to write value" with the reason.
  void SetRetval(const Variant& value);

  /// Stores `Value` under `Name` and its type code under `Name` + "ValueType"; a value the bag
  /// cannot write raises 0x80040208 "Unable to write value" with the reason.
  void AddParam(std::string_view Name, const Variant& Value);
  /// The parameter `Name` read by its stored type code: the numeric kinds, dates, strings,
  /// decimals and variants (2 to 8, 14, 17, 12) as stored; Booleans (11) with False for a
  /// missing value; arrays (8192) and byte arrays (8209); objects (9). Any other code (a
  /// parameter never added, Empty and Null, variant arrays) raises 0x80040205 "Unsupported data
  /// type".
  Variant ReadParam(std::string_view Name) const;
  /// The names of the parameters added, in the order they were first added.
  std::vector<std::string> ParamNames() const;

  /// Starts again with an empty bag; `bMakeCompress` and the decoding limits are kept.
  void Clear();

  /// What loading and reading the envelope may build (`PropertyBagLimits`, with its defaults):
  /// a few compressed bytes that would decode into millions of values are refused with the
  /// property bag's error 5 naming the bound, before they are built.
  const PropertyBagLimits& DecodeLimits() const { return bag_->DecodeLimits(); }
  void SetDecodeLimits(const PropertyBagLimits& value) { bag_->SetDecodeLimits(value); }

 private:
  cMarshall();

  std::shared_ptr<PropertyBag> bag_;
  bool make_compress_ = false;
};

}  // namespace brix
