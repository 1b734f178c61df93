#include "ecm/ECMParameter2.h"

#include "ecm/Conversion.h"

#include <algorithm>
#include <cwchar>
#include <limits>
#include <string>
#include <tuple>
#include <utility>

namespace vant {

namespace {

/// The leading decimal digits of `text`, after blanks and a sign, as a number; 0 without digits. A number
/// beyond 32 bits becomes the nearest one that fits.
LONG LeadingNumber(std::wstring_view text) {
    const long long number = std::wcstoll(std::wstring(text).c_str(), nullptr, 10);
    return static_cast<LONG>(
        std::clamp<long long>(number, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

} // namespace

// Delegates, so that the destructor runs, and closes what was opened, should a later step throw.
ECMParameter2::ECMParameter2(IUnknown* ecmServices, IDataServiceOld* dataService)
    : ECMParameter2(TComECMServicesPtr<CCheckedResult>(ecmServices), dataService) {
    std::ignore = m_ecmServices.QueryInterface(&m_sessionManager);
    if (m_sessionManager)
        std::ignore = m_sessionManager->GetDirectory(&m_directory);
    m_useDataService = ProtocolWantsDataService();
    if (!m_useDataService)
        OpenSession();
}

ECMParameter2::ECMParameter2(const TComECMServicesPtr<CCheckedResult>& ecmServices,
                             IDataServiceOld* dataService)
    : m_ecmServices(ecmServices), m_dataService(dataService) {}

ECMParameter2::~ECMParameter2() {
    if (m_handle < 0)
        return;
    try {
        std::ignore = m_directory->CloseECM(m_handle);
    } catch (...) {
        // No exception may leave a destructor.
    }
}

/// Returns false if a step fails. Only the two calls for the connection throw.
bool ECMParameter2::ProtocolWantsDataService() const {
    CComPtr<IProtocolSource> source;
    if (!m_sessionManager || FAILED(m_sessionManager->GetProtocolSource(&source)) || !source)
        return false;
    const LONG ecmId = ConnectionIdentifier();
    CComPtr<IProtocolSourceA> a;
    CComPtr<IProtocolSourceB> b;
    CComPtr<IProtocolSourceC> c;
    CComPtr<IProtocolSourceD> d;
    LONG kind = 0;
    const bool known = SUCCEEDED(source->GetA(ecmId, &a)) && a && //
                       SUCCEEDED(a->GetB(&b)) && b &&             //
                       SUCCEEDED(b->GetC(nullptr, &c)) && c &&    //
                       SUCCEEDED(c->GetD(nullptr, &d)) && d &&    //
                       SUCCEEDED(d->get_Kind(&kind));
    return known && kind != 4 && kind != 5;
}

void ECMParameter2::OpenSession() {
    const LONG ecmId = ConnectionIdentifier();
    if (!m_directory || FAILED(m_directory->OpenECM(ecmId, &m_openedECM)) ||
        FAILED(m_openedECM.QueryInterface(&m_session)) || !m_session)
        return;
    LONG handle = noHandle;
    if (SUCCEEDED(m_session->Register(&handle)))
        m_handle = handle;
}

LONG ECMParameter2::ConnectionIdentifier() const {
    CCheckedResult result;
    TComConnectionPtr<CCheckedResult> connection;
    result = m_dataService ? m_dataService->GetConnection(&connection) : E_POINTER;
    CComBSTR identifier;
    result = connection ? connection->get_ConnectionIdentifier(&identifier) : E_POINTER;
    return LeadingNumber(identifier.Text());
}

HRESULT ECMParameter2::ReadLong(std::wstring_view id, LONG& value) const noexcept {
    try {
        value = m_useDataService ? ReadLongThroughDataService(id) : ReadLongThroughSession(id);
        return S_OK;
    } catch (...) {
        return E_FAIL;
    }
}

void ECMParameter2::ReadString(std::wstring_view id, CComBSTR& value) const {
    value = ReadText(id);
}

CComBSTR ECMParameter2::ReadText(std::wstring_view id) const {
    CCheckedResult result;
    CComVariant text = ReadThroughDataService(id);
    result = text.ChangeType(VT_BSTR, lcidEnglishUS);
    return CComBSTR::Copy(StringMember(text.Get()));
}

CComVariant ECMParameter2::ReadThroughDataService(std::wstring_view id) const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = m_dataService->GetParameter(CComBSTR(id).Get(), 1, &object);
    const TComParameterPtr<CCheckedResult> parameter(object.Get());
    CComVariant value;
    result = parameter->get_Value(&value);
    return value;
}

LONG ECMParameter2::ReadLongThroughDataService(std::wstring_view id) const {
    CCheckedResult result;
    CComVariant number = ReadThroughDataService(id);
    result = number.ChangeType(VT_I4, lcidEnglishUS);
    return number.Get().lVal;
}

LONG ECMParameter2::ReadLongThroughSession(std::wstring_view id) const {
    CCheckedResult result;
    result = m_session ? S_OK : E_POINTER;
    CComPtr<IECMSessionItem> item;
    std::ignore = m_session->ReadParameter(LeadingNumber(id), 1, &item);
    result = item ? S_OK : E_POINTER;
    CComVariant number;
    std::ignore = item->get_Value(&number);
    return ToLongOrZero(std::move(number), lcidEnglishUS);
}

HRESULT ECMParameter2::Write(std::wstring_view id, CComVariant value, bool guarded) {
    if (guarded) {
        m_savedValue = ReadText(L"11");
        CComBSTR guard = ReadText(L"14");
        if (!SameText(m_savedValue.Get(), guard.Get()))
            WriteString(L"11", std::move(guard), false);
    }
    WriteThroughDataService(id, value);
    if (guarded) {
        const CComBSTR guard = ReadText(L"14");
        if (!SameText(m_savedValue.Get(), guard.Get()) && !m_savedValue.Text().empty())
            WriteString(L"11", m_savedValue, false);
    }
    return value.Clear();
}

HRESULT ECMParameter2::WriteLong(std::wstring_view id, LONG value, bool guarded) {
    return Write(id, CComVariant(value), guarded);
}

HRESULT ECMParameter2::WriteString(std::wstring_view id, CComBSTR value, bool guarded) {
    return Write(id, CComVariant(std::move(value)), guarded);
}

void ECMParameter2::WriteThroughDataService(std::wstring_view id, const CComVariant& value) const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = m_dataService->SetParameter(CComBSTR(id).Get(), 1, value.Get(), &object);
    CComPtr<IParameterOld> parameter;
    std::ignore = object.QueryInterface(&parameter);
}

} // namespace vant
