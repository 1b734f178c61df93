// Reading one parameter as a number, straight through the data service.

#include "tests/support/Commands.h"
#include "tests/unit/framework/ProbeCommand.h"

#include <functional>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class ParameterReading : public ::testing::Test {
protected:
    ParameterReading() {
        Add(L"RPM", CComVariant(LONG{800}));
        Add(L"load", CComVariant(2.5));
    }
    void Add(const std::wstring& id, CComVariant value) { host.parameters[id].value = std::move(value); }
    LONG ReadLong(std::wstring_view id) { return reader->ReadParameterAsLong(CComBSTR(id)); }
    double ReadDouble(std::wstring_view id) { return reader->ReadParameterAsDouble(CComBSTR(id)); }
    /// Every step that reading fails at makes `read` throw.
    template <class Read>
    void ExpectThrowsAtEveryStep(Read read) {
        for (const char* step : {"GetParameter", "QueryInterface", "get_Value"}) {
            host.fail[step] = E_NOTIMPL;
            EXPECT_THROW(read(), CComErrorHandlerException) << step;
            host.fail.clear();
        }
    }

    TestHost host;
    CComPtr<IVantCommand> command = CreateCommand<CProbeCommand>(host, {{L"parameterID", L"load"}});
    CProbeCommand* reader = static_cast<CProbeCommand*>(command.Get());
};

TEST_F(ParameterReading, AsLong_ReadsTheParameterItIsGiven) {
    EXPECT_EQ(800, ReadLong(L"RPM"));
    EXPECT_EQ((Calls{"GetParameter(RPM, 1)", "QueryInterface(IParameterOld)", "get_Value()"}), host.calls);
}

TEST_F(ParameterReading, AsLong_ConvertsToAnInteger) {
    Add(L"text", CComVariant(CComBSTR(L"12")));
    Add(L"half", CComVariant(3.5));
    EXPECT_EQ(12, ReadLong(L"text"));
    EXPECT_EQ(2, ReadLong(L"load"));
    EXPECT_EQ(4, ReadLong(L"half"));
}

TEST_F(ParameterReading, AsDouble_ReadsThePropertyWhateverItIsGiven) {
    EXPECT_EQ(2.5, ReadDouble(L"RPM"));
    EXPECT_EQ((Calls{"GetParameter(load, 1)", "QueryInterface(IParameterOld)", "get_Value()"}), host.calls);
}

TEST_F(ParameterReading, AsDouble_WithoutTheProperty_ReadsTheEmptyIdentifier) {
    Add(L"", CComVariant(1.5));
    command = CreateCommand<CProbeCommand>(host, {});
    reader = static_cast<CProbeCommand*>(command.Get());
    EXPECT_EQ(1.5, ReadDouble(L"RPM"));
}

TEST_F(ParameterReading, AsDouble_ConvertsToADouble) {
    Add(L"load", CComVariant(CComBSTR(L"-0.25")));
    EXPECT_EQ(-0.25, ReadDouble(L""));
    Add(L"load", CComVariant(LONG{7}));
    EXPECT_EQ(7.0, ReadDouble(L""));
}

TEST_F(ParameterReading, ValueThatIsNotANumber_FailsTheConversion) {
    Add(L"load", CComVariant(CComBSTR(L"full")));
    for (const auto& read : {std::function<void()>([this] { ReadLong(L"load"); }),
                             std::function<void()>([this] { ReadDouble(L"load"); })}) {
        try {
            read();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const CComErrorHandlerException& exception) {
            EXPECT_EQ(DISP_E_TYPEMISMATCH, exception.Code());
        }
    }
}

TEST_F(ParameterReading, FailedStep_Throws) {
    ExpectThrowsAtEveryStep([this] { ReadLong(L"RPM"); });
    ExpectThrowsAtEveryStep([this] { ReadDouble(L"RPM"); });
    EXPECT_THROW(ReadLong(L"unknown"), CComErrorHandlerException);
}

TEST_F(ParameterReading, ParameterWithoutItsInterface_IsAFailedRead) {
    host.parameters[L"load"].offersInterface = false;
    EXPECT_THROW(ReadLong(L"load"), CComErrorHandlerException);
    EXPECT_THROW(ReadDouble(L"load"), CComErrorHandlerException);
}

TEST_F(ParameterReading, NeverInitialised_Throws) {
    const auto fresh = CreateCommand<CProbeCommand>();
    auto* const unconnected = static_cast<CProbeCommand*>(fresh.Get());
    EXPECT_THROW(unconnected->ReadParameterAsLong(CComBSTR(L"RPM")), CComErrorHandlerException);
    EXPECT_THROW(unconnected->ReadParameterAsDouble(CComBSTR(L"RPM")), CComErrorHandlerException);
}

TEST_F(ParameterReading, String_IsTakenOver_AlsoWhenTheReadThrows) {
    for (const wchar_t* id : {L"RPM", L"unknown"}) {
        CComBSTR text(id);
        try {
            reader->ReadParameterAsLong(std::move(text));
        } catch (const CComErrorHandlerException&) {
            EXPECT_EQ(std::wstring_view(L"unknown"), id);
        }
        EXPECT_EQ(nullptr, text.Get());
    }
}

} // namespace

} // namespace vant::test
