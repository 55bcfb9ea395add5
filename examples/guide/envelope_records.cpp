// A call envelope carrying a user record: written to bytes, compressed, and read back.
#include <iostream>

#include "persistence/c_marshall.h"
#include "persistence/cls_user.h"

int main() {
  using namespace brix;
  auto user = clsUser::Create();
  user->SetUserName("ana");
  user->SetFullName("Ana Popescu");

  auto call = cMarshall::Create();
  call->SetbMakeCompress(true);
  call->SetClassName("Users");
  call->SetProcedureName("Save");
  call->AddParam("User", Variant(user));
  call->AddParam("Overwrite", Variant(true));
  const ByteArray bytes = call->GetContents();

  auto received = cMarshall::Create();
  received->SetbMakeCompress(true);  // the reader must know the bytes are compressed
  received->SetContents(bytes);
  auto back = std::dynamic_pointer_cast<clsUser>(received->ReadParam("User").AsObject());
  std::cout << received->ClassName() << "." << received->ProcedureName() << ": " << back->UserName()
            << " (" << back->FullName() << "), overwrite "
            << (received->ReadParam("Overwrite").AsBoolean() ? "yes" : "no") << "\n";
}
