#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Performs one arithmetic operation on one or two numbers and stores the result, as text, in a data-store
/// entry.
class CCalculator : public CComObjectRootEx<CComMultiThreadModel>,
                    public CComCoClass<CCalculator, &CLSID_Calculator>,
                    public IVantCommandImpl<CCalculator, &CLSID_Calculator, resource_Calculator> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsSourceA", L"sourceA", true}, //
        {L"dsSourceB", nullptr, false},   // unlike A's, these two may be given at once;
        {L"sourceB", nullptr, false},     // the data-store entry then wins
        {L"dsResult", nullptr, true},     //
        {L"operation", nullptr, true},
    };

protected:
    void ExecuteCommand() override;

private:
    void Calculate() const;
    CComVariant ReadOperandA() const;
    CComVariant ReadOperandB() const;
};

} // namespace vant
