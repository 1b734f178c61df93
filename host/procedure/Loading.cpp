#include "host/procedure/Loading.h"

#include "host/procedure/EngineReader.h"
#include "host/procedure/InputFile.h"
#include "host/procedure/ProcedureCheck.h"
#include "host/procedure/ProcedureReader.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

std::string ReadInput(const std::string& file) {
    return file == standardInput ? ReadStandardInput() : ReadFile(PathFromUtf8(file));
}

std::string ReadNamed(const std::string& file) {
    try {
        return ReadInput(file);
    } catch (const InputError& failure) {
        throw InputError(file + ": " + failure.what());
    }
}

/// An engine from a file that the user has named.
EngineDescription ReadEngineFile(const std::string& name, LoadedFiles& files) {
    const std::string text = ReadNamed(name);
    return ReadEngine(text, files.Add(name, "the engine").found);
}

/// A file that a procedure names, relative to its folder.
std::filesystem::path Beside(const LoadedFile& procedure, const std::string& name) {
    return PathFromUtf8(procedure.name).parent_path() / PathFromUtf8(name);
}

/// The text of a file that a procedure names; nothing, and a mistake in the procedure, if it cannot be read.
std::optional<std::string> ReadBeside(LoadedFile& procedure, const Located& name, const char* what) {
    try {
        return ReadFile(Beside(procedure, name.text));
    } catch (const InputError& failure) {
        procedure.found.Error(name.position,
                              std::string("cannot read ") + what + " '" + name.text + "': " + failure.what());
        return std::nullopt;
    }
}

std::optional<EngineDescription> ReadEngineOf(const Procedure& procedure, LoadedFile& file,
                                              LoadedFiles& files) {
    const auto text = ReadBeside(file, *procedure.engineFile, "the engine");
    if (!text)
        return std::nullopt;
    const std::string name = FileName(Beside(file, procedure.engineFile->text));
    return ReadEngine(*text, files.Add(name, "the engine").found);
}

/// The files that a procedure names in `include`, as far as they can be read. Their mistakes become the
/// procedure's.
std::vector<toml::table> ReadIncluded(const toml::table& root, LoadedFile& file, LoadedFiles& files) {
    std::vector<toml::table> tables;
    for (const Located& name : ReadIncludes(root, file.found)) {
        const auto text = ReadBeside(file, name, "the included file");
        if (!text)
            continue;
        const auto path = std::make_shared<const std::string>(FileName(Beside(file, name.text)));
        files.Add(*path, "an included file");
        if (auto table = ParseToml(*text, file.found, path))
            tables.push_back(std::move(*table));
    }
    return tables;
}

/// The same for every name of a file.
std::filesystem::path Identity(const std::filesystem::path& path) {
    std::error_code unknown;
    std::filesystem::path identity = std::filesystem::weakly_canonical(path, unknown);
    return unknown ? path : identity;
}

/// Reads a procedure and those that it runs, each file once.
class ProcedureLoader {
public:
    explicit ProcedureLoader(LoadedFiles& files) : m_files(files) {}

    std::vector<CalledProcedure> TakeCalled() { return std::move(m_called); }

    Procedure Load(const toml::table& root, LoadedFile& file) {
        Procedure procedure = ReadProcedure(root, ReadIncluded(root, file, m_files), file.found);
        m_open.push_back(Identity(PathFromUtf8(file.name)));
        for (auto& [id, step] : procedure.steps) {
            if (step.procedure)
                step.procedure->procedure = LoadCalled(step.procedure->file, file);
        }
        m_open.pop_back();
        return procedure;
    }

private:
    std::shared_ptr<const Procedure> LoadCalled(const Located& name, LoadedFile& caller) {
        const std::filesystem::path path = Beside(caller, name.text);
        const std::filesystem::path identity = Identity(path);
        if (std::find(m_open.begin(), m_open.end(), identity) != m_open.end()) {
            caller.found.Error(name.position, "the procedure '" + name.text + "' would run itself");
            return nullptr;
        }
        if (m_open.size() == deepestProcedure) {
            caller.found.Error(name.position, "procedures that run one another are at most " +
                                                  std::to_string(deepestProcedure) + " deep");
            return nullptr;
        }
        auto& loaded = m_loaded[identity];
        if (loaded)
            return loaded;
        const auto text = ReadBeside(caller, name, "the procedure");
        if (!text)
            return nullptr;
        LoadedFile& file = m_files.Add(FileName(path), "a procedure that it runs");
        const std::optional<toml::table> root = ParseToml(*text, file.found);
        loaded = std::make_shared<const Procedure>(root ? Load(*root, file) : Procedure());
        m_called.push_back({loaded, &file});
        return loaded;
    }

    LoadedFiles& m_files;
    std::vector<std::filesystem::path>
        m_open; ///< The procedures that are being read, from the outermost one.
    std::map<std::filesystem::path, std::shared_ptr<const Procedure>> m_loaded;
    std::vector<CalledProcedure> m_called;
};

/// Procedures have keys that engines do not have.
bool IsProcedure(const toml::table& root) {
    return root.contains("engine") || root.contains("commands") || root.contains("steps");
}

bool IsEngine(const toml::table& root) {
    const auto has = [&root](const char* key) { return root.contains(key); };
    return !IsProcedure(root) && !has("name") && !has("start") &&
           (has("connection") || has("protocol") || has("parameters") || has("units") || has("faults"));
}

bool IsAnswers(const toml::table& root) {
    return !IsProcedure(root) && root.contains("answer");
}

