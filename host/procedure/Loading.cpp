#include "host/procedure/Loading.h"

#include "host/procedure/ConditionReader.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/InputFile.h"
#include "host/procedure/ProcedureReader.h"
#include "host/procedure/PropertyCheck.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace vant::host {

namespace {

std::string ReadNamed(const std::string& file) {
    try {
        return ReadFile(PathFromUtf8(file));
    } catch (const InputError& failure) {
        throw InputError(file + ": " + failure.what());
    }
}

/// An engine from a file that the user has named.
EngineDescription ReadEngineFile(const std::string& name, LoadedFiles& files) {
    const std::string text = ReadNamed(name);
    return ReadEngine(text, files.Add(name).found);
}

/// An engine from the file that the procedure in the main file names. If that cannot be read, it is a mistake
/// of the procedure.
std::optional<EngineDescription> ReadEngineOf(const Procedure& procedure, LoadedFiles& files) {
    const auto& [name, position] = *procedure.engineFile;
    const std::filesystem::path path = PathFromUtf8(files.Main().name).parent_path() / PathFromUtf8(name);
    try {
        const std::string text = ReadFile(path);
        return ReadEngine(text, files.Add(FileName(path)).found);
    } catch (const InputError& failure) {
        files.Main().found.Error(position, "cannot read the engine '" + name + "': " + failure.what());
        return std::nullopt;
    }
}

/// Procedures have keys that engines do not have.
bool IsProcedure(const toml::table& root) {
    return root.contains("engine") || root.contains("commands") || root.contains("steps");
}

} // namespace

bool LoadedFiles::HasErrors() const {
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const LoadedFile& each) { return each.found.HasErrors(); });
}

std::string LoadedFiles::Print() const {
    std::string text;
    for (const LoadedFile& each : m_files)
        text += each.found.Print(each.name);
    return text;
}

LoadedProcedure LoadProcedure(const std::string& file, const std::string& engineFile) {
    LoadedProcedure loaded;
    auto& [procedure, files] = loaded;
    const std::string text = ReadNamed(file);
    LoadedFile& main = files.Add(file);
    procedure = ReadProcedure(text, main.found);
    CheckProperties(procedure, main.found);
    if (!engineFile.empty())
        procedure.engine = ReadEngineFile(engineFile, files);
    else if (procedure.engineFile)
        procedure.engine = ReadEngineOf(procedure, files);
    const bool engineIsWhole = &files.All().back() == &main || !files.All().back().found.HasErrors();
    if (engineIsWhole)
        CheckConditionParameters(procedure, main.found);
    return loaded;
}

LoadedEngine LoadEngine(const std::string& file) {
    LoadedEngine loaded;
    auto& [engine, files] = loaded;
    const std::string text = ReadNamed(file);
    Diagnostics& found = files.Add(file).found;
    const std::optional<toml::table> root = ParseToml(text, found);
    if (!root)
        return loaded;
    if (!IsProcedure(*root)) {
        engine = ReadEngine(*root, found);
        return loaded;
    }
    Procedure procedure = ReadProcedure(*root, found);
    if (procedure.engineFile)
        engine = ReadEngineOf(procedure, files);
    else
        engine = std::move(procedure.engine);
    return loaded;
}

} // namespace vant::host
