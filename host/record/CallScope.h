#pragma once

#include <cstddef>
#include <string>

namespace vant {

/// While it lives, the calling thread works for the command of that id. Scopes of one thread lie inside one
/// another.
class CommandScope {
public:
    explicit CommandScope(std::string commandId);
    ~CommandScope();
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

    const std::string& CommandId() const noexcept { return m_commandId; }
    std::size_t Depth() const noexcept { return m_depth; }

private:
    const std::string m_commandId;
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
/// How many commands of the calling thread lie inside one another.
std::size_t CommandDepth() noexcept;
/// The calling thread's name; "main" without a ThreadScope.
std::string CurrentThread();

} // namespace vant
