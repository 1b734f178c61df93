#pragma once

#include "framework/SharedSlot.h"
#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

#include <memory>
#include <string>
#include <vector>

namespace vant {

/// Feeds a monitor of the display: publishes name, value and units of a list of parameters, each under a
/// prefix, and tells the component which prefix to show. The first failure ends it for good.
class CMonitorUpdater : public CComObjectRootEx<CComMultiThreadModel>,
                        public CComCoClass<CMonitorUpdater, &CLSID_MonitorUpdater>,
                        public IVantPersistentCommandImpl<CMonitorUpdater, &CLSID_MonitorUpdater,
                                                          resource_MonitorUpdater, 250> {
public:
    static constexpr PropertyRow properties[] = {
        {L"parameterIDs", nullptr, true},
        {L"dsBaseName", nullptr, true},
        {L"monitorID", nullptr, true},
    };

protected:
    void ExecutePersistent() override;

private:
    /// What a text of ids was split into.
    struct ParameterIds {
        std::wstring text;
        std::vector<std::wstring> ids;
    };

    std::shared_ptr<const ParameterIds> CurrentIds();
    void Publish(const std::wstring& id) const;

    CSharedSlot<const ParameterIds> m_parameterIDs; // split last; runs that overlap share it
};

} // namespace vant
