#include <HavrinFoundation/platform/object/observed.h>

namespace havrin::inline platform {

void notifyChange(NSObject*, const SelectorConstant&, void (*apply)(void*), void* context) { apply(context); }

void dropObservations(NSObject*) noexcept {}

}  // namespace havrin::inline platform
