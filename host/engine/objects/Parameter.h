#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/model/Engine.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <string>
#include <utility>

namespace vant::host {

/// One parameter of the engine. Each call returns its current state.
class Parameter final : public HostDispatch<IParameterOld> {
public:
    /// The engine must outlive the object and have the parameter.
    Parameter(CallGate& gate, const Engine& engine, std::string id, const EngineParameter& description)
        : HostDispatch(gate, service::Parameter), m_engine(engine), m_id(std::move(id)),
          m_parameterName(description.name), m_unitsKey(description.unitsKey) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
        return ReturnText(operation::get_Name, m_parameterName, name);
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override;
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE get_UnitsKey(BSTR* unitsKey) override {
        return ReturnText(operation::get_UnitsKey, m_unitsKey, unitsKey);
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IParameterOld ? static_cast<IParameterOld*>(this)
                                        : HostDispatch::FindInterface(iid);
    }

private:
    HRESULT ReturnText(const char* operation, const std::string& text, BSTR* out);

    const Engine& m_engine;
    const std::string m_id;
    const std::string m_parameterName;
    const std::string m_unitsKey;
};

} // namespace vant::host
