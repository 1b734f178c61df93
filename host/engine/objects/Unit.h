#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <string>
#include <utility>

namespace vant::host {

class Unit final : public HostDispatch<IUnit> {
public:
    Unit(CallGate& gate, std::string text) : HostDispatch(gate, service::Unit), m_text(std::move(text)) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override {
        return Perform(operation::get_Text, [&](Record& record) {
            record.Add(argument::value, m_text);
            return HandOutText(m_text, text);
        });
    }

private:
    const std::string m_text;
};

} // namespace vant::host
