#include "host/suite/Discovery.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/Loading.h"
#include "host/suite/TestFileReader.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace vant::host {

namespace {

using std::filesystem::path;

bool IsHidden(const path& file) {
    const std::string name = PathToUtf8(file.filename());
    return name.starts_with('.') && name != "." && name != "..";
}

/// Every TOML file in a folder and below it, by name.
std::vector<std::string> TomlFilesIn(const path& folder) {
    std::vector<std::string> files;
    std::filesystem::recursive_directory_iterator each(folder);
    for (const auto end = std::filesystem::end(each); each != end; ++each) {
        const path& file = each->path();
        if (each->is_directory() && IsHidden(file))
            each.disable_recursion_pending();
        else if (each->is_regular_file() && file.extension() == ".toml")
            files.push_back(FileName(file.lexically_normal()));
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// A file whose syntax is wrong counts, so that its mistakes are told.
bool MayBeProcedure(const std::string& file) {
    Diagnostics ignored;
    const auto root = ParseToml(ReadFile(PathFromUtf8(file)), ignored);
    return !root || IsProcedureToRun(*root);
}

std::vector<std::string> WithoutCalledOnes(const std::vector<std::string>& files) {
    std::vector<LoadedProcedure> procedures;
    procedures.reserve(files.size());
    for (const std::string& file : files)
        procedures.push_back(LoadProcedure(file, ""));
    const std::vector<bool> called = FindCalledOnes(procedures);
    std::vector<std::string> remaining;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!called[i])
            remaining.push_back(files[i]);
    }
    return remaining;
}

std::vector<std::string> FindIn(const path& folder) {
    std::vector<std::string> files = TomlFilesIn(folder);
    std::vector<std::string> tests;
    std::copy_if(files.begin(), files.end(), std::back_inserter(tests), IsTestFile);
    if (tests.empty()) {
        std::erase_if(files, [](const std::string& each) { return !MayBeProcedure(each); });
        tests = WithoutCalledOnes(files);
    }
    if (tests.empty())
        throw InputError("there are no test files and no procedures in this folder");
    return tests;
}

std::vector<std::string> Find(const path& given) {
    if (std::filesystem::is_directory(given))
        return FindIn(given);
    if (!std::filesystem::exists(given))
        throw InputError(std::make_error_code(std::errc::no_such_file_or_directory).message());
    return {FileName(given)};
}

} // namespace

bool IsTestFile(const std::string& file) {
    return file.ends_with(testFileEnding);
}

std::vector<std::string> FindTests(std::span<const std::string> paths) {
    std::vector<std::string> all;
    for (const std::string& each : paths) {
        try {
            for (std::string& file : Find(PathFromUtf8(each))) {
                if (std::find(all.begin(), all.end(), file) == all.end())
                    all.push_back(std::move(file));
            }
        } catch (const InputError& failure) {
            throw InputError(each + ": " + failure.what());
        } catch (const std::filesystem::filesystem_error& failure) {
            throw InputError(each + ": " + failure.code().message());
        }
    }
    return all;
}

} // namespace vant::host
