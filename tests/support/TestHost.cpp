#include "tests/support/TestHost.h"

#include "tests/support/HostObject.h"

#include <cstdio>
#include <stdexcept>

namespace vant::test {

namespace {

/// A service that is handed out and never called.
class UnusedService final : public HostObject<IUnknown> {
public:
    using HostObject::HostObject;
};

class CommandRunner final : public HostObject<ICommandRunner> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE RunCommand(BSTR commandId) override { return Run("RunCommand", commandId); }
    HRESULT STDMETHODCALLTYPE RunCommandFromThread(BSTR commandId) override {
        return Run("RunCommandFromThread", commandId);
    }

private:
    HRESULT Run(const char* operation, BSTR commandId) {
        const HRESULT code = Enter(operation, Show(commandId));
        const std::lock_guard lock(m_host.Mutex());
        const auto found = m_host.commandResults.find(TextOf(commandId));
        return FAILED(code) || found == m_host.commandResults.end() ? code : found->second;
    }
};

class ComponentService final : public HostObject<IComponentService> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Unexpected("IComponentService 3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IComponentService 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IComponentService 5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IComponentService 6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IComponentService 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IComponentService 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IComponentService 9"); }
    HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR componentId, BSTR name, BSTR value) override {
        return Enter("SetComponentProperty",
                     Show(componentId) + ", " + Show(name) + ", \"" + Show(value) + '"');
    }
};

class DataStore final : public HostObject<IDataStore> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Unexpected("IDataStore 3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IDataStore 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IDataStore 5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IDataStore 6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IDataStore 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IDataStore 8"); }
    HRESULT STDMETHODCALLTYPE GetValue(BSTR name, VARIANT* value) override {
        if (value->vt != VT_EMPTY)
            ADD_FAILURE() << "GetValue received a VARIANT that is not empty";
        return Perform(Enter("GetValue", Show(name)), [&] {
            const std::lock_guard lock(m_host.Mutex());
            const auto found = m_host.dataStore.find(TextOf(name));
            if (found == m_host.dataStore.end())
                return E_INVALIDARG;
            *value = CComVariant(found->second).Detach();
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE SetValue(BSTR name, VARIANT value) override {
        return Perform(Enter("SetValue", Show(name) + ", " + Show(value)), [&] {
            const std::lock_guard lock(m_host.Mutex());
            m_host.dataStore.insert_or_assign(std::wstring(TextOf(name)), CComVariant::Copy(value));
            return S_OK;
        });
    }
};

class PresentationService final : public HostObject<IPresentationService> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Unexpected("IPresentationService 3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IPresentationService 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IPresentationService 5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IPresentationService 6"); }
    HRESULT STDMETHODCALLTYPE ShowInstruction(BSTR text) override {
        return Enter("ShowInstruction", Show(text));
    }
};

class ProcedureController final : public HostObject<IProcedureController> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Unexpected("IProcedureController 3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IProcedureController 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IProcedureController 5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IProcedureController 6"); }
    HRESULT STDMETHODCALLTYPE SetTransition(BSTR transitionId) override {
        return Perform(Enter("SetTransition", Show(transitionId)), [&] {
            const std::lock_guard lock(m_host.Mutex());
            m_host.transitions.emplace_back(TextOf(transitionId));
            return S_OK;
        });
    }
};

