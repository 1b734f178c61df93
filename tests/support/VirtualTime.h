#pragma once

#include "platform/Clock.h"

#include <optional>

namespace vant::test {

/// Virtual time, beginning at 0, for as long as this lives; the calling thread takes part. Other threads run
/// only while it waits (Sleep, HostThreads::Join).
class VirtualTime {
public:
    VirtualTime() {
        UseVirtualTime();
        m_participant.emplace();
    }
    ~VirtualTime() {
        m_participant.reset();
        UseRealTime();
    }
    VirtualTime(const VirtualTime&) = delete;
    VirtualTime& operator=(const VirtualTime&) = delete;

private:
    std::optional<ClockParticipant> m_participant;
};

} // namespace vant::test
