#pragma once

// How a failed host call becomes an exception. A call is "checked" when its HRESULT is assigned to a result
// object:
//
//     CCheckedResult result;
//     result = service->DoThis();   // throws CComErrorHandlerException if DoThis fails
//     result = service->DoThat();

#include "platform/system.h"

#include <cstdint>
#include <string>

namespace vant {

/// A failed host call, thrown and caught by value. Handlers catch every exception alike and read no field.
class CComErrorHandlerException {
public:
    CComErrorHandlerException(HRESULT code, std::uint32_t contextCode)
        : m_code(code), m_thirdCode(contextCode) {}
    CComErrorHandlerException(const CComErrorHandlerException&) = default;
    CComErrorHandlerException& operator=(const CComErrorHandlerException&) = delete;
    virtual ~CComErrorHandlerException() = default;

    HRESULT Code() const noexcept { return m_code; }
    std::uint32_t SecondCode() const noexcept { return m_secondCode; }
    std::uint32_t ThirdCode() const noexcept { return m_thirdCode; }
    const std::wstring& Message() const noexcept { return m_message; }
    std::uint32_t TrailingValue() const noexcept { return m_trailingValue; }

private:
    HRESULT m_code;
    std::uint32_t m_secondCode = 0;
    std::uint32_t m_thirdCode;
    std::wstring m_message;
    std::uint32_t m_trailingValue = 0;
};

/// Reports a failure by an exception. The host sees nothing of it: no error information object is set.
struct ErrorCallbackClass {
    [[noreturn]] static void OnError(HRESULT code, std::uint32_t contextCode) {
        throw CComErrorHandlerException(code, contextCode);
    }
};

/// Tells which assigned values are failures, and who reports them.
template <class ErrorCallback>
struct HRESULTPolicy {
    using Value = HRESULT;
    static constexpr Value initial = E_FAIL;
    static bool IsFailure(Value value) noexcept { return FAILED(value); }
    [[noreturn]] static void OnFailure(Value value, std::uint32_t contextCode) {
        ErrorCallback::OnError(value, contextCode);
    }
};

/// Reports the first failure that is assigned, and no later one: clean-up code may assign to a result object
/// that has already thrown.
template <class Policy>
class TriggeredAssignmentPolicy {
public:
    TriggeredAssignmentPolicy() = default;
    virtual ~TriggeredAssignmentPolicy() = default;

protected:
    void Check(typename Policy::Value value) {
        if (m_triggered || !Policy::IsFailure(value))
            return;
        m_triggered = true;
        Policy::OnFailure(value, m_contextCode);
    }

private:
    bool m_triggered = false;
    std::uint32_t m_contextCode = 0;
};

/// The result of the last host call of one unit of work; E_FAIL before the first call. Every HRESULT is
/// stored; the first failure is thrown.
template <class Policy>
class CSmartResult : public TriggeredAssignmentPolicy<Policy> {
public:
    CSmartResult() = default;
    // Copying would carry a failure past the check.
    CSmartResult(const CSmartResult&) = delete;
    CSmartResult& operator=(const CSmartResult&) = delete;

    CSmartResult& operator=(typename Policy::Value value) {
        m_result = value;
        this->Check(value);
        return *this;
    }
    operator typename Policy::Value() const noexcept { return m_result; }

private:
    typename Policy::Value m_result = Policy::initial;
};

/// The result object that every checked host call of this system is assigned to.
using CCheckedResult = CSmartResult<HRESULTPolicy<ErrorCallbackClass>>;

} // namespace vant
