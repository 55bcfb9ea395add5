// Builds a query in code and renders its SELECT statement, its filter and a description.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  auto orders = query->Tables()->Add("Orders", "Comenzi");

  auto number = orders->Fields()->Add("Order No");  // stored as [Order No]
  number->SetAlias("Comanda");

  auto quantity = orders->Fields()->Add("Quantity");
  quantity->SetDBType(qbe_DataNumeric);
  quantity->SetShowAsType(qbe_DataNumeric);  // also offers the numeric clauses
  quantity->SetCaption("Cantitate");
  auto at_least = quantity->Conditions()->Add(qbe_ClauseGreaterOrEqual, Variant("2"));

  std::cout << query->ReturnSQL(5) << "\n"
            << query->ReturnWHEREConditions() << "\n"
            << query->ReturnConditionDescription(at_least->ConditionID()) << "\n";
}
