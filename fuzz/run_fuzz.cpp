// Procedures of any content, run from beginning to end in virtual time with the built module: two runs must
// make the same journal and leave nothing behind. A procedure may name one of the example engines.

#include "fuzz/Reading.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/ProcedureReader.h"
#include "host/procedure/PropertyCheck.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/LoadedModule.h"
#include "host/runner/Runner.h"
#include "platform/Clock.h"
#include "platform/Process.h"
#include "platform/portable/testing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace vant;
using namespace vant::host;

/// A run is aborted after so many records: many procedures would never end.
constexpr std::size_t mostRecords = 2'000;

/// A run never has so many threads at once.
constexpr int mostThreads = 100;

std::optional<LoadedModule> module;
std::map<std::string, EngineDescription> engines; ///< By the name under which a procedure refers to it.

void ReadEngines(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path());
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        Diagnostics found;
        EngineDescription engine = ReadEngine(text, found);
        if (found.HasErrors()) {
            std::cerr << entry.path() << " is not a valid engine\n";
            std::exit(1);
        }
        engines.emplace("engines/" + entry.path().filename().string(), std::move(engine));
    }
}

std::string JournalOf(const Procedure& procedure) {
    UseVirtualTime();
    const ClockParticipant participant;
    Journal journal;
    std::string lines;
    std::size_t count = 0;
    int threads = 0;
    Runner runner(procedure, *module, journal);
    journal.Observe([&](const Record& record) {
        lines += ToJson(record).dump() + '\n';
        if (record.operation == operation::RegisterCallback && record.result == S_OK &&
            ++threads == mostThreads)
            std::abort();
        if (record.operation == event::ThreadEnded)
            --threads;
        if (++count == mostRecords)
            runner.Abort();
    });
    runner.Run();
    if (!journal.IsComplete() || !runner.StillHeld().empty())
        std::abort();
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    testing::SetOutputDebugHook([](LPCWSTR) {}); // traces would only take time
    module.emplace(ProgramFolder() / LibraryFileName("VantCommands"));
    ReadEngines("procedures/engines");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Diagnostics found;
    Procedure procedure = ReadProcedure(std::string_view(reinterpret_cast<const char*>(data), size), found);
    if (procedure.engineFile) {
        const auto engine = engines.find(procedure.engineFile->text);
        if (engine == engines.end())
            return 0;
        procedure.engine = engine->second;
    }
    CheckProperties(procedure, found);
    CheckCommands(procedure, *module, found);
    fuzz::CheckMessages(found);
    if (found.HasErrors())
        return 0;
    const std::string first = JournalOf(procedure);
    const std::string second = JournalOf(procedure);
    if (first != second) {
        std::cerr << first << "--- the second run:\n" << second;
        std::abort();
    }
    if (!module->CanUnload())
        std::abort();
    return 0;
}
