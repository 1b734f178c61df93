#pragma once

// Creating objects of registered classes, by way of the class catalogue (platform/portable/catalogue.h).

#include "platform/portable/types.h"
#include "platform/portable/unknown.h"

inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);
inline constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0);
inline constexpr HRESULT CO_E_DLLNOTFOUND = static_cast<HRESULT>(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = static_cast<HRESULT>(0x800401F9);

inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;

extern "C" {

/// Each successful call is matched by one CoUninitialize; the last one unloads every module that was loaded
/// for a class. Objects must be gone by then. S_OK the first time in a process, S_FALSE afterwards.
VANT_PLATFORM_API HRESULT CoInitializeEx(void* reserved, DWORD model);
VANT_PLATFORM_API void CoUninitialize();

/// The class registered under a ProgID, with or without version, or given as "{...}" text. CO_E_CLASSSTRING
/// if no class is registered so.
VANT_PLATFORM_API HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* classId);
/// The identifier that "{...}" spells, and the one of nothing but zeros for a null text. CO_E_CLASSSTRING for
/// any other text.
VANT_PLATFORM_API HRESULT CLSIDFromString(LPCOLESTR text, CLSID* classId);

/// Loads the module registered for the class and asks it for the class object. REGDB_E_CLASSNOTREG if no
/// module is registered, CO_E_DLLNOTFOUND if it cannot be loaded, CO_E_ERRORINDLL if it is not a component
/// server, CO_E_NOTINITIALIZED before CoInitializeEx; otherwise what the module returns.
VANT_PLATFORM_API HRESULT CoGetClassObject(REFCLSID classId, DWORD context, void* server, REFIID iid,
                                           void** out);
VANT_PLATFORM_API HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID iid,
                                           void** out);

/// What every component exports; the component defines them.
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID iid, void** out);
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllCanUnloadNow();
}
