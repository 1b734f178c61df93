#pragma once

#include "tests/module/BuiltModule.h"

namespace vant {

/// Creates an object of every built class, gives it a label and reads it back, has an undeclared property
/// refused, and releases it.
void LiveOnceInEveryClass(const BuiltModule& module);

} // namespace vant
