#pragma once

#include "ecm/HostPointers.h"
#include "ecm/ResultPolicy.h"
#include "ecm/interfaces/EngineData.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <string_view>

namespace vant {

/// Reads and writes parameters of the engine control module for one unit of work. Identifiers are decimal
/// numbers
/// ("13190"). Integers are read through the host's data service or directly through a session, depending on
/// the connection's protocol; everything else goes through the data service.
///
/// Used by one thread only. A direct session stays open for the object's whole life. Conversions follow
/// locale 1033. A failed host call throws CComErrorHandlerException unless stated otherwise.
class ECMParameter2 {
public:
    /// `ecmServices` must offer IECMServicesOld. Chooses how integers are read, and opens a session for
    /// direct reads. If no session can be opened, the constructor succeeds and the reads fail.
    ECMParameter2(IUnknown* ecmServices, IDataServiceOld* dataService);
    ECMParameter2(const ECMParameter2&) = delete;
    ECMParameter2& operator=(const ECMParameter2&) = delete;
    virtual ~ECMParameter2();

    /// Writes `value` and returns the result of clearing it afterwards. During a guarded write, parameter
    /// "11" has the value of parameter "14"; if the write throws, "11" is not restored.
    virtual HRESULT Write(std::wstring_view id, CComVariant value, bool guarded);
    /// The same with a VT_I4.
    virtual HRESULT WriteLong(std::wstring_view id, LONG value, bool guarded);
    /// The same with a VT_BSTR. Takes ownership of the string, and frees it even if the write throws.
    virtual HRESULT WriteString(std::wstring_view id, CComBSTR value, bool guarded);

    /// Returns S_OK, or E_FAIL with `value` untouched. A direct read fails only without a session or an item;
    /// a value that cannot be read or converted then counts as 0. Never throws.
    HRESULT ReadLong(std::wstring_view id, LONG& value) const noexcept;
    /// Replaces `value` by the parameter's value as text. Leaves it untouched if it throws.
    void ReadString(std::wstring_view id, CComBSTR& value) const;

private:
    ECMParameter2(const TComECMServicesPtr<CCheckedResult>& ecmServices, IDataServiceOld* dataService);

    bool ProtocolWantsDataService() const;
    void OpenSession();
    LONG ConnectionIdentifier() const;

    CComVariant ReadThroughDataService(std::wstring_view id) const;
    LONG ReadLongThroughDataService(std::wstring_view id) const;
    /// Calls are not checked: a value that cannot be read counts as 0. Throws only without a session or an
    /// item.
    LONG ReadLongThroughSession(std::wstring_view id) const;
    CComBSTR ReadText(std::wstring_view id) const;
    void WriteThroughDataService(std::wstring_view id, const CComVariant& value) const;

    // Released in reverse order.
    bool m_useDataService = false;
    TComECMServicesPtr<CCheckedResult> m_ecmServices;
    TComDataServicePtr<CCheckedResult> m_dataService;
    CComBSTR m_savedValue; // of parameter "11", between the two halves of a guarded write
    CComPtr<IECMSessionManager> m_sessionManager;
    CComPtr<IECMDirectory> m_directory;
    CComPtr<IECMSession> m_session;
    CComPtr<IUnknown> m_openedECM;
    static constexpr LONG noHandle = -1; // as is every negative number
    LONG m_handle = noHandle;            // from Register
};

} // namespace vant
