#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Stores a literal text in a data-store entry.
class CDataStoreWriter
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CDataStoreWriter, &CLSID_DataStoreWriter>,
      public IVantCommandImpl<CDataStoreWriter, &CLSID_DataStoreWriter, resource_DataStoreWriter> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsLocation", nullptr, true},
        {L"value", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
