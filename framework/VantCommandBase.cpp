#include "framework/VantCommandBase.h"

#include "ecm/Conversion.h"
#include "ecm/HostPointers.h"
#include "framework/ReferenceExpansion.h"

#include <tuple>
#include <type_traits>

namespace vant {

HRESULT CVantCommandBase::Initialize(IVantContext* context, IVantController* controller) {
    if (m_initialised.load(std::memory_order_relaxed))
        return E_UNEXPECTED;
    if (!context)
        return E_POINTER;
    CCheckedResult result;
    try {
        RequestServices(*context, result);
        m_controller = controller;
        m_initialised.store(true, std::memory_order_release);
    } catch (...) {
        // Even if something other than a failed request was thrown, the code of the last request is returned.
    }
    return result;
}

void CVantCommandBase::RequestServices(IVantContext& context, CCheckedResult& result) {
    // A member that an earlier attempt filled keeps its service until its own request succeeds.
    const auto request = [&](auto& member, auto operation) {
        std::remove_cvref_t<decltype(member)> service;
        result = (context.*operation)(&service);
        member.Attach(service.Detach());
    };
    request(m_commandRunner, &IVantContext::get_CommandRunner);
    request(m_componentService, &IVantContext::get_ComponentService);
    request(m_service3, &IVantContext::get_Service3);
    request(m_dataStore, &IVantContext::get_DataStore);
    request(m_presentationService, &IVantContext::get_PresentationService);
    request(m_threadService, &IVantContext::get_ThreadService);
    request(m_service7, &IVantContext::get_Service7);
    request(m_procedureController, &IVantContext::get_ProcedureController);
    request(m_parameterService, &IVantContext::get_ParameterService);
}

HRESULT CVantCommandBase::ExecuteWith(PropertyTable table) noexcept {
    try {
        if (!ValidateProperties(table, m_properties))
            return E_UNEXPECTED;
        ExecuteCommand();
        return S_OK;
    } catch (...) {
        return E_FAIL;
    }
}

HRESULT CVantCommandBase::SetPropertyIn(PropertyTable table, BSTR name, BSTR value) noexcept {
    CCheckedResult result;
    try {
        if (!IsDeclaredProperty(table, TextOf(name)))
            result = E_INVALIDARG;
        if (!HasProperty(TextOf(name)))
            m_properties.emplace(CComBSTR::Copy(name), CComBSTR::Copy(value));
        return S_OK;
    } catch (...) {
        return result;
    }
}

HRESULT CVantCommandBase::IsValidFor(PropertyTable table, VARIANT_BOOL* isValid) const noexcept {
    if (!isValid)
        return E_POINTER;
    try {
        *isValid = ValidateProperties(table, m_properties) ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    } catch (...) {
        return E_FAIL;
    }
}

HRESULT CVantCommandBase::get_Label(BSTR* label) {
    if (!label)
        return E_POINTER;
    *label = nullptr;
    try {
        *label = CComBSTR(m_label).Detach();
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CVantCommandBase::put_Label(BSTR label) {
    try {
        m_label = CComBSTR::Copy(label);
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

bool CVantCommandBase::HasProperty(PropertyName name) const {
    return FindProperty(m_properties, name) != nullptr;
}

CComBSTR CVantCommandBase::GetProperty(PropertyName name) const {
    const CComBSTR* const value = FindProperty(m_properties, name);
    return value ? *value : CComBSTR();
}

CComBSTR CVantCommandBase::GetLiteralOrReference(PropertyName literalName, PropertyName referenceName) const {
    if (HasProperty(literalName))
        return GetProperty(literalName);
    CComBSTR text;
    std::ignore = GetDataStoreText(GetProperty(referenceName), text);
    return text;
}

HRESULT CVantCommandBase::RunCommand(const CComBSTR& commandId) const {
    return m_commandRunner ? m_commandRunner->RunCommand(commandId.Get()) : E_POINTER;
}

HRESULT CVantCommandBase::RunCommandFromThread(const CComBSTR& commandId) const {
    return m_commandRunner ? m_commandRunner->RunCommandFromThread(commandId.Get()) : E_POINTER;
}

HRESULT CVantCommandBase::TerminateCommand(const CComBSTR& commandId) const {
    return m_controller ? m_controller->TerminateCommand(commandId.Get()) : E_POINTER;
}

HRESULT CVantCommandBase::GetDataStoreValue(const CComBSTR& entry, CComVariant& value) const {
    return m_dataStore ? m_dataStore->GetValue(entry.Get(), &value) : E_POINTER;
}

HRESULT CVantCommandBase::SetDataStoreValue(const CComBSTR& entry, const CComVariant& value) const {
    return m_dataStore ? m_dataStore->SetValue(entry.Get(), value.Get()) : E_POINTER;
}

HRESULT CVantCommandBase::GetParameter(const CComBSTR& id, LONG kind, CComPtr<IUnknown>& parameter) const {
    return m_parameterService ? m_parameterService->GetParameter(id.Get(), kind, &parameter) : E_POINTER;
}

HRESULT CVantCommandBase::SetParameter(const CComBSTR& id, const CComVariant& value) const {
    CComPtr<IUnknown> parameter;
    return m_parameterService ? m_parameterService->SetParameter(id.Get(), 1, value.Get(), &parameter)
                              : E_POINTER;
}

HRESULT CVantCommandBase::SetComponentProperty(const CComBSTR& componentId, const CComBSTR& name,
                                               const CComBSTR& value) const {
    return m_componentService
               ? m_componentService->SetComponentProperty(componentId.Get(), name.Get(), value.Get())
               : E_POINTER;
}

HRESULT CVantCommandBase::ShowInstruction(const CComBSTR& text) const {
    return m_presentationService ? m_presentationService->ShowInstruction(text.Get()) : E_POINTER;
}

HRESULT CVantCommandBase::ChooseTransition(PropertyName property) const {
    const CComBSTR* const transitionId = FindProperty(m_properties, property);
    return m_procedureController
               ? m_procedureController->SetTransition(transitionId ? transitionId->Get() : nullptr)
               : E_POINTER;
}

HRESULT CVantCommandBase::GetDataStoreText(const CComBSTR& entry, CComBSTR& text) const {
    CComVariant value;
    const HRESULT code = GetDataStoreValue(entry, value);
    text = CComBSTR::Copy(StringMember(value.Get()));
    return code;
}

CComBSTR CVantCommandBase::ReadParameterText(const CComBSTR& id) const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = GetParameter(id, 1, object);
    const TComParameterPtr<CCheckedResult> parameter(object.Get());
    CComBSTR text;
    result = parameter->get_Text(&text);
    return text;
}

CComVariant CVantCommandBase::ReadParameterValue(const CComBSTR& id) const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = GetParameter(id, 1, object);
    CComPtr<IParameterOld> parameter;
    std::ignore = object.QueryInterface(&parameter);
    CComVariant value;
    result = parameter ? parameter->get_Value(&value) : E_POINTER;
    return value;
}

LONG CVantCommandBase::ReadParameterAsLong(CComBSTR id) const {
    CCheckedResult result;
    CComVariant value = ReadParameterValue(id);
    result = value.ChangeType(VT_I4);
    return value.Get().lVal;
}

LONG CVantCommandBase::ReadParameterAsLongOrZero(const CComBSTR& id) const {
    return ToLongOrZero(ReadParameterValue(id), LOCALE_USER_DEFAULT);
}

double CVantCommandBase::ReadParameterAsDouble(CComBSTR /*unused*/) const {
    CCheckedResult result;
    CComVariant value = ReadParameterValue(GetProperty(L"parameterID"));
    result = value.ChangeType(VT_R8);
    return value.Get().dblVal;
}

CComPtr<IConditionSet> CVantCommandBase::ReadConditionSet(const CComBSTR& entry) const {
    CCheckedResult result;
    CComVariant value;
    result = GetDataStoreValue(entry, value);
    const CComPtr<IUnknown> object(UnknownMember(value.Get()));
    CComPtr<IConditionSet> conditions;
    result = object.QueryInterface(&conditions);
    result = conditions ? S_OK : E_NOINTERFACE; // success without an object
    return conditions;
}

CComVariant CVantCommandBase::ReadFailureMessage(IConditionSet& conditions) const {
    CCheckedResult result;
    CComBSTR key;
    result = conditions.GetFailureKey(&key);
    CComVariant message;
    result = GetDataStoreValue(key, message);
    return message;
}

CComBSTR CVantCommandBase::ExpandParameterReferences(const CComBSTR& text) const {
    return CComBSTR(ExpandReferences(
        text.Text(), L"$p(", [this](std::wstring_view name) { return ReadParameterText(CComBSTR(name)); }));
}

} // namespace vant
