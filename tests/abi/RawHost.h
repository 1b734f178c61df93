#pragma once

#include "tests/abi/RawObject.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vant::abi {

inline constexpr IID iidParameter = {
    0x8DFED79D, 0x1B57, 0x44F0, {0xAD, 0xFF, 0x95, 0x76, 0x95, 0xB5, 0x93, 0x18}};
inline constexpr IID iidEcmServices = {
    0xA89682BE, 0xDAFF, 0x4564, {0x9C, 0x23, 0x7B, 0xE0, 0x48, 0x9B, 0x3B, 0x06}};
inline constexpr IID iidThreadService = {
    0x3920C9CE, 0x1878, 0x49C8, {0xBA, 0x82, 0x41, 0xCA, 0xA3, 0x6E, 0x71, 0x68}};

inline constexpr IID iidSessionManager = {
    0x57A1688E, 0x42C8, 0x4143, {0xBD, 0x1B, 0x40, 0x6B, 0x57, 0xAB, 0xFB, 0xA2}};
inline constexpr IID iidSession = {
    0xE4E23B57, 0xAAFF, 0x4E8D, {0xBC, 0x18, 0xF5, 0x64, 0xB1, 0x49, 0xB8, 0x40}};
inline constexpr IID iidFaultArray = {
    0xF63B87AA, 0x911A, 0x456E, {0xBD, 0xF6, 0x2F, 0xF6, 0x1B, 0x87, 0x4E, 0xCD}};
inline constexpr IID iidConditionSet = {
    0x0A6DE5AA, 0x944F, 0x4B75, {0xA9, 0x2C, 0xF9, 0x21, 0xFD, 0x03, 0x88, 0x9E}};
inline constexpr IID iidFaultRecordList = {
    0xF610F5AF, 0xA42A, 0x45C3, {0x89, 0x46, 0x8D, 0x30, 0x63, 0x30, 0x0B, 0x67}};

/// A field's name and value.
using RawFaultRecord = std::vector<std::pair<std::wstring, std::wstring>>;

/// The record that comes with a callback, as it lies in memory.
struct RawRegistration {
    void* callback;
    std::uint32_t argument;
    std::uint32_t settings[3];
    BSTR ownerName;
    BSTR threadName;
};

/// A host of raw function tables: each documented operation is in its slot, every other slot is a trap.
/// It knows no interface declaration. Whatever is called, is noted.
class RawHost {
public:
    RawHost();

    /// Every call of a documented operation but those of the first three slots, as "object slot(arguments)".
    std::vector<std::wstring> calls;
    /// The data store's texts.
    std::map<std::wstring, std::wstring> entries;
    /// The data store's objects.
    std::map<std::wstring, RawObject*> objects;
    /// The value of every parameter.
    LONG parameterValue = 800;
    /// What the condition set returns.
    VARIANT_BOOL allMet = VARIANT_TRUE;
    /// Every callback that was registered. A reference is held on each until ReleaseCallbacks.
    std::vector<void*> callbacks;
    void ReleaseCallbacks();
    /// The command that said last that it has been stopped; no reference is held.
    void* stoppedCommand = nullptr;
    /// The fault array, whatever its identifier.
    std::vector<RawFaultRecord> faults;
    /// What the end of the protocol source chain returns.
    LONG protocolKind = 0;
    /// What the operations of the services and of the controller return, whatever else they do.
    HRESULT result = S_OK;
    /// What a write of a parameter returns.
    HRESULT writeResult = S_OK;
    /// A request of the context, as noted in `calls`, that returns 0x80041234 and leaves its argument
    /// unchanged,
    std::wstring refusedRequest;
    /// or hands out the service nevertheless.
    bool givesWhenRefusing = false;

    RawObject context{*this, L"context"};
    RawObject commandRunner{*this, L"commandRunner"};
    RawObject componentService{*this, L"componentService"};
    RawObject service3{*this, L"service3"};
    RawObject dataStore{*this, L"dataStore"};
    RawObject presentationService{*this, L"presentationService"};
    RawObject threadService{*this, L"threadService", &iidThreadService};
    RawObject ecmServices{*this, L"ecmServices"};
    RawObject service7{*this, L"service7"};
    RawObject procedureController{*this, L"procedureController"};
    RawObject parameterService{*this, L"parameterService"};
    RawObject parameter{*this, L"parameter", &iidParameter};
    RawObject connection{*this, L"connection"};
    RawObject unitsTable{*this, L"unitsTable"};
    RawObject unit{*this, L"unit"};
    RawObject sessionManager{*this, L"sessionManager", &iidSessionManager};
    RawObject directory{*this, L"directory"};
    RawObject openedEcm{*this, L"openedEcm"};
    RawObject session{*this, L"session", &iidSession};
    RawObject sessionItem{*this, L"sessionItem"};
    RawObject source{*this, L"source"};
    RawObject sourceA{*this, L"sourceA"};
    RawObject sourceB{*this, L"sourceB"};
    RawObject sourceC{*this, L"sourceC"};
    RawObject sourceD{*this, L"sourceD"};
    RawObject faultArray{*this, L"faultArray", &iidFaultArray};
    RawObject faultRecordList{*this, L"faultRecordList", &iidFaultRecordList};
    RawObject faultRecord{*this, L"faultRecord"};
    RawObject faultField{*this, L"faultField"};
    RawObject conditionSet{*this, L"conditionSet", &iidConditionSet};
    RawObject controller{*this, L"controller"};

    std::vector<RawObject*> Objects();
    /// References that somebody still holds on any object.
    int References();
    /// The record and the field that were last asked for, counted from 0.
    std::size_t currentRecord = 0;
    std::size_t currentField = 0;
    /// The traps that were called, as "object slot".
    std::vector<std::wstring> Trapped();
};

} // namespace vant::abi
