#include "commands/DataStoreWriter.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CDataStoreWriter::ExecuteCommand() {
    CCheckedResult result;
    const CComVariant value(GetProperty(L"value"));
    result = SetDataStoreValue(GetProperty(L"dsLocation"), value);
}

} // namespace vant
