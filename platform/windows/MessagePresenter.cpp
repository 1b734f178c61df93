#include "platform/MessagePresenter.h"

namespace vant {

void SetMessagePresenter(MessagePresenter) {}

} // namespace vant
