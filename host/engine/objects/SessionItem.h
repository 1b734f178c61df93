#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/EngineAccess.h"
#include "host/object/HostObject.h"

#include <string>
#include <utility>

namespace vant::host {

/// One parameter of the engine as a session gives it, as it is at the time of each call.
class SessionItem final : public HostDispatch<IECMSessionItem> {
public:
    /// The engine must outlive the object and have the parameter.
    SessionItem(Journal& journal, const Engine& engine, std::string id)
        : HostDispatch(journal, "SessionItem"), m_engine(engine), m_id(std::move(id)) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Refuse("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Refuse("Reserved11"); }
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) override {
        return Answer("get_Value", [&](Record& record) {
            record.Add("id", m_id);
            return HandOutValue(m_engine, m_id, record, value);
        });
    }

private:
    const Engine& m_engine;
    const std::string m_id;
};

} // namespace vant::host
