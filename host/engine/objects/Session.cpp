#include "host/engine/objects/Session.h"

#include "host/object/HandOut.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT Session::Register(LONG* handle) {
    return Perform(operation::Register, [&](Record& record) -> HRESULT {
        if (!handle)
            return E_POINTER;
        {
            const std::lock_guard lock(m_access);
            m_handles.insert(m_lastHandle + 1);
            *handle = ++m_lastHandle;
        }
        record.Add(argument::handle, std::int64_t{*handle});
        return S_OK;
    });
}

HRESULT Session::ReadParameter(LONG id, LONG kind, IECMSessionItem** item) {
    return Perform(operation::ReadParameter, [&](Record& record) -> HRESULT {
        record.Add(argument::id, std::int64_t{id});
        record.Add(argument::kind, std::int64_t{kind});
        if (!item)
            return E_POINTER;
        *item = nullptr;
        if (!IsOpen())
            return E_UNEXPECTED;
        if (kind != 1)
            return E_INVALIDARG;
        const auto found = m_items.find(std::to_string(id));
        return HandOut(found == m_items.end() ? nullptr : found->second.get(), item);
    });
}

bool Session::Close(LONG handle) {
    const std::lock_guard lock(m_access);
    return m_handles.erase(handle) != 0;
}

bool Session::IsOpen() const {
    const std::lock_guard lock(m_access);
    return !m_handles.empty();
}

} // namespace vant::host
