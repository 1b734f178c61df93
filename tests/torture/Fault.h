#pragma once

#include "tests/support/TestHost.h"

#include <cstddef>
#include <optional>

namespace vant::test {

/// Something that goes wrong once in a command's life: at one of its opportunities, which are counted from 1.
class Fault {
public:
    virtual ~Fault() = default;

    /// Lets it strike at that opportunity of a life with a fresh `host`; never for 0.
    void Plan(TestHost& host, std::size_t number) {
        m_number = number;
        DoPlan(host, number);
    }
    bool HasStruck(const TestHost& host) const { return m_number != 0 && Opportunities(host) >= m_number; }

    /// Opportunities so far.
    virtual std::size_t Opportunities(const TestHost& host) const = 0;
    /// Which of the host's calls it strikes, counted from 0; nothing if only the outcome can tell.
    virtual std::optional<std::size_t> StruckCall() const = 0;
    /// The result of the host's call that it strikes; nothing if the call throws.
    virtual std::optional<HRESULT> Code() const = 0;
    /// Stand before and after each operation of the command. Outside, nothing is an opportunity.
    virtual void Enable() {}
    virtual void Disable() {}

protected:
    std::size_t Number() const { return m_number; }
    virtual void DoPlan(TestHost& host, std::size_t number) = 0;

private:
    std::size_t m_number = 0;
};

/// A call of the host fails.
class FailedCall final : public Fault {
public:
    explicit FailedCall(HRESULT code) : m_code(code) {}
    std::size_t Opportunities(const TestHost& host) const override { return host.CallCount(); }
    std::optional<std::size_t> StruckCall() const override { return Number() - 1; }
    std::optional<HRESULT> Code() const override { return m_code; }

private:
    void DoPlan(TestHost& host, std::size_t number) override { host.FailCall(number, m_code); }

    HRESULT m_code;
};

/// A call of the host throws a C++ exception, as none should.
class ThrowingCall final : public Fault {
public:
    std::size_t Opportunities(const TestHost& host) const override { return host.CallCount(); }
    std::optional<std::size_t> StruckCall() const override { return Number() - 1; }
    std::optional<HRESULT> Code() const override { return std::nullopt; }

private:
    void DoPlan(TestHost& host, std::size_t number) override { host.ThrowAtCall(number); }
};

} // namespace vant::test
