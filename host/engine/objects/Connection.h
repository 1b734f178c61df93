#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"

#include <string>
#include <utility>

namespace vant::host {

/// The diagnostic connection to the engine's control module.
class Connection final : public HostDispatch<IConnectionOld> {
public:
    Connection(Journal& journal, std::string identifier)
        : HostDispatch(journal, "Connection"), m_identifier(std::move(identifier)) {}

    HRESULT STDMETHODCALLTYPE get_ConnectionIdentifier(BSTR* identifier) override {
        return Answer("get_ConnectionIdentifier", [&](Record& record) {
            record.Add("value", m_identifier);
            return HandOutText(m_identifier, identifier);
        });
    }

private:
    const std::string m_identifier;
};

} // namespace vant::host
