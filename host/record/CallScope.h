#pragma once

#include "platform/system.h"

#include <cstddef>
#include <string>

namespace vant::host {

/// The number of commands that run or started one another, up to the innermost one of the calling thread; 0
/// outside commands.
std::size_t CommandDepth() noexcept;

/// While it lives, the calling thread works for the command of that id. The scopes of one thread are nested.
class CommandScope {
public:
    /// `object` is the command itself, if it is known; it must outlive the scope. `outerDepth` is the depth
    /// of the command that runs or starts this one, 0 if there is none.
    explicit CommandScope(std::string commandId, IUnknown* object = nullptr,
                          std::size_t outerDepth = CommandDepth());
    ~CommandScope();
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

    const std::string& CommandId() const noexcept { return m_commandId; }
    std::size_t Depth() const noexcept { return m_depth; }
    IUnknown* Object() const noexcept { return m_object; }
    /// From now on this is the command itself. On the scope's thread.
    void SetObject(IUnknown* object) noexcept { m_object = object; }

private:
    const std::string m_commandId;
    IUnknown* m_object;
    const CommandScope* const m_outer;
    const std::size_t m_depth;
};

/// While it lives, the calling thread has that name in the journal. Every thread except the runner's needs
/// one.
class ThreadScope {
public:
    explicit ThreadScope(std::string name);
    ~ThreadScope();
    ThreadScope(const ThreadScope&) = delete;
    ThreadScope& operator=(const ThreadScope&) = delete;

    const std::string& Name() const noexcept { return m_name; }

private:
    const std::string m_name;
    const ThreadScope* const m_outer;
};

/// The id of the innermost command that the calling thread works for; empty if there is none.
std::string CurrentCommand();
/// That command itself; null if there is none, or if its scope does not know it.
IUnknown* CurrentCommandObject() noexcept;
/// The name of the runner's thread.
inline constexpr const char* mainThread = "main";
/// The calling thread's name; mainThread without a ThreadScope.
std::string CurrentThread();

} // namespace vant::host
