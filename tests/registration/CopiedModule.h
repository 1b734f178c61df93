#pragma once

#include "tests/module/BuiltModule.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace vant {

/// A copy of the module in a folder of that name somewhere below the program's; gone with the object.
class CopiedModule {
public:
    explicit CopiedModule(const std::filesystem::path& folder) {
        file = m_top.Path() / folder / BuiltModule::File().filename();
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::copy_file(BuiltModule::File(), file,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    ~CopiedModule() {
        // One by one: a walk through the folders would end at a long path on Windows.
        std::error_code ignored;
        for (auto path = file; path != m_top.Path(); path = path.parent_path())
            std::filesystem::remove(path, ignored);
    }
    CopiedModule(const CopiedModule&) = delete;
    CopiedModule& operator=(const CopiedModule&) = delete;

    std::filesystem::path file;

private:
    TemporaryFolder m_top{ProgramFolder()};
};

/// A folder's name of more than 400 characters.
inline std::filesystem::path LongFolder() {
    std::filesystem::path folder;
    for (const char letter : {'a', 'b', 'c', 'd'})
        folder /= std::string(100, letter);
    return folder;
}

} // namespace vant
