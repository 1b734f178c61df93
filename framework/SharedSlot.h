#pragma once

#include <atomic>
#include <memory>
#include <utility>

namespace vant {

/// Holds an object that one thread may replace while others use it: a copy from Get keeps it alive. Any
/// thread.
template <class Value>
class CSharedSlot {
public:
    /// Null before the first Set.
    std::shared_ptr<Value> Get() const noexcept {
        const Hold hold(m_held);
        return m_value;
    }
    void Set(std::shared_ptr<Value> value) noexcept {
        const Hold hold(m_held);
        m_value.swap(value);
    }

private:
    /// A spin lock around the copying of the pointer, which takes a few instructions. (The compiler's mutex
    /// for Windows would leak one allocation for each command.)
    class Hold {
    public:
        explicit Hold(std::atomic_flag& held) noexcept : m_held(held) {
            while (m_held.test_and_set(std::memory_order_acquire)) {
            }
        }
        ~Hold() { m_held.clear(std::memory_order_release); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        std::atomic_flag& m_held;
    };

    std::shared_ptr<Value> m_value;
    mutable std::atomic_flag m_held;
};

} // namespace vant