/// What GetParameter returns: ends with its last reference. It shows one of the host's parameters, which
/// stays the host's.
class Parameter final : public DualHostObject<IParameterOld> {
public:
    Parameter(TestHost& host, HostParameter& parameter) noexcept
        : DualHostObject(host), m_parameter(parameter) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (iid != IID_IParameterOld)
            return DualHostObject::QueryInterface(iid, out);
        HRESULT code = Enter("QueryInterface", "IParameterOld");
        if (SUCCEEDED(code) && !m_parameter.offersInterface)
            code = E_NOINTERFACE;
        return HandOut(code, static_cast<IParameterOld&>(*this), reinterpret_cast<IParameterOld**>(out));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = DualHostObject::Release();
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IParameterOld 7"); }
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override {
        return ReturnText(Enter("get_Name", ""), m_parameter.name, name);
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override {
        return ReturnText(Enter("get_Text", ""), m_parameter.text, text);
    }
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) override {
        return Perform(Enter("get_Value", ""), [&] {
            *value = CComVariant(m_parameter.value).Detach();
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_UnitsKey(BSTR* unitsKey) override {
        return ReturnText(Enter("get_UnitsKey", ""), m_parameter.unitsKey, unitsKey);
    }

private:
    HostParameter& m_parameter;
};

class Connection final : public DualHostObject<IConnectionOld> {
public:
    using DualHostObject::DualHostObject;

    HRESULT STDMETHODCALLTYPE get_ConnectionIdentifier(BSTR* identifier) override {
        return ReturnText(Enter("get_ConnectionIdentifier", ""), m_host.connectionIdentifier, identifier);
    }
};

class DataService final : public DualHostObject<IDataServiceOld> {
public:
    explicit DataService(TestHost& host) noexcept : DualHostObject(host), m_connection(host) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IDataServiceOld 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IDataServiceOld 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IDataServiceOld 9"); }
    HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld** connection) override {
        return HandOut(Enter("GetConnection", ""), static_cast<IConnectionOld&>(m_connection), connection);
    }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IDataServiceOld 11"); }
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) override {
        const HRESULT code = Enter("GetParameter", Show(id) + ", " + std::to_string(kind));
        if (kind == 2)
            return HandOutArray(code, id, parameter);
        return HandOutParameter(code, id, nullptr, parameter);
    }
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) override {
        const HRESULT code =
            Enter("SetParameter", Show(id) + ", " + std::to_string(kind) + ", " + Show(value));
        return HandOutParameter(code, id, &value, parameter);
    }

private:
    HRESULT HandOutParameter(HRESULT code, BSTR id, const VARIANT* newValue, IUnknown** out) {
        *out = nullptr;
        return Perform(code, [&] {
            const std::lock_guard lock(m_host.Mutex());
            const auto found = m_host.parameters.find(TextOf(id));
            if (found == m_host.parameters.end())
                return E_INVALIDARG;
            if (newValue)
                Assign(found->second, *newValue);
            return HandOut(S_OK, static_cast<IUnknown&>(*new Parameter(m_host, found->second)), out);
        });
    }
    HRESULT HandOutArray(HRESULT code, BSTR id, IUnknown** out) {
        *out = nullptr;
        const std::lock_guard lock(m_host.Mutex());
        const auto found = m_host.arrays.find(TextOf(id));
        if (found == m_host.arrays.end())
            return FAILED(code) ? code : E_INVALIDARG;
        return found->second ? HandOut(code, *found->second, out) : code;
    }
    static void Assign(HostParameter& parameter, const VARIANT& value) {
        parameter.value = CComVariant::Copy(value);
        CComVariant text(parameter.value);
        const HRESULT code = text.ChangeType(VT_BSTR);
        if (code == E_OUTOFMEMORY)
            throw std::bad_alloc();
        if (SUCCEEDED(code))
            parameter.text = TextOf(StringMember(text.Get()));
    }

    Connection m_connection;
};

class Controller final : public HostObject<IVantController> {
public:
    using HostObject::HostObject;

    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR commandId) override {
        return Enter("TerminateCommand", Show(commandId));
    }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IVantController 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IVantController 5"); }
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand* command) override {
        return Perform(Enter("PersistentCommandStopped", ""), [&] {
            const std::lock_guard lock(m_host.Mutex());
            m_host.stoppedCommands.push_back(command);
            return S_OK;
        });
    }
};

/// The context is only lent for the time of Initialize, so it need not be held to be called.
class Context final : public HostObject<IVantContext> {
public:
    explicit Context(TestHost& host) noexcept
        : HostObject(host), m_commandRunner(host), m_componentService(host), m_service3(host),
          m_dataStore(host), m_presentationService(host), m_service7(host), m_procedureController(host),
          m_parameterService(host) {}

