// Engine files of any content: they are refused with messages, or two engines made from one behave alike.

#include "fuzz/Reading.h"
#include "host/engine/model/Engine.h"
#include "host/procedure/EngineReader.h"
#include "host/record/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace vant::host;

/// Every reading of the engine's first two minutes, and the faults, as text.
std::string Readings(const EngineDescription& description) {
    std::int64_t now = 0;
    const Engine engine(description, [&now] { return now; });
    std::string readings;
    for (const std::int64_t time : {0, 250, 1'000, 7'777, 120'000}) {
        now = time;
        for (const auto& [id, parameter] : description.parameters) {
            const auto result = engine.Read(id);
            const auto* const reading = std::get_if<Reading>(&result);
            readings += reading ? ToJson(reading->value).dump() + reading->text.value_or("") : "failed";
            readings += '\n';
        }
        for (const auto& [id, records] : description.faultArrays) {
            for (const std::size_t place : engine.FaultRecords(id))
                readings += std::to_string(place) + '\n';
        }
    }
    return readings;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Diagnostics found;
    const EngineDescription description =
        ReadEngine(std::string_view(reinterpret_cast<const char*>(data), size), found);
    vant::fuzz::CheckMessages(found);
    if (!found.HasErrors() && Readings(description) != Readings(description))
        std::abort();
    return 0;
}
