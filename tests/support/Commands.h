#pragma once

// Creating and filling commands in tests. All but CreateCommand work on any command, also on one of the
// loaded module.

#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "platform/ComObject.h"
#include "platform/ComPtr.h"
#include "tests/support/TestHost.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace vant::test {

using Properties = std::initializer_list<std::pair<std::wstring_view, std::wstring_view>>;

/// Sets one property from texts, which may hold embedded nulls.
inline HRESULT SetProperty(IVantCommand& command, std::wstring_view name, std::wstring_view value) {
    return command.SetProperty(CComBSTR(name).Get(), CComBSTR(value).Get());
}

/// Sets properties, each of which must be accepted.
inline void SetProperties(IVantCommand& command, Properties properties) {
    for (const auto& [name, value] : properties)
        EXPECT_EQ(S_OK, SetProperty(command, name, value)) << Show(name);
}

/// A new object of a command class that is linked into the test.
template <class Class>
CComPtr<IVantCommand> CreateCommand() {
    CComObject<Class>* object = nullptr;
    if (FAILED(CComObject<Class>::CreateInstance(&object)))
        throw CComException(E_OUTOFMEMORY);
    return CComPtr<IVantCommand>(object);
}

/// The same with properties set, but not initialised.
template <class Class>
CComPtr<IVantCommand> CreateCommand(Properties properties) {
    auto command = CreateCommand<Class>();
    SetProperties(*command.Get(), properties);
    return command;
}

/// The same, initialised with `host`, whose calls up to here are forgotten.
template <class Class>
CComPtr<IVantCommand> CreateCommand(TestHost& host, Properties properties) {
    auto command = CreateCommand<Class>(properties);
    EXPECT_EQ(S_OK, command->Initialize(host.Context(), host.Controller()));
    host.ForgetCalls();
    return command;
}

} // namespace vant::test
