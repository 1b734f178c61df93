#include "host/engine/objects/Parameter.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/HandOut.h"

namespace vant::host {

HRESULT Parameter::get_Text(BSTR* text) {
    return Answer("get_Text", [&](Record& record) -> HRESULT {
        record.Add("id", m_id);
        if (!text)
            return E_POINTER;
        *text = nullptr;
        CComBSTR read;
        const HRESULT code = ReadText(m_engine, m_id, read);
        if (FAILED(code))
            return code;
        record.Add("value", ToUtf8(read.Text()));
        *text = read.Detach();
        return S_OK;
    });
}

HRESULT Parameter::get_Value(VARIANT* value) {
    return Answer("get_Value", [&](Record& record) {
        record.Add("id", m_id);
        return HandOutValue(m_engine, m_id, record, value);
    });
}

HRESULT Parameter::AnswerText(const char* operation, const std::string& text, BSTR* out) {
    return Answer(operation, [&](Record& record) {
        record.Add("id", m_id);
        record.Add("value", text);
        return HandOutText(text, out);
    });
}

} // namespace vant::host
