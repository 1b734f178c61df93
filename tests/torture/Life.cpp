#include "tests/torture/Life.h"

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "tests/module/BuiltModule.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <string_view>

namespace vant::test {

namespace {

constexpr LONG servicesAndController = 10;

class LifeOfOne {
public:
    LifeOfOne(const Scenario& scenario, Fault& fault, std::size_t number)
        : m_scenario(scenario), m_fault(fault) {
        m_host.dataStore[L"first"] = CComVariant(CComBSTR(L"12.5"));
        m_host.dataStore[L"second"] = CComVariant(CComBSTR(L"9.5"));
        m_host.dataStore[L"result"] = CComVariant(CComBSTR(L"old"));
        fault.Plan(m_host, number);
    }

    std::size_t Run() {
        Create();
        if (!m_command) {
            ADD_FAILURE() << "there is no command";
            return 0;
        }
        Initialize();
        for (const auto& [name, value] : m_scenario.properties)
            SetProperty(CComBSTR(name), CComBSTR(value));
        AskValidity();
        PutLabel(L"", L"first");
        PutLabel(L"first", L"second");
        GetLabel(L"second");
        Execute();
        Release();
        return m_fault.Opportunities(m_host);
    }
    bool WasStruck() const { return m_fault.HasStruck(m_host); }

private:
    /// Does one operation with the fault enabled, and notes whether it struck.
    template <class Operation>
    HRESULT Do(Operation operation) {
        const bool before = WasStruck();
        m_fault.Enable();
        const HRESULT code = operation();
        m_fault.Disable();
        m_struck = !before && WasStruck();
        return code;
    }

