#pragma once

#include "host/services/HostObject.h"

namespace vant {

/// Stands where commands expect the thread service. No class of the module keeps running on a thread yet, so
/// it answers IUnknown alone: nothing can be registered.
class ThreadService final : public HostObject<IUnknown> {
public:
    explicit ThreadService(Journal& journal) : HostObject(journal, "ThreadService") {}
};

} // namespace vant
