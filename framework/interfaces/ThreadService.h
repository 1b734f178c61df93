#pragma once

// The host's thread service, which runs persistent commands. Both interfaces are dual: slots 3 to 6 are
// IDispatch's. The module does not call them, and its own behave as without a type library.

#include "platform/ComPtr.h"
#include "platform/system.h"

#include <cstddef>
#include <cstdint>

namespace vant {

inline constexpr IID IID_IThreadService = {
    0x3920C9CE, 0x1878, 0x49C8, {0xBA, 0x82, 0x41, 0xCA, 0xA3, 0x6E, 0x71, 0x68}};
inline constexpr IID IID_IThreadCallback = {
    0xE4DBF14F, 0x4B42, 0x43A3, {0xA8, 0xCB, 0xA9, 0x45, 0x4A, 0x3D, 0xEC, 0x33}};

/// The callback that the service runs on a thread of its own.
struct IThreadCallback : IDispatch {
    /// Slot 7 [persistent thread]: the thread's entry. Returns when the work is done or has been stopped,
    /// always with E_FAIL, which must not be taken as a reason to call it again. No exception leaves it.
    ///
    /// The callback works on the command that registered it and holds no reference to it: the host keeps the
    /// command alive from RegisterCallback until this call has returned, and the module loaded until the
    /// thread has released the callback.
    virtual HRESULT STDMETHODCALLTYPE RunOnThread() = 0;
};

/// Describes a callback. The service copies what it keeps; strings and callback remain the caller's.
struct ThreadRegistration {
    IThreadCallback* callback;
    std::uint32_t argument;    ///< 0 from every command; its meaning is the host's.
    std::uint32_t settings[3]; ///< All 0; their meaning is the host's.
    BSTR ownerName;            ///< "IVantPersistentCommandImpl"
    BSTR threadName;           ///< "Persistent Thread"
};
static_assert(offsetof(ThreadRegistration, argument) == sizeof(void*));
static_assert(offsetof(ThreadRegistration, settings) == sizeof(void*) + 4);
static_assert(offsetof(ThreadRegistration, ownerName) == sizeof(void*) + 16);
static_assert(sizeof(ThreadRegistration) == 3 * sizeof(void*) + 16);

struct IThreadService : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    /// Slot 8 [any thread]: forgets a registration. A thread that runs is not interrupted.
    virtual HRESULT STDMETHODCALLTYPE UnregisterCallback(std::uint32_t cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    /// Slots 11 and 12: what they do with the registration is the host's. No command calls them.
    virtual HRESULT STDMETHODCALLTYPE Operation11(std::uint32_t cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Operation12(std::uint32_t cookie) = 0;
    /// Slot 13 [the thread that executes the command]: starts a thread that calls `callback` once, and keeps
    /// a reference to the callback. `cookie` names the registration from then on. The call does not wait for
    /// the thread.
    virtual HRESULT STDMETHODCALLTYPE RegisterCallback(IThreadCallback* callback,
                                                       const ThreadRegistration* registration,
                                                       std::uint32_t* cookie) = 0;
};

template <>
struct IidOf<IThreadService> {
    static constexpr const IID& value = IID_IThreadService;
};
template <>
struct IidOf<IThreadCallback> {
    static constexpr const IID& value = IID_IThreadCallback;
};

} // namespace vant
