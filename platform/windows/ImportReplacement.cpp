#include "platform/windows/ImportReplacement.h"

#include <algorithm>
#include <string_view>

namespace vant {

namespace {

void Overwrite(IMAGE_THUNK_DATA& entry, void* function) {
    const auto value = reinterpret_cast<decltype(entry.u1.Function)>(function);
    DWORD protection = 0;
    if (entry.u1.Function == value || !VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &protection))
        return;
    entry.u1.Function = value;
    VirtualProtect(&entry, sizeof(entry), protection, &protection);
}

} // namespace

void ReplaceImports(HMODULE module, std::span<const ImportReplacement> replacements) {
    auto* const base = reinterpret_cast<BYTE*>(module);
    const auto at = [base](DWORD offset) { return reinterpret_cast<void*>(base + offset); };
    const auto& dosHeader = *static_cast<const IMAGE_DOS_HEADER*>(at(0));
    const auto& headers = *static_cast<const IMAGE_NT_HEADERS*>(at(static_cast<DWORD>(dosHeader.e_lfanew)));
    const DWORD imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0)
        return;
    for (auto* library = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(at(imports)); library->Name != 0;
         ++library) {
        if (library->OriginalFirstThunk == 0)
            continue; // a library without the names of what it imports
        auto* name = static_cast<const IMAGE_THUNK_DATA*>(at(library->OriginalFirstThunk));
        auto* address = static_cast<IMAGE_THUNK_DATA*>(at(library->FirstThunk));
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto* const byName =
                static_cast<const IMAGE_IMPORT_BY_NAME*>(at(static_cast<DWORD>(name->u1.AddressOfData)));
            const std::string_view imported = reinterpret_cast<const char*>(byName->Name);
            const auto replacement = std::ranges::find(replacements, imported, &ImportReplacement::name);
            if (replacement != replacements.end())
                Overwrite(*address, replacement->function);
        }
    }
}

HMODULE LibraryOf(const void* address) noexcept {
    HMODULE library = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                  GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              static_cast<const wchar_t*>(address), &library)
               ? library
               : nullptr;
}

} // namespace vant
