// Writes a call envelope as a host would send one: a saved query record going to the catalogue,
// with its parameters and the answer's error. Usage: envelope_example FILE [--compressed]
#include <fstream>
#include <iostream>
#include <string_view>

#include "persistence/c_marshall.h"
#include "persistence/cls_qsom_dm.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: envelope_example FILE [--compressed]\n";
    return 2;
  }
  auto record = brix::clsQSOM_DM::Create();
  record->SetID("Q-17");
  record->SetName("Comenzi martie 2024");
  record->SetQueryDef("<PropertyBag><xqb_Query name=\"Comenzi\"/></PropertyBag>\r\n");
  auto envelope = brix::cMarshall::Create();
  envelope->SetbMakeCompress(argc > 2 && std::string_view(argv[2]) == "--compressed");
  envelope->SetClassName("Catalog.Queries");
  envelope->SetProcedureName("SaveQuery");
  envelope->SetSession("s-2026-11-25-0001");
  envelope->AddParam("Record", brix::Variant(record));
  envelope->AddParam("Overwrite", brix::Variant(true));
  envelope->AddParam("Version", brix::Variant(std::int16_t{3}));
  envelope->SetRetval(brix::Variant(std::int32_t{1}));
  const brix::ByteArray bytes = envelope->GetContents();
  std::ofstream(argv[1], std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return 0;
}
