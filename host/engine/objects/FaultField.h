#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/model/EngineDescription.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"

namespace vant::host {

class FaultField final : public HostDispatch<IFaultField> {
public:
    FaultField(Journal& journal, const FaultFieldDescription& field)
        : HostDispatch(journal, "FaultField"), m_field(field) {}

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
        return AnswerText("get_Name", m_field.name, name);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) override {
        return AnswerText("get_Value", m_field.value, value);
    }

private:
    HRESULT AnswerText(const char* operation, const std::string& text, BSTR* out) {
        return Answer(operation, [&](Record& record) {
            record.Add("value", text);
            return HandOutText(text, out);
        });
    }

    const FaultFieldDescription m_field;
};

} // namespace vant::host
