#include "commands/HelpDisplayer.h"

namespace vant {

void CHelpDisplayer::ExecuteCommand() {}

} // namespace vant
