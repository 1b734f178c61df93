#include "platform/DynamicLibrary.h"

#include <dlfcn.h>
#include <stdexcept>

namespace vant {

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file) : m_name(file.filename().string()) {
    m_handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle)
        throw std::runtime_error(dlerror());
}

DynamicLibrary::~DynamicLibrary() {
    dlclose(m_handle);
}

DynamicLibrary::Address DynamicLibrary::FindAddress(const char* name) const {
    void* const address = dlsym(m_handle, name);
    if (!address)
        throw std::runtime_error(m_name + " exports no " + name);
    return reinterpret_cast<Address>(address);
}

std::string LibraryFileName(const std::string& name) {
    return "lib" + name + ".so";
}

} // namespace vant
