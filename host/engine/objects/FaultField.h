#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/model/EngineDescription.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

class FaultField final : public HostDispatch<IFaultField> {
public:
    FaultField(CallGate& gate, const FaultFieldDescription& field)
        : HostDispatch(gate, service::FaultField), m_field(field) {}

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
        return ReturnText(operation::get_Name, m_field.name, name);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) override {
        return ReturnText(operation::get_Value, m_field.value, value);
    }

private:
    HRESULT ReturnText(const char* operation, const std::string& text, BSTR* out) {
        return Perform(operation, [&](Record& record) {
            record.Add(argument::value, text);
            return HandOutText(text, out);
        });
    }

    const FaultFieldDescription m_field;
};

} // namespace vant::host
