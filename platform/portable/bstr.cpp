#include "platform/portable/automation.h"
#include "platform/portable/testing.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cwchar>
#include <limits>
#include <string_view>

namespace {

// The text starts 8 bytes into the block, so that it is aligned for wchar_t and the 32-bit length stands
// right before it.
constexpr std::size_t headerSize = 8;

std::atomic<std::size_t> liveCount{0};
std::atomic<vant::testing::BstrAllocationHook> allocationHook{nullptr};

BSTR Allocate(std::size_t byteLength) {
    if (byteLength > std::numeric_limits<std::uint32_t>::max() - headerSize - 2 * sizeof(OLECHAR))
        return nullptr;
    if (const auto hook = allocationHook.load(std::memory_order_relaxed); hook && !hook())
        return nullptr;
    // One character more for the end mark, one more so that it is whole after an odd number of bytes.
    auto* block = static_cast<char*>(std::malloc(headerSize + byteLength + 2 * sizeof(OLECHAR)));
    if (!block)
        return nullptr;
    const auto length = static_cast<std::uint32_t>(byteLength);
    std::memcpy(block + headerSize - sizeof(length), &length, sizeof(length));
    std::memset(block + headerSize + byteLength, 0, 2 * sizeof(OLECHAR));
    liveCount.fetch_add(1, std::memory_order_relaxed);
    return reinterpret_cast<BSTR>(block + headerSize);
}

int Sign(std::size_t left, std::size_t right) {
    return left < right ? -1 : (left > right ? 1 : 0);
}

int Compare(const wchar_t* left, std::size_t leftLength, const wchar_t* right, std::size_t rightLength) {
    const std::size_t common = std::min(leftLength, rightLength);
    if (const int order = common ? std::wmemcmp(left, right, common) : 0; order != 0)
        return order < 0 ? -1 : 1;
    return Sign(leftLength, rightLength);
}

/// The same for texts whose null characters do not count.
int CompareWithoutNulls(std::wstring_view left, std::wstring_view right) {
    for (;;) {
        const std::size_t leftNext = std::min(left.find_first_not_of(L'\0'), left.size());
        const std::size_t rightNext = std::min(right.find_first_not_of(L'\0'), right.size());
        left.remove_prefix(leftNext);
        right.remove_prefix(rightNext);
        if (left.empty() || right.empty())
            return Sign(left.size(), right.size());
        if (left.front() != right.front())
            return left.front() < right.front() ? -1 : 1;
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
}

} // namespace

BSTR SysAllocString(const OLECHAR* text) {
    return text ? SysAllocStringLen(text, static_cast<UINT>(std::wcslen(text))) : nullptr;
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
    const BSTR result = Allocate(std::size_t{length} * sizeof(OLECHAR));
    if (result && text)
        std::memcpy(result, text, std::size_t{length} * sizeof(OLECHAR));
    return result;
}

BSTR SysAllocStringByteLen(const char* bytes, UINT length) {
    const BSTR result = Allocate(length);
    if (result && bytes)
        std::memcpy(result, bytes, length);
    return result;
}

void SysFreeString(BSTR text) {
    if (!text)
        return;
    liveCount.fetch_sub(1, std::memory_order_relaxed);
    std::free(reinterpret_cast<char*>(text) - headerSize);
}

UINT SysStringByteLen(BSTR text) {
    if (!text)
        return 0;
    std::uint32_t length = 0;
    std::memcpy(&length, reinterpret_cast<const char*>(text) - sizeof(length), sizeof(length));
    return length;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR));
}

HRESULT VarBstrCmp(BSTR left, BSTR right, LCID /*lcid*/, ULONG flags) {
    if (flags != 0)
        return E_INVALIDARG;
    const bool leftBegins = left && *left;
    const bool rightBegins = right && *right;
    const UINT leftLength = SysStringLen(left);
    const UINT rightLength = SysStringLen(right);
    int order = 0;
    if (leftBegins != rightBegins)
        order = leftBegins ? 1 : -1;
    else if (leftLength == 0 || rightLength == 0)
        order = Sign(leftLength, rightLength);
    else
        order = CompareWithoutNulls({left, leftLength}, {right, rightLength});
    return VARCMP_EQ + order;
}

int CompareStringW(LCID /*lcid*/, DWORD flags, LPCWSTR left, int leftLength, LPCWSTR right, int rightLength) {
    if (!left || !right || flags != 0)
        return 0;
    const auto count = [](LPCWSTR text, int length) {
        return length < 0 ? std::wcslen(text) : static_cast<std::size_t>(length);
    };
    return CSTR_EQUAL + Compare(left, count(left, leftLength), right, count(right, rightLength));
}

namespace vant::testing {

std::size_t LiveBstrCount() noexcept {
    return liveCount.load(std::memory_order_relaxed);
}

void SetBstrAllocationHook(BstrAllocationHook hook) noexcept {
    allocationHook.store(hook, std::memory_order_relaxed);
}

} // namespace vant::testing