/// Reads what the procedure in `root` needs, and checks everything. `toRun` says whether it must be able to
/// run as it stands.
void LoadAll(const toml::table& root, LoadedFile& main, const std::string& engineFile, bool toRun,
             LoadedProcedure& loaded) {
    auto& [procedure, called, files] = loaded;
    ProcedureLoader loader(files);
    procedure = loader.Load(root, main);
    called = loader.TakeCalled();
    const LoadedFile& last = files.All().back();
    if (!engineFile.empty())
        procedure.engine = ReadEngineFile(engineFile, files);
    else if (procedure.engineFile)
        procedure.engine = ReadEngineOf(procedure, main, files);
    const bool engineIsWhole = &files.All().back() == &last || !files.All().back().found.HasErrors();
    const bool engineIsRead = procedure.engine || !procedure.engineFile;
    std::vector<ProcedureToCheck> toCheck = {{&procedure, &main.found}};
    for (const CalledProcedure& each : called)
        toCheck.push_back({each.procedure.get(), &each.file->found});
    const EngineAtHand engine = {.engine = procedure.engine ? &*procedure.engine : nullptr,
                                 .isAnother = !engineFile.empty(),
                                 .isKnown = engineIsWhole && engineIsRead,
                                 .isNeeded = toRun};
    CheckProcedures(toCheck, engine, engineFile.empty() && !procedure.engineFile);
}

/// A procedure, an engine or answers, for the sake of the messages.
LoadedProcedure ReadToCheck(const std::string& file, const std::string& engineFile) {
    LoadedProcedure loaded;
    LoadedFile& main = loaded.files.Add(file, "the file");
    std::string text;
    try {
        text = ReadInput(file);
    } catch (const InputError& failure) {
        main.found.Error({}, std::string("the file cannot be read: ") + failure.what());
        return loaded;
    }
    const auto root = ParseToml(text, main.found);
    if (root && IsEngine(*root))
        ReadEngine(*root, main.found);
    else if (root && IsAnswers(*root))
        ReadAnswers(*root, main.found);
    else if (root)
        LoadAll(*root, main, engineFile, false, loaded);
    return loaded;
}

/// As the public one; `onAnotherEngine`: the procedures' own engines do not count.
std::vector<bool> FindCalledOnes(std::span<const LoadedProcedure> procedures, bool onAnotherEngine) {
    std::set<std::filesystem::path> called;
    for (const LoadedProcedure& caller : procedures) {
        for (const CalledProcedure& each : caller.called)
            called.insert(Identity(PathFromUtf8(each.file->name)));
    }
    std::vector<bool> found;
    for (const LoadedProcedure& each : procedures) {
        const bool hasEngine = !onAnotherEngine && (each.procedure.engine || each.procedure.engineFile);
        found.push_back(!hasEngine && called.contains(Identity(PathFromUtf8(each.files.Main().name))));
    }
    return found;
}

} // namespace

bool LoadedFiles::HasErrors() const {
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const LoadedFile& each) { return each.found.HasErrors(); });
}

bool LoadedFiles::HasWarnings() const {
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const LoadedFile& each) { return each.found.Warnings() > 0; });
}

std::string LoadedFiles::Print() const {
    std::string text;
    for (const LoadedFile& each : m_files)
        text += each.found.Print(each.name);
    return text;
}

LoadedProcedure LoadProcedure(const std::string& file, const std::string& engineFile) {
    LoadedProcedure loaded;
    const std::string text = ReadNamed(file);
    LoadedFile& main = loaded.files.Add(file, "the procedure");
    if (const auto root = ParseToml(text, main.found))
        LoadAll(*root, main, engineFile, true, loaded);
    else if (!engineFile.empty())
        ReadEngineFile(engineFile, loaded.files);
    return loaded;
}

std::vector<bool> FindCalledOnes(std::span<const LoadedProcedure> procedures) {
    return FindCalledOnes(procedures, false);
}

bool IsProcedureToRun(const toml::table& root) {
    return root.contains("start") || root.contains("steps");
}

LoadedFiles CheckFile(const std::string& file, const std::string& engineFile) {
    return std::move(ReadToCheck(file, engineFile).files);
}

std::vector<LoadedFiles> CheckFiles(std::span<const std::string> files, const std::string& engineFile) {
    std::vector<LoadedProcedure> all;
    for (const std::string& file : files)
        all.push_back(ReadToCheck(file, engineFile));
    const std::vector<bool> called = FindCalledOnes(all, !engineFile.empty());
    std::vector<LoadedFiles> checked;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (called[i] && !all[i].files.HasErrors())
            checked.emplace_back().Add(all[i].files.Main().name, "the file");
        else
            checked.push_back(std::move(all[i].files));
    }
    return checked;
}

std::vector<ReadyAnswer> LoadAnswers(const std::string& file, LoadedFiles& files) {
    const std::string text = ReadNamed(file);
    return ReadAnswers(text, files.Add(file, "the answers").found);
}

LoadedEngine LoadEngine(const std::string& file) {
    LoadedEngine loaded;
    auto& [engine, files] = loaded;
    const std::string text = ReadNamed(file);
    LoadedFile& main = files.Add(file, "the engine");
    const std::optional<toml::table> root = ParseToml(text, main.found);
    if (!root)
        return loaded;
    if (!IsProcedure(*root)) {
        engine = ReadEngine(*root, main.found);
        return loaded;
    }
    Procedure procedure = ProcedureLoader(files).Load(*root, main);
    if (procedure.engineFile)
        engine = ReadEngineOf(procedure, main, files);
    else
        engine = std::move(procedure.engine);
    return loaded;
}

} // namespace vant::host
