#include "platform/DynamicLibrary.h"

#include "platform/Clock.h"
#include "platform/MessagePresenter.h"

#include <stdexcept>
#include <system_error>

namespace vant {

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file) : m_name(file.filename().string()) {
    m_handle =
        LoadLibraryExW(std::filesystem::absolute(file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!m_handle)
        throw std::runtime_error(std::system_category().message(static_cast<int>(GetLastError())));
    TakeTimeFromHere(m_handle);
    TakeMessagesFrom(m_handle);
}

DynamicLibrary::~DynamicLibrary() {
    FreeLibrary(static_cast<HMODULE>(m_handle));
}

DynamicLibrary::Address DynamicLibrary::FindAddress(const char* name) const {
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(m_handle), name);
    if (!address)
        throw std::runtime_error(m_name + " exports no " + name);
    return reinterpret_cast<Address>(reinterpret_cast<void*>(address));
}

std::string LibraryFileName(const std::string& name) {
    return name + ".dll";
}

} // namespace vant
