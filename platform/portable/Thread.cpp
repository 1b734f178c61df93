#include "platform/Thread.h"

#include "platform/Utf8.h"

#include <pthread.h>
#include <string>

namespace vant {

void NameThisThread(std::wstring_view name) noexcept {
    constexpr std::size_t longest = 15;
    try {
        std::string text = ToUtf8(name);
        if (text.size() > longest) {
            std::size_t end = longest;
            while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
                --end; // No character is cut in two.
            text.resize(end);
        }
        pthread_setname_np(pthread_self(), text.c_str());
    } catch (...) {
        // The thread stays without a name.
    }
}

} // namespace vant
