#include <HavrinFoundation/platform/graphics/responder.h>

namespace havrin::inline platform {

UIResponder::~UIResponder() = default;

}  // namespace havrin::inline platform
