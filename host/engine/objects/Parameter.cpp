#include "host/engine/objects/Parameter.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/HandOut.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT Parameter::get_Text(BSTR* text) {
    return Perform(operation::get_Text, [&](Record& record) -> HRESULT {
        record.Add(argument::id, m_id);
        if (!text)
            return E_POINTER;
        *text = nullptr;
        CComBSTR read;
        const HRESULT code = ReadText(m_engine, m_id, read);
        if (FAILED(code))
            return code;
        record.Add(argument::value, ToUtf8(read.Text()));
        *text = read.Detach();
        return S_OK;
    });
}

HRESULT Parameter::get_Value(VARIANT* value) {
    return Perform(operation::get_Value, [&](Record& record) {
        record.Add(argument::id, m_id);
        return HandOutValue(m_engine, m_id, record, value);
    });
}

HRESULT Parameter::ReturnText(const char* operation, const std::string& text, BSTR* out) {
    return Perform(operation, [&](Record& record) {
        record.Add(argument::id, m_id);
        record.Add(argument::value, text);
        return HandOutText(text, out);
    });
}

} // namespace vant::host
