#pragma once

#include "framework/VantCommandImpl.h"
#include "platform/ComObject.h"
#include "tests/support/Commands.h"

#include <functional>

namespace vant::test {

inline constexpr CLSID CLSID_Probe = {
    0x1C3E7A54, 0x0B1F, 0x4B0A, {0x9E, 0x11, 0x5A, 0x0D, 0x7C, 0x42, 0x66, 0x01}};

/// A command whose body is given by the test, and whose protected side is open.
class CProbeCommand : public CComObjectRootEx<CComMultiThreadModel>,
                      public CComCoClass<CProbeCommand, &CLSID_Probe>,
                      public IVantCommandImpl<CProbeCommand, &CLSID_Probe, 999> {
public:
    static constexpr PropertyRow properties[] = {
        {L"value", nullptr, true},
        {L"dsSource", L"source", false},
        {L"parameterID", nullptr, false},
    };

    std::function<void()> body = [] {};
    int executions = 0;

    using CVantCommandBase::ChooseTransition;
    using CVantCommandBase::ExpandParameterReferences;
    using CVantCommandBase::GetDataStoreText;
    using CVantCommandBase::GetDataStoreValue;
    using CVantCommandBase::GetLiteralOrReference;
    using CVantCommandBase::GetParameter;
    using CVantCommandBase::GetProperty;
    using CVantCommandBase::HasProperty;
    using CVantCommandBase::ReadParameterAsDouble;
    using CVantCommandBase::ReadParameterAsLong;
    using CVantCommandBase::ReadParameterText;
    using CVantCommandBase::ReadParameterValue;
    using CVantCommandBase::RunCommand;
    using CVantCommandBase::RunCommandFromThread;
    using CVantCommandBase::SetComponentProperty;
    using CVantCommandBase::SetDataStoreValue;
    using CVantCommandBase::SetParameter;
    using CVantCommandBase::ShowInstruction;
    using CVantCommandBase::TerminateCommand;
    using IVantCommandImpl::IsDeclaredProperty;
    using IVantCommandImpl::ValidateProperties;

    using CVantCommandBase::m_commandRunner;
    using CVantCommandBase::m_componentService;
    using CVantCommandBase::m_controller;
    using CVantCommandBase::m_dataStore;
    using CVantCommandBase::m_initialised;
    using CVantCommandBase::m_label;
    using CVantCommandBase::m_parameterService;
    using CVantCommandBase::m_presentationService;
    using CVantCommandBase::m_procedureController;
    using CVantCommandBase::m_properties;
    using CVantCommandBase::m_service3;
    using CVantCommandBase::m_service7;
    using CVantCommandBase::m_threadService;

protected:
    void ExecuteCommand() override {
        ++executions;
        body();
    }
};

/// A fixture with a host and a probe. The probe goes before the host does.
class WithProbe : public ::testing::Test {
protected:
    HRESULT Initialize() { return probe->Initialize(host.Context(), host.Controller()); }

    TestHost host;
    CComPtr<IVantCommand> command = CreateCommand<CProbeCommand>();
    CProbeCommand* probe = static_cast<CProbeCommand*>(command.Get());
};

} // namespace vant::test
