#pragma once

#include "platform/system.h"

#include <cstddef>
#include <string>

namespace vant::host {

/// While it lives, the calling thread works for the command of that id. Scopes of one thread lie inside one
/// another.
class CommandScope {
public:
    /// `object` is the command itself, where it is known; it must outlive the scope.
    explicit CommandScope(std::string commandId, IUnknown* object = nullptr);
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

/// While it lives, the calling thread bears that name in the journal. Every thread but the runner's needs
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

/// The innermost command that the calling thread works for; empty where there is none.
std::string CurrentCommand();
/// That command itself; null where there is none, or where its scope does not know it.
IUnknown* CurrentCommandObject() noexcept;
/// How many commands of the calling thread lie inside one another.
std::size_t CommandDepth() noexcept;
/// What the runner's thread is called.
inline constexpr const char* mainThread = "main";
/// The calling thread's name; mainThread without a ThreadScope.
std::string CurrentThread();

} // namespace vant::host
