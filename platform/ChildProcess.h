#pragma once

#include "platform/system.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vant {

/// A program that this one has started, with pipes in place of its standard input and output. It shares the
/// standard error, and gets no Ctrl-C of the terminal: its owner decides when it ends.
class VANT_PLATFORM_API ChildProcess {
public:
    /// Starts it; `arguments` in UTF-8. Throws std::system_error.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
    /// Kills it if it has not ended.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Writes to its standard input; waits while the pipe is full. False if the child no longer reads.
    bool Write(std::string_view text);
    /// The next line that it writes, without its end; waits for it. False if the child writes no more.
    bool ReadLine(std::string& line);
    /// Closes its standard input, waits until it has ended, and returns how: "exit code 3" or "signal 11".
    std::string AwaitEnd();
    /// Ends it at once. Any thread, while the object lives.
    void Kill() noexcept;

private:
    struct System;

    const std::unique_ptr<System> m_system;
    std::string m_read; ///< What has come and was not yet returned.
};

} // namespace vant
