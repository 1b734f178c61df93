#include "host/procedure/PropertyCheck.h"

#include "host/procedure/ProcedureReader.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

/// All messages about a command, whose class begins in line 6 and whose properties in line 7.
std::string Messages(const std::string& command) {
    Diagnostics found;
    const Procedure procedure = ReadProcedure(
        "name = 'n'\nstart = 's'\n[steps]\ns = { end = 'passed' }\n[commands.c]\n" + command, found);
    CheckProperties(procedure, found);
    return found.Print("f");
}

std::string Calculator(const std::string& properties) {
    return "class = 'Calculator'\nproperties = { " + properties + " }\n";
}

TEST(PropertyCheck, CompleteCommand_IsAccepted) {
    EXPECT_EQ(Messages(Calculator("sourceA = '1', dsResult = 'r', operation = 'add'")), "");
    EXPECT_EQ(Messages(Calculator("dsSourceA = 'a', dsSourceB = 'b', sourceB = '1', dsResult = 'r', "
                                  "operation = 'add'")),
              "");
}

TEST(PropertyCheck, UnknownClass_IsReportedWithTheNearestName) {
    EXPECT_EQ(Messages("class = 'Calculater'"),
              "f:6:9: error: there is no class 'Calculater' (did you mean 'Calculator'?)\n");
    EXPECT_EQ(Messages("class = 'Nothing'"), "f:6:9: error: there is no class 'Nothing'\n");
}

TEST(PropertyCheck, UnknownProperty_IsReportedWithTheNearestName) {
    const std::string rest = ", sourceA = '1', dsResult = 'r', operation = 'add'";
    EXPECT_EQ(Messages(Calculator("operaton = 'add', sourceA = '1', dsResult = 'r'")),
              "f:7:16: error: class Calculator has no property 'operaton' (did you mean 'operation'?)\n");
    EXPECT_EQ(Messages(Calculator("sourcea = '1'" + rest)),
              "f:7:16: error: class Calculator has no property 'sourcea' (did you mean 'sourceA'?)\n");
    EXPECT_EQ(Messages(Calculator("colour = 'red', size = '1'" + rest)),
              "f:7:16: error: class Calculator has no property 'colour'\n"
              "f:7:32: error: class Calculator has no property 'size'\n");
}

TEST(PropertyCheck, PropertyWhoseValueIsAMistake_IsNotMissing) {
    EXPECT_EQ(Messages(Calculator("sourceA = 1, dsResult = 'r', operation = 'add'")),
              "f:7:26: error: property 'sourceA' must be a string, not a number: write it in quotes\n");
}

TEST(PropertyCheck, MissingProperties_AreNamedAtTheCommand) {
    EXPECT_EQ(Messages(Calculator("sourceB = '1'")),
              "f:5:11: error: command 'c' needs the property 'dsSourceA' or 'sourceA'\n"
              "f:5:11: error: command 'c' needs the property 'dsResult'\n"
              "f:5:11: error: command 'c' needs the property 'operation'\n");
}

TEST(PropertyCheck, PropertiesThatExcludeEachOther_AreReportedAtTheSecond) {
    EXPECT_EQ(Messages(Calculator("sourceA = '1', dsSourceA = 'a', dsResult = 'r', operation = 'add'")),
              "f:7:31: error: 'sourceA' and 'dsSourceA' exclude each other: leave one of them out\n");
    EXPECT_EQ(Messages(Calculator("dsSourceA = 'a', sourceA = '1', dsResult = 'r', operation = 'add'")),
              "f:7:33: error: 'dsSourceA' and 'sourceA' exclude each other: leave one of them out\n");
}

TEST(PropertyCheck, EmptyClass_IsReportedOnce) {
    EXPECT_EQ(Messages("class = ''"), "f:6:9: error: 'class' is empty\n");
    EXPECT_EQ(Messages(""), "f:5:11: error: 'class' is missing\n");
}

} // namespace

} // namespace vant::host
