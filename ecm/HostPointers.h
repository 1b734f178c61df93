#pragma once

#include "ecm/ResultPolicy.h"
#include "ecm/interfaces/EngineData.h"
#include "platform/ComPtr.h"

namespace vant {

/// Owns one of the host's engine data interfaces. Built from any interface of an object that does not offer
/// `Interface`, it throws as the result policy `Result` does, with E_NOINTERFACE; from a null one with
/// E_POINTER.
template <class Interface, class Result>
class THostPtr : public CComPtr<Interface> {
public:
    THostPtr() = default;
    explicit THostPtr(Interface* pointer) noexcept : CComPtr<Interface>(pointer) {}
    /// Only for interfaces whose identifier is known (see IidOf).
    explicit THostPtr(IUnknown* object) requires requires { IidOf<Interface>::value; }
    {
        Result result;
        result = object ? object->QueryInterface(IidOf<Interface>::value,
                                                 reinterpret_cast<void**>(CComPtr<Interface>::operator&()))
                        : E_POINTER;
        if (!*this)
            result = E_NOINTERFACE; // success without an object
    }
    THostPtr(const THostPtr&) = default;
    THostPtr& operator=(const THostPtr&) = default;
    using CComPtr<Interface>::operator=;
    virtual ~THostPtr() = default;
};

template <class Result>
using TComDataServicePtr = THostPtr<IDataServiceOld, Result>;
template <class Result>
using TComConnectionPtr = THostPtr<IConnectionOld, Result>;
template <class Result>
using TComECMServicesPtr = THostPtr<IECMServicesOld, Result>;
template <class Result>
using TComParameterPtr = THostPtr<IParameterOld, Result>;

} // namespace vant
