#pragma once

#include "host/text/Diagnostic.h"

#include <cstdlib>
#include <string>

namespace vant::fuzz {

/// Prints every message as `vant` does. A message must be one line of printable text with a position in the
/// file.
inline void CheckMessages(const host::Diagnostics& found) {
    for (const host::Diagnostic& each : found.Sorted()) {
        if (each.position.line == 0 || each.position.column == 0 || each.message.empty())
            std::abort();
        for (const char character : each.Text("file"))
            if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F)
                std::abort();
    }
}

} // namespace vant::fuzz
