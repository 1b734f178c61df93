#include "tests/abi/RawHost.h"

#include "platform/Bstr.h"
#include "platform/Variant.h"

namespace vant::abi {

namespace {

std::wstring Printed(BSTR text) {
    return std::wstring(TextOf(text));
}

std::wstring Printed(LONG number) {
    return std::to_wstring(number);
}

std::wstring Printed(std::uint32_t number) {
    return std::to_wstring(number);
}

std::wstring Printed(const VARIANT& value) {
    switch (value.vt) {
    case VT_BSTR:
        return L"text " + Printed(value.bstrVal);
    case VT_I4:
        return L"number " + std::to_wstring(value.lVal);
    default:
        return L"type " + std::to_wstring(value.vt);
    }
}

std::wstring Printed(const wchar_t* text) {
    return text;
}

std::wstring Printed(const void* pointer) {
    return pointer ? L"pointer" : L"null";
}

template <class... Arguments>
void Note(const RawObject& object, int slot, const Arguments&... arguments) {
    std::wstring call = object.Name() + L' ' + std::to_wstring(slot) + L'(';
    ((call += Printed(arguments) + L", "), ...);
    if (sizeof...(arguments) > 0)
        call.resize(call.size() - 2);
    object.Host().calls.push_back(call + L')');
}

/// An operation that hands out an object of the host for arguments of these types.
template <RawObject RawHost::*wanted, int slot, class... Arguments>
struct Give {
    static HRESULT STDMETHODCALLTYPE Object(RawObject* self, Arguments... arguments, void** out) {
        Note(*self, slot, arguments...);
        RawHost& host = self->Host();
        const bool refused = host.calls.back() == host.refusedRequest;
        if (!refused || host.givesWhenRefusing)
            *out = (host.*wanted).Give();
        return refused ? static_cast<HRESULT>(0x80041234) : S_OK;
    }
};

/// An operation that takes one argument and returns nothing else.
template <int slot, class Argument>
HRESULT STDMETHODCALLTYPE Take(RawObject* self, Argument argument) {
    Note(*self, slot, argument);
    return self->Host().result;
}

template <int slot>
HRESULT STDMETHODCALLTYPE GiveText(RawObject* self, BSTR* out) {
    Note(*self, slot);
    *out = CComBSTR(self->Name() + L" text " + std::to_wstring(slot)).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE SetComponentProperty(RawObject* self, BSTR component, BSTR name, BSTR value) {
    Note(*self, 10, component, name, value);
    return self->Host().result;
}

HRESULT STDMETHODCALLTYPE GetValue(RawObject* self, BSTR name, VARIANT* out) {
    Note(*self, 9, name, *out);
    const auto object = self->Host().objects.find(Printed(name));
    if (object != self->Host().objects.end()) {
        out->vt = VT_UNKNOWN;
        out->punkVal = static_cast<IUnknown*>(object->second->Give());
        return self->Host().result;
    }
    const auto found = self->Host().entries.find(Printed(name));
    if (found == self->Host().entries.end())
        return E_FAIL;
    *out = CComVariant(CComBSTR(found->second)).Detach();
    return self->Host().result;
}

HRESULT STDMETHODCALLTYPE SetValue(RawObject* self, BSTR name, VARIANT value) {
    Note(*self, 10, name, value);
    return self->Host().result;
}

HRESULT STDMETHODCALLTYPE GetParameter(RawObject* self, BSTR id, LONG kind, void** out) {
    Note(*self, 12, id, kind);
    RawHost& host = self->Host();
    *out = (kind == 2 ? host.faultArray : host.parameter).Give();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE SetParameter(RawObject* self, BSTR id, LONG kind, VARIANT value, void** out) {
    Note(*self, 13, id, kind, value);
    *out = self->Host().parameter.Give();
    return self->Host().writeResult;
}

HRESULT STDMETHODCALLTYPE ParameterValue(RawObject* self, VARIANT* out) {
    Note(*self, 10);
    *out = CComVariant(self->Host().parameterValue).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ItemValue(RawObject* self, VARIANT* out) {
    Note(*self, 12);
    *out = CComVariant(LONG{750}).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE Evaluate(RawObject* self, VARIANT_BOOL* allMet) {
    Note(*self, 3);
    *allMet = self->Host().allMet;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ConnectionIdentifier(RawObject* self, BSTR* out) {
    Note(*self, 7);
    *out = CComBSTR(L"42").Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE RegisterSession(RawObject* self, LONG* handle) {
    Note(*self, 7);
    *handle = 7;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ProtocolKind(RawObject* self, LONG* kind) {
    Note(*self, 16);
    *kind = self->Host().protocolKind;
    return S_OK;
}

const RawFaultRecord& CurrentRecord(const RawHost& host) {
    return host.faults.at(host.currentRecord);
}

HRESULT STDMETHODCALLTYPE RecordItem(RawObject* self, VARIANT index, void** out) {
    Note(*self, 7, index);
    RawHost& host = self->Host();
    host.currentRecord = static_cast<std::size_t>(index.lVal - 1);
    *out = host.faultRecord.Give();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE RecordCount(RawObject* self, LONG* count) {
    Note(*self, 8);
    *count = static_cast<LONG>(self->Host().faults.size());
    return S_OK;
}

HRESULT STDMETHODCALLTYPE FieldItem(RawObject* self, VARIANT index, void** out) {
    Note(*self, 7, index);
    RawHost& host = self->Host();
    host.currentField = static_cast<std::size_t>(index.lVal - 1);
    *out = host.faultField.Give();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE FieldCount(RawObject* self, LONG* count) {
    Note(*self, 8);
    *count = static_cast<LONG>(CurrentRecord(self->Host()).size());
    return S_OK;
}

HRESULT STDMETHODCALLTYPE FieldName(RawObject* self, BSTR* out) {
    Note(*self, 7);
    *out = CComBSTR(CurrentRecord(self->Host()).at(self->Host().currentField).first).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE FieldValue(RawObject* self, BSTR* out) {
    Note(*self, 9);
    *out = CComBSTR(CurrentRecord(self->Host()).at(self->Host().currentField).second).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CommandStopped(RawObject* self, void* command) {
    Note(*self, 6, command);
    self->Host().stoppedCommand = command;
    return self->Host().result;
}

HRESULT STDMETHODCALLTYPE RegisterCallback(RawObject* self, void* callback,
                                           const RawRegistration* registration, std::uint32_t* cookie) {
    const auto& [sameCallback, argument, settings, ownerName, threadName] = *registration;
    Note(*self, 13, sameCallback == callback ? L"callback" : L"two callbacks", argument, settings[0],
         settings[1], settings[2], ownerName, threadName);
    CallSlot<ULONG>(callback, 1);
    self->Host().callbacks.push_back(callback);
    *cookie = 7;
    return self->Host().result;
}

} // namespace

RawHost::RawHost() {
    context.Place(3, &Give<&RawHost::procedureController, 3>::Object);
    context.Place(5, &Give<&RawHost::commandRunner, 5>::Object);
    context.Place(7, &Give<&RawHost::componentService, 7>::Object);
    context.Place(9, &Give<&RawHost::service7, 9>::Object);
    context.Place(11, &Give<&RawHost::service3, 11>::Object);
    context.Place(13, &Give<&RawHost::presentationService, 13>::Object);
    context.Place(15, &Give<&RawHost::dataStore, 15>::Object);
    context.Place(17, &Give<&RawHost::threadService, 17>::Object);
    context.Place(21, &Give<&RawHost::parameterService, 21>::Object);

    commandRunner.Place(3, &Take<3, BSTR>);
    commandRunner.Place(4, &Take<4, BSTR>);
    componentService.Place(10, &SetComponentProperty);
    dataStore.Place(9, &GetValue);
    dataStore.Place(10, &SetValue);
    presentationService.Place(7, &Take<7, BSTR>);
    procedureController.Place(7, &Take<7, BSTR>);
    controller.Place(3, &Take<3, BSTR>);
    controller.Place(6, &CommandStopped);

    parameterService.Place(10, &Give<&RawHost::connection, 10>::Object);
    parameterService.Place(12, &GetParameter);
    parameterService.Place(13, &SetParameter);
    connection.Place(7, &ConnectionIdentifier);
    parameter.Place(8, &GiveText<8>);
    parameter.Place(9, &GiveText<9>);
    parameter.Place(10, &ParameterValue);
    parameter.Place(11, &GiveText<11>);

    threadService.AlsoOffers(iidEcmServices, ecmServices);
    threadService.Place(8, &Take<8, std::uint32_t>);
    threadService.Place(11, &Take<11, std::uint32_t>);
    threadService.Place(12, &Take<12, std::uint32_t>);
    threadService.Place(13, &RegisterCallback);
    ecmServices.Place(12, &Give<&RawHost::unitsTable, 12>::Object);
    unitsTable.Place(7, &Give<&RawHost::unit, 7, BSTR>::Object);
    unit.Place(8, &GiveText<8>);

    ecmServices.AlsoOffers(iidSessionManager, sessionManager);
    sessionManager.Place(9, &Give<&RawHost::directory, 9>::Object);
    sessionManager.Place(10, &Give<&RawHost::source, 10>::Object);
    directory.Place(9, &Give<&RawHost::openedEcm, 9, LONG>::Object);
    directory.Place(10, &Take<10, LONG>);
    openedEcm.AlsoOffers(iidSession, session);
    session.Place(7, &RegisterSession);
    session.Place(11, &Give<&RawHost::sessionItem, 11, LONG, LONG>::Object);
    sessionItem.Place(12, &ItemValue);
    source.Place(9, &Give<&RawHost::sourceA, 9, LONG>::Object);
    sourceA.Place(14, &Give<&RawHost::sourceB, 14>::Object);
    sourceB.Place(8, &Give<&RawHost::sourceC, 8, void*>::Object);
    sourceC.Place(12, &Give<&RawHost::sourceD, 12, void*>::Object);
    sourceD.Place(16, &ProtocolKind);

    faultArray.Place(8, &Give<&RawHost::faultRecordList, 8>::Object);
    faultRecordList.Place(7, &RecordItem);
    faultRecordList.Place(8, &RecordCount);
    faultRecord.Place(7, &FieldItem);
    faultRecord.Place(8, &FieldCount);
    faultField.Place(7, &FieldName);
    faultField.Place(9, &FieldValue);

    conditionSet.Place(3, &Evaluate);
    conditionSet.Place(4, &GiveText<4>);
}

void RawHost::ReleaseCallbacks() {
    for (void* const callback : callbacks)
        CallSlot<ULONG>(callback, 2);
    callbacks.clear();
}

std::vector<RawObject*> RawHost::Objects() {
    return {&context,          &commandRunner,
            &componentService, &service3,
            &dataStore,        &service7,
            &threadService,    &presentationService,
            &controller,       &procedureController,
            &ecmServices,      &parameterService,
            &parameter,        &connection,
            &unitsTable,       &unit,
            &sessionManager,   &directory,
            &openedEcm,        &session,
            &sessionItem,      &source,
            &sourceA,          &sourceB,
            &sourceC,          &sourceD,
            &faultArray,       &faultRecordList,
            &faultRecord,      &faultField,
            &conditionSet};
}

int RawHost::References() {
    int count = 0;
    for (const RawObject* object : Objects())
        count += object->References();
    return count;
}

std::vector<std::wstring> RawHost::Trapped() {
    std::vector<std::wstring> all;
    for (const RawObject* object : Objects()) {
        for (const int slot : object->Trapped())
            all.push_back(object->Name() + L' ' + std::to_wstring(slot));
    }
    return all;
}

} // namespace vant::abi
