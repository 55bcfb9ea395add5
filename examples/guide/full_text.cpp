// The dtSearch request of a query's indexed fields.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  auto acts = query->Tables()->Add("Acte");
  auto text = acts->Fields()->Add("Textul");
  text->SetIsDTIndex(true);  // only indexed fields of the first table are searched
  text->SetShowAsType(qbe_DataUserDefined3);
  text->Conditions()->Add(qbe_ClauseContainsWords, Variant("contract munca"));
  text->Conditions()->Add(qbe_ClauseContainsWordsNear, Variant("concediu odihna"));

  std::cout << query->ReturnDTConditions() << "\n"    // the words near each other within 33
            << query->ReturnDTConditions(5) << "\n";  // ... within 5
}
