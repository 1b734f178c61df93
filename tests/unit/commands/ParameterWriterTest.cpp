#include "commands/ParameterWriter.h"

#include "platform/ComException.h"
#include "tests/support/Commands.h"
#include "tests/support/StoreOfNoValue.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// A ParameterWriter whose body can be run by itself.
class OpenWriter : public CParameterWriter {
public:
    using CParameterWriter::ExecuteCommand;
    using CParameterWriter::m_dataStore;
};

class ParameterWriter : public ::testing::Test {
protected:
    ParameterWriter() { host.parameters[L"199008"].value = CComVariant(CComBSTR(L"old")); }

    HRESULT Write(Properties properties) {
        return CreateCommand<CParameterWriter>(host, properties)->Execute();
    }
    /// The text of the runtime error that the body throws; "" if it throws nothing.
    static std::string ErrorOf(IVantCommand& command) {
        try {
            static_cast<CComObject<OpenWriter>&>(command).ExecuteCommand();
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    TestHost host;
};

// Literals and references

TEST_F(ParameterWriter, Literals_WriteAString) {
    EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"value", L"5"}}));
    EXPECT_EQ((Calls{"SetParameter(199008, 1, \"5\")"}), host.calls);
}

TEST_F(ParameterWriter, ParameterIdByReference_IsTheEntrysText) {
    host.dataStore[L"which"] = CComVariant(CComBSTR(L"199008"));
    EXPECT_EQ(S_OK, Write({{L"dsParameterID", L"which"}, {L"value", L"5"}}));
    EXPECT_EQ((Calls{"GetValue(which)", "SetParameter(199008, 1, \"5\")"}), host.calls);
}

TEST_F(ParameterWriter, ValueByReference_KeepsTheEntrysType) {
    for (const auto& [value, shown] :
         {std::pair(CComVariant(LONG{5}), "5"), std::pair(CComVariant(2.5), "2.5"),
          std::pair(CComVariant(CComBSTR(L"5")), "\"5\""), std::pair(CComVariant(), "empty")}) {
        host.dataStore.insert_or_assign(L"what", value);
        EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"dsValue", L"what"}}));
        EXPECT_EQ((Calls{"GetValue(what)", std::string("SetParameter(199008, 1, ") + shown + ")"}),
                  host.calls);
    }
}

TEST_F(ParameterWriter, BothByReference_ReadsTheIdFirst) {
    host.dataStore[L"which"] = CComVariant(CComBSTR(L"199008"));
    host.dataStore[L"what"] = CComVariant(LONG{7});
    EXPECT_EQ(S_OK, Write({{L"dsValue", L"what"}, {L"dsParameterID", L"which"}}));
    EXPECT_EQ((Calls{"GetValue(which)", "GetValue(what)", "SetParameter(199008, 1, 7)"}), host.calls);
}

TEST_F(ParameterWriter, FailedReadOfTheParameterId_IsNotChecked_AndWritesAnEmptyId) {
    host.parameters[L""];
    EXPECT_EQ(S_OK, Write({{L"dsParameterID", L"missing"}, {L"value", L"5"}}));
    EXPECT_EQ((Calls{"GetValue(missing)", "SetParameter(null, 1, \"5\")"}), host.calls);
}

TEST_F(ParameterWriter, ParameterIdEntryThatHoldsNoString_IsAnEmptyId) {
    host.parameters[L""];
    host.dataStore[L"which"] = CComVariant(LONG{199008});
    EXPECT_EQ(S_OK, Write({{L"dsParameterID", L"which"}, {L"value", L"5"}}));
    EXPECT_EQ((Calls{"GetValue(which)", "SetParameter(null, 1, \"5\")"}), host.calls);
}

TEST_F(ParameterWriter, FailedReadOfTheValue_WritesTheEmptyVariant) {
    EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"dsValue", L"missing"}}));
    EXPECT_EQ((Calls{"GetValue(missing)", "SetParameter(199008, 1, empty)"}), host.calls);
}

TEST_F(ParameterWriter, WrittenObject_IsNotAskedForAnything) {
    host.parameters[L"199008"].offersInterface = false;
    EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"value", L"5"}}));
}

