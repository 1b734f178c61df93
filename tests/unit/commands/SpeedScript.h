#pragma once

#include "tests/support/EngineHost.h"
#include "tests/support/TestHost.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::test {

/// An engine whose speed, parameter "101000", changes with each write of a throttle command.
class SpeedScript {
public:
    /// A speed, or nothing if it cannot be read.
    using Speed = std::optional<LONG>;

    SpeedScript(TestHost& host, const std::wstring& throttleId)
        : m_host(host), m_write("SetParameter(" + Show(throttleId) + ", ") {
        host.parameters[throttleId].value = CComVariant(LONG{0});
    }

    /// The speeds after the writes; the last one stays.
    void Set(std::vector<Speed> speeds) { m_speeds = std::move(speeds); }
    /// To be told of every call.
    void OnCall(const std::string& call) {
        if (!call.starts_with(m_write))
            return;
        const Speed speed = m_speeds.at(std::min(m_writes++, m_speeds.size() - 1));
        const CComVariant value = speed ? CComVariant(*speed) : CComVariant(CComBSTR(L"none"));
        m_host.parameters[L"101000"].value = value;
        engine.sessionValues[101000] = value;
    }
    /// The commands that were written, in order.
    std::vector<std::string> Written() const {
        std::vector<std::string> written;
        for (const std::string& call : m_host.calls) {
            if (call.starts_with(m_write))
                written.push_back(call.substr(call.rfind(' ') + 1, call.size() - call.rfind(' ') - 2));
        }
        return written;
    }

private:
    TestHost& m_host;
    const std::string m_write;
    std::vector<Speed> m_speeds = {1500};
    std::size_t m_writes = 0;

public:
    EngineServices engine{m_host};
};

} // namespace vant::test
