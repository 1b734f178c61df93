#pragma once

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Counts seconds, down from a length or up to it, publishes the count and has other commands run: one at the
/// start, one at every tick, one when the count has run out. A stopped timer runs no further command.
class CTimer : public CComObjectRootEx<CComMultiThreadModel>,
               public CComCoClass<CTimer, &CLSID_Timer>,
               public IVantPersistentCommandImpl<CTimer, &CLSID_Timer, resource_Timer, 0> {
public:
    static constexpr PropertyRow properties[] = {
        {L"length", L"dsLength", true},      {L"dsBase", nullptr, true},
        {L"startCommandID", nullptr, false}, {L"tickCommandID", nullptr, false},
        {L"stopCommandID", nullptr, false},  {L"type", nullptr, false},
    };

protected:
    void ExecutePersistent() override;

private:
    void Count();
    LONG ReadLength() const;
    void RunOptional(PropertyName commandId) const;
};

} // namespace vant
