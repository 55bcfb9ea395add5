// A host program: builds a query definition in C++, then prints its statement and the Romanian
// description of its condition.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  auto customers = query->Tables()->Add("Customers", "Clienti");

  auto name = customers->Fields()->Add("Name");
  name->SetAlias("Client");
  name->SetAppearanceOrder(1);
  name->SetOrderByOrder(qbe_SortAscending);
  name->SetOrderByLevel(1);

  auto city = customers->Fields()->Add("City");
  city->SetCaption("Oras");
  city->SetUseInStatement(false);
  auto condition = city->Conditions()->Add(qbe_ClauseEqualTo, Variant("Cluj"));

  std::cout << query->ReturnSQL(10) << "\n"
            << query->ReturnConditionDescription(condition->ConditionID()) << "\n";
}
