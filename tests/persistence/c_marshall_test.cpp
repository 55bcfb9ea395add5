// The call envelope: properties, parameters by type code, its errors, and its bytes with and
// without compression.
#include "persistence/c_marshall.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "persistence/cls_qsom_dm.h"
#include "persistence/cls_user.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::Outcome;

std::string Hex(std::int32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(number));
  return text;
}

/// An envelope with every property, and a parameter of each supported kind.
std::shared_ptr<cMarshall> FullEnvelope() {
  auto envelope = cMarshall::Create();
  envelope->SetClassName("Catalog.Queries");
  envelope->SetProcedureName("Save");
  envelope->SetSession("sesiune-ș");
  envelope->SetErrorNo(-2147211403);
  envelope->SetErrorDescription("Couldn't load\r\nReason: x");
  envelope->SetErrorSource("[OrlaXML_qb]");
  envelope->SetRetval(Variant(Date{45000.5}));
  envelope->AddParam("Count", Variant(std::int16_t{7}));
  envelope->AddParam("Total", Variant(Currency{123456}));
  envelope->AddParam("Ratio", Variant(0.25f));
  envelope->AddParam("Text", Variant("Pret ăîșț <x>"));
  envelope->AddParam("Flag", Variant(true));
  envelope->AddParam("Bytes", Variant(ByteArray{0, 1, 255}));
  auto record = clsQSOM_DM::Create();
  std::ifstream in(std::string(BRIX_EXAMPLES_DIR) + "/orders.xml", std::ios::binary);
  record->SetQueryDef({std::istreambuf_iterator<char>(in), {}});
  record->SetName("Comenzi");
  envelope->AddParam("Record", Variant(record));
  return envelope;
}

/// Everything an envelope shows, as one text.
std::string Summary(const cMarshall& envelope) {
  std::string text = envelope.ClassName() + "|" + envelope.ProcedureName() + "|" +
                     envelope.Session() + "|" + std::to_string(envelope.ErrorNo()) + "|" +
                     envelope.ErrorDescription() + "|" + envelope.ErrorSource() + "|" +
                     std::to_string(envelope.Retval().AsDate().serial);
  for (const std::string& name : envelope.ParamNames()) {
    const Variant value = envelope.ReadParam(name);
    text += "|" + name + ":" + std::to_string(value.Type()) + "=";
    if (value.IsByteArray()) {
      text += std::to_string(value.AsByteArray().size());
    } else if (value.IsObject()) {
      auto record = std::dynamic_pointer_cast<clsQSOM_DM>(value.AsObject());
      text += record ? record->Name() + std::to_string(record->QueryDef().size()) : "?";
    } else {
      text += CStr(value);
    }
  }
  return text;
}

TEST(CMarshall, EveryPropertyAndParameterSurvivesItsBytesWithAndWithoutCompression) {
  const auto envelope = FullEnvelope();
  const std::string expected = Summary(*envelope);
  EXPECT_NE(expected.find("Record:9=Comenzi"), std::string::npos);
  for (bool compress : {false, true}) {
    envelope->SetbMakeCompress(compress);
    const ByteArray bytes = envelope->GetContents();
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), compress ? "BXZ1" : "BXPB");
    auto copy = cMarshall::Create();
    copy->SetbMakeCompress(compress);
    copy->SetContents(bytes);
    EXPECT_EQ(Summary(*copy), expected) << compress;
  }
}

