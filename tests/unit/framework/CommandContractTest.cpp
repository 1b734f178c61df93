#include "platform/ComException.h"
#include "tests/unit/framework/ProbeCommand.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace vant::test {

namespace {

constexpr IID IID_SupportErrorInfo = {
    0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

class CommandContract : public WithProbe {
protected:
    HRESULT Set(std::wstring_view name, std::wstring_view value) {
        return SetProperty(*command.Get(), name, value);
    }
    bool IsValid() {
        VARIANT_BOOL isValid = 77;
        EXPECT_EQ(S_OK, command->get_IsValid(&isValid));
        EXPECT_TRUE(isValid == VARIANT_TRUE || isValid == VARIANT_FALSE);
        return isValid == VARIANT_TRUE;
    }
    std::wstring Label() {
        CComBSTR label;
        EXPECT_EQ(S_OK, command->get_Label(&label));
        return std::wstring(label.Text());
    }
};

// QueryInterface and life

TEST_F(CommandContract, UnknownAndCommand_AreReturnedAtTheObjectsStart) {
    for (const IID& iid : {IID_IUnknown, IID_IVantCommand}) {
        CComPtr<IUnknown> answered;
        ASSERT_EQ(S_OK, command->QueryInterface(iid, reinterpret_cast<void**>(&answered)));
        EXPECT_EQ(static_cast<void*>(static_cast<CComObject<CProbeCommand>*>(probe)),
                  static_cast<void*>(answered.Get()));
    }
}

TEST_F(CommandContract, OtherInterfaces_AreRefused) {
    for (const IID& iid : {IID_IDispatch, IID_SupportErrorInfo, IID_IVantPersistentCommand, IID_IClassFactory,
                           IID_IParameterOld, CLSID_Probe, IID{}}) {
        void* answered = this;
        EXPECT_EQ(E_NOINTERFACE, command->QueryInterface(iid, &answered));
        EXPECT_EQ(nullptr, answered);
    }
}

TEST_F(CommandContract, QueryInterfaceWithoutOutput_ReturnsPointer) {
    EXPECT_EQ(E_POINTER, command->QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, command->QueryInterface(IID_IDispatch, nullptr));
}

TEST_F(CommandContract, References_AreCountedFromQueryInterfaceOn) {
    EXPECT_EQ(2u, command->AddRef());
    void* answered = nullptr;
    ASSERT_EQ(S_OK, command->QueryInterface(IID_IVantCommand, &answered));
    EXPECT_EQ(2u, command->Release());
    EXPECT_EQ(1u, command->Release());
}

TEST_F(CommandContract, LiveObject_HoldsOneModuleLock) {
    const LONG before = ModuleLock::Count();
    auto other = CreateCommand<CProbeCommand>();
    EXPECT_EQ(before + 1, ModuleLock::Count());
    other.Release();
    EXPECT_EQ(before, ModuleLock::Count());
}

// Layout

TEST_F(CommandContract, Operations_StandInTheSlotsOfTheContract) {
    struct Table {
        void* unknown[3];
        HRESULT(STDMETHODCALLTYPE* initialize)(IVantCommand*, IVantContext*, IVantController*);
        HRESULT(STDMETHODCALLTYPE* execute)(IVantCommand*);
        HRESULT(STDMETHODCALLTYPE* setProperty)(IVantCommand*, BSTR, BSTR);
        HRESULT(STDMETHODCALLTYPE* isValid)(IVantCommand*, VARIANT_BOOL*);
        HRESULT(STDMETHODCALLTYPE* getLabel)(IVantCommand*, BSTR*);
        HRESULT(STDMETHODCALLTYPE* putLabel)(IVantCommand*, BSTR);
    };
    const Table& table = **reinterpret_cast<Table**>(command.Get());
    EXPECT_EQ(S_OK, table.initialize(command.Get(), host.Context(), nullptr));
    EXPECT_TRUE(probe->m_initialised);
    EXPECT_EQ(S_OK, table.setProperty(command.Get(), CComBSTR(L"value").Get(), CComBSTR(L"1").Get()));
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
    VARIANT_BOOL isValid = VARIANT_FALSE;
    EXPECT_EQ(S_OK, table.isValid(command.Get(), &isValid));
    EXPECT_EQ(VARIANT_TRUE, isValid);
    EXPECT_EQ(S_OK, table.execute(command.Get()));
    EXPECT_EQ(1, probe->executions);
    EXPECT_EQ(S_OK, table.putLabel(command.Get(), CComBSTR(L"label").Get()));
    CComBSTR label;
    EXPECT_EQ(S_OK, table.getLabel(command.Get(), &label));
    EXPECT_EQ(L"label", label.Text());
}

/// Differs from its base in the body alone.
class CProbeWithOtherBody : public CProbeCommand {
protected:
    void ExecuteCommand() override { body(); }
};

TEST_F(CommandContract, Body_StandsBehindTheDestructor) {
    // Compilers that follow the Itanium C++ ABI give the destructor, slot 9, two entries of the table.
    constexpr std::size_t bodyEntry = 9 + 2;
    const auto other = CreateCommand<CProbeWithOtherBody>();
    const auto* const entries = *reinterpret_cast<void* const**>(command.Get());
    const auto* const otherEntries = *reinterpret_cast<void* const**>(other.Get());
    for (std::size_t entry = 3; entry <= 8; ++entry)
        EXPECT_EQ(entries[entry], otherEntries[entry]) << "entry " << entry;
    EXPECT_NE(entries[bodyEntry], otherEntries[bodyEntry]);
}

TEST_F(CommandContract, Members_StandInTheOrderOfTheContract) {
    const std::vector<const void*> addresses = {
        command.Get(),
        &probe->m_label,
        std::addressof(probe->m_commandRunner),
        std::addressof(probe->m_componentService),
        std::addressof(probe->m_service3),
        std::addressof(probe->m_dataStore),
        std::addressof(probe->m_presentationService),
        std::addressof(probe->m_threadService),
        std::addressof(probe->m_service7),
        std::addressof(probe->m_procedureController),
        std::addressof(probe->m_parameterService),
        std::addressof(probe->m_controller),
        &probe->m_initialised,
        &probe->m_properties,
    };
    for (std::size_t i = 1; i < addresses.size(); ++i) {
        EXPECT_LT(addresses[i - 1], addresses[i]) << "member " << i;
        // One pointer each, from the function table to the flag.
        if (i <= 12) {
            EXPECT_EQ(sizeof(void*), static_cast<std::size_t>(static_cast<const char*>(addresses[i]) -
                                                              static_cast<const char*>(addresses[i - 1])))
                << "member " << i;
        }
    }
    EXPECT_EQ(1u, sizeof probe->m_initialised);
}

// SetProperty

TEST_F(CommandContract, DeclaredNames_AreAccepted) {
    EXPECT_EQ(S_OK, Set(L"value", L"1"));
    EXPECT_EQ(S_OK, Set(L"dsSource", L"entry"));
    EXPECT_EQ(S_OK, Set(L"source", L"2"));
    EXPECT_EQ(3u, probe->m_properties.size());
}

TEST_F(CommandContract, UndeclaredNames_AreRefusedAndNotKept) {
    for (const std::wstring_view name :
         {std::wstring_view(L"other"), std::wstring_view(L"Value"), std::wstring_view(L"VALUE"),
          std::wstring_view(L"valu"), std::wstring_view(L"values"), std::wstring_view(L""),
          std::wstring_view(L"value\0", 6)})
        EXPECT_EQ(E_INVALIDARG, Set(name, L"1")) << Show(name);
    EXPECT_TRUE(probe->m_properties.empty());
}

TEST_F(CommandContract, NullName_IsRefused) {
    EXPECT_EQ(E_INVALIDARG, command->SetProperty(nullptr, CComBSTR(L"1").Get()));
    EXPECT_EQ(E_INVALIDARG, command->SetProperty(nullptr, nullptr));
}

TEST_F(CommandContract, RepeatedName_SucceedsAndKeepsItsFirstValue) {
    EXPECT_EQ(S_OK, Set(L"value", L"1"));
    EXPECT_EQ(S_OK, Set(L"value", L"2"));
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
}

TEST_F(CommandContract, RepeatedNameAfterEmptyValue_KeepsTheEmptyValue) {
    EXPECT_EQ(S_OK, Set(L"value", L""));
    EXPECT_EQ(S_OK, Set(L"value", L"2"));
    EXPECT_EQ(L"", probe->GetProperty(L"value").Text());
}

TEST_F(CommandContract, NameAndValue_AreCopied) {
    CComBSTR name(L"value");
    CComBSTR value(L"1");
    ASSERT_EQ(S_OK, command->SetProperty(name.Get(), value.Get()));
    name.Get()[0] = L'X';
    value.Get()[0] = L'9';
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
    name = CComBSTR();
    value = CComBSTR();
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
}

TEST_F(CommandContract, ValueWithEmbeddedNulls_IsKeptWhole) {
    const std::wstring_view value(L"a\0b\0", 4);
    EXPECT_EQ(S_OK, Set(L"value", value));
    EXPECT_EQ(value, probe->GetProperty(L"value").Text());
}

TEST_F(CommandContract, NullValue_CountsAsGiven) {
    EXPECT_EQ(S_OK, command->SetProperty(CComBSTR(L"value").Get(), nullptr));
    EXPECT_TRUE(probe->HasProperty(L"value"));
    EXPECT_EQ(nullptr, probe->GetProperty(L"value").Get());
    EXPECT_TRUE(IsValid());
}

TEST_F(CommandContract, Properties_MayBeSetBeforeAndAfterInitialize) {
    EXPECT_EQ(S_OK, Set(L"value", L"1"));
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(S_OK, Set(L"source", L"2"));
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
    EXPECT_EQ(L"2", probe->GetProperty(L"source").Text());
}

// get_IsValid

TEST_F(CommandContract, IsValidWithoutOutput_ReturnsPointer) {
    EXPECT_EQ(E_POINTER, command->get_IsValid(nullptr));
}

TEST_F(CommandContract, IsValid_FollowsThePropertySet) {
    EXPECT_FALSE(IsValid());
    Set(L"value", L"");
    EXPECT_TRUE(IsValid());
    Set(L"source", L"1");
    EXPECT_TRUE(IsValid());
    Set(L"dsSource", L"entry");
    EXPECT_FALSE(IsValid());
}

TEST_F(CommandContract, ClassOperations_ConsultTheClassTable) {
    EXPECT_TRUE(probe->IsDeclaredProperty(L"source"));
    EXPECT_FALSE(probe->IsDeclaredProperty(L"Source"));
    EXPECT_FALSE(probe->ValidateProperties());
    Set(L"value", L"1");
    EXPECT_TRUE(probe->ValidateProperties());
}

// Execute

TEST_F(CommandContract, ExecuteWithRequiredPropertyMissing_RunsNothing) {
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(E_UNEXPECTED, command->Execute());
    EXPECT_EQ(0, probe->executions);
}

TEST_F(CommandContract, ExecuteWithContradictoryProperties_RunsNothing) {
    Set(L"value", L"1");
    Set(L"source", L"1");
    Set(L"dsSource", L"entry");
    EXPECT_EQ(E_UNEXPECTED, command->Execute());
    EXPECT_EQ(0, probe->executions);
}

TEST_F(CommandContract, ExecuteWithValidProperties_RunsTheBodyOnce) {
    Set(L"value", L"1");
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(1, probe->executions);
}

TEST_F(CommandContract, ExecuteWithoutInitialize_RunsTheBody) {
    Set(L"value", L"1");
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(1, probe->executions);
}

TEST_F(CommandContract, Execute_MayBeRepeatedAlsoAfterAFailure) {
    Set(L"value", L"1");
    probe->body = [] { throw std::runtime_error("fails"); };
    EXPECT_EQ(E_FAIL, command->Execute());
    probe->body = [] {};
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(2, probe->executions);
}

TEST_F(CommandContract, BodyThatThrowsAnything_MakesExecuteFail) {
    Set(L"value", L"1");
    const std::function<void()> bodies[] = {
        [] {
            CCheckedResult result;
            result = E_OUTOFMEMORY;
        },
        [] { throw CComException(E_OUTOFMEMORY); },
        [] { throw std::runtime_error("fails"); },
        [] { throw 42; },
    };
    for (const auto& body : bodies) {
        probe->body = body;
        EXPECT_EQ(E_FAIL, command->Execute());
    }
}

// Label

TEST_F(CommandContract, NewCommand_HasANullLabel) {
    wchar_t unset = 0;
    BSTR label = &unset; // never read nor freed
    EXPECT_EQ(S_OK, command->get_Label(&label));
    EXPECT_EQ(nullptr, label);
}

TEST_F(CommandContract, LabelWithoutOutput_ReturnsPointer) {
    EXPECT_EQ(E_POINTER, command->get_Label(nullptr));
}

TEST_F(CommandContract, Label_IsCopiedInAndOut) {
    CComBSTR given(L"step 1");
    EXPECT_EQ(S_OK, command->put_Label(given.Get()));
    given.Get()[0] = L'X';
    CComBSTR first;
    EXPECT_EQ(S_OK, command->get_Label(&first));
    EXPECT_EQ(L"step 1", first.Text());
    first.Get()[0] = L'Y';
    EXPECT_EQ(L"step 1", Label());
}

TEST_F(CommandContract, Label_IsReplaced) {
    command->put_Label(CComBSTR(L"first").Get());
    EXPECT_EQ(S_OK, command->put_Label(CComBSTR(L"second").Get()));
    EXPECT_EQ(L"second", Label());
}

TEST_F(CommandContract, LabelWithEmbeddedNulls_IsKeptWhole) {
    const std::wstring text(L"a\0b", 3);
    EXPECT_EQ(S_OK, command->put_Label(CComBSTR(text).Get()));
    EXPECT_EQ(text, Label());
}

TEST_F(CommandContract, LabelOfAnOddNumberOfBytes_IsKeptWhole) {
    CComBSTR bytes;
    bytes.Attach(SysAllocStringByteLen("abcde", 5));
    EXPECT_EQ(S_OK, command->put_Label(bytes.Get()));
    CComBSTR label;
    EXPECT_EQ(S_OK, command->get_Label(&label));
    ASSERT_EQ(5U, SysStringByteLen(label.Get()));
    EXPECT_EQ(0, std::memcmp("abcde", label.Get(), 5));
}

TEST_F(CommandContract, NullLabel_ReplacesTheOldOne) {
    command->put_Label(CComBSTR(L"first").Get());
    EXPECT_EQ(S_OK, command->put_Label(nullptr));
    CComBSTR label;
    EXPECT_EQ(S_OK, command->get_Label(&label));
    EXPECT_EQ(nullptr, label.Get());
}

TEST_F(CommandContract, EmptyLabel_StaysEmpty) {
    EXPECT_EQ(S_OK, command->put_Label(CComBSTR(L"").Get()));
    EXPECT_EQ(L"", Label());
}

} // namespace

} // namespace vant::test
