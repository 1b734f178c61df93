#include "host/record/CallScope.h"

#include <utility>

namespace vant::host {

namespace {

// Plain pointers, because the Windows compiler's runtime frees a thread's variables before it destroys them.
thread_local const CommandScope* innermostCommand = nullptr;
thread_local const ThreadScope* innermostThread = nullptr;

} // namespace

CommandScope::CommandScope(std::string commandId, IUnknown* object, std::size_t outerDepth)
    : m_commandId(std::move(commandId)), m_object(object), m_outer(innermostCommand),
      m_depth(outerDepth + 1) {
    innermostCommand = this;
}

CommandScope::~CommandScope() {
    innermostCommand = m_outer;
}

ThreadScope::ThreadScope(std::string name) : m_name(std::move(name)), m_outer(innermostThread) {
    innermostThread = this;
}

ThreadScope::~ThreadScope() {
    innermostThread = m_outer;
}

std::string CurrentCommand() {
    return innermostCommand ? innermostCommand->CommandId() : std::string();
}

IUnknown* CurrentCommandObject() noexcept {
    return innermostCommand ? innermostCommand->Object() : nullptr;
}

std::size_t CommandDepth() noexcept {
    return innermostCommand ? innermostCommand->Depth() : 0;
}

std::string CurrentThread() {
    return innermostThread ? innermostThread->Name() : mainThread;
}

} // namespace vant::host
