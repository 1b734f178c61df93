#pragma once

#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"

#include <memory>
#include <utility>
#include <vector>

namespace vant::host {

/// An ordered list of `Item` objects behind the interface `List`, which hands them out as `ItemInterface`.
/// Lists may share items.
template <class List, class ItemInterface, class Item>
class ItemList : public HostDispatch<List> {
public:
    using Items = std::vector<std::shared_ptr<Item>>;

    ItemList(CallGate& gate, const char* service, Items items)
        : HostDispatch<List>(gate, service), m_items(std::move(items)) {}

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

    /// Calls `visit` with every item.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& each : m_items)
            visit(*each);
    }

protected:
    ~ItemList() = default;

    /// Makes one item for each description, in the same order.
    template <class Description>
    static Items MakeItems(CallGate& gate, const std::vector<Description>& descriptions) {
        Items items;
        for (const Description& each : descriptions)
            items.push_back(std::make_shared<Item>(gate, each));
        return items;
    }

private:
    const Items m_items;
};

} // namespace vant::host
