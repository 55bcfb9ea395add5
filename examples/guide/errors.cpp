// Errors are raised as brix::Error (number, source, description); problems of a definition that
// would still render are listed by Validate.
#include <iostream>

#include "querybuilder/xqb_query.h"

int main() {
  using namespace brix;
  auto query = xqb_Query::Create();
  query->Tables()->Add("Orders");
  try {
    query->Tables()->Add("Orders");
  } catch (const Error& error) {
    std::cout << error.Number() << " " << error.Source() << " " << error.Description() << "\n";
  }
  try {
    query->LoadXMLDef("<PropertyBag><xqb_Query><TablesCount>two</TablesCount></xqb_Query>");
  } catch (const Error& error) {
    std::cout << "0x" << std::hex << std::uppercase << static_cast<std::uint32_t>(error.Number())
              << std::dec << " " << error.Description().substr(0, error.Description().find("\r\n"))
              << "\n";
  }
  auto quantity = query->Tables()->Item(Variant(1))->Fields()->Add("Quantity");
  quantity->SetDBType(qbe_DataNumeric);
  quantity->SetAlias("");
  quantity->Conditions()->Add(qbe_ClauseEqualTo, Variant("two"));
  for (const QueryProblem& problem : query->Validate()) {
    std::cout << problem.path << ": " << problem.message << "\n";
  }
}
