#pragma once

// The engine's side of a host in memory, beside what TestHost has: direct sessions and fault arrays. All
// calls are noted by, and can be made to fail at, the TestHost.

#include "ecm/interfaces/EngineData.h"
#include "platform/Variant.h"
#include "tests/support/TestHost.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vant::test {

/// Engine services with a session manager, directory, one session, a protocol source chain and a units
/// table. The host's thread service offers them as IECMServicesOld. Must outlive what holds its objects.
class EngineServices {
public:
    explicit EngineServices(TestHost& host);
    ~EngineServices();
    EngineServices(const EngineServices&) = delete;
    EngineServices& operator=(const EngineServices&) = delete;

    /// The object that offers IECMServicesOld; lent.
    IUnknown* Object() noexcept;

    LONG protocolKind = 0;
    LONG handle = 7; ///< what Register returns, even if it fails
    std::map<LONG, CComVariant> sessionValues;
    std::map<std::wstring, std::wstring, std::less<>> units; ///< their texts by key
    /// Operations that succeed and return no object, by name.
    std::set<std::string> givesNothing;
    /// The objects that lost their last reference, in order: "session", "directory" ...
    std::vector<std::string> released;

private:
    struct Objects;

    TestHost& m_host;
    std::unique_ptr<Objects> m_objects;
};

struct FaultField {
    std::wstring name;
    std::wstring value;
};
using FaultRecord = std::vector<FaultField>;

/// A fault array that the host's data service returns for an identifier. Must outlive what holds its objects.
class FaultArray {
public:
    FaultArray(TestHost& host, const std::wstring& id, const std::vector<FaultRecord>& records);
    ~FaultArray();
    FaultArray(const FaultArray&) = delete;
    FaultArray& operator=(const FaultArray&) = delete;

    LONG count; ///< what the list says that it holds
    /// Operations that succeed and return no object, by name.
    std::set<std::string> givesNothing;
    /// The objects that lost their last reference, in order: "record 1", "records" ...
    std::vector<std::string> released;

private:
    struct Objects;

    TestHost& m_host;
    std::wstring m_id;
    std::unique_ptr<Objects> m_objects;
};

} // namespace vant::test
