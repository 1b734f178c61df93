#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/record/Journal.h"
#include "host/suite/Fault.h"

#include <atomic>
#include <cstddef>
#include <optional>

namespace vant::host {

/// Lets the one call fail that a fault is about; an interceptor of calls. Any thread may call.
class FailingCall {
public:
    /// The fault must outlive this object. One of another kind lets every call pass.
    explicit FailingCall(const Fault& fault)
        : m_fault(fault), m_hasHappened(fault.kind != Fault::Kind::Call) {}

    std::optional<HRESULT> operator()(const Record& call);

    /// Whether the fault was met; true of one that is not about a call.
    bool HasHappened() const noexcept { return m_hasHappened; }

    /// Whether the host may keep a session open, because the call that closes it is not performed.
    bool LeavesSessionOpen() const;

private:
    const Fault& m_fault;
    std::atomic<std::size_t> m_count{0};
    std::atomic<bool> m_hasHappened;
};

/// The engine with a fault of one of its parameters. A fault of a call leaves it as it is.
void Break(EngineDescription& engine, const Fault& fault);

} // namespace vant::host
