#include "platform/portable/classes.h"

#include "platform/DynamicLibrary.h"
#include "platform/Utf8.h"
#include "platform/portable/catalogue.h"

#include <cstdio>
#include <cwchar>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace {

using GetClassObject = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);

/// The modules that were loaded for a class, by file name, while the process uses components.
struct Apartment {
    std::mutex mutex;
    unsigned initialised = 0;
    std::map<std::wstring, vant::DynamicLibrary> modules;
};

Apartment& TheApartment() {
    static Apartment apartment;
    return apartment;
}

std::wstring TextOf(REFCLSID classId) {
    wchar_t text[39];
    const auto* d = classId.Data4;
    std::swprintf(text, std::size(text), L"{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", classId.Data1,
                  classId.Data2, classId.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    return text;
}

/// Whether the text is made of braces, hyphens and hexadecimal digits at their places, and ends there.
bool HasTheFormOfAClassId(const wchar_t* text) {
    constexpr std::wstring_view form = L"{########-####-####-####-############}";
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool digit = (text[i] >= L'0' && text[i] <= L'9') || (text[i] >= L'A' && text[i] <= L'F') ||
                           (text[i] >= L'a' && text[i] <= L'f');
        if (form[i] == L'#' ? !digit : text[i] != form[i])
            return false; // also at the end of a shorter text
    }
    return text[form.size()] == L'\0';
}

std::optional<std::wstring> Registered(const std::wstring& key) {
    const auto catalogue = vant::Catalogue::Read(vant::Catalogue::File());
    const std::wstring* const value = catalogue.Find(key, L"");
    return value ? std::optional(*value) : std::nullopt;
}

HRESULT LoadClassObject(REFCLSID classId, REFIID iid, void** out) {
    Apartment& apartment = TheApartment();
    const std::lock_guard lock(apartment.mutex);
    if (apartment.initialised == 0)
        return CO_E_NOTINITIALIZED;
    const auto file = Registered(L"CLSID\\" + TextOf(classId) + L"\\InprocServer32");
    if (!file)
        return REGDB_E_CLASSNOTREG;
    auto module = apartment.modules.find(*file);
    if (module == apartment.modules.end()) {
        try {
            module = apartment.modules.try_emplace(*file, vant::ToUtf8(*file)).first;
        } catch (const std::runtime_error&) {
            return CO_E_DLLNOTFOUND;
        }
    }
    try {
        return module->second.Find<GetClassObject>("DllGetClassObject")(classId, iid, out);
    } catch (const std::runtime_error&) {
        return CO_E_ERRORINDLL;
    }
}

/// Runs `operation`; what it throws becomes E_OUTOFMEMORY, or `otherwise` for any failure but memory.
template <class Operation>
HRESULT Guarded(HRESULT otherwise, Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return otherwise;
    }
}

} // namespace

HRESULT CoInitializeEx(void* /*reserved*/, DWORD /*model*/) {
    const std::lock_guard lock(TheApartment().mutex);
    return TheApartment().initialised++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    const std::lock_guard lock(TheApartment().mutex);
    if (TheApartment().initialised > 0 && --TheApartment().initialised == 0)
        TheApartment().modules.clear();
}

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* classId) {
    if (!classId)
        return E_INVALIDARG;
    *classId = {};
    if (!text)
        return S_OK;
    unsigned field[11] = {};
    if (!HasTheFormOfAClassId(text) ||
        std::swscanf(text, L"{%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x}", &field[0], &field[1], &field[2],
                     &field[3], &field[4], &field[5], &field[6], &field[7], &field[8], &field[9],
                     &field[10]) != 11)
        return CO_E_CLASSSTRING;
    classId->Data1 = field[0];
    classId->Data2 = static_cast<std::uint16_t>(field[1]);
    classId->Data3 = static_cast<std::uint16_t>(field[2]);
    for (std::size_t i = 0; i < 8; ++i)
        classId->Data4[i] = static_cast<std::uint8_t>(field[3 + i]);
    return S_OK;
}

HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* classId) {
    if (!progId || !classId)
        return E_INVALIDARG;
    *classId = {};
    if (*progId == L'{')
        return CLSIDFromString(progId, classId);
    return Guarded(CO_E_CLASSSTRING, [&] {
        const auto text = Registered(std::wstring(progId) + L"\\CLSID");
        return text ? CLSIDFromString(text->c_str(), classId) : CO_E_CLASSSTRING;
    });
}

HRESULT CoGetClassObject(REFCLSID classId, DWORD /*context*/, void* /*server*/, REFIID iid, void** out) {
    if (!out)
        return E_INVALIDARG;
    *out = nullptr;
    return Guarded(REGDB_E_CLASSNOTREG, [&] { return LoadClassObject(classId, iid, out); });
}

HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID iid, void** out) {
    if (!out)
        return E_POINTER;
    *out = nullptr;
    IClassFactory* factory = nullptr;
    HRESULT code =
        CoGetClassObject(classId, context, nullptr, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (SUCCEEDED(code)) {
        code = factory->CreateInstance(outer, iid, out);
        factory->Release();
    }
    return code;
}
