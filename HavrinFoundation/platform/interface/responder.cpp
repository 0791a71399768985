#include <HavrinFoundation/platform/interface/responder.h>

namespace havrin::inline platform {

UIResponder::~UIResponder() = default;

}  // namespace havrin::inline platform