TEST(CMarshall, ParametersAreReadByTheirStoredTypeCode) {
  auto envelope = cMarshall::Create();
  envelope->AddParam("X", Variant(5));
  EXPECT_EQ(envelope->ReadParam("X").AsLong(), 5);
  auto bag = PropertyBag::Create();
  bag->SetContents(envelope->GetContents());
  EXPECT_EQ(bag->Names(), (std::vector<std::string>{"X", "XValueType"}));
  const std::string unsupported = std::to_string(kErrUnsupportedDataType) +
                                  " [QuillMarshall].[ReadParam]: Unsupported data type";
  // Empty, Null and variant arrays have codes the reading does not list.
  envelope->AddParam("E", Variant());
  envelope->AddParam("N", Variant::Null());
  envelope->AddParam("A", Variant(VariantArray{{Variant(1)}}));
  for (const char* name : {"never added", "E", "N", "A"}) {
    EXPECT_EQ(Outcome([&] { return envelope->ReadParam(name), std::string(); }), unsupported)
        << name;
  }
  EXPECT_EQ(Outcome([&] { return envelope->Retval(), std::string(); }),
            "517 [QuillMarshall].[Retval]: Unsupported data type");
  EXPECT_EQ(Outcome([&] { return envelope->Session(), std::string(); }),
            "327 PropertyBag: Data value named 'Session' not found");
  EXPECT_EQ(envelope->ClassName() + envelope->ErrorSource() + std::to_string(envelope->ErrorNo()),
            "0");
  struct Plain : Object {
    std::string TypeName() const override { return "Plain"; }
  };
  EXPECT_EQ(Outcome([&] {
              return envelope->AddParam("O", Variant(std::make_shared<Plain>())), std::string();
            }),
            std::to_string(kErrAddParamWrite) +
                " [QuillMarshall].[AddParam]: Unable to write value\r\nReason: Illegal parameter. "
                "Can't write object because it does not support persistence.");
  envelope->Clear();
  EXPECT_TRUE(envelope->ParamNames().empty());
}

TEST(CMarshall, RefusesBytesCompressedUnderAnotherKeyAndGarbage) {
  auto envelope = FullEnvelope();
  envelope->SetbMakeCompress(true);
  ByteArray compressed = envelope->GetContents();
  ByteArray other_key = compressed;
  other_key[6] ^= 1;
  ByteArray flipped = compressed;
  flipped[flipped.size() / 2] ^= 0x40;
  const std::string refused =
      "-2147220985 [QuillMarshall].[SetContents]: Cannot un-compress data\r\nReason: ";
  // clang-format off
  const std::vector<std::pair<ByteArray, std::string>> cases = {
      {other_key,                           "The bytes were compressed under another key."},
      {ByteArray{'g', 'a', 'r', 'b', 'a', 'g', 'e'}, "The bytes are not compressed data."},
      {ByteArray(compressed.begin(), compressed.begin() + 20), "The compressed frame is damaged: Src size is incorrect"},
  };
  // clang-format on
  auto copy = cMarshall::Create();
  copy->SetbMakeCompress(true);
  for (const auto& [bytes, reason] : cases) {
    EXPECT_EQ(Outcome([&] { return copy->SetContents(bytes), std::string(); }), refused + reason);
  }
  EXPECT_NE(Outcome([&] { return copy->SetContents(flipped), std::string("loaded"); }), "loaded");
  EXPECT_EQ(Hex(kErrCannotUncompress), "80040207");
}

// A small compressed envelope may stand for millions of values: reading it is held to the
// envelope's decoding limits, which Clear keeps.
TEST(CMarshall, ReadingIsHeldToTheDecodingLimits) {
  auto sender = PropertyBag::Create();  // an array under a type code that reads it
  sender->WriteProperty("Items", Variant(VariantArray{std::vector<Variant>(100), 0}));
  sender->WriteProperty("ItemsValueType", Variant(8192));
  auto receiver = cMarshall::Create();
  receiver->SetDecodeLimits({100, 1 << 20});
  receiver->Clear();
  receiver->SetContents(sender->Contents());
  EXPECT_EQ(Outcome([&] { return receiver->ReadParam("Items"), std::string(); }),
            "5 PropertyBag: Reading the property bag would build more than 100 values; "
            "SetDecodeLimits raises the bound.");
  receiver->SetDecodeLimits({101, 1 << 20});
  EXPECT_EQ(receiver->ReadParam("Items").AsVariantArray().items.size(), 100u);
}

}  // namespace
}  // namespace brix
