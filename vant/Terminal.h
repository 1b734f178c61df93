#pragma once

namespace vant::program {

/// Whether standard output goes to a terminal that is to get colours: the user can refuse them with NO_COLOR.
bool WantsColour();

} // namespace vant::program
