#include "platform/Console.h"

#include <unistd.h>

namespace vant {

// A terminal shows UTF-8 and colours as it is.

void PrepareConsole() {}

void RestoreConsole() noexcept {}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

bool OutputTakesColours() {
    return OutputIsTerminal();
}

} // namespace vant
