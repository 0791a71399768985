// SPDX-License-Identifier: Apache-2.0
// Misuse that must not compile: HAVRIN_CASE chooses the case.
#include <HavrinFoundation/observation/key_value_observation_messages.h>

using namespace havrin;

// A C++ override would be passed over by the message of the same name.
class Observation : public Object<Observation, KeyValueObservation> {
 public:
#if HAVRIN_CASE == 1
  Strong<NSString> debugDescription() const override { return nullptr; }
#endif
};
