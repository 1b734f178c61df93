#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace vant {

/// A new, empty folder that no other test has, even of a program that runs at the same time; removed with the
/// object and everything in it.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::random_device random;
        do
            m_path = parent / ("vant_test_" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_path));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

    /// Writes a file of that name with that content, byte for byte, in place of an earlier one; returns its
    /// path.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view content) const {
        const std::filesystem::path file = m_path / name;
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

private:
    std::filesystem::path m_path;
};

} // namespace vant
