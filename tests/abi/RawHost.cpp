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

template <RawObject RawHost::*wanted, int slot>
HRESULT STDMETHODCALLTYPE GiveObject(RawObject* self, void** out) {
    Note(*self, slot);
    RawHost& host = self->Host();
    const bool refused = host.calls.back() == host.refusedRequest;
    if (!refused || host.givesWhenRefusing)
        *out = (host.*wanted).Give();
    return refused ? static_cast<HRESULT>(0x80041234) : S_OK;
}

template <int slot>
HRESULT STDMETHODCALLTYPE TakeText(RawObject* self, BSTR text) {
    Note(*self, slot, text);
    return self->Host().answer;
}

template <int slot>
HRESULT STDMETHODCALLTYPE TakeCookie(RawObject* self, std::uint32_t cookie) {
    Note(*self, slot, cookie);
    return self->Host().answer;
}

template <int slot>
HRESULT STDMETHODCALLTYPE GiveText(RawObject* self, BSTR* out) {
    Note(*self, slot);
    *out = CComBSTR(self->Name() + L" text " + std::to_wstring(slot)).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE SetComponentProperty(RawObject* self, BSTR component, BSTR name, BSTR value) {
    Note(*self, 10, component, name, value);
    return self->Host().answer;
}

HRESULT STDMETHODCALLTYPE GetValue(RawObject* self, BSTR name, VARIANT* out) {
    Note(*self, 9, name, *out);
    const auto found = self->Host().entries.find(Printed(name));
    if (found == self->Host().entries.end())
        return E_FAIL;
    *out = CComVariant(CComBSTR(found->second)).Detach();
    return self->Host().answer;
}

HRESULT STDMETHODCALLTYPE SetValue(RawObject* self, BSTR name, VARIANT value) {
    Note(*self, 10, name, value);
    return self->Host().answer;
}

HRESULT STDMETHODCALLTYPE GetParameter(RawObject* self, BSTR id, LONG kind, void** out) {
    Note(*self, 12, id, kind);
    *out = self->Host().parameter.Give();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE SetParameter(RawObject* self, BSTR id, LONG kind, VARIANT value, void** out) {
    Note(*self, 13, id, kind, value);
    *out = self->Host().parameter.Give();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ParameterValue(RawObject* self, VARIANT* out) {
    Note(*self, 10);
    *out = CComVariant(LONG{800}).Detach();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CommandStopped(RawObject* self, void* command) {
    Note(*self, 6, command);
    return self->Host().answer;
}

HRESULT STDMETHODCALLTYPE RegisterCallback(RawObject* self, void* callback, const void* registration,
                                           std::uint32_t* cookie) {
    Note(*self, 13, callback, registration);
    *cookie = 7;
    return S_OK;
}

} // namespace

RawHost::RawHost() {
    context.Place(3, &GiveObject<&RawHost::procedureController, 3>);
    context.Place(5, &GiveObject<&RawHost::commandRunner, 5>);
    context.Place(7, &GiveObject<&RawHost::componentService, 7>);
    context.Place(9, &GiveObject<&RawHost::service7, 9>);
    context.Place(11, &GiveObject<&RawHost::service3, 11>);
    context.Place(13, &GiveObject<&RawHost::presentationService, 13>);
    context.Place(15, &GiveObject<&RawHost::dataStore, 15>);
    context.Place(17, &GiveObject<&RawHost::threadService, 17>);
    context.Place(21, &GiveObject<&RawHost::parameterService, 21>);

    commandRunner.Place(3, &TakeText<3>);
    commandRunner.Place(4, &TakeText<4>);
    componentService.Place(10, &SetComponentProperty);
    dataStore.Place(9, &GetValue);
    dataStore.Place(10, &SetValue);
    presentationService.Place(7, &TakeText<7>);
    procedureController.Place(7, &TakeText<7>);
    controller.Place(3, &TakeText<3>);
    controller.Place(6, &CommandStopped);

    parameterService.Place(10, &GiveObject<&RawHost::connection, 10>);
    parameterService.Place(12, &GetParameter);
    parameterService.Place(13, &SetParameter);
    connection.Place(7, &GiveText<7>);
    parameter.Place(8, &GiveText<8>);
    parameter.Place(9, &GiveText<9>);
    parameter.Place(10, &ParameterValue);
    parameter.Place(11, &GiveText<11>);

    threadService.AlsoAnswers(iidEcmServices, ecmServices);
    threadService.Place(8, &TakeCookie<8>);
    threadService.Place(11, &TakeCookie<11>);
    threadService.Place(12, &TakeCookie<12>);
    threadService.Place(13, &RegisterCallback);
    ecmServices.Place(12, &GiveObject<&RawHost::unitsTable, 12>);
}

std::vector<RawObject*> RawHost::Objects() {
    return {&context,     &commandRunner,    &componentService,    &service3,   &dataStore,
            &service7,    &threadService,    &presentationService, &controller, &procedureController,
            &ecmServices, &parameterService, &parameter,           &connection, &unitsTable};
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
