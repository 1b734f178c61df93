#pragma once

#include "platform/system.h"

namespace vant {

/// Thrown by the string and value holders: E_OUTOFMEMORY if a copy cannot be allocated, otherwise the code
/// of the platform call that failed. Never leaves an interface operation.
class CComException {
public:
    explicit CComException(HRESULT code) noexcept : m_code(code) {}
    HRESULT Code() const noexcept { return m_code; }

private:
    HRESULT m_code;
};

} // namespace vant
