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

/// One step's work. The host creates the object, initialises it once, sets its properties, executes it.
/// Setting properties and executing must not overlap, which for a persistent command means until its threads
/// have ended; otherwise any thread may call. No exception leaves an
/// operation.
struct IVantCommand : IUnknown {
    /// Slot 3. Asks `context` for the nine host services and keeps them, with `controller` (which may be
    /// null), for the object's whole life. E_UNEXPECTED the second time; E_POINTER for a null context;
    /// otherwise the code of the first service request that failed, after which Initialize may be tried
    /// again.
    virtual HRESULT STDMETHODCALLTYPE Initialize(IVantContext* context, IVantController* controller) = 0;
    /// Slot 4. Runs the command. E_UNEXPECTED where the property set is invalid (nothing runs); E_FAIL where
    /// the body failed; else S_OK. Everything else that it has to say reaches the host through the services.
    virtual HRESULT STDMETHODCALLTYPE Execute() = 0;
    /// Slot 5. Copies both strings. A name that is already set keeps its first value (S_OK); an undeclared
    /// name, compared exactly, answers E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, BSTR value) = 0;
    /// Slot 6. Whether the property set is complete and free of contradictions.
    virtual HRESULT STDMETHODCALLTYPE get_IsValid(VARIANT_BOOL* isValid) = 0;
    /// Slot 7. A copy that the caller frees; null where no label was set.
    virtual HRESULT STDMETHODCALLTYPE get_Label(BSTR* label) = 0;
    /// Slot 8. Keeps a copy. E_OUTOFMEMORY where it cannot be made; the old label then stays.
    virtual HRESULT STDMETHODCALLTYPE put_Label(BSTR label) = 0;
};

/// A command that keeps running on a thread of the host's thread service after Execute has returned.
struct IVantPersistentCommand : IUnknown {
    /// Slot 3. Asks the command to end and tells the controller that it has been stopped. Does not wait.
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
