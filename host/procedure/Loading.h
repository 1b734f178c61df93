#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/procedure/Answers.h"
#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vant::host {

/// A file that was read, and the messages about it.
struct LoadedFile {
    std::string name; ///< In UTF-8, as messages begin with it.
    const char* what; ///< For messages, such as "the procedure".
    Diagnostics found;
};

/// The files of one procedure or engine.
class LoadedFiles {
public:
    /// The first file that was named, a procedure or an engine.
    LoadedFile& Main() noexcept { return m_files.front(); }
    const LoadedFile& Main() const noexcept { return m_files.front(); }
    LoadedFile& Add(std::string name, const char* what) {
        return m_files.emplace_back(LoadedFile{std::move(name), what, {}});
    }
    const std::list<LoadedFile>& All() const noexcept { return m_files; }

    bool HasErrors() const;
    bool HasWarnings() const;
    /// All messages, file by file, as lines of text.
    std::string Print() const;

private:
    std::list<LoadedFile> m_files;
};

/// A procedure that another one runs, and the file that it is in.
struct CalledProcedure {
    std::shared_ptr<const Procedure> procedure;
    LoadedFile* file;
};

struct LoadedProcedure {
    /// Whole only if the files have no errors; with the engine that it is to run on.
    Procedure procedure;
    std::vector<CalledProcedure> called{}; ///< All that it runs, directly or through others; each once.
    LoadedFiles files;                     ///< The procedure's file first.
};

/// Procedures that run one another are at most so deep.
inline constexpr std::size_t deepestProcedure = 8;

/// Reads a procedure with the files that it includes, the procedures that it runs, and the engine that it
/// runs on: the one in `engineFile` unless that is empty, else the procedure's own or the one in the file
/// that it names. The procedures that it runs work on the same engine. All mistakes of all files are found.
/// Throws InputError, with the file's name, if the procedure or `engineFile` cannot be read. File names in
/// UTF-8; `standardInput` stands for what the program is given.
LoadedProcedure LoadProcedure(const std::string& file, const std::string& engineFile);

/// For each of `procedures`, whether it has no engine of its own and another one runs it, on whose engine it
/// works.
std::vector<bool> FindCalledOnes(std::span<const LoadedProcedure> procedures);

/// Whether the table of a file is that of a procedure, and not of an engine or of a file to be included.
bool IsProcedureToRun(const toml::table& root);

/// Reads a procedure as LoadProcedure does, an engine or a file of answers, for the sake of the messages.
/// That `file` cannot be read is one of them; throws InputError if `engineFile` cannot be read.
LoadedFiles CheckFile(const std::string& file, const std::string& engineFile);

/// Checks each file as CheckFile does; the results are in the order of the files. Nothing is said about a
/// procedure by itself that another of them runs, on whose engine it works, unless it has mistakes of its
/// own.
std::vector<LoadedFiles> CheckFiles(std::span<const std::string> files, const std::string& engineFile);

/// Reads a file of answers, whose messages are those of the file that is added to `files`. Throws InputError
/// as LoadProcedure does.
std::vector<ReadyAnswer> LoadAnswers(const std::string& file, LoadedFiles& files);

struct LoadedEngine {
    std::optional<EngineDescription>
        engine; ///< Nothing if the procedure has none; whole only without errors.
    LoadedFiles files;
};

/// Reads an engine from its own file, or from a procedure that has one or names its file. Throws InputError
/// as LoadProcedure does.
LoadedEngine LoadEngine(const std::string& file);

} // namespace vant::host
