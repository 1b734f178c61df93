#include "commands/DataStoreWriter.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class DataStoreWriter : public ::testing::Test {
protected:
    HRESULT Write(std::wstring_view entry, std::wstring_view value) {
        return CreateCommand<CDataStoreWriter>(host, {{L"dsLocation", entry}, {L"value", value}})->Execute();
    }

    TestHost host;
};

TEST_F(DataStoreWriter, Value_IsStoredUnderItsName) {
    EXPECT_EQ(S_OK, Write(L"speed", L"fast"));
    EXPECT_EQ((Calls{"SetValue(speed, \"fast\")"}), host.calls);
}

TEST_F(DataStoreWriter, Value_IsStoredAsAStringWhateverItLooksLike) {
    for (const std::wstring_view value : {L"12.5", L"7", L"true", L"", L" 1 ", L"&H10"}) {
        EXPECT_EQ(S_OK, Write(L"entry", value));
        EXPECT_EQ(VT_BSTR, host.dataStore[L"entry"].Get().vt);
        EXPECT_EQ(value, TextOf(StringMember(host.dataStore[L"entry"].Get())));
    }
}

TEST_F(DataStoreWriter, ValueWithReference_IsStoredAsItStands) {
    EXPECT_EQ(S_OK, Write(L"entry", L"$p(RPM) $d(x)"));
    EXPECT_EQ((Calls{"SetValue(entry, \"$p(RPM) $d(x)\")"}), host.calls);
}

TEST_F(DataStoreWriter, EmbeddedNulls_AreStored) {
    EXPECT_EQ(S_OK, Write(std::wstring_view(L"a\0b", 3), std::wstring_view(L"\0x\0", 3)));
    EXPECT_EQ((Calls{"SetValue(a\\u{0}b, \"\\u{0}x\\u{0}\")"}), host.calls);
}

TEST_F(DataStoreWriter, NullValue_IsStoredAsANullString) {
    const auto command = CreateCommand<CDataStoreWriter>(host, {{L"dsLocation", L"entry"}});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"value").Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    ASSERT_EQ(VT_BSTR, host.dataStore[L"entry"].Get().vt);
    EXPECT_EQ(L"", TextOf(StringMember(host.dataStore[L"entry"].Get())));
}

TEST_F(DataStoreWriter, EmptyName_IsPassedToTheStore) {
    EXPECT_EQ(S_OK, Write(L"", L"1"));
    EXPECT_EQ((Calls{"SetValue(, \"1\")"}), host.calls);
}

TEST_F(DataStoreWriter, Entry_IsReplaced) {
    host.dataStore[L"entry"] = CComVariant(LONG{5});
    EXPECT_EQ(S_OK, Write(L"entry", L"new"));
    EXPECT_EQ("\"new\"", Show(host.dataStore[L"entry"].Get()));
}

TEST_F(DataStoreWriter, FailingWrite_MakesExecuteFail) {
    host.fail["SetValue"] = E_OUTOFMEMORY;
    EXPECT_EQ(E_FAIL, Write(L"entry", L"1"));
    EXPECT_TRUE(host.dataStore.empty());
}

TEST_F(DataStoreWriter, ThrowingStore_MakesExecuteFail) {
    const auto command = CreateCommand<CDataStoreWriter>(host, {{L"dsLocation", L"entry"}, {L"value", L"1"}});
    host.ThrowAtCall(1);
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(DataStoreWriter, SuccessCodeOfTheStore_IsNotPassedOn) {
    host.fail["SetValue"] = S_FALSE;
    EXPECT_EQ(S_OK, Write(L"entry", L"1"));
}

TEST_F(DataStoreWriter, MissingProperties_ReturnUnexpectedAndStoreNothing) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CDataStoreWriter>(host, {})->Execute());
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CDataStoreWriter>(host, {{L"value", L"1"}})->Execute());
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CDataStoreWriter>(host, {{L"dsLocation", L"entry"}})->Execute());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(DataStoreWriter, WithoutInitialize_ExecuteFails) {
    EXPECT_EQ(E_FAIL,
              CreateCommand<CDataStoreWriter>({{L"dsLocation", L"entry"}, {L"value", L"1"}})->Execute());
}

} // namespace

} // namespace vant::test
