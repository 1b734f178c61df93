// docs/recipes.md: every recipe is a procedure that ends as the page says.

#include "host/procedure/Loading.h"
#include "host/record/Vocabulary.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/LoadedModule.h"
#include "host/runner/Runner.h"
#include "host/text/Duration.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "tests/docs/Markdown.h"
#include "tests/support/VirtualTime.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace vant::test {

using namespace host;

namespace {

void Write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

/// "Ends VERDICT at TIME."
std::string Promised(const Section& section) {
    const std::regex sentence("Ends .* at .*[.]");
    for (const std::string& line : section.lines) {
        if (std::regex_match(line, sentence))
            return line;
    }
    return "the page does not say how it ends";
}

TEST(RecipesDocument, EveryRecipe_EndsAsThePageSays) {
    const std::filesystem::path folder = ProgramFolder() / "recipes";
    std::filesystem::create_directories(folder);
    std::size_t recipes = 0;
    for (const Section& section : ReadSections("docs/recipes.md")) {
        const std::vector<std::string> code = section.Code("toml");
        if (code.empty())
            continue;
        ++recipes;
        SCOPED_TRACE(section.title);
        Write(folder / "recipe.toml", code.at(0));
        if (code.size() > 1)
            Write(folder / "measure.toml", code.at(1));
        LoadedProcedure loaded = LoadProcedure(PathToUtf8(folder / "recipe.toml"), "");
        const VirtualTime time;
        const LoadedModule module(ProgramFolder() / LibraryFileName("VantCommands"));
        CheckCommands(loaded.procedure, module, loaded.files.Main().found);
        EXPECT_EQ(loaded.files.Print(), "");
        if (loaded.files.HasErrors())
            continue;
        Record last;
        Journal journal;
        journal.Observe([&last](const Record& record) { last = record; });
        Runner(loaded.procedure, module, journal).Run();
        EXPECT_EQ("Ends " + last.Text(argument::verdict) + " at " + FormatTime(last.time) + ".",
                  Promised(section))
            << last.Text(argument::reason);
    }
    EXPECT_GE(recipes, 8U);
    std::filesystem::remove_all(folder);
}

} // namespace

} // namespace vant::test
