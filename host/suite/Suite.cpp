#include "host/suite/Suite.h"

#include "host/procedure/InputFile.h"
#include "host/runner/CommandCheck.h"
#include "host/suite/CaseCheck.h"
#include "host/suite/Discovery.h"
#include "host/suite/ProcedureShelf.h"
#include "host/suite/TestFileReader.h"
#include "platform/Utf8.h"

#include <utility>

namespace vant::host {

namespace {

class SuiteLoader {
public:
    explicit SuiteLoader(const CommandFactory& commands) : m_commands(commands) {}

    void AddTestFile(const std::string& file) {
        LoadedFiles messages;
        Diagnostics& found = messages.Add(file, "the test file").found;
        CaseCheck check(found);
        for (TestCase& each : ReadTestFile(Read(file), file, found)) {
            if (!each.procedure.text.empty())
                CheckCase(each, check);
            m_suite.cases.push_back(std::move(each));
        }
        if (messages.HasErrors())
            m_suite.messages.push_back(std::move(messages));
    }

    /// A procedure without a test file must pass.
    void AddProcedure(const std::string& file) {
        TestCase must;
        must.name = Get(file, "").procedure.name;
        must.file = file;
        must.procedure.text = file;
        m_suite.cases.push_back(std::move(must));
    }

    LoadedSuite Take() {
        for (auto& [names, loaded] : m_procedures.All()) {
            if (loaded.files.HasErrors())
                m_suite.messages.push_back(loaded.files);
        }
        return std::move(m_suite);
    }

private:
    static std::string Read(const std::string& file) {
        try {
            return ReadFile(PathFromUtf8(file));
        } catch (const InputError& failure) {
            throw InputError(file + ": " + failure.what());
        }
    }

    void CheckCase(const TestCase& checked, CaseCheck& check) {
        const std::string engine = checked.engine ? checked.engine->text : "";
        try {
            if (const LoadedProcedure& loaded = Get(checked.procedure.text, engine);
                !loaded.files.HasErrors())
                check.Check(checked, loaded);
        } catch (const InputError& failure) {
            const std::string text = failure.what();
            const bool isEngine = checked.engine && text.starts_with(engine + ": ");
            check.Error(isEngine ? checked.engine->position : checked.procedure.position,
                        std::string("cannot read the ") + (isEngine ? "engine " : "procedure ") + text);
        }
    }

    LoadedProcedure& Get(const std::string& file, const std::string& engine) {
        const std::size_t known = m_procedures.All().size();
        LoadedProcedure& loaded = m_procedures.Get(file, engine);
        if (m_procedures.All().size() == known)
            return loaded;
        CheckCommands(loaded.procedure, m_commands, loaded.files.Main().found);
        for (const CalledProcedure& each : loaded.called)
            CheckCommands(*each.procedure, m_commands, each.file->found);
        return loaded;
    }

    const CommandFactory& m_commands;
    ProcedureShelf m_procedures;
    LoadedSuite m_suite;
};

} // namespace

LoadedSuite LoadSuite(std::span<const std::string> paths, const CommandFactory& commands) {
    SuiteLoader loader(commands);
    for (const std::string& file : FindTests(paths)) {
        if (IsTestFile(file))
            loader.AddTestFile(file);
        else
            loader.AddProcedure(file);
    }
    return loader.Take();
}

} // namespace vant::host
