#include "commands/Calculator.h"
#include "commands/CommandTerminator.h"
#include "commands/CompositeCommand.h"
#include "commands/DataStoreWriter.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant {

namespace {

/// A table as text: rows in order, "name", or "name/alternative", with "?" behind the optional ones.
std::vector<std::wstring> Rows(PropertyTable table) {
    std::vector<std::wstring> rows;
    for (const PropertyRow& row : table) {
        rows.emplace_back(row.name);
        if (row.alternativeName)
            rows.back().append(L"/").append(row.alternativeName);
        if (!row.required)
            rows.back() += L'?';
    }
    return rows;
}

using Table = std::vector<std::wstring>;

TEST(PropertyTables, Calculator_HasAPairForAAndTwoIndependentRowsForB) {
    EXPECT_EQ((Table{L"dsSourceA/sourceA", L"dsSourceB?", L"sourceB?", L"dsResult", L"operation"}),
              Rows(CCalculator::properties));
}

TEST(PropertyTables, CommandTerminator_HasOneRequiredRow) {
    EXPECT_EQ((Table{L"commandID"}), Rows(CCommandTerminator::properties));
}

TEST(PropertyTables, CompositeCommand_HasOneRequiredRow) {
    EXPECT_EQ((Table{L"commandIDList"}), Rows(CCompositeCommand::properties));
}

TEST(PropertyTables, DataStoreWriter_HasTwoRequiredRows) {
    EXPECT_EQ((Table{L"dsLocation", L"value"}), Rows(CDataStoreWriter::properties));
}

TEST(ResourceNumbers, AreThoseOfTheClassTable) {
    EXPECT_EQ(103u, CCompositeCommand::resource);
    EXPECT_EQ(110u, CCommandTerminator::resource);
    EXPECT_EQ(115u, CCalculator::resource);
    EXPECT_EQ(118u, CDataStoreWriter::resource);
}

} // namespace

} // namespace vant
