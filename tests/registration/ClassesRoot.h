#pragma once

#include "platform/system.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace vant {

/// Keys below the classes root by path, parts separated by backslashes, each with its text values by name.
using Subtree = std::map<std::wstring, std::map<std::wstring, std::wstring>>;

/// The classes root that the module registers itself in: the registry's on Windows, a class catalogue of its
/// own elsewhere. One at a time in a process.
class ClassesRoot {
public:
    ClassesRoot();
    ~ClassesRoot();
    ClassesRoot(const ClassesRoot&) = delete;
    ClassesRoot& operator=(const ClassesRoot&) = delete;

    /// Every key that could be the module's: those whose names begin with "VantCommands.", those of the
    /// identifiers of its classes under CLSID, and that of its type library under TypeLib, with all below
    /// them.
    Subtree OfTheModule() const;

    /// The whole classes root.
    Subtree Whole() const;

    /// Writes a value as somebody else would, with the keys that it needs.
    void Set(const std::wstring& path, const std::wstring& name, const std::wstring& text) const;

    void RemoveTree(const std::wstring& path) const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

/// What the registration of the module of that file as a type library adds below the classes root.
Subtree TypeLibraryEntries(const std::filesystem::path& module);

} // namespace vant
