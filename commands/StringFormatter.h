#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Rewrites the text of one data-store entry by one of three operations and stores the result in another
/// entry.
///
/// A number in an entry is read as its text. A text that is not a number counts as 0 where a number is
/// needed. Rounding is plain double arithmetic: hundreds of decimals, positive or negative, end in infinities
/// or divisions by zero.
class CStringFormatter
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CStringFormatter, &CLSID_StringFormatter>,
      public IVantCommandImpl<CStringFormatter, &CLSID_StringFormatter, resource_StringFormatter> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsSourceString", nullptr, true},
        {L"dsTargetString", nullptr, true},
        {L"operation", nullptr, true},
        {L"roundLength", nullptr, false},
    };

protected:
    void ExecuteCommand() override;

private:
    void Format() const;
    CComBSTR Apply(BSTR operation, const CComBSTR& text) const;
    /// Replaces "$p(NAME)" by the text of parameter NAME and then, also in what was inserted, "$d(NAME)" by
    /// the text of data-store entry NAME.
    CComBSTR Substitute(const CComBSTR& text) const;
    CComBSTR ReadEntryAsText(const CComBSTR& entry) const;
};

} // namespace vant
