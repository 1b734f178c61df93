#include "host/suite/Suite.h"

#include "host/procedure/InputFile.h"
#include "host/runner/CommandCheck.h"
#include "host/suite/CaseCheck.h"
#include "host/suite/Discovery.h"
#include "host/suite/ProcedureShelf.h"
#include "host/suite/TestFileReader.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <utility>

namespace vant::host {

namespace {

class SuiteLoader {
public:
    /// `commands`: null if the procedures are not to be compared with a module.
    explicit SuiteLoader(const CommandFactory* commands) : m_commands(commands) {}

    void AddTestFile(const std::string& file) {
        LoadedFiles messages;
        Diagnostics& found = messages.Add(file, "the test file").found;
        try {
            CaseCheck check(found);
            for (TestCase& each : ReadTestFile(ReadFile(PathFromUtf8(file)), file, found)) {
                if (!each.procedure.text.empty())
                    CheckCase(each, check);
                m_suite.cases.push_back(std::move(each));
            }
        } catch (const InputError& failure) {
            found.Error({}, std::string("the file cannot be read: ") + failure.what());
        }
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
        if (m_commands) {
            CheckCommands(loaded.procedure, *m_commands, loaded.files.Main().found);
            for (const CalledProcedure& each : loaded.called)
                CheckCommands(*each.procedure, *m_commands, each.file->found);
        }
        return loaded;
    }

    const CommandFactory* const m_commands;
    ProcedureShelf m_procedures;
    LoadedSuite m_suite;
};

} // namespace

bool LoadedSuite::HasErrors() const {
    return std::any_of(messages.begin(), messages.end(),
                       [](const LoadedFiles& each) { return each.HasErrors(); });
}

LoadedSuite LoadSuite(std::span<const std::string> paths, const CommandFactory& commands) {
    SuiteLoader loader(&commands);
    for (const std::string& file : FindTests(paths)) {
        if (IsTestFile(file))
            loader.AddTestFile(file);
        else
            loader.AddProcedure(file);
    }
    return loader.Take();
}

std::vector<LoadedFiles> CheckTestFile(const std::string& file) {
    SuiteLoader loader(nullptr);
    loader.AddTestFile(file);
    return loader.Take().messages;
}

} // namespace vant::host
