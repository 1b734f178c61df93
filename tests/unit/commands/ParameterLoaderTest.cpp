#include "commands/ParameterLoader.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class ParameterLoader : public ::testing::Test {
protected:
    ParameterLoader() {
        host.parameters[L"199008"].value = CComVariant(LONG{5});
        host.parameters[L"199008"].text = L"five";
        host.dataStore[L"target"] = CComVariant(CComBSTR(L"before"));
    }

    /// Loads parameter `id` into the entry "target" and returns that entry.
    std::string Load(std::wstring_view id = L"199008") {
        const auto command =
            CreateCommand<CParameterLoader>(host, {{L"parameterID", id}, {L"dsLocation", L"target"}});
        host.ThrowAtCall(throwAt);
        EXPECT_EQ(S_OK, command->Execute());
        host.ThrowAtCall(0);
        return Show(host.dataStore[L"target"].Get());
    }

    TestHost host;
    std::size_t throwAt = 0; ///< the call of the execution that throws, counted from 1
};

TEST_F(ParameterLoader, Value_IsStoredAsText) {
    EXPECT_EQ("\"5\"", Load());
    EXPECT_EQ((Calls{"GetParameter(199008, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                     "SetValue(target, \"5\")"}),
              host.calls);
}

TEST_F(ParameterLoader, EveryType_IsConvertedToText) {
    host.parameters[L"double"].value = CComVariant(2.5);
    host.parameters[L"text"].value = CComVariant(CComBSTR(L"on"));
    host.parameters[L"empty"].value = CComVariant();
    EXPECT_EQ("\"2.5\"", Load(L"double"));
    EXPECT_EQ("\"on\"", Load(L"text"));
    EXPECT_EQ("\"\"", Load(L"empty"));
}

TEST_F(ParameterLoader, UnknownParameter_LeavesTheEntryUnchanged) {
    EXPECT_EQ("\"before\"", Load(L"unknown"));
    EXPECT_EQ((Calls{"GetParameter(unknown, 1)"}), host.calls);
}

TEST_F(ParameterLoader, EveryFailure_EndsQuietly_AndLeavesTheEntryUnchanged) {
    for (const char* operation : {"GetParameter", "QueryInterface", "get_Value", "SetValue"}) {
        host.fail[operation] = E_NOTIMPL;
        EXPECT_EQ("\"before\"", Load()) << operation;
        host.fail.clear();
    }
}

TEST_F(ParameterLoader, ObjectWithoutTheParameterInterface_IsAFailedRead) {
    host.parameters[L"199008"].offersInterface = false;
    EXPECT_EQ("\"before\"", Load());
}

TEST_F(ParameterLoader, ValueThatIsNotAText_LeavesTheEntryUnchanged) {
    CComVariant value;
    VARIANT* const raw = &value;
    raw->vt = VT_UNKNOWN;
    raw->punkVal = nullptr;
    host.parameters[L"199008"].value = std::move(value);
    EXPECT_EQ("\"before\"", Load());
}

TEST_F(ParameterLoader, ThrowingHost_EndsQuietly) {
    for (throwAt = 1; throwAt <= 4; ++throwAt) {
        EXPECT_EQ("\"before\"", Load()) << throwAt;
        EXPECT_EQ(throwAt, host.calls.size());
    }
}

TEST_F(ParameterLoader, NeverInitialised_EndsQuietly) {
    const auto command = CreateCommand<CParameterLoader>({{L"parameterID", L"1"}, {L"dsLocation", L"a"}});
    EXPECT_EQ(S_OK, command->Execute());
}

TEST_F(ParameterLoader, MissingProperty_IsInvalid) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CParameterLoader>(host, {{L"parameterID", L"1"}})->Execute());
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CParameterLoader>(host, {{L"dsLocation", L"a"}})->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

} // namespace

} // namespace vant::test
