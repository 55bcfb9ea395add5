// The one registration of the records with the runtime's property bag.
#include "persistence/cls_qsom_dm.h"
#include "persistence/cls_user.h"
#include "persistence/record_row.h"

namespace brix {

void RegisterRecordClasses() {
  static const bool registered = [] {
    RegisterPersistableClass("clsUser", [] { return clsUser::Create(); });
    RegisterPersistableClass("clsQSOM_DM", [] { return clsQSOM_DM::Create(); });
    return true;
  }();
  (void)registered;
}

namespace {

// Where the library is loaded whole, the records are readable from the start, before any is made.
const bool kRegisteredAtStart = (RegisterRecordClasses(), true);

}  // namespace

}  // namespace brix
