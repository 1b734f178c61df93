#include "vant/Terminal.h"

#include "platform/Console.h"

#include <cstdlib>

namespace vant::program {

bool WantsColour() {
    const char* const noColour = std::getenv("NO_COLOR");
    return OutputTakesColours() && !(noColour && *noColour);
}

} // namespace vant::program
