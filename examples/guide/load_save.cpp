// Saves a definition, loads it into a new query and saves it again: the text is a fixed point.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  query->SetQueryName("Clienti");
  auto name = query->Tables()->Add("Customers")->Fields()->Add("Name");
  name->SetAlias("Client");
  // Builds the field's clause list; a field saved without one loads with its type's defaults.
  name->SetShowAsType(qbe_DataString);

  const std::string saved = query->SaveXMLDef();  // ends in CR LF

  auto loaded = xqb_Query::Create();
  loaded->LoadXMLDef(saved);
  std::cout << loaded->QueryName() << ": " << loaded->ReturnSQL() << "\n"
            << (loaded->SaveXMLDef() == saved ? "saved again: the same text" : "changed") << "\n";
}