    void Create() {
        const auto create = [this] {
            return m_module.Create(*m_scenario.classId, IID_IVantCommand,
                                   reinterpret_cast<void**>(&m_command));
        };
        HRESULT code = Do(create);
        if (m_struck) {
            EXPECT_EQ(code, E_OUTOFMEMORY);
            EXPECT_FALSE(m_command);
            EXPECT_EQ(m_module.CanUnloadNow(), S_OK);
            code = Do(create);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(m_module.CanUnloadNow(), S_FALSE);
    }

    void Initialize() {
        const auto initialize = [this] {
            return m_command->Initialize(m_host.Context(), m_host.Controller());
        };
        HRESULT code = Do(initialize);
        if (m_struck) {
            // Where nothing tells what went wrong, the answer is that of the request before.
            const std::size_t before = m_fault.CallsBefore(m_host);
            EXPECT_EQ(code, m_fault.Code().value_or(before == 0 ? E_FAIL : S_OK));
            EXPECT_EQ(m_host.OutstandingReferences(), static_cast<LONG>(before));
            code = Do(initialize);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(m_host.OutstandingReferences(), servicesAndController);
        EXPECT_EQ(Do(initialize), E_UNEXPECTED);
    }

    void SetProperty(const CComBSTR& name, const CComBSTR& value) {
        const auto setProperty = [&] { return m_command->SetProperty(name.Get(), value.Get()); };
        HRESULT code = Do(setProperty);
        if (m_struck) {
            EXPECT_EQ(code, E_FAIL);
            code = Do(setProperty);
        }
        EXPECT_EQ(code, S_OK);
    }

    void AskValidity() {
        VARIANT_BOOL valid = VARIANT_FALSE;
        EXPECT_EQ(Do([&] { return m_command->get_IsValid(&valid); }), S_OK);
        EXPECT_FALSE(m_struck) << "get_IsValid needs nothing that could fail";
        EXPECT_EQ(valid, VARIANT_TRUE);
    }

    void PutLabel(std::wstring_view before, std::wstring_view label) {
        const CComBSTR text(label);
        const auto putLabel = [&] { return m_command->put_Label(text.Get()); };
        HRESULT code = Do(putLabel);
        if (m_struck) {
            EXPECT_EQ(code, E_OUTOFMEMORY);
            CComBSTR kept;
            EXPECT_EQ(m_command->get_Label(&kept), S_OK);
            EXPECT_EQ(kept.Text(), before);
            code = Do(putLabel);
        }
        EXPECT_EQ(code, S_OK);
    }

    void GetLabel(std::wstring_view expected) {
        CComBSTR label;
        const auto getLabel = [&] { return m_command->get_Label(&label); };
        HRESULT code = Do(getLabel);
        if (m_struck) {
            EXPECT_EQ(code, E_OUTOFMEMORY);
            EXPECT_EQ(label.Get(), nullptr);
            code = Do(getLabel);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(label.Text(), expected);
    }

    void Execute() {
        const auto execute = [this] { return m_command->Execute(); };
        std::size_t start = m_host.CallCount();
        HRESULT code = Do(execute);
        if (m_struck) {
            EXPECT_EQ(code, m_scenario.failedExecute);
            EXPECT_EQ(Result(), L"old");
            const auto calls = CallsFrom(start);
            EXPECT_LE(calls.size(), m_scenario.calls.size());
            EXPECT_TRUE(std::equal(calls.begin(), calls.end(), m_scenario.calls.begin()));
            EXPECT_LE(m_host.CallCount(), m_fault.CallsBefore(m_host) + 1) << "it went on after the failure";
            EXPECT_EQ(m_host.OutstandingReferences(), servicesAndController);
            start = m_host.CallCount();
            code = Do(execute);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(Result(), m_scenario.result);
        EXPECT_EQ(CallsFrom(start), m_scenario.calls);
    }

    void Release() {
        EXPECT_EQ(Do([this] {
                      m_command.Release();
                      return S_OK;
                  }),
                  S_OK);
        EXPECT_FALSE(m_struck) << "Release needs nothing that could fail";
        EXPECT_EQ(m_host.OutstandingReferences(), 0);
        EXPECT_EQ(m_module.CanUnloadNow(), S_OK);
    }

    std::wstring_view Result() { return TextOf(StringMember(m_host.dataStore[L"result"].Get())); }
    std::vector<std::string> CallsFrom(std::size_t start) const {
        return {m_host.calls.begin() + static_cast<std::ptrdiff_t>(start), m_host.calls.end()};
    }

    const Scenario& m_scenario;
    Fault& m_fault;
    TestHost m_host;
    const BuiltModule m_module;
    CComPtr<IVantCommand> m_command;
    bool m_struck = false;
};

} // namespace

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
    return out << scenario.name;
}

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> all = {
        {"CompositeCommand",
         &CLSID_CompositeCommand,
         {{L"commandIDList", L"A B  C"}},
         {"RunCommand(A)", "RunCommand(B)", "RunCommand()", "RunCommand(C)"},
         L"old",
         E_FAIL},
        {"CommandTerminator",
         &CLSID_CommandTerminator,
         {{L"commandID", L"T1"}},
         {"TerminateCommand(T1)"},
         L"old",
         E_FAIL},
        {"DataStoreWriter",
         &CLSID_DataStoreWriter,
         {{L"dsLocation", L"result"}, {L"value", L"new"}},
         {"SetValue(result, \"new\")"},
         L"new",
         E_FAIL},
        {"CalculatorOfEntries",
         &CLSID_Calculator,
         {{L"operation", L"subtract"},
          {L"dsSourceA", L"first"},
          {L"dsSourceB", L"second"},
          {L"sourceB", L"ignored"},
          {L"dsResult", L"result"}},
         {"GetValue(first)", "GetValue(second)", "SetValue(result, \"3\")"},
         L"3",
         S_OK},
        {"CalculatorOfTexts",
         &CLSID_Calculator,
         {{L"operation", L"add"}, {L"sourceA", L"1"}, {L"sourceB", L"2"}, {L"dsResult", L"result"}},
         {"SetValue(result, \"3\")"},
         L"3",
         S_OK},
    };
    return all;
}

std::size_t Live(const Scenario& scenario, Fault& fault, std::size_t number) {
    LifeOfOne life(scenario, fault, number);
    const std::size_t opportunities = life.Run();
    EXPECT_EQ(life.WasStruck(), number != 0);
    return opportunities;
}

void LiveThroughEach(const Scenario& scenario, Fault& fault) {
    const std::size_t opportunities = Live(scenario, fault, 0);
    ASSERT_GT(opportunities, 0U);
    for (std::size_t number = 1; number <= opportunities; ++number) {
        SCOPED_TRACE(::testing::Message() << "struck at " << number << " of " << opportunities);
        Live(scenario, fault, number);
    }
}

} // namespace vant::test
