#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"

#include <string>
#include <utility>

namespace vant::host {

class Unit final : public HostDispatch<IUnit> {
public:
    Unit(Journal& journal, std::string text) : HostDispatch(journal, "Unit"), m_text(std::move(text)) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override {
        return Answer("get_Text", [&](Record& record) {
            record.Add("value", m_text);
            return HandOutText(m_text, text);
        });
    }

private:
    const std::string m_text;
};

} // namespace vant::host
