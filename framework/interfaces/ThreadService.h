#pragma once

// The host's thread service, which runs persistent commands. Both interfaces are dual: slots 3 to 6 are
// IDispatch's.

#include "platform/ComPtr.h"
#include "platform/system.h"

#include <cstdint>

namespace vant {

inline constexpr IID IID_IThreadService = {
    0x3920C9CE, 0x1878, 0x49C8, {0xBA, 0x82, 0x41, 0xCA, 0xA3, 0x6E, 0x71, 0x68}};

struct IThreadCallback;
struct ThreadRegistration;

struct IThreadService : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterCallback(std::uint32_t cookie) = 0; // slot 8
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE
    Operation11(std::uint32_t cookie) = 0; // slot 11; its meaning is the host's
    virtual HRESULT STDMETHODCALLTYPE
    Operation12(std::uint32_t cookie) = 0; // slot 12; its meaning is the host's
    /// Slot 13: starts a thread that calls `callback`; `cookie` names the registration from then on.
    virtual HRESULT STDMETHODCALLTYPE RegisterCallback(IThreadCallback* callback,
                                                       const ThreadRegistration* registration,
                                                       std::uint32_t* cookie) = 0;
};

template <>
struct IidOf<IThreadService> {
    static constexpr const IID& value = IID_IThreadService;
};

} // namespace vant
