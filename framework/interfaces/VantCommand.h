#pragma once

// What the host calls on a command. Slots 0 to 2 are IUnknown's.

#include "platform/ComPtr.h"
#include "platform/system.h"

namespace vant {

struct IVantContext;
struct IVantController;

inline constexpr IID IID_IVantCommand = {
    0x9D46497B, 0x8FA4, 0x44AD, {0x85, 0xBA, 0x5A, 0x0C, 0x99, 0x54, 0xE9, 0x10}};
inline constexpr IID IID_IVantPersistentCommand = {
    0x320D49F6, 0x7C7F, 0x4107, {0x99, 0x00, 0x6B, 0x70, 0x3C, 0x99, 0xE8, 0xEE}};

/// The work of one step. The host creates the object, initialises it once, sets its properties and executes
/// it. No exception leaves an operation.
///
/// Any thread may call, but only one at a time. The host must not set properties while the command executes;
/// for a persistent command, that lasts until its threads have ended. Only Stop of a persistent command may
/// be called at any time.
struct IVantCommand : IUnknown {
    /// Slot 3. Asks `context` for the nine host services and keeps them, with `controller` (which may be
    /// null), for the object's whole life. Returns E_UNEXPECTED the second time and E_POINTER for a null
    /// context, else the code of the first request that failed, after which Initialize may be tried again.
    virtual HRESULT STDMETHODCALLTYPE Initialize(IVantContext* context, IVantController* controller) = 0;
    /// Slot 4. Runs the command. Returns E_UNEXPECTED for an invalid property set (nothing runs), E_FAIL if
    /// the body failed, else S_OK. All other results reach the host through the services.
    virtual HRESULT STDMETHODCALLTYPE Execute() = 0;
    /// Slot 5. Copies both strings. A name that is already set keeps its first value. Returns E_INVALIDARG
    /// for an undeclared name; names are compared exactly.
    virtual HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, BSTR value) = 0;
    /// Slot 6. Whether the property set is complete and free of contradictions.
    virtual HRESULT STDMETHODCALLTYPE get_IsValid(VARIANT_BOOL* isValid) = 0;
    /// Slot 7. A copy that the caller frees; null if no label was set.
    virtual HRESULT STDMETHODCALLTYPE get_Label(BSTR* label) = 0;
    /// Slot 8. Keeps a copy. Returns E_OUTOFMEMORY if it cannot be made; the old label then stays.
    virtual HRESULT STDMETHODCALLTYPE put_Label(BSTR label) = 0;
};

/// A command that keeps running on a thread of the host's thread service after Execute has returned.
struct IVantPersistentCommand : IUnknown {
    /// Slot 3 [any thread, at any time]. Asks the command to end and tells the controller that it has been
    /// stopped. Returns what the controller returns, or E_POINTER before Initialize has succeeded or without
    /// a controller. Does not wait.
    virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
};

template <>
struct IidOf<IVantCommand> {
    static constexpr const IID& value = IID_IVantCommand;
};
template <>
struct IidOf<IVantPersistentCommand> {
    static constexpr const IID& value = IID_IVantPersistentCommand;
};

} // namespace vant
