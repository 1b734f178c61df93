#include "vant/NewFile.h"

#include "host/text/Printable.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>
#include <system_error>
#include <vector>

namespace vant::program {

using namespace host;

namespace {

namespace fs = std::filesystem;

/// The name without the ending that such a file gets anyway.
std::string WithoutEnding(const std::string& name, FileKind kind) {
    for (const std::string& ending : {EndingOf(kind), std::string(".toml")}) {
        if (name.ends_with(ending))
            return name.substr(0, name.size() - ending.size());
    }
    return name;
}

/// Whether a file name may have this character on every system.
bool IsAllowed(char letter) {
    const auto code = static_cast<unsigned char>(letter);
    return code >= 0x20 && code != 0x7F &&
           std::string_view("\"*:<>?\\|").find(letter) == std::string_view::npos;
}

/// Checks the name of a file, without its folder and ending.
void CheckName(const std::string& given, const std::string& name, FileKind kind) {
    const auto refuse = [&given](const std::string& why) {
        throw Failure(ExitCode::WrongInput, Quoted(given) + " cannot be the name of a new file: " + why);
    };
    if (name.find_first_not_of(" .") == std::string::npos)
        refuse("it needs a character other than spaces and dots");
    if (name.starts_with('-'))
        refuse("it begins like an option");
    if (ToUtf8(ToWide(name)) != name)
        refuse("it is not UTF-8");
    if (!std::all_of(name.begin(), name.end(), IsAllowed))
        refuse(R"(control characters and " * : < > ? \ | are not allowed)");
    if (kind != FileKind::Test && name.ends_with(".test"))
        refuse("'.test.toml' is the ending of test files; see 'vant new test'");
}

void Write(const std::string& name, const std::string& text, bool force) {
    const fs::path file = PathFromUtf8(name);
    const auto refuse = [&name](const std::string& why) {
        throw Failure(ExitCode::WrongInput, name + ": " + why);
    };
    std::error_code unknown;
    if (const fs::path folder = file.parent_path(); !folder.empty() && !fs::is_directory(folder, unknown))
        refuse("there is no folder " + Quoted(PathToUtf8(folder)));
    if (!force && fs::exists(fs::symlink_status(file, unknown)))
        refuse("the file exists; --force replaces it");
    errno = 0;
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out)
        refuse("cannot write the file: " + std::generic_category().message(errno ? errno : EIO));
    out << text;
    out.close();
    if (!out)
        throw Failure(ExitCode::Broken, name + ": the file could not be written completely");
}

/// The commands with which to go on. `name` is that of the file without its ending.
std::vector<std::string> NextCommands(FileKind kind, const std::string& name) {
    const std::string word = WordOfCommandLine(name);
    const std::string file = WordOfCommandLine(name + EndingOf(kind));
    const std::string check = "vant check --strict " + file;
    switch (kind) {
    case FileKind::Procedure:
        return {check, "vant run " + file + " --virtual", "vant new test " + word};
    case FileKind::Engine:
        return {check, "vant engine " + file + " --for 20s"};
    case FileKind::Test:
        break;
    }
    std::error_code unknown;
    if (fs::exists(PathFromUtf8(name + EndingOf(FileKind::Procedure)), unknown))
        return {"vant test " + file};
    return {"vant new procedure " + word, "vant test " + file};
}

} // namespace

ExitCode WriteNewFile(const NewFileOptions& options) {
    const std::string name = WithoutEnding(options.name, options.kind);
    const std::string ownName = PathToUtf8(PathFromUtf8(name).filename());
    CheckName(options.name, ownName, options.kind);
    const std::string file = name + EndingOf(options.kind);
    Write(file, NewFileText(options.kind, ownName), options.force);

    std::cout << "wrote " << Printable(file) << "\n\nnext:\n";
    for (const std::string& command : NextCommands(options.kind, name))
        std::cout << "    " << Printable(command) << '\n';
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "wrote " + file + ", but this could not be written");
    return ExitCode::Passed;
}

} // namespace vant::program
