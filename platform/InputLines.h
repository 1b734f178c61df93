#pragma once

#include "platform/system.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vant {

/// The lines of standard input, for a reader that must not wait for ever. One thread at a time; nothing else
/// may read standard input.
class VANT_PLATFORM_API InputLines {
public:
    InputLines();
    ~InputLines();
    InputLines(const InputLines&) = delete;
    InputLines& operator=(const InputLines&) = delete;

    /// The next line in UTF-8, without its end. Nothing at the end of the input, or once `isOver` returns
    /// true, which is called several times in a second while there is no line.
    std::optional<std::string> Next(const std::function<bool()>& isOver);

private:
    struct Source;
    std::shared_ptr<Source> m_source;
};

} // namespace vant
