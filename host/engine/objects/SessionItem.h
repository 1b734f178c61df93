#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/EngineAccess.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <string>
#include <utility>

namespace vant::host {

/// One parameter of the engine as a session hands it out. Each call returns its current value.
class SessionItem final : public HostDispatch<IECMSessionItem> {
public:
    /// The engine must outlive the object and have the parameter.
    SessionItem(CallGate& gate, const Engine& engine, std::string id)
        : HostDispatch(gate, service::SessionItem), m_engine(engine), m_id(std::move(id)) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) override {
        return Perform(operation::get_Value, [&](Record& record) {
            record.Add(argument::id, m_id);
            return HandOutValue(m_engine, m_id, record, value);
        });
    }

private:
    const Engine& m_engine;
    const std::string m_id;
};

} // namespace vant::host
