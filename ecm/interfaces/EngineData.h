#pragma once

// The host's engine data interfaces. All are dual: slots 0 to 2 are IUnknown's, 3 to 6 IDispatch's. ReservedN
// declares slot N, which commands never call. Declarations end with the last slot in use; the host's
// interface may have more.
//
// The caller owns what an out parameter receives: a referenced interface, a BSTR to free, a VARIANT to clear.
// It keeps the ownership of strings and values that it passes. Every operation may be called on the host
// thread and on persistent threads.

#include "platform/ComPtr.h"
#include "platform/system.h"

namespace vant {

inline constexpr IID IID_IParameterOld = {
    0x8DFED79D, 0x1B57, 0x44F0, {0xAD, 0xFF, 0x95, 0x76, 0x95, 0xB5, 0x93, 0x18}};
inline constexpr IID IID_IECMServicesOld = {
    0xA89682BE, 0xDAFF, 0x4564, {0x9C, 0x23, 0x7B, 0xE0, 0x48, 0x9B, 0x3B, 0x06}};
inline constexpr IID IID_IECMSessionManager = {
    0x57A1688E, 0x42C8, 0x4143, {0xBD, 0x1B, 0x40, 0x6B, 0x57, 0xAB, 0xFB, 0xA2}};
inline constexpr IID IID_IECMSession = {
    0xE4E23B57, 0xAAFF, 0x4E8D, {0xBC, 0x18, 0xF5, 0x64, 0xB1, 0x49, 0xB8, 0x40}};
inline constexpr IID IID_IFaultArray = {
    0xF63B87AA, 0x911A, 0x456E, {0xBD, 0xF6, 0x2F, 0xF6, 0x1B, 0x87, 0x4E, 0xCD}};
inline constexpr IID IID_IFaultRecordList = {
    0xF610F5AF, 0xA42A, 0x45C3, {0x89, 0x46, 0x8D, 0x30, 0x63, 0x30, 0x0B, 0x67}};

/// One parameter of the engine control module, returned by the data service.
struct IParameterOld : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) = 0;         // slot 8
    virtual HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) = 0;         // slot 9: the current value as text
    virtual HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) = 0;    // slot 10: the current value, typed
    virtual HRESULT STDMETHODCALLTYPE get_UnitsKey(BSTR* unitsKey) = 0; // slot 11
};

/// The diagnostic connection to one engine control module.
struct IConnectionOld : IDispatch {
    /// Slot 7: the connection's identifier, a decimal number as text.
    virtual HRESULT STDMETHODCALLTYPE get_ConnectionIdentifier(BSTR* identifier) = 0;
};

/// The parameter service: reads and writes parameters of the engine control module.
struct IDataServiceOld : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld** connection) = 0; // slot 10
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    /// Slot 12. `parameter` is asked for IParameterOld by the caller. The meaning of `kind` is the host's:
    /// commands pass 1, the fault-array check 2.
    virtual HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) = 0;
    /// Slot 13. `parameter` may come back null.
    virtual HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value,
                                                   IUnknown** parameter) = 0;
};

/// One unit of measurement.
struct IUnit : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) = 0; // slot 8
};

/// The units of the parameters, by their keys.
struct IUnitsTable : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE GetUnit(BSTR unitsKey, IUnit** unit) = 0; // slot 7
};

/// The host's engine services, offered by the thread service's object.
struct IECMServicesOld : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    /// Slot 12. `unitsTable` must be an IUnitsTable; it is used without QueryInterface.
    virtual HRESULT STDMETHODCALLTYPE GetUnits(IUnknown** unitsTable) = 0;
};

// The protocol source chain: four steps from a control module's identifier to the kind of protocol that it
// speaks.

struct IProtocolSourceD : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved15() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Kind(LONG* kind) = 0; // slot 16
};

struct IProtocolSourceC : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    /// Slot 12. `null` is always null; its meaning is the host's.
    virtual HRESULT STDMETHODCALLTYPE GetD(void* null, IProtocolSourceD** d) = 0;
};

struct IProtocolSourceB : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    /// Slot 8. `null` is always null; its meaning is the host's.
    virtual HRESULT STDMETHODCALLTYPE GetC(void* null, IProtocolSourceC** c) = 0;
};

struct IProtocolSourceA : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetB(IProtocolSourceB** b) = 0; // slot 14
};

struct IProtocolSource : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetA(LONG ecmId, IProtocolSourceA** a) = 0; // slot 9
};

/// One parameter read through a session.
struct IECMSessionItem : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) = 0; // slot 12
};

/// A direct connection to one opened engine control module.
struct IECMSession : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Register(LONG* handle) = 0; // slot 7
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    /// Slot 11. `kind` is always 1; its meaning is the host's.
    virtual HRESULT STDMETHODCALLTYPE ReadParameter(LONG id, LONG kind, IECMSessionItem** item) = 0;
};

/// Opens engine control modules for direct reads.
struct IECMDirectory : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    /// Slot 9. `ecm` is asked for IECMSession by the caller.
    virtual HRESULT STDMETHODCALLTYPE OpenECM(LONG ecmId, IUnknown** ecm) = 0;
    /// Slot 10. `handle` comes from the session's Register.
    virtual HRESULT STDMETHODCALLTYPE CloseECM(LONG handle) = 0;
};

/// Gives access to direct sessions. The engine services are asked for it by QueryInterface.
struct IECMSessionManager : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDirectory(IECMDirectory** directory) = 0;     // slot 9
    virtual HRESULT STDMETHODCALLTYPE GetProtocolSource(IProtocolSource** source) = 0; // slot 10
};

// A fault array: a list of records, each a list of named fields. Indexes are VT_I4 and count from 1.

struct IFaultField : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) = 0; // slot 7
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) = 0; // slot 9
};

struct IFaultRecord : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultField** field) = 0; // slot 7
    virtual HRESULT STDMETHODCALLTYPE get_Count(LONG* count) = 0;                       // slot 8
};

struct IFaultRecordList : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultRecord** record) = 0; // slot 7
    virtual HRESULT STDMETHODCALLTYPE get_Count(LONG* count) = 0;                         // slot 8
};

/// A fault array. The object that the data service's GetParameter returns is asked for it.
struct IFaultArray : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    /// Slot 8. `records` is asked for IFaultRecordList by the caller.
    virtual HRESULT STDMETHODCALLTYPE get_Records(IUnknown** records) = 0;
};

template <>
struct IidOf<IParameterOld> {
    static constexpr const IID& value = IID_IParameterOld;
};
template <>
struct IidOf<IECMServicesOld> {
    static constexpr const IID& value = IID_IECMServicesOld;
};
template <>
struct IidOf<IECMSessionManager> {
    static constexpr const IID& value = IID_IECMSessionManager;
};
template <>
struct IidOf<IECMSession> {
    static constexpr const IID& value = IID_IECMSession;
};
template <>
struct IidOf<IFaultArray> {
    static constexpr const IID& value = IID_IFaultArray;
};
template <>
struct IidOf<IFaultRecordList> {
    static constexpr const IID& value = IID_IFaultRecordList;
};

} // namespace vant
