#include "host/engine/model/Behaviour.h"

namespace vant::host {

std::vector<std::string> Behaviour::Followed() const {
    std::vector<std::string> ids = follows;
    for (const Term& term : sum)
        ids.push_back(term.of);
    if (threshold)
        ids.push_back(threshold->of);
    return ids;
}

} // namespace vant::host
