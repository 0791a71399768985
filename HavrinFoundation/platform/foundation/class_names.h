// Forward declarations of the layer's classes, for headers that name a class without the object runtime.
#pragma once

namespace havrin::inline platform {

class NSCharacterSet;
class NSString;

}  // namespace havrin::inline platform
