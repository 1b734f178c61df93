#pragma once

#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"

#include <memory>
#include <vector>

namespace vant::host {

/// An ordered list of `Item` objects behind the interface `List`, which hands them out as `ItemInterface`.
template <class List, class ItemInterface, class Item>
class ItemList : public HostDispatch<List> {
public:
    /// Makes one item for each description, in the same order.
    template <class Descriptions>
    ItemList(CallGate& gate, const char* service, const Descriptions& descriptions)
        : HostDispatch<List>(gate, service) {
        for (const auto& each : descriptions)
            m_items.push_back(std::make_unique<Item>(gate, each));
    }

    /// `index` is a VT_I4 and counts from 1; HandOutItem says what is refused.
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, ItemInterface** out) override {
        return this->Perform(operation::get_Item, [&](Record& record) {
            record.Add(argument::index, ToValue(index));
            return HandOutItem(m_items, index, out);
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
        return this->Perform(operation::get_Count, [&](Record& record) -> HRESULT {
            if (!count)
                return E_POINTER;
            *count = static_cast<LONG>(m_items.size());
            record.Add(argument::count, std::int64_t{*count});
            return S_OK;
        });
    }

    /// Calls `visit` with every object that this one, or one of its items, hands out.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& each : m_items) {
            visit(*each);
            if constexpr (requires { each->ForEach(visit); })
                each->ForEach(visit);
        }
    }

protected:
    ~ItemList() = default;

private:
    std::vector<std::unique_ptr<Item>> m_items;
};

} // namespace vant::host
