#include "tests/torture/Life.h"

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "tests/module/BuiltModule.h"
#include "tests/support/ConditionSet.h"
#include "tests/support/EmptyDesktop.h"
#include "tests/support/EngineHost.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <string_view>
#include <utility>

namespace vant::test {

namespace {

constexpr LONG servicesAndController = 10;

/// How an execution ended.
struct Outcome {
    HRESULT code;
    Calls calls;
    std::string result; ///< the data-store entry "result", as Show writes it

    bool operator==(const Outcome&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
        out << std::hex << outcome.code << std::dec << ", result " << outcome.result;
        for (const std::string& call : outcome.calls)
            out << "\n    " << call;
        return out;
    }
};

/// The data-store entry "result" after `calls` have gone well.
std::string ResultAfter(const Calls& calls) {
    constexpr std::string_view opening = "SetValue(result, ";
    std::string result = "\"old\"";
    for (const std::string& call : calls) {
        if (call.starts_with(opening))
            result = call.substr(opening.size(), call.size() - opening.size() - 1);
    }
    return result == "null" ? "\"\"" : result; // the store keeps copies, and the copy of no text is empty
}

Calls Joined(Calls calls, const Calls& more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

Calls First(const Calls& calls, std::size_t count) {
    return {calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(count)};
}

/// The ways in which an operation can end.
class Outcomes {
public:
    explicit Outcomes(Work work) : m_work(std::move(work)) {}

    Outcome Success() const { return {m_work.done, m_work.calls, ResultAfter(m_work.calls)}; }
    /// After `count` calls that went well, before the next.
    Outcome EndedAfter(std::size_t count) const {
        const Calls calls = First(m_work.calls, count);
        return {m_work.failed, Joined(calls, m_work.afterFailure), ResultAfter(calls)};
    }
    /// In a call.
    Outcome EndedIn(std::size_t number) const {
        return {m_work.failed, Joined(First(m_work.calls, number + 1), m_work.afterFailure),
                ResultAfter(Joined(First(m_work.calls, number), m_work.afterFailure))};
    }
    Outcome Ignoring(const IgnoredCall& ignored) const {
        const Calls calls = Joined(First(m_work.calls, ignored.number + 1), ignored.then);
        return {ignored.execute, calls, ResultAfter(calls)};
    }
    /// If the call returns a failure.
    Outcome Refused(std::size_t number) const {
        const IgnoredCall* const ignored = FindIgnored(number);
        return ignored ? Ignoring(*ignored) : EndedIn(number);
    }
    /// If the call throws.
    Outcome Thrown(std::size_t number) const {
        const IgnoredCall* const ignored = FindIgnored(number);
        return ignored && ignored->alsoThrown ? Ignoring(*ignored) : EndedIn(number);
    }
    /// If memory has run out somewhere.
    std::vector<Outcome> WithoutMemory() const {
        std::vector<Outcome> all;
        for (std::size_t number = 0; number < m_work.calls.size(); ++number) {
            all.insert(all.end(), {EndedAfter(number), EndedIn(number), Refused(number)});
            // before the call could be noted
            if (const IgnoredCall* const ignored = FindIgnored(number); ignored && ignored->alsoThrown) {
                const Calls calls = Joined(First(m_work.calls, number), ignored->then);
                all.push_back({ignored->execute, calls, ResultAfter(calls)});
            }
        }
        all.push_back(EndedAfter(m_work.calls.size()));
        if (m_work.withoutText)
            all.push_back({S_OK, *m_work.withoutText, ResultAfter(*m_work.withoutText)});
        return all;
    }

private:
    const IgnoredCall* FindIgnored(std::size_t number) const {
        const auto found = std::find_if(m_work.ignored.begin(), m_work.ignored.end(),
                                        [number](const IgnoredCall& call) { return call.number == number; });
        return found == m_work.ignored.end() ? nullptr : &*found;
    }

    const Work m_work;
};

class LifeOfOne {
public:
    LifeOfOne(const Scenario& scenario, Fault& fault, std::size_t number)
        : m_scenario(scenario), m_fault(fault) {
        m_host.dataStore[L"first"] = CComVariant(CComBSTR(L"12.5"));
        m_host.dataStore[L"second"] = CComVariant(CComBSTR(L"9.5"));
        m_host.dataStore[L"result"] = CComVariant(CComBSTR(L"old"));
        m_host.dataStore[L"number"] = CComVariant(LONG{5});
        m_host.dataStore[L"id"] = CComVariant(CComBSTR(L"190"));
        m_host.dataStore[L"template"] = CComVariant(CComBSTR(L"$p(190) of $d(first)"));
        m_host.dataStore[L"zero"] = CComVariant(CComBSTR(L"0"));
        m_host.parameters[L"190"] = {L"speed", L"750", CComVariant(LONG{750}), L"rpm"};
        // of the adjusters
        for (const auto& [id, value] : {std::pair(L"101000", 1500),
                                        {L"13191", 0},
                                        {L"13192", 100},
                                        {L"199236", 8},
                                        {L"110143", 10},
                                        {L"110145", 42},
                                        {L"14531", 40}})
            m_host.parameters[id].value = CComVariant(LONG{value});
        for (const wchar_t* id : {L"13190", L"110142"})
            m_host.parameters[id].value = CComVariant(LONG{0});
        m_engine.sessionValues[101000] = CComVariant(LONG{1500});
        m_engine.units[L"rpm"] = L"1/min";
        m_engine.released.reserve(1000); // notes that need no memory later
        m_failing.answers = {VARIANT_FALSE};
        m_failing.failureKey = L"first";
        m_host.Threads().startsThreads = false;
        m_ownReferences = m_host.OutstandingReferences();
        fault.Plan(m_host, number);
    }

    std::size_t Run() {
        Create();
        if (!m_command) {
            ADD_FAILURE() << "no command was created";
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
        if (IsPersistent()) {
            if (m_scenario.body)
                RunBody(*m_scenario.body);
            Stop();
        }
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
            // If nothing tells what went wrong, the result is that of the previous request.
            const std::size_t before = m_fault.StruckCall().value_or(m_host.CallCount());
            EXPECT_EQ(code, m_fault.Code().value_or(before == 0 ? E_FAIL : S_OK));
            EXPECT_EQ(Held(), static_cast<LONG>(before));
            code = Do(initialize);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(Held(), servicesAndController);
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
        Perform(
            m_scenario.Execution(), [this] { return m_command->Execute(); }, [] {});
    }

    /// Calls the callback that was registered last.
    void RunBody(const Body& body) {
        if (body.stoppedBefore)
            Stop();
        Perform(
            body.work, [this] { return m_host.Threads().Run(LastCookie()); },
            [&] {
                EXPECT_EQ(m_command->Execute(), S_OK); // the thread has ended; there must be another
                if (body.stoppedBefore)
                    Stop();
            });
    }

    /// Does the work. Where the fault strikes, it must end as documented, and go well the second time,
    /// for which `prepare` makes ready.
    template <class Operation, class Preparation>
    void Perform(const Work& work, Operation operation, Preparation prepare) {
        std::size_t start = m_host.CallCount();
        HRESULT code = Do(operation);
        if (m_struck) {
            const Outcome actual{code, CallsFrom(start), Result()};
            const auto documented = StruckOutcomes(Outcomes(work), start);
            EXPECT_TRUE(std::find(documented.begin(), documented.end(), actual) != documented.end())
                << actual << "\nis none of the documented outcomes, as is\n"
                << documented.back();
            ExpectHeldWhileInUse();
            prepare();
            start = m_host.CallCount();
            code = Do(operation);
        }
        EXPECT_EQ((Outcome{code, CallsFrom(start), Result()}), Outcomes(work).Success());
        ExpectHeldWhileInUse();
    }

    /// How the work may have ended that began after `start` calls and was struck.
    std::vector<Outcome> StruckOutcomes(const Outcomes& outcomes, std::size_t start) const {
        const auto struck = m_fault.StruckCall();
        if (!struck)
            return outcomes.WithoutMemory();
        return {m_fault.Code() ? outcomes.Refused(*struck - start) : outcomes.Thrown(*struck - start)};
    }

    void Stop() {
        CComPtr<IVantPersistentCommand> persistent;
        ASSERT_EQ(
            m_command->QueryInterface(IID_IVantPersistentCommand, reinterpret_cast<void**>(&persistent)),
            S_OK);
        const auto stop = [&] { return persistent->Stop(); };
        const std::size_t before = m_host.stoppedCommands.size();
        HRESULT code = Do(stop);
        if (m_struck) {
            // An exception tells no more than that memory ran out, or nothing.
            EXPECT_EQ(code, m_fault.Code().value_or(m_fault.StruckCall() ? E_FAIL : E_OUTOFMEMORY));
            EXPECT_EQ(m_host.stoppedCommands.size(), before);
            code = Do(stop);
        }
        EXPECT_EQ(code, S_OK);
        EXPECT_EQ(m_host.stoppedCommands.size(), before + 1);
        EXPECT_EQ(m_host.stoppedCommands.back(), persistent.Get());
    }

    /// The services and the controller; a persistent command that was executed holds its thread service
    /// twice.
    void ExpectHeldWhileInUse() const { EXPECT_EQ(Held(), servicesAndController + (IsPersistent() ? 1 : 0)); }

    void Release() {
        EXPECT_EQ(Do([this] {
                      m_command.Release();
                      return S_OK;
                  }),
                  S_OK);
        EXPECT_FALSE(m_struck) << "Release needs nothing that could fail";
        EXPECT_EQ(Held(), 0);
        m_host.Threads().ReleaseCallbacks();
        EXPECT_EQ(m_module.CanUnloadNow(), S_OK);
    }

    bool IsPersistent() const {
        CComPtr<IUnknown> persistent;
        return SUCCEEDED(
            m_command->QueryInterface(IID_IVantPersistentCommand, reinterpret_cast<void**>(&persistent)));
    }
    std::uint32_t LastCookie() {
        return HostThreads::firstCookie +
               static_cast<std::uint32_t>(m_host.Threads().RegistrationCount() - 1);
    }
    /// References that the command holds on the host.
    LONG Held() const { return m_host.OutstandingReferences() - m_ownReferences; }
    std::string Result() { return Show(m_host.dataStore[L"result"].Get()); }
    Calls CallsFrom(std::size_t start) const {
        return {m_host.calls.begin() + static_cast<std::ptrdiff_t>(start), m_host.calls.end()};
    }

    const Scenario& m_scenario;
    Fault& m_fault;
    TestHost m_host;
    const FaultArray m_faulty{
        m_host,
        L"faulty",
        {{{L"199009", L"Inactive"}}, {{L"name", L"x"}, {L"16786047", L"Active"}, {L"16786048", L"P0123"}}}};
    const FaultArray m_clean{m_host, L"clean", {{{L"199009", L"Inactive"}}}};
    EngineServices m_engine{m_host};
    const ConditionSet m_met{m_host, L"met"};
    ConditionSet m_failing{m_host, L"failing"};
    LONG m_ownReferences = 0; // that the data store holds
    const BuiltModule m_module;
    CComPtr<IVantCommand> m_command;
    bool m_struck = false;
};

} // namespace

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
    return out << scenario.name;
}

const Calls& RegistrationCalls() {
    static const Calls calls = {"QueryInterface(IThreadService)",
                                "RegisterCallback(IVantPersistentCommandImpl, Persistent Thread)"};
    return calls;
}

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> all = {
        {"CompositeCommand",
         &CLSID_CompositeCommand,
         {{L"commandIDList", L"A B  C"}},
         {"RunCommand(A)", "RunCommand(B)", "RunCommand()", "RunCommand(C)"},
         E_FAIL},
        {"CommandTerminator",
         &CLSID_CommandTerminator,
         {{L"commandID", L"T1"}},
         {"TerminateCommand(T1)"},
         E_FAIL},
        {"DataStoreWriter",
         &CLSID_DataStoreWriter,
         {{L"dsLocation", L"result"}, {L"value", L"new"}},
         {"SetValue(result, \"new\")"},
         E_FAIL},
        {"CalculatorOfEntries",
         &CLSID_Calculator,
         {{L"operation", L"subtract"},
          {L"dsSourceA", L"first"},
          {L"dsSourceB", L"second"},
          {L"sourceB", L"ignored"},
          {L"dsResult", L"result"}},
         {"GetValue(first)", "GetValue(second)", "SetValue(result, \"3\")"},
         S_OK},
        {"CalculatorOfTexts",
         &CLSID_Calculator,
         {{L"operation", L"add"}, {L"sourceA", L"1"}, {L"sourceB", L"2"}, {L"dsResult", L"result"}},
         {"SetValue(result, \"3\")"},
         S_OK},
        {"ParameterWriterOfLiterals",
         &CLSID_ParameterWriter,
         {{L"parameterID", L"190"}, {L"value", L"5"}},
         {"SetParameter(190, 1, \"5\")"},
         E_FAIL},
        {"ParameterWriterOfReferences",
         &CLSID_ParameterWriter,
         {{L"dsParameterID", L"id"}, {L"dsValue", L"number"}},
         {"GetValue(id)", "GetValue(number)", "SetParameter(190, 1, 5)"},
         E_FAIL,
         {{0, {"GetValue(number)", "SetParameter(null, 1, 5)"}, E_FAIL},
          {1, {"SetParameter(190, 1, empty)"}}}},
        {"ParameterLoader",
         &CLSID_ParameterLoader,
         {{L"parameterID", L"190"}, {L"dsLocation", L"result"}},
         {"GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Value()",
          "SetValue(result, \"750\")"},
         S_OK},
        {"FaultArrayCheckerWithActiveRecord",
         &CLSID_FaultArrayChecker,
         {{L"arrayID", L"faulty"},
          {L"dsFaultCode", L"result"},
          {L"successTransitionID", L"good"},
          {L"failTransitionID", L"bad"}},
         {"GetParameter(faulty, 2)", "QueryInterface(IFaultArray)", "get_Records()",
          "QueryInterface(IFaultRecordList)", "get_RecordCount()",
          // the first record is not active
          "get_Record(1)", "get_FieldCount()", "get_Field(1)", "get_FieldName()", "get_FieldValue()",
          // the second is: its status field comes second
          "get_Record(2)", "get_FieldCount()", "get_Field(1)", "get_FieldName()", "get_Field(2)",
          "get_FieldName()", "get_FieldValue()",
          // its code
          "get_FieldCount()", "get_Field(1)", "get_FieldName()", "get_Field(2)", "get_FieldName()",
          "get_Field(3)", "get_FieldName()", "get_FieldValue()", "SetValue(result, \"P0123\")",
          "SetTransition(bad)"},
         S_OK},
        {"FaultArrayCheckerWithoutActiveRecord",
         &CLSID_FaultArrayChecker,
         {{L"arrayID", L"clean"},
          {L"dsFaultCode", L"result"},
          {L"successTransitionID", L"good"},
          {L"failTransitionID", L"bad"}},
         {"GetParameter(clean, 2)", "QueryInterface(IFaultArray)", "get_Records()",
          "QueryInterface(IFaultRecordList)", "get_RecordCount()", "get_Record(1)", "get_FieldCount()",
          "get_Field(1)", "get_FieldName()", "get_FieldValue()", "SetTransition(good)"},
         S_OK},
        {"PropertySetterOfLiteralWithReference",
         &CLSID_PropertySetter,
         {{L"componentID", L"gauge"}, {L"propertyName", L"text"}, {L"value", L"at $p(190)"}},
         {"GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Text()",
          "SetComponentProperty(gauge, text, \"at 750\")"},
         E_FAIL},
        {"PropertySetterOfEntry",
         &CLSID_PropertySetter,
         {{L"componentID", L"gauge"}, {L"propertyName", L"text"}, {L"dsValue", L"first"}},
         {"GetValue(first)", "SetComponentProperty(gauge, text, \"12.5\")"},
         E_FAIL},
        {"PropertySetterOfParameter",
         &CLSID_PropertySetter,
         {{L"componentID", L"gauge"}, {L"propertyName", L"text"}, {L"pValue", L"190"}},
         {"GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Text()",
          "SetComponentProperty(gauge, text, \"750\")"},
         E_FAIL},
        {"PropertySetterWithoutSource",
         &CLSID_PropertySetter,
         {{L"componentID", L"gauge"}, {L"propertyName", L"text"}},
         {"SetComponentProperty(gauge, text, \"\")"},
         E_FAIL},
        {"MessageDisplayer",
         &CLSID_MessageDisplayer,
         {{L"dsString", L"first"}},
         {"GetValue(first)"},
         E_FAIL,
         {{0, {}}}},
        {"ErrorDisplayer", &CLSID_ErrorDisplayer, {{L"dsString", L"first"}}, {}, E_FAIL},
        {"HelpDisplayer", &CLSID_HelpDisplayer, {{L"helpFile", L"manual"}, {L"helpIndex", L"3"}}, {}, E_FAIL},
        {"DiagnosticTestInstruction",
         &CLSID_DiagnosticTestInstruction,
         {{L"dsValue", L"template"}},
         {"GetValue(template)", "GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Text()",
          "ShowInstruction(750 of $d(first))"},
         E_FAIL,
         {{0, {"ShowInstruction()"}}, {4, {}}}},
        {"StringFormatterSubstituting",
         &CLSID_StringFormatter,
         {{L"operation", L"substitute"}, {L"dsSourceString", L"template"}, {L"dsTargetString", L"result"}},
         {"GetValue(template)", "GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Text()",
          "GetValue(first)", "SetValue(result, \"750 of 12.5\")"},
         S_OK},
        {"StringFormatterRounding",
         &CLSID_StringFormatter,
         {{L"operation", L"round"},
          {L"roundLength", L"0"},
          {L"dsSourceString", L"first"},
          {L"dsTargetString", L"result"}},
         {"GetValue(first)", "SetValue(result, \"12\")"},
         S_OK,
         {},
         Calls{"GetValue(first)", "SetValue(result, null)"}},
        {"StringFormatterOfTime",
         &CLSID_StringFormatter,
         {{L"operation", L"numToHMS"}, {L"dsSourceString", L"id"}, {L"dsTargetString", L"result"}},
         {"GetValue(id)", "SetValue(result, \"00:03:10\")"},
         S_OK},
        {"StartConditionCheckerOfConditionsThatHold",
         &CLSID_StartConditionChecker,
         {{L"dsSetID", L"met"}, {L"validTransitionID", L"good"}},
         {"GetValue(met)", "QueryInterface(IConditionSet)", "Evaluate()", "SetTransition(good)"},
         E_FAIL,
         {{2, {"SetTransition(good)"}}}},
        {"StartConditionCheckerOfConditionThatFails",
         &CLSID_StartConditionChecker,
         {{L"dsSetID", L"failing"}, {L"dsFailMessage", L"result"}, {L"invalidTransitionID", L"bad"}},
         {"GetValue(failing)", "QueryInterface(IConditionSet)", "Evaluate()", "GetFailureKey()",
          "GetValue(first)", "SetValue(result, \"12.5\")", "SetTransition(bad)"},
         E_FAIL,
         {{2, {"GetFailureKey()", "GetValue(first)", "SetValue(result, \"12.5\")", "SetTransition(bad)"}}}},
        {"Timer", &CLSID_Timer, {{L"length", L"3"}, {L"dsBase", L"result"}}, RegistrationCalls(), S_OK},
        {"StopConditionMonitor",
         &CLSID_StopConditionMonitor,
         {{L"dsSetID", L"met"}, {L"failTransitionID", L"bad"}, {L"dsMessageID", L"result"}},
         RegistrationCalls(),
         S_OK},
        {"MonitorUpdater",
         &CLSID_MonitorUpdater,
         {{L"parameterIDs", L"190"}, {L"dsBaseName", L"B"}, {L"monitorID", L"gauge"}},
         RegistrationCalls(),
         S_OK},
        {"ParameterSampler",
         &CLSID_ParameterSampler,
         {{L"parameterID", L"190"}, {L"period", L"1"}, {L"numSamples", L"2"}, {L"dsTarget", L"result"}},
         RegistrationCalls(),
         S_OK},
        {"ThrottleAdjuster",
         &CLSID_ThrottleAdjuster,
         {{L"successTransition", L"good"}, {L"failTransition", L"bad"}},
         RegistrationCalls(),
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
    const auto liveAll = [&] {
        const std::size_t opportunities = Live(scenario, fault, 0);
        ASSERT_GT(opportunities, 0U);
        for (std::size_t number = 1; number <= opportunities; ++number) {
            SCOPED_TRACE(::testing::Message() << "struck at " << number << " of " << opportunities);
            Live(scenario, fault, number);
        }
    };
    if (*scenario.classId == CLSID_MessageDisplayer)
        OnEmptyDesktop(liveAll); // a message that appeared would wait for somebody to close it
    else
        liveAll();
}

} // namespace vant::test
