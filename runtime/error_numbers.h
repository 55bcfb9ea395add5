// Error numbers raised by the library: the platform's run-time errors and the library's own.
#pragma once

#include <cstdint>

namespace brix {

/// Base of component-defined error numbers (0x80040000).
inline constexpr std::int32_t kObjectErrorBase = static_cast<std::int32_t>(0x80040000u);

// Run-time errors of the platform, with the platform's numbers.
inline constexpr std::int32_t kErrInvalidProcedureCall = 5;
inline constexpr std::int32_t kErrOverflow = 6;
inline constexpr std::int32_t kErrOutOfMemory = 7;
inline constexpr std::int32_t kErrSubscriptOutOfRange = 9;
inline constexpr std::int32_t kErrTypeMismatch = 13;
inline constexpr std::int32_t kErrObjectVariableNotSet = 91;
inline constexpr std::int32_t kErrInvalidUseOfNull = 94;
inline constexpr std::int32_t kErrObjectRequired = 424;
inline constexpr std::int32_t kErrObjectDoesntSupport = 438;
inline constexpr std::int32_t kErrArgumentNotOptional = 449;
inline constexpr std::int32_t kErrKeyAlreadyAssociated = 457;

/// Code of the missing-argument marker (DISP_E_PARAMNOTFOUND).
inline constexpr std::int32_t kParamNotFound = static_cast<std::int32_t>(0x80020004u);

// The query model.
inline constexpr std::int32_t kErrTableExists = 1000;
inline constexpr std::int32_t kErrFieldExists = 2000;
inline constexpr std::int32_t kErrConditionExists = kObjectErrorBase + 3000;
inline constexpr std::int32_t kErrAddParamValues = kObjectErrorBase + 10100;
/// Chosen for the wrapped errors of LoadXMLDef and SaveXMLDef, next to AddParamValues.
inline constexpr std::int32_t kErrLoadXMLDef = kObjectErrorBase + 10101;
inline constexpr std::int32_t kErrSaveXMLDef = kObjectErrorBase + 10102;
/// A definition past the bounds of a load (xqb_LoadLimits).
inline constexpr std::int32_t kErrLoadLimit = kObjectErrorBase + 10103;
/// Parameterized statements: an IN list that does not read, host-written SQL refused by the
/// options, a stored name with an empty part.
inline constexpr std::int32_t kErrInListSyntax = kObjectErrorBase + 10104;
inline constexpr std::int32_t kErrHostSqlRefused = kObjectErrorBase + 10105;
inline constexpr std::int32_t kErrUnquotableName = kObjectErrorBase + 10106;

// The call envelope (cMarshall).
inline constexpr std::int32_t kErrMarshallCreate = kObjectErrorBase + 0x201;
inline constexpr std::int32_t kErrUnsupportedDataType = kObjectErrorBase + 0x205;
inline constexpr std::int32_t kErrCannotCompress = kObjectErrorBase + 0x206;
inline constexpr std::int32_t kErrCannotUncompress = kObjectErrorBase + 0x207;
/// Chosen for "Unable to write value", next to the envelope's other numbers.
inline constexpr std::int32_t kErrAddParamWrite = kObjectErrorBase + 0x208;
inline constexpr std::int32_t kErrRetvalWrite = kObjectErrorBase + 0x209;
/// The Retval reading's "Unsupported data type" is a plain 517, not offset by the base.
inline constexpr std::int32_t kErrRetvalUnsupported = 517;

// The XML property bag: the object-error base + 1048 + the bag's published constants.
inline constexpr std::int32_t kXMLPropertyBagErrorBase = 29450;
inline constexpr std::int32_t kErrInvalidVariantType = kObjectErrorBase + 1048 + 29451;
inline constexpr std::int32_t kErrInvalidXMLFile = kObjectErrorBase + 1048 + 29452;
/// Failures of the XML document itself, as its DOM reports them (E_FAIL): an invalid element
/// name, an XPath expression that does not compile, undecodable Base64 text, a second document
/// element, text that holds U+0000.
inline constexpr std::int32_t kErrXMLDomFailure = static_cast<std::int32_t>(0x80004005u);

// Diagnostics.
/// Every range error of the string builder (0x80040200).
inline constexpr std::int32_t kErrStringBuilder = kObjectErrorBase + 512;

}  // namespace brix
