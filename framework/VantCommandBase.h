#pragma once

#include "ecm/ResultPolicy.h"
#include "framework/PropertyTable.h"
#include "framework/interfaces/ConditionSet.h"
#include "framework/interfaces/HostServices.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "platform/ComPtr.h"
#include "platform/Variant.h"

#include <atomic>
#include <string_view>

namespace vant {

/// Everything of the command contract that is the same for all classes, compiled once. Command classes derive
/// from IVantCommandImpl, which adds their property table.
class CVantCommandBase : public IVantCommand {
public:
    HRESULT STDMETHODCALLTYPE Initialize(IVantContext* context, IVantController* controller) final;
    HRESULT STDMETHODCALLTYPE get_Label(BSTR* label) final;
    HRESULT STDMETHODCALLTYPE put_Label(BSTR label) final;

protected:
    CVantCommandBase() = default;
    CVantCommandBase(const CVantCommandBase&) = delete;
    CVantCommandBase& operator=(const CVantCommandBase&) = delete;
    virtual ~CVantCommandBase() = default;

    /// The command's body. Runs on the thread that called Execute, with a valid property set. If it throws,
    /// Execute returns E_FAIL.
    virtual void ExecuteCommand() = 0;

    // The operations that consult a class's property table; IVantCommandImpl supplies the table.
    HRESULT ExecuteWith(PropertyTable table) noexcept;
    HRESULT SetPropertyIn(PropertyTable table, BSTR name, BSTR value) noexcept;
    HRESULT IsValidFor(PropertyTable table, VARIANT_BOOL* isValid) const noexcept;

    bool HasProperty(PropertyName name) const;
    /// A copy of the property's value; null if it was not set.
    CComBSTR GetProperty(PropertyName name) const;
    /// The value of `literalName` if it was set, else the text of the data-store entry that `referenceName`
    /// names. The read is not checked: an entry that is missing or does not hold a string counts as empty.
    CComBSTR GetLiteralOrReference(PropertyName literalName, PropertyName referenceName) const;

    // Calls on the host. Each returns the host's HRESULT, or E_POINTER if the command was never initialised
    // and has no such service. A call is checked if its result is assigned to a CCheckedResult, and
    // deliberately not checked if it is assigned to std::ignore.
    HRESULT RunCommand(const CComBSTR& commandId) const;
    HRESULT RunCommandFromThread(const CComBSTR& commandId) const;
    HRESULT TerminateCommand(const CComBSTR& commandId) const;
    HRESULT GetDataStoreValue(const CComBSTR& entry, CComVariant& value) const;
    HRESULT SetDataStoreValue(const CComBSTR& entry, const CComVariant& value) const;
    HRESULT GetParameter(const CComBSTR& id, LONG kind, CComPtr<IUnknown>& parameter) const;
    /// Writes a parameter. The object that the host returns is released unused.
    HRESULT SetParameter(const CComBSTR& id, const CComVariant& value) const;
    HRESULT SetComponentProperty(const CComBSTR& componentId, const CComBSTR& name,
                                 const CComBSTR& value) const;
    HRESULT ShowInstruction(const CComBSTR& text) const;
    /// Sets the transition that the property holds; null if the property was not set. The host gets the
    /// stored text itself, so this needs no memory.
    HRESULT ChooseTransition(PropertyName property) const;

    /// GetDataStoreValue for an entry that must hold a string. `text` becomes that string, or null if the
    /// entry could not be read or holds anything else, even a value that cannot be cleared.
    HRESULT GetDataStoreText(const CComBSTR& entry, CComBSTR& text) const;

    /// The current text of a parameter of the engine control module. Every call is checked.
    CComBSTR ReadParameterText(const CComBSTR& id) const;
    /// The current value of a parameter with its own type. Every call is checked except the request for
    /// IParameterOld; without that interface the read fails.
    CComVariant ReadParameterValue(const CComBSTR& id) const;
    // The same, converted under the user's default locale (unlike ECMParameter2's reads) and checked.
    LONG ReadParameterAsLong(CComBSTR id) const;
    /// The same, but the conversion is not checked: a value that is not a number counts as 0.
    LONG ReadParameterAsLongOrZero(const CComBSTR& id) const;
    /// Reads the parameter that the property "parameterID" names. The argument is only freed.
    double ReadParameterAsDouble(CComBSTR unused) const;

    /// The controller; null until Initialize has succeeded. Lent. [any thread]
    IVantController* ControllerOnceInitialised() const noexcept {
        return m_initialised.load(std::memory_order_acquire) ? m_controller.Get() : nullptr;
    }

    /// The condition set in a data-store entry. Every call is checked; an entry without an object is a
    /// failure.
    CComPtr<IConditionSet> ReadConditionSet(const CComBSTR& entry) const;
    /// The message of the condition that failed, with its own type. Every call is checked.
    CComVariant ReadFailureMessage(IConditionSet& conditions) const;

    /// `text` with every "$p(NAME)" replaced by the current text of parameter NAME; see ExpandReferences.
    /// Every read is checked.
    CComBSTR ExpandParameterReferences(const CComBSTR& text) const;

private:
    void RequestServices(IVantContext& context, CCheckedResult& result);

protected:
    CComBSTR m_label; // the host's; no command reads it
    CComPtr<ICommandRunner> m_commandRunner;
    CComPtr<IComponentService> m_componentService;
    CComPtr<IUnknown> m_service3; // held, never called
    CComPtr<IDataStore> m_dataStore;
    CComPtr<IPresentationService> m_presentationService;
    CComPtr<IUnknown> m_threadService;
    CComPtr<IUnknown> m_service7; // held, never called
    CComPtr<IProcedureController> m_procedureController;
    CComPtr<IDataServiceOld> m_parameterService;
    CComPtr<IVantController> m_controller;
    /// Set last, so that other threads that see it set see the controller, too.
    std::atomic<bool> m_initialised = false;
    PropertyMap m_properties;
};

} // namespace vant