TEST_F(ParameterWriter, NoWriteIsGuarded) {
    host.parameters[L"11"].value = CComVariant(CComBSTR(L"low"));
    host.parameters[L"14"].value = CComVariant(CComBSTR(L"high"));
    EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"value", L"5"}}));
    EXPECT_EQ(1u, host.calls.size());
}

// Errors

TEST_F(ParameterWriter, NoDataService_IsAnErrorBeforeAnyPropertyIsRead) {
    // The ninth and last request fails, so the command has every service but this one.
    host.fail["get_ParameterService"] = E_FAIL;
    const auto command = CreateCommand<OpenWriter>({{L"dsParameterID", L"which"}, {L"dsValue", L"what"}});
    ASSERT_EQ(E_FAIL, command->Initialize(host.Context(), host.Controller()));
    host.ForgetCalls();
    EXPECT_EQ("Data Service not initialized", ErrorOf(*command.Get()));
    EXPECT_EQ(E_FAIL, command->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(ParameterWriter, NeverInitialised_IsTheSameError) {
    const auto command = CreateCommand<OpenWriter>({{L"parameterID", L"199008"}, {L"value", L"5"}});
    EXPECT_EQ("Data Service not initialized", ErrorOf(*command.Get()));
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(ParameterWriter, FailedWrite_IsAnErrorThatSpeaksOfReading) {
    const auto command = CreateCommand<OpenWriter>(host, {{L"parameterID", L"unknown"}, {L"value", L"5"}});
    EXPECT_EQ("Failure reading from data service", ErrorOf(*command.Get()));
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(ParameterWriter, AnyFailingCodeOfTheWrite_IsThatError) {
    host.fail["SetParameter"] = E_NOTIMPL;
    const auto command = CreateCommand<OpenWriter>(host, {{L"parameterID", L"199008"}, {L"value", L"5"}});
    EXPECT_EQ("Failure reading from data service", ErrorOf(*command.Get()));
    host.fail["SetParameter"] = S_FALSE;
    EXPECT_EQ("", ErrorOf(*command.Get()));
}

/// A writer whose data store returns values that cannot be copied.
CComPtr<IVantCommand> CreateWriterOfNoValue(TestHost& host, Properties properties) {
    auto command = CreateCommand<OpenWriter>(host, properties);
    static_cast<CComObject<OpenWriter>*>(command.Get())->m_dataStore = new StoreOfNoValue(host);
    return command;
}

TEST_F(ParameterWriter, ValueThatCannotBeCopied_ThrowsThePlatformsCodeAndWritesNothing) {
    const auto command = CreateWriterOfNoValue(host, {{L"parameterID", L"199008"}, {L"dsValue", L"what"}});
    try {
        static_cast<CComObject<OpenWriter>&>(*command.Get()).ExecuteCommand();
        FAIL() << "nothing was thrown";
    } catch (const CComException& exception) {
        EXPECT_EQ(DISP_E_BADVARTYPE, exception.Code());
    }
    EXPECT_EQ(E_FAIL, command->Execute());
    EXPECT_EQ((Calls{"GetValue(what)", "GetValue(what)"}), host.calls);
}

TEST_F(ParameterWriter, ParameterIdThatCannotBeCleared_IsEmpty) {
    host.parameters[L""].value = CComVariant(LONG{0});
    const auto command = CreateWriterOfNoValue(host, {{L"dsParameterID", L"which"}, {L"value", L"5"}});
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"GetValue(which)", "SetParameter(null, 1, \"5\")"}), host.calls);
}

// Validity

TEST_F(ParameterWriter, EachPair_TakesExactlyOne) {
    EXPECT_EQ(E_UNEXPECTED, Write({{L"value", L"5"}}));
    EXPECT_EQ(E_UNEXPECTED, Write({{L"parameterID", L"199008"}}));
    EXPECT_EQ(E_UNEXPECTED, Write({{L"parameterID", L"1"}, {L"dsParameterID", L"1"}, {L"value", L"5"}}));
    EXPECT_EQ(E_UNEXPECTED, Write({{L"parameterID", L"1"}, {L"dsValue", L"1"}, {L"value", L"5"}}));
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(ParameterWriter, EmptyValue_CountsAsGiven) {
    EXPECT_EQ(S_OK, Write({{L"parameterID", L"199008"}, {L"value", L""}}));
    EXPECT_EQ((Calls{"SetParameter(199008, 1, \"\")"}), host.calls);
}

} // namespace

} // namespace vant::test
