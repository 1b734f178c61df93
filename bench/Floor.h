#pragma once

#include "bench/MinimalHost.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <string_view>
#include <utility>
#include <vector>

namespace vant::bench {

using Properties = std::vector<std::pair<const wchar_t*, std::wstring_view>>;

/// Straight-line code that makes the host calls of one command's body, with the same copies of strings and
/// the same conversions, from strings that it already has. What a command costs more is the price of its
/// contract.
struct Floor {
    const CComBSTR* values; ///< the property values in the order of the command's case
    MinimalHost* host;

    void CommandTerminator() const {
        const CComBSTR id(values[0]);
        host->TerminateCommand(id.Get());
    }
    void DataStoreWriter() const {
        const CComVariant value{CComBSTR(values[1])};
        const CComBSTR entry(values[0]);
        host->SetValue(entry.Get(), value.Get());
    }
    void CompositeCommand() const {
        const CComBSTR list(values[0]);
        std::wstring_view rest = list.Text();
        for (;;) {
            const std::size_t space = rest.find(L' ');
            const CComBSTR id(rest.substr(0, space));
            host->RunCommand(id.Get());
            if (space == std::wstring_view::npos)
                return;
            rest.remove_prefix(space + 1);
        }
    }
    void Calculator() const {
        CComVariant a{CComBSTR(values[0])};
        CComVariant b{CComBSTR(values[1])};
        a.ChangeType(VT_R8);
        b.ChangeType(VT_R8);
        const CComBSTR operation(values[2]);
        CComVariant value(operation.Text() == L"add" ? a.Get().dblVal + b.Get().dblVal : 0.0);
        value.ChangeType(VT_BSTR);
        const CComBSTR entry(values[3]);
        host->SetValue(entry.Get(), value.Get());
    }
};

} // namespace vant::bench
