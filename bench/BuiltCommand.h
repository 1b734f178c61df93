#pragma once

#include "bench/Floor.h"
#include "bench/MinimalHost.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "platform/ComPtr.h"
#include "platform/DynamicLibrary.h"
#include "platform/Process.h"

#include <stdexcept>
#include <vector>

namespace vant::bench {

inline void Require(HRESULT code) {
    if (FAILED(code))
        throw std::runtime_error("a command failed during the benchmark");
}

inline IClassFactory& Factory(const CLSID& classId) {
    static const DynamicLibrary module(ProgramFolder() / LibraryFileName("VantCommands"));
    static const auto getClassObject =
        module.Find<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject");
    IClassFactory* factory = nullptr;
    Require(getClassObject(classId, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    return *factory; // the module keeps its class objects for as long as it is loaded
}

/// Creates, initialises and configures a command of `host`. The names and values are the caller's, as a
/// host's would be.
inline CComPtr<IVantCommand> Prepare(IClassFactory& factory, MinimalHost& host,
                                     const std::vector<CComBSTR>& names,
                                     const std::vector<CComBSTR>& values) {
    CComPtr<IVantCommand> command;
    Require(factory.CreateInstance(nullptr, IID_IVantCommand, reinterpret_cast<void**>(&command)));
    Require(command->Initialize(&host, &host));
    for (std::size_t i = 0; i < names.size(); ++i)
        Require(command->SetProperty(names[i].Get(), values[i].Get()));
    return command;
}

struct Strings {
    explicit Strings(const Properties& properties) {
        for (const auto& [name, value] : properties) {
            names.emplace_back(name);
            values.emplace_back(value);
        }
    }
    std::vector<CComBSTR> names;
    std::vector<CComBSTR> values;
};

} // namespace vant::bench
