#include "commands/ErrorDisplayer.h"

namespace vant {

void CErrorDisplayer::ExecuteCommand() {}

} // namespace vant
