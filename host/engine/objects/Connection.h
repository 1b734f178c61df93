#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <string>
#include <utility>

namespace vant::host {

/// The diagnostic connection to the engine's control module.
class Connection final : public HostDispatch<IConnectionOld> {
public:
    Connection(CallGate& gate, std::string identifier)
        : HostDispatch(gate, service::Connection), m_identifier(std::move(identifier)) {}

    HRESULT STDMETHODCALLTYPE get_ConnectionIdentifier(BSTR* identifier) override {
        return Perform(operation::get_ConnectionIdentifier, [&](Record& record) {
            record.Add(argument::value, m_identifier);
            return HandOutText(m_identifier, identifier);
        });
    }

private:
    const std::string m_identifier;
};

} // namespace vant::host
