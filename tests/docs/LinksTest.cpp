// Every link from one file of the project to another leads somewhere.

#include "tests/docs/Markdown.h"

#include <cctype>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace vant::test {
namespace {

/// What a heading is called in links: small letters, digits, underscores and hyphens, one for each blank.
std::string Anchor(const std::string& title) {
    std::string anchor;
    for (const char letter : title) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == ' ')
            anchor += '-';
        else if (std::isalnum(code) || letter == '-' || letter == '_')
            anchor += static_cast<char>(std::tolower(code));
    }
    return anchor;
}

std::set<std::string> Anchors(const std::string& path) {
    std::set<std::string> anchors;
    for (const Section& section : ReadSections(path))
        anchors.insert(Anchor(section.title));
    return anchors;
}

std::vector<std::string> Documents() {
    std::vector<std::string> documents = {"README.md"};
    for (const auto& entry : std::filesystem::directory_iterator("docs"))
        documents.push_back("docs/" + entry.path().filename().string());
    return documents;
}

TEST(Documents, Links_LeadSomewhere) {
    const std::regex link(R"(\]\(([^)#:]*)(#([^)]*))?\))");
    std::size_t count = 0;
    for (const std::string& document : Documents()) {
        const std::string text = ReadProjectFile(document);
        for (std::sregex_iterator each(text.begin(), text.end(), link), end; each != end; ++each) {
            ++count;
            const std::string file = each->str(1).empty()
                                         ? document
                                         : (std::filesystem::path(document).parent_path() / each->str(1))
                                               .lexically_normal()
                                               .generic_string();
            EXPECT_TRUE(std::filesystem::exists(file)) << document << ": " << each->str();
            if ((*each)[3].matched && std::filesystem::exists(file)) {
                EXPECT_TRUE(Anchors(file).contains(each->str(3))) << document << ": " << each->str();
            }
        }
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace vant::test
