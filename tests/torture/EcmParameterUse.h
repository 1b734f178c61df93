#pragma once

#include "ecm/ECMParameter2.h"
#include "tests/support/EngineHost.h"
#include "tests/torture/Fault.h"

#include <optional>
#include <string>
#include <vector>

namespace vant::test {

/// The calls with which an ECMParameter2 is built if all of them succeed.
inline const std::vector<std::string> construction = {"QueryInterface(IECMServicesOld)",
                                                      "QueryInterface(IECMSessionManager)",
                                                      "GetDirectory()",
                                                      "GetProtocolSource()",
                                                      "GetConnection()",
                                                      "get_ConnectionIdentifier()",
                                                      "GetA(1)",
                                                      "GetB()",
                                                      "GetC()",
                                                      "GetD()",
                                                      "get_Kind()"};

/// An engine whose parameter "190" is 750 in a direct session and 800 through the data service. Parameter
/// "11" differs from "14", so that guarded writes have something to guard.
class EngineForOneUse {
public:
    /// Protocol kinds 4 and 5 want direct reads.
    explicit EngineForOneUse(LONG protocolKind);

    TestHost host;
    EngineServices services{host};
    CComPtr<IDataServiceOld> dataService;
};

/// What a read through a fresh ECMParameter2 came to.
struct Reading {
    HRESULT code; ///< of the construction, which may throw, or of ReadLong; E_UNEXPECTED for other exceptions
    LONG value;   ///< 4711 if the read has left it unchanged

    bool operator==(const Reading&) const = default;
};
inline constexpr LONG untouched = 4711;

/// Builds an ECMParameter2, reads "190" and destroys it. `fault` strikes at its opportunity `number`, not at
/// all for 0. Nothing may be left, and the session must be closed exactly if it was registered.
Reading ReadOnce(EngineForOneUse& engine, Fault& fault, std::size_t number);

/// The same for a guarded write of 5 to "190", but `fault` strikes after the construction. Returns the result
/// of Write, or the code of what it threw; E_UNEXPECTED for other exceptions.
HRESULT WriteOnce(EngineForOneUse& engine, Fault& fault, std::size_t number);

} // namespace vant::test