    HRESULT STDMETHODCALLTYPE get_ProcedureController(IProcedureController** out) override {
        return Give<IProcedureController>("get_ProcedureController", m_procedureController, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IVantContext 4"); }
    HRESULT STDMETHODCALLTYPE get_CommandRunner(ICommandRunner** out) override {
        return Give<ICommandRunner>("get_CommandRunner", m_commandRunner, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IVantContext 6"); }
    HRESULT STDMETHODCALLTYPE get_ComponentService(IComponentService** out) override {
        return Give<IComponentService>("get_ComponentService", m_componentService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IVantContext 8"); }
    HRESULT STDMETHODCALLTYPE get_Service7(IUnknown** out) override {
        return Give<IUnknown>("get_Service7", m_service7, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IVantContext 10"); }
    HRESULT STDMETHODCALLTYPE get_Service3(IUnknown** out) override {
        return Give<IUnknown>("get_Service3", m_service3, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Unexpected("IVantContext 12"); }
    HRESULT STDMETHODCALLTYPE get_PresentationService(IPresentationService** out) override {
        return Give<IPresentationService>("get_PresentationService", m_presentationService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return Unexpected("IVantContext 14"); }
    HRESULT STDMETHODCALLTYPE get_DataStore(IDataStore** out) override {
        return Give<IDataStore>("get_DataStore", m_dataStore, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return Unexpected("IVantContext 16"); }
    HRESULT STDMETHODCALLTYPE get_ThreadService(IUnknown** out) override {
        return Give<IUnknown>("get_ThreadService", *m_host.Threads().Object(), out);
    }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return Unexpected("IVantContext 18"); }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return Unexpected("IVantContext 19"); }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return Unexpected("IVantContext 20"); }
    HRESULT STDMETHODCALLTYPE get_ParameterService(IDataServiceOld** out) override {
        return Give<IDataServiceOld>("get_ParameterService", m_parameterService, out);
    }

private:
    template <class Interface>
    HRESULT Give(const char* operation, Interface& service, Interface** out) {
        return HandOut(m_host.Enter(operation, ""), service, out);
    }

    CommandRunner m_commandRunner;
    ComponentService m_componentService;
    UnusedService m_service3;
    DataStore m_dataStore;
    PresentationService m_presentationService;
    UnusedService m_service7;
    ProcedureController m_procedureController;
    DataService m_parameterService;
};

} // namespace

struct TestHost::Objects {
    explicit Objects(TestHost& host) : context(host), controller(host), threads(host) {}

    vant::test::Context context;
    vant::test::Controller controller;
    HostThreads threads;
};

TestHost::TestHost() : m_objects(std::make_unique<Objects>(*this)) {}

TestHost::~TestHost() {
    if (const LONG held = OutstandingReferences(); held != 0)
        ADD_FAILURE() << held << " references are still held on the host's objects";
}

HostThreads& TestHost::Threads() noexcept {
    return m_objects->threads;
}

IVantContext* TestHost::Context() noexcept {
    return &m_objects->context;
}

IVantController* TestHost::Controller() noexcept {
    return &m_objects->controller;
}

void TestHost::FailCall(std::size_t number, HRESULT code) noexcept {
    m_failAt = number;
    m_failCode = code;
}

void TestHost::ThrowAtCall(std::size_t number) noexcept {
    m_throwAt = number;
}

HRESULT TestHost::Enter(std::string_view operation, std::string_view arguments) {
    const std::string call = std::string(operation) + '(' + std::string(arguments) + ')';
    if (onCall)
        onCall(call);
    const std::lock_guard lock(m_mutex);
    calls.push_back(call);
    if (calls.size() == m_throwAt)
        throw std::runtime_error("the host throws at " + call);
    if (calls.size() == m_failAt)
        return m_failCode;
    const auto found = fail.find(operation);
    return found == fail.end() ? S_OK : found->second;
}

std::string Show(std::wstring_view text) {
    std::string result;
    for (const wchar_t character : text) {
        if (character >= L' ' && character <= L'~') {
            result += static_cast<char>(character);
        } else {
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\u{%X}", static_cast<unsigned>(character));
            result += escape;
        }
    }
    return result;
}

std::string Show(BSTR text) {
    return text ? Show(TextOf(text)) : "null";
}

std::string Show(const VARIANT& value) {
    switch (value.vt) {
    case VT_EMPTY:
        return "empty";
    case VT_I4:
        return std::to_string(value.lVal);
    case VT_R8: {
        char number[32];
        std::snprintf(number, sizeof number, "%.17g", value.dblVal);
        return std::string(number).find_first_not_of("-0123456789") == std::string::npos
                   ? std::string(number) + ".0"
                   : number;
    }
    case VT_BOOL:
        return value.boolVal ? "true" : "false";
    case VT_BSTR:
        return value.bstrVal ? '"' + Show(value.bstrVal) + '"' : "null";
    default:
        return "type " + std::to_string(value.vt);
    }
}

} // namespace vant::test
