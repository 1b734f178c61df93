#pragma once

#include "ecm/HostPointers.h"
#include "ecm/ResultPolicy.h"
#include "ecm/interfaces/EngineData.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <string_view>

namespace vant {

/// Reads and writes parameters of the engine control module for one unit of work, by identifiers that are
/// decimal numbers ("13190"). Integers are read through the host's data service or directly through a
/// session, as the connection's protocol demands; everything else goes through the data service.
///
/// Used by one thread only. A direct session stays open for the object's whole life. Conversions follow
/// locale 1033. Where nothing else is said, a failed host call throws CComErrorHandlerException.
class ECMParameter2 {
public:
    /// `ecmServices` is asked for IECMServicesOld and must offer it. Chooses the way of reading; opens a
    /// session where reads are direct. A session that cannot be opened shows only in the reads, which then
    /// fail.
    ECMParameter2(IUnknown* ecmServices, IDataServiceOld* dataService);
    ECMParameter2(const ECMParameter2&) = delete;
    ECMParameter2& operator=(const ECMParameter2&) = delete;
    virtual ~ECMParameter2();

    /// Writes `value` and answers the result of clearing it afterwards. A guarded write sets parameter "11"
    /// to the value of parameter "14" meanwhile; when the write itself throws, "11" is left as it then is.
    virtual HRESULT Write(std::wstring_view id, CComVariant value, bool guarded);
    /// The same with a VT_I4.
    virtual HRESULT WriteLong(std::wstring_view id, LONG value, bool guarded);
    /// The same with a VT_BSTR. Takes the string over: it is freed, also when the write throws.
    virtual HRESULT WriteString(std::wstring_view id, CComBSTR value, bool guarded);

    /// S_OK; or E_FAIL, with `value` untouched, whatever went wrong. Never throws.
    HRESULT ReadLong(std::wstring_view id, LONG& value) const noexcept;
    /// Replaces `value` by the parameter's value as text; leaves it untouched when it throws.
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
