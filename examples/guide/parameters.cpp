// A parameter condition filled in at run time: one condition per value the user gives.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  auto city = query->Tables()->Add("Customers")->Fields()->Add("City");
  city->Conditions()->Add(qbe_ClauseEqualTo)->SetParamName("Oras");

  for (const std::string& name : query->ParameterNames()) std::cout << "parameter " << name << "\n";
  std::cout << "before: [" << query->ReturnWHEREConditions() << "]\n";  // skipped until filled

  VariantArray values;
  for (const char* value : {"Cluj", "", "Iasi"}) values.items.emplace_back(value);  // "" skipped
  query->AddParamValues("Oras", Variant(values));
  std::cout << "after:  [" << query->ReturnWHEREConditions() << "]\n";
}
