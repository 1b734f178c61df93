#include "commands/ParameterWriter.h"

#include <stdexcept>
#include <tuple>

namespace vant {

void CParameterWriter::ExecuteCommand() {
    if (!m_parameterService)
        throw std::runtime_error("Data Service not initialized");
    const CComBSTR id = GetLiteralOrReference(L"parameterID", L"dsParameterID");
    const CComVariant value = ReadValue();
    if (FAILED(SetParameter(id, value)))
        throw std::runtime_error("Failure reading from data service"); // "reading": the wording is kept
}

/// A literal is written as a string; an entry keeps its type. The read is not checked: a missing entry counts
/// as empty.
CComVariant CParameterWriter::ReadValue() const {
    if (HasProperty(L"value"))
        return CComVariant(GetProperty(L"value"));
    CComVariant value;
    std::ignore = GetDataStoreValue(GetProperty(L"dsValue"), value);
    return CComVariant::Copy(value.Get());
}

} // namespace vant
