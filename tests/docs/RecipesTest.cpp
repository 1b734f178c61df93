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
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VirtualTime.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace vant::test {

using namespace host;

namespace {

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
    const TemporaryFolder folder;
    std::size_t recipes = 0;
    for (const Section& section : ReadSections("docs/recipes.md")) {
        const std::vector<std::string> code = section.Code("toml");
        if (code.empty())
            continue;
        ++recipes;
        SCOPED_TRACE(section.title);
        const std::filesystem::path recipe = folder.Write("recipe.toml", code.at(0));
        if (code.size() > 1)
            folder.Write("measure.toml", code.at(1));
        LoadedProcedure loaded = LoadProcedure(PathToUtf8(recipe), "");
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
}

} // namespace

} // namespace vant::test
