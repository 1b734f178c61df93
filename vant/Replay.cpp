#include "vant/Replay.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/Loading.h"
#include "host/record/Vocabulary.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/Runner.h"
#include "host/suite/Replay.h"
#include "platform/Clock.h"
#include "vant/InterruptScope.h"
#include "vant/JournalComparison.h"
#include "vant/Module.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

namespace vant::program {

using namespace host;

namespace {

LoadedProcedure Load(const ReplayOptions& options) {
    try {
        return LoadProcedure(options.procedure, options.engine);
    } catch (const InputError& failure) {
        throw Failure(ExitCode::WrongInput, failure.what());
    }
}

RunSettings SettingsOf(const std::vector<Record>& recorded, Operator& answering) {
    RunSettings settings{.answering = &answering};
    for (const Record& each : recorded) {
        if (each.service == service::Runner && each.operation == event::TagGiven)
            settings.tags[each.Text(argument::name)] = each.Text(argument::value);
    }
    return settings;
}

/// Runs the procedure to its end, or to its abortion by the user, and returns its records.
std::vector<Record> Rerun(Procedure procedure, ReplayPlan plan, const std::vector<Record>& recorded,
                          const CommandFactory& commands) {
    if (procedure.engine)
        procedure.engine = std::move(plan.engine);
    Journal journal;
    std::vector<Record> records;
    journal.Observe([&records](const Record& record) { records.push_back(record); });
    RecordedOperator answering(std::move(plan.answers));
    TakeInterrupts(); // Before the runner starts a thread, which inherits the signal mask.
    Runner runner(procedure, commands, journal, SettingsOf(recorded, answering));
    const InterruptScope scope([&runner] { runner.Abort(); });
    const ClockParticipant participant;
    runner.Run();
    return records;
}

} // namespace

ExitCode Replay(const ReplayOptions& options) {
    const DiffTolerance tolerance = ToleranceOf(options.time, options.value);
    const std::vector<Record> recorded = ReadJournalFile(options.journal);
    UseVirtualTime(); // Before the module is loaded, which waits in this time.
    LoadedProcedure loaded = Load(options);
    const std::unique_ptr<LoadedModule> commands = OpenModule(options.module);
    CheckCommands(loaded.procedure, *commands, loaded.files.Main().found);
    for (const CalledProcedure& each : loaded.called)
        CheckCommands(*each.procedure, *commands, each.file->found);
    if (loaded.files.HasErrors()) {
        std::cerr << loaded.files.Print();
        return ExitCode::WrongInput;
    }
    const std::vector<Record> replayed =
        Rerun(std::move(loaded.procedure), PlanReplay(recorded), recorded, *commands);
    if (IsInterrupted())
        return ExitCode::Aborted;
    return PrintDifferences(
        CompareJournals(ComparableRecords(recorded), ComparableRecords(replayed), tolerance), options.json);
}

} // namespace vant::program
