// Default behaviour of objects held by variants.
#include "runtime/object.h"

#include "runtime/variant.h"

namespace brix {

std::optional<Variant> Object::DefaultValue() const { return std::nullopt; }

}  // namespace brix
