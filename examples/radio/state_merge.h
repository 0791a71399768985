// SPDX-License-Identifier: Apache-2.0
// What two boards have changed in one saved state.
#pragma once

#include "saved_state.h"

namespace radio {

/// `theirs` with what `ours` has changed since both were `base`: marks that were set or taken away, and colours; where
/// both boards have changed one, ours counts. Search, filter and date are ours.
SavedState merged(const SavedState& base, const SavedState& ours, const SavedState& theirs);

}  // namespace radio
