// docs/hosting.md against the interface headers: identifiers, bases, slots, signatures and the registration
// record; and its C code against the minimal host.

#include "framework/interfaces/ThreadService.h"
#include "tests/docs/Markdown.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace vant::test {
namespace {

struct Interface {
    std::string base;
    std::string iid; ///< In braces; empty where there is none.
    /// "SLOT SIGNATURE" of each operation that is called.
    std::vector<std::string> operations;

    bool operator==(const Interface&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Interface& each) {
    out << each.base << ' ' << each.iid;
    for (const std::string& operation : each.operations)
        out << "\n  " << operation;
    return out;
}

using Interfaces = std::map<std::string, Interface>;

std::string WithoutComments(const std::string& text) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);)
        result += line.substr(0, line.find("//")) + '\n';
    return result;
}

/// Every match of `expression`, with its groups.
std::vector<std::smatch> Matches(const std::string& text, const std::regex& expression) {
    return {std::sregex_iterator(text.begin(), text.end(), expression), std::sregex_iterator()};
}

/// "{9D46497B-8FA4-...}" from the members of an IID as the headers write them.
std::string GuidText(const std::string& members) {
    std::string digits;
    for (const std::smatch& number : Matches(members, std::regex("0x([0-9A-F]+)")))
        digits += number.str(1);
    return std::regex_replace(digits, std::regex("(.{8})(.{4})(.{4})(.{4})(.{12})"),
                              std::string("{$1-$2-$3-$4-$5}"));
}

void ReadHeader(const std::string& path, Interfaces& interfaces) {
    const std::string text = WithoutComments(ReadProjectFile(path));
    std::size_t structs = 0;
    std::size_t slots = 0;
    for (const std::smatch& each :
         Matches(text, std::regex(R"(struct (\w+) : (IUnknown|IDispatch) \{([^}]*)\};)"))) {
        ++structs;
        Interface& declared = interfaces[each.str(1)];
        declared.base = each.str(2);
        int slot = declared.base == "IDispatch" ? 7 : 3;
        const std::string body = each.str(3);
        for (const std::smatch& operation :
             Matches(body, std::regex(R"(STDMETHODCALLTYPE\s+(\w+\([^)]*\)) = 0;)"))) {
            ++slots;
            const std::string signature =
                std::regex_replace(operation.str(1), std::regex(R"(\s+)"), std::string(" "));
            if (signature != "Reserved" + std::to_string(slot) + "()")
                declared.operations.push_back(std::to_string(slot) + ' ' + signature);
            ++slot;
        }
    }
    // Nothing was passed over.
    EXPECT_EQ(structs, Matches(text, std::regex("struct I\\w+ :")).size()) << path;
    EXPECT_EQ(slots, Matches(text, std::regex("STDMETHODCALLTYPE")).size()) << path;
    for (const std::smatch& each : Matches(text, std::regex(R"(IID IID_(\w+) = \{([^;]*)\};)")))
        interfaces[each.str(1)].iid = GuidText(each.str(2));
}

Interfaces DeclaredInterfaces() {
    Interfaces interfaces;
    for (const char* const header :
         {"framework/interfaces/VantCommand.h", "framework/interfaces/HostServices.h",
          "framework/interfaces/ThreadService.h", "framework/interfaces/ConditionSet.h",
          "ecm/interfaces/EngineData.h"})
        ReadHeader(header, interfaces);
    return interfaces;
}

Interfaces DocumentedInterfaces() {
    Interfaces interfaces;
    for (const Section& section : ReadSections("docs/hosting.md")) {
        if (section.level != 3 || !std::regex_match(section.title, std::regex("I[A-Z]\\w+")))
            continue;
        Interface& documented = interfaces[section.title];
        std::string text;
        for (const std::string& line : section.lines)
            text += line + '\n';
        std::smatch found;
        if (std::regex_search(text, found, std::regex("Base (\\w+)\\.")))
            documented.base = found.str(1);
        if (std::regex_search(text, found, std::regex("IID (\\{[-0-9A-F]+\\})")))
            documented.iid = found.str(1);
        for (const TableRow& row : section.Table("slot"))
            documented.operations.push_back(row.at(0) + ' ' + Unquoted(row.at(1)));
    }
    return interfaces;
}

TEST(HostingDocument, Interfaces_AreThoseOfTheHeaders) {
    const Interfaces declared = DeclaredInterfaces();
    const Interfaces documented = DocumentedInterfaces();
    for (const auto& [name, each] : declared) {
        EXPECT_FALSE(each.operations.empty()) << name;
        const auto found = documented.find(name);
        if (found == documented.end())
            ADD_FAILURE() << name << " is not documented";
        else
            EXPECT_EQ(found->second, each) << name;
    }
    for (const auto& [name, each] : documented)
        EXPECT_TRUE(declared.contains(name)) << name << " is in no header";
}

TEST(HostingDocument, RegistrationRecord_HasTheStatedOffsets) {
    struct Field {
        std::string name;
        bool isPointer;
        std::size_t count;
        std::size_t offset;
    };
    const std::array fields = {
        Field{"callback", true, 1, offsetof(ThreadRegistration, callback)},
        Field{"argument", false, 1, offsetof(ThreadRegistration, argument)},
        Field{"settings", false, 3, offsetof(ThreadRegistration, settings)},
        Field{"ownerName", true, 1, offsetof(ThreadRegistration, ownerName)},
        Field{"threadName", true, 1, offsetof(ThreadRegistration, threadName)},
    };
    std::vector<TableRow> rows;
    std::string text;
    for (const Section& section : ReadSections("docs/hosting.md")) {
        if (section.title != "IThreadService")
            continue;
        rows = section.Table("field");
        for (const std::string& line : section.lines)
            text += line + '\n';
    }
    ASSERT_EQ(rows.size(), fields.size());
    // The layout that both sizes of pointers give.
    std::map<std::size_t, std::size_t> end = {{8, 0}, {4, 0}};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field& field = fields[i];
        EXPECT_EQ(Unquoted(rows[i].at(0)), field.name);
        for (auto& [pointer, offset] : end) {
            const std::size_t size = field.isPointer ? pointer : 4;
            offset = (offset + size - 1) / size * size;
            EXPECT_EQ(rows[i].at(pointer == 8 ? 2 : 3), std::to_string(offset)) << field.name;
            if (pointer == sizeof(void*)) {
                EXPECT_EQ(offset, field.offset) << field.name;
            }
            offset += size * field.count;
        }
    }
    EXPECT_EQ(end.at(sizeof(void*)), sizeof(ThreadRegistration));
    EXPECT_NE(text.find("with " + std::to_string(end.at(8)) + " bytes in 64 bits and " +
                        std::to_string(end.at(4)) + " in 32."),
              std::string::npos);
}

TEST(HostingDocument, CodeInC_StandsInTheMinimalHost) {
    const std::string host = ReadProjectFile("examples/minimal_host/minimal_host.c");
    std::size_t count = 0;
    for (const Section& section : ReadSections("docs/hosting.md")) {
        for (const std::string& code : section.Code("c")) {
            ++count;
            EXPECT_NE(host.find(code), std::string::npos) << code;
        }
    }
    EXPECT_EQ(count, 3U);
}

} // namespace
} // namespace vant::test
