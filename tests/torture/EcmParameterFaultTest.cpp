// Every call that ECMParameter2 makes on its host fails in turn, on both read paths.

#include "tests/torture/EcmParameterUse.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

constexpr LONG directKind = 4;
constexpr LONG dataServiceKind = 0;
constexpr HRESULT failure = static_cast<HRESULT>(0x80041234);

const Calls opening = {"GetConnection()", "get_ConnectionIdentifier()", "OpenECM(1)",
                       "QueryInterface(IECMSession)", "Register()"};
const Calls directRead = {"ReadParameter(190, 1)", "get_ItemValue()"};
const Calls closing = {"CloseECM(7)"};
const Calls dataServiceRead = {"GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Value()"};

constexpr Reading direct{S_OK, 750};
constexpr Reading throughDataService{S_OK, 800};
constexpr Reading failedRead{E_FAIL, untouched};
constexpr Reading thrown{failure, untouched};

/// A call that fails, with all that is then to come.
struct FailedStep {
    Calls before; ///< the calls up to it, itself included
    std::vector<Calls> then;
    Reading reading;
};

Calls Joined(std::vector<Calls> parts) {
    Calls all;
    for (const Calls& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Calls First(const Calls& calls, std::size_t count) {
    return {calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(count)};
}

/// What the failure of call `number` of the construction, counted from 0, leads to.
FailedStep InConstruction(std::size_t number, LONG kind) {
    const Calls connection = First(opening, 2);
    const Calls before = First(construction, number + 1);
    switch (number) {
    case 0: // the services themselves
    case 4: // the connection
    case 5: // its identifier
        return {before, {}, thrown};
    case 1: // without a session manager, nothing is known of the protocol and nothing can be opened
        return {before, {connection}, failedRead};
    case 2: // without a directory, nothing can be opened
        if (kind == directKind)
            return {before, {{construction.begin() + 3, construction.end()}, connection}, failedRead};
        return {
            before, {{construction.begin() + 3, construction.end()}, dataServiceRead}, throughDataService};
    default: // the protocol is not known
        return {before, {opening, directRead, closing}, direct};
    }
}

/// What the failure of call `number` of all that follow the construction leads to.
FailedStep OnDirectPath(std::size_t number) {
    const Calls before = Joined({construction, First(Joined({opening, directRead, closing}), number + 1)});
    if (number < 2)
        return {before, {}, thrown};
    if (number + 1 < opening.size())
        return {before, {}, failedRead};
    if (number < opening.size()) // the session is used although Register failed, and not closed
        return {before, {directRead}, direct};
    if (number + 1 < opening.size() + directRead.size())
        return {before, {closing}, failedRead};
    if (number < opening.size() + directRead.size()) // a value that cannot be read counts as 0
        return {before, {closing}, {S_OK, 0}};
    return {before, {}, direct};
}

FailedStep OnDataServicePath(std::size_t number) {
    return {Joined({construction, First(dataServiceRead, number + 1)}), {}, failedRead};
}

FailedStep Expected(std::size_t number, LONG kind) {
    if (number < construction.size())
        return InConstruction(number, kind);
    const std::size_t later = number - construction.size();
    return kind == directKind ? OnDirectPath(later) : OnDataServicePath(later);
}

class EcmParameterFault : public ::testing::TestWithParam<LONG> {
protected:
    static bool IsDirect() { return GetParam() == directKind; }
    static Calls AllCalls() {
        return Joined(IsDirect() ? std::vector<Calls>{construction, opening, directRead, closing}
                                 : std::vector<Calls>{construction, dataServiceRead});
    }
};

INSTANTIATE_TEST_SUITE_P(Torture, EcmParameterFault, ::testing::Values(directKind, dataServiceKind),
                         [](const auto& instance) {
                             return instance.param == directKind ? "Direct" : "ThroughDataService";
                         });

TEST_P(EcmParameterFault, Read_NothingFailing_ReadsOnItsPath) {
    EngineForOneUse engine(GetParam());
    FailedCall fault(failure);
    EXPECT_EQ(ReadOnce(engine, fault, 0), IsDirect() ? direct : throughDataService);
    EXPECT_EQ(engine.host.calls, AllCalls());
}

TEST_P(EcmParameterFault, Read_EachCallFailing_HasTheDocumentedOutcomeAndLeavesNothing) {
    for (std::size_t number = 0; number < AllCalls().size(); ++number) {
        SCOPED_TRACE(AllCalls()[number]);
        EngineForOneUse engine(GetParam());
        FailedCall fault(failure);
        const FailedStep expected = Expected(number, GetParam());
        EXPECT_EQ(ReadOnce(engine, fault, number + 1), expected.reading);
        EXPECT_EQ(engine.host.calls, Joined({expected.before, Joined(expected.then)}));
    }
}

TEST_P(EcmParameterFault, Read_EachCallThrowing_LeavesTheConstructionOrFailsTheRead) {
    const std::size_t constructed = construction.size() + (IsDirect() ? opening.size() : 0);
    const std::size_t read = constructed + (IsDirect() ? directRead : dataServiceRead).size();
    for (std::size_t number = 0; number < AllCalls().size(); ++number) {
        SCOPED_TRACE(AllCalls()[number]);
        EngineForOneUse engine(GetParam());
        ThrowingCall fault;
        const Reading reading = ReadOnce(engine, fault, number + 1);
        if (number < constructed)
            EXPECT_EQ(reading, (Reading{E_UNEXPECTED, untouched}));
        else if (number < read)
            EXPECT_EQ(reading, failedRead);
        else
            EXPECT_EQ(reading, direct) << "the closing alone is left";
        const bool opened = IsDirect() && number >= constructed;
        EXPECT_EQ(engine.host.calls,
                  Joined({First(AllCalls(), number + 1), opened && number < read ? closing : Calls{}}));
    }
}

TEST_P(EcmParameterFault, GuardedWrite_EachCallFailingOrThrowing_EndsItUnlessTheCallIsIgnored) {
    const Calls write = {"GetParameter(11, 1)",
                         "QueryInterface(IParameterOld)",
                         "get_Value()",
                         "GetParameter(14, 1)",
                         "QueryInterface(IParameterOld)",
                         "get_Value()",
                         "SetParameter(11, 1, \"high\")",
                         "QueryInterface(IParameterOld)",
                         "SetParameter(190, 1, 5)",
                         "QueryInterface(IParameterOld)",
                         "GetParameter(14, 1)",
                         "QueryInterface(IParameterOld)",
                         "get_Value()",
                         "SetParameter(11, 1, \"low\")",
                         "QueryInterface(IParameterOld)"};
    const auto isIgnored = [&write](std::size_t number) {
        return number > 0 && write[number - 1].starts_with("SetParameter(");
    };
    const Calls end = IsDirect() ? closing : Calls{};
    for (std::size_t number = 0; number < write.size(); ++number) {
        SCOPED_TRACE(::testing::Message() << number << ' ' << write[number]);
        {
            EngineForOneUse engine(GetParam());
            FailedCall fault(failure);
            EXPECT_EQ(WriteOnce(engine, fault, number + 1), isIgnored(number) ? S_OK : failure);
            EXPECT_EQ(engine.host.calls, Joined({isIgnored(number) ? write : First(write, number + 1), end}));
        }
        EngineForOneUse engine(GetParam());
        ThrowingCall fault;
        EXPECT_EQ(WriteOnce(engine, fault, number + 1), E_UNEXPECTED);
        EXPECT_EQ(engine.host.calls, Joined({First(write, number + 1), end}));
    }
}

} // namespace

} // namespace vant::test
