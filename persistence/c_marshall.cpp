// The call envelope over the runtime's property bag.
#include "persistence/c_marshall.h"

#include <algorithm>
#include <new>

#include "persistence/keyed_compression.h"
#include "persistence/record_row.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kValueTypeSuffix = "ValueType";

std::string Source(std::string_view operation) {
  return "[QuillMarshall].[" + std::string(operation) + "]";
}

/// Raises `number` from `operation` with `message`, CR LF, "Reason: " and the trapped text.
[[noreturn]] void RaiseTrapped(std::int32_t number, std::string_view operation,
                               std::string_view message, const Error& trapped) {
  Raise(number, Source(operation), TrappedDescription(message, "Reason: ", trapped));
}

/// A fixed text property of the envelope; "" when the envelope has none.
std::string TextOf(const PropertyBag& bag, std::string_view name) {
  return CStr(bag.ReadProperty(name, Variant("")));
}

/// Reads `name` as the stored type code `code` says; `unsupported` runs for any other code.
template <class Unsupported>
Variant ReadByTypeCode(const PropertyBag& bag, const std::string& name, std::int32_t code,
                       Unsupported unsupported) {
  switch (code) {
    case vbInteger:
    case vbLong:
    case vbSingle:
    case vbDouble:
    case vbCurrency:
    case vbDate:
    case vbByte:
    case 14 /* decimal */:
    case vbString:
    case vbVariant:
    case vbArray:
    case vbArray | vbByte:
      return bag.ReadProperty(name);
    case vbBoolean:
      return bag.ReadProperty(name, Variant(false));
    case vbObject: {
      Variant value = bag.ReadProperty(name);
      return value.IsObject() ? value : Variant::Nothing();
    }
    default:
      unsupported();
      return Variant();  // not reached: `unsupported` raises
  }
}

}  // namespace

cMarshall::cMarshall() {
  RegisterRecordClasses();  // envelopes carry the records
  try {
    bag_ = PropertyBag::Create();
  } catch (const std::bad_alloc&) {
    Raise(kErrMarshallCreate, Source("Class_Initialize"),
          TrappedDescription("Unable to instantiate PropertyBag object!", "Reason: ",
                             Error(kErrOutOfMemory, "", StandardMessage(kErrOutOfMemory))));
  }
}

std::shared_ptr<cMarshall> cMarshall::Create() {
  return std::shared_ptr<cMarshall>(new cMarshall());
}

void cMarshall::SetContents(const ByteArray& vData) {
  if (!make_compress_) {
    bag_->SetContents(vData);
    return;
  }
  ByteArray plain;
  try {
    plain = DecompressWithKey(vData, kCompressionKey);
  } catch (const Error& trapped) {
    RaiseTrapped(kErrCannotUncompress, "SetContents", "Cannot un-compress data", trapped);
  }
  bag_->SetContents(plain);
}

ByteArray cMarshall::GetContents() const {
  ByteArray bytes = bag_->Contents();
  if (!make_compress_) return bytes;
  try {
    return CompressWithKey(bytes, kCompressionKey);
  } catch (const Error& trapped) {
    RaiseTrapped(kErrCannotCompress, "GetContents", "Cannot compress data", trapped);
  }
}

std::string cMarshall::ClassName() const { return TextOf(*bag_, "ClassName"); }
void cMarshall::SetClassName(std::string_view value) {
  bag_->WriteProperty("ClassName", Variant(value));
}
std::string cMarshall::ProcedureName() const { return TextOf(*bag_, "ProcedureName"); }
void cMarshall::SetProcedureName(std::string_view value) {
  bag_->WriteProperty("ProcedureName", Variant(value));
}
std::string cMarshall::Session() const { return CStr(bag_->ReadProperty("Session")); }
void cMarshall::SetSession(std::string_view value) {
  bag_->WriteProperty("Session", Variant(value));
}
std::int32_t cMarshall::ErrorNo() const { return CLng(bag_->ReadProperty("ErrorNo", Variant(0))); }
void cMarshall::SetErrorNo(std::int32_t value) { bag_->WriteProperty("ErrorNo", Variant(value)); }
std::string cMarshall::ErrorDescription() const { return TextOf(*bag_, "ErrorDescription"); }
void cMarshall::SetErrorDescription(std::string_view value) {
  bag_->WriteProperty("ErrorDescription", Variant(value));
}
std::string cMarshall::ErrorSource() const { return TextOf(*bag_, "ErrorSource"); }
void cMarshall::SetErrorSource(std::string_view value) {
  bag_->WriteProperty("ErrorSource", Variant(value));
}

Variant cMarshall::Retval() const {
  const std::int32_t code = CLng(bag_->ReadProperty("RetValDataType", Variant(0)));
  return ReadByTypeCode(*bag_, "RetVal", code, [] {
    Raise(kErrRetvalUnsupported, Source("Retval"), "Unsupported data type");
  });
}

void cMarshall::SetRetval(const Variant& value) {
  try {
    bag_->WriteProperty("RetVal", value);
    bag_->WriteProperty("RetValDataType", Variant(static_cast<std::int32_t>(value.Type())));
  } catch (const Error& trapped) {
    RaiseTrapped(kErrRetvalWrite, "Retval", "Unable to write value", trapped);
  }
}

void cMarshall::AddParam(std::string_view Name, const Variant& Value) {
  try {
    bag_->WriteProperty(Name, Value);
    bag_->WriteProperty(std::string(Name) + std::string(kValueTypeSuffix),
                        Variant(static_cast<std::int32_t>(Value.Type())));
  } catch (const Error& trapped) {
    RaiseTrapped(kErrAddParamWrite, "AddParam", "Unable to write value", trapped);
  }
}

Variant cMarshall::ReadParam(std::string_view Name) const {
  const std::string name(Name);
  const std::int32_t code =
      CLng(bag_->ReadProperty(name + std::string(kValueTypeSuffix), Variant(0)));
  return ReadByTypeCode(*bag_, name, code, [] {
    Raise(kErrUnsupportedDataType, Source("ReadParam"), "Unsupported data type");
  });
}

std::vector<std::string> cMarshall::ParamNames() const {
  static const std::vector<std::string_view> kFixed = {
      "ClassName",        "ProcedureName", "Session", "ErrorNo",
      "ErrorDescription", "ErrorSource",   "RetVal",  "RetValDataType"};
  const std::vector<std::string> names = bag_->Names();
  std::vector<std::string> params;
  for (const std::string& name : names) {
    if (std::find(kFixed.begin(), kFixed.end(), name) != kFixed.end()) continue;
    if (name.ends_with(kValueTypeSuffix)) continue;
    params.push_back(name);
  }
  return params;
}

void cMarshall::Clear() {
  const PropertyBagLimits limits = bag_->DecodeLimits();
  bag_ = PropertyBag::Create();
  bag_->SetDecodeLimits(limits);
}

}  // namespace brix
