#include "vant/InterruptScope.h"

#include "platform/Interruption.h"

#include <mutex>
#include <utility>

namespace vant::program {

namespace {

std::mutex access;
const InterruptScope* current = nullptr;
bool interrupted = false;

void Interrupt() {
    const std::lock_guard lock(access);
    interrupted = true;
    if (current)
        current->Abort();
}

} // namespace

void TakeInterrupts() {
    OnFirstInterrupt(Interrupt);
}

bool IsInterrupted() {
    const std::lock_guard lock(access);
    return interrupted;
}

InterruptScope::InterruptScope(std::function<void()> abort) : m_abort(std::move(abort)) {
    const std::lock_guard lock(access);
    current = this;
    if (interrupted)
        Abort();
}

InterruptScope::~InterruptScope() {
    const std::lock_guard lock(access);
    current = nullptr;
}

} // namespace vant::program
