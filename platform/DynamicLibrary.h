#pragma once

#include "platform/system.h"

#include <filesystem>
#include <string>

namespace vant {

/// A dynamic library loaded into this process; unloaded with the object.
class VANT_PLATFORM_API DynamicLibrary {
public:
    /// Throws std::runtime_error with the system's reason if the file cannot be loaded.
    explicit DynamicLibrary(const std::filesystem::path& file);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// The address of an exported function; throws std::runtime_error if none has that name.
    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(FindAddress(name));
    }

private:
    using Address = void (*)();
    Address FindAddress(const char* name) const;

    void* m_handle = nullptr;
    std::string m_name;
};

/// What this system calls the library whose base name is `name`: `libNAME.so` or `NAME.dll`.
VANT_PLATFORM_API std::string LibraryFileName(const std::string& name);

} // namespace vant
