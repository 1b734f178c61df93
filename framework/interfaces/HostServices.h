#pragma once

// The interfaces that commands call on the host: the context, its services, and the controller. Slots count
// from 0, with IUnknown's three first. ReservedN declares slot N, which commands never call. Declarations end
// with the last slot in use; the host's interface may have more.
//
// The caller owns what an out parameter receives: a referenced interface or a VARIANT to clear. It keeps the
// ownership of strings and values that it passes, including a VARIANT passed by value. Services are called on
// the host's thread during Execute [host thread] and on threads of the thread service [persistent thread],
// and must accept both at once. A command that RunCommandFromThread runs may be executed on a persistent
// thread.

#include "ecm/interfaces/EngineData.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/system.h"

namespace vant {

/// Runs other commands of the procedure.
struct ICommandRunner : IUnknown {
    /// Slot 3 [the thread that executes the command]: creates and executes the command with that identifier
    /// and returns its result.
    virtual HRESULT STDMETHODCALLTYPE RunCommand(BSTR commandId) = 0;
    /// Slot 4 [persistent thread]: the same, from a thread of the thread service.
    virtual HRESULT STDMETHODCALLTYPE RunCommandFromThread(BSTR commandId) = 0;
};

/// Sets properties of named components of the host's display.
struct IComponentService : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    /// Slot 10 [host thread, persistent thread].
    virtual HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR componentId, BSTR name, BSTR value) = 0;
};

/// The named values of the running procedure.
struct IDataStore : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    /// Slot 9 [host thread, persistent thread]: a copy of the entry's value into `value`, which is VT_EMPTY.
    virtual HRESULT STDMETHODCALLTYPE GetValue(BSTR name, VARIANT* value) = 0;
    /// Slot 10 [host thread, persistent thread]: keeps a copy of `value`.
    virtual HRESULT STDMETHODCALLTYPE SetValue(BSTR name, VARIANT value) = 0;
};

/// Shows instructions to the technician.
struct IPresentationService : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    /// Slot 7 [the thread that executes the command]. `text` may be null.
    virtual HRESULT STDMETHODCALLTYPE ShowInstruction(BSTR text) = 0;
};

/// Receives the transition that a command chooses.
struct IProcedureController : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    /// Slot 7 [host thread, persistent thread].
    virtual HRESULT STDMETHODCALLTYPE SetTransition(BSTR transitionId) = 0;
};

/// Ends running commands, and is told of those that were asked to stop.
struct IVantController : IUnknown {
    /// Slot 3 [the thread that executes the command].
    virtual HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR commandId) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    /// Slot 6 [any thread]: `command` has been asked to stop; its thread may still be running.
    virtual HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand* command) = 0;
};

/// Hands out the services. Each request fills its argument with a referenced interface [host thread].
struct IVantContext : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ProcedureController(IProcedureController** out) = 0; // slot 3
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CommandRunner(ICommandRunner** out) = 0; // slot 5
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ComponentService(IComponentService** out) = 0; // slot 7
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_Service7(IUnknown** out) = 0; // slot 9: held by commands, never called
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_Service3(IUnknown** out) = 0; // slot 11: held by commands, never called
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PresentationService(IPresentationService** out) = 0; // slot 13
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DataStore(IDataStore** out) = 0; // slot 15
    virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
    /// Slot 17: the thread service. Asked for IThreadService, and for IECMServicesOld, by QueryInterface.
    virtual HRESULT STDMETHODCALLTYPE get_ThreadService(IUnknown** out) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved18() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved19() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved20() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ParameterService(IDataServiceOld** out) = 0; // slot 21
};

} // namespace vant
