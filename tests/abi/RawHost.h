#pragma once

#include "tests/abi/RawObject.h"

#include <map>
#include <string>
#include <vector>

namespace vant::abi {

inline constexpr IID iidParameter = {
    0x8DFED79D, 0x1B57, 0x44F0, {0xAD, 0xFF, 0x95, 0x76, 0x95, 0xB5, 0x93, 0x18}};
inline constexpr IID iidEcmServices = {
    0xA89682BE, 0xDAFF, 0x4564, {0x9C, 0x23, 0x7B, 0xE0, 0x48, 0x9B, 0x3B, 0x06}};
inline constexpr IID iidThreadService = {
    0x3920C9CE, 0x1878, 0x49C8, {0xBA, 0x82, 0x41, 0xCA, 0xA3, 0x6E, 0x71, 0x68}};

/// A host of raw function tables: each documented operation stands in its slot, every other slot is a trap.
/// It knows no interface declaration. Whatever is called, is noted.
class RawHost {
public:
    RawHost();

    /// Every call of a documented operation but those of the first three slots, as "object slot(arguments)".
    std::vector<std::wstring> calls;
    /// The data store's texts.
    std::map<std::wstring, std::wstring> entries;
    /// What the operations of the services and of the controller answer, whatever else they do.
    HRESULT answer = S_OK;
    /// A request of the context, as `calls` has it, that answers 0x80041234 and leaves its argument alone,
    std::wstring refusedRequest;
    /// or gives the service nevertheless.
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
    RawObject controller{*this, L"controller"};

    std::vector<RawObject*> Objects();
    /// References that somebody still holds on any object.
    int References();
    /// The traps that were called, as "object slot".
    std::vector<std::wstring> Trapped();
};

} // namespace vant::abi
