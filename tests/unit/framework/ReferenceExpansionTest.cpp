#include "framework/ReferenceExpansion.h"

#include "platform/ComException.h"

#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant {

namespace {

/// A set of named values, with an account of what was read.
class ReferenceExpansion : public ::testing::Test {
protected:
    std::wstring Expand(std::wstring_view text, std::wstring_view opening = L"$p(") {
        return ExpandReferences(text, opening, [this](std::wstring_view name) {
            names.emplace_back(name);
            const std::wstring& value = values.at(std::wstring(name));
            charactersRead += value.size();
            return CComBSTR(value);
        });
    }
    /// Whether the expansion of `text` ends with a failed read.
    bool Fails(std::wstring_view text) {
        try {
            Expand(text);
            return false;
        } catch (const CComException& exception) {
            EXPECT_EQ(E_FAIL, exception.Code());
            return true;
        }
    }
    /// Values v1 to vN, of which each is a reference to the next and the last is "end".
    void SetChain(std::size_t length) {
        for (std::size_t i = 1; i < length; ++i)
            values[L"v" + std::to_wstring(i)] = L"$p(v" + std::to_wstring(i + 1) + L")";
        values[L"v" + std::to_wstring(length)] = L"end";
    }
    using Names = std::vector<std::wstring>;

    std::map<std::wstring, std::wstring> values;
    Names names; ///< read, in order
    std::size_t charactersRead = 0;
};

TEST_F(ReferenceExpansion, TextWithoutReference_StaysAsItIs) {
    for (const std::wstring_view text :
         {std::wstring_view(L""), std::wstring_view(L"plain"), std::wstring_view(L"a)b"),
          std::wstring_view(L"$"), std::wstring_view(L"$p"), std::wstring_view(L"$ p(X)"),
          std::wstring_view(L"$P(X)"), std::wstring_view(L"$d(X)"), std::wstring_view(L"p(X)"),
          std::wstring_view(L"$$$"), std::wstring_view(L"a\0b", 3)})
        EXPECT_EQ(text, Expand(text));
    EXPECT_TRUE(names.empty());
}

TEST_F(ReferenceExpansion, Reference_IsReplacedWhole) {
    values[L"RPM"] = L"800";
    EXPECT_EQ(L"800 rpm", Expand(L"$p(RPM) rpm"));
    EXPECT_EQ(L"at 800", Expand(L"at $p(RPM)"));
    EXPECT_EQ(L"(800)", Expand(L"($p(RPM))"));
    EXPECT_EQ(L"800", Expand(L"$p(RPM)"));
}

TEST_F(ReferenceExpansion, SeveralReferences_AreReadFromLeftToRight) {
    values[L"X"] = L"1";
    values[L"Y"] = L"2";
    EXPECT_EQ(L"1 and 2, 2 and 1", Expand(L"$p(X) and $p(Y), $p(Y) and $p(X)"));
    EXPECT_EQ((Names{L"X", L"Y", L"Y", L"X"}), names);
    EXPECT_EQ(L"12", Expand(L"$p(X)$p(Y)"));
}

TEST_F(ReferenceExpansion, EmptyValue_RemovesTheReference) {
    values[L"X"] = L"";
    EXPECT_EQ(L"ab", Expand(L"a$p(X)b"));
    EXPECT_EQ(L"", Expand(L"$p(X)$p(X)"));
}

TEST_F(ReferenceExpansion, EmbeddedNulls_AreCharactersLikeOthers) {
    values[std::wstring(L"X\0Y", 3)] = std::wstring(L"1\0", 2);
    EXPECT_EQ(std::wstring_view(L"\0"
                                L"1\0\0",
                                4),
              Expand(std::wstring_view(L"\0$p(X\0Y)\0", 9)));
}

TEST_F(ReferenceExpansion, Opening_IsTheCallersChoice) {
    values[L"X"] = L"1";
    EXPECT_EQ(L"1 $p(X)", Expand(L"$d(X) $p(X)", L"$d("));
}

TEST_F(ReferenceExpansion, Name_IsTakenAsItStands) {
    values[L" X "] = L"1";
    values[L"x"] = L"2";
    EXPECT_EQ(L"1", Expand(L"$p( X )"));
    EXPECT_EQ(L"2", Expand(L"$p(x)"));
}

TEST_F(ReferenceExpansion, Name_MayBeEmpty) {
    values[L""] = L"1";
    EXPECT_EQ(L"a1b", Expand(L"a$p()b"));
}

TEST_F(ReferenceExpansion, NameWithAMarkerInside_EndsAtTheFirstClosing) {
    values[L"a$p(b"] = L"1";
    EXPECT_EQ(L"1)", Expand(L"$p(a$p(b))"));
    EXPECT_EQ((Names{L"a$p(b"}), names);
}

TEST_F(ReferenceExpansion, UnclosedReference_StaysWithAllThatFollows) {
    values[L"X"] = L"1";
    EXPECT_EQ(L"1 $p(X and $p(Y", Expand(L"$p(X) $p(X and $p(Y"));
    EXPECT_EQ((Names{L"X"}), names);
    EXPECT_EQ(L"a$p(", Expand(L"a$p("));
    EXPECT_EQ(L"$p(", Expand(L"$p("));
    EXPECT_EQ(L"$p($p($p(", Expand(L"$p($p($p("));
}

TEST_F(ReferenceExpansion, DollarsBeforeAReference_Stay) {
    values[L"X"] = L"1";
    EXPECT_EQ(L"$1", Expand(L"$$p(X)"));
    EXPECT_EQ(L"$$$1$", Expand(L"$$$$p(X)$"));
    EXPECT_EQ(L"$p1", Expand(L"$p$p(X)"));
}

TEST_F(ReferenceExpansion, ValueThatContainsAReference_IsExpandedInTurn) {
    values[L"A"] = L"<$p(B)>";
    values[L"B"] = L"[$p(C)]";
    values[L"C"] = L"c";
    EXPECT_EQ(L"<[c]> <[c]>", Expand(L"$p(A) $p(A)"));
    EXPECT_EQ((Names{L"A", L"B", L"C", L"A", L"B", L"C"}), names);
}

TEST_F(ReferenceExpansion, MarkerThatAValueOpens_MayCloseInTheTextBehind) {
    values[L"A"] = L"$p(";
    values[L"X"] = L"1";
    EXPECT_EQ(L"1!", Expand(L"$p(A)X)!"));
    values[L"A"] = L"a $p(";
    EXPECT_EQ(L"a 1", Expand(L"$p(A)X)"));
    values[L"A"] = L"$";
    EXPECT_EQ(L"1", Expand(L"$p(A)p(X)"));
    values[L"A"] = L"$p";
    EXPECT_EQ(L"1", Expand(L"$p(A)(X)"));
    values[L"A"] = L"$p(X";
    EXPECT_EQ(L"1", Expand(L"$p(A))"));
}

TEST_F(ReferenceExpansion, MarkerThatBeganBeforeAValue_IsNotLookedForAgain) {
    values[L"A"] = L"p(X)";
    EXPECT_EQ(L"$p(X)", Expand(L"$$p(A)"));
    values[L"A"] = L"(X)";
    EXPECT_EQ(L"$p(X)", Expand(L"$p$p(A)"));
}

TEST_F(ReferenceExpansion, MarkerThatAValueOpensAndNobodyCloses_Stays) {
    values[L"A"] = L"a$p(";
    EXPECT_EQ(L"a$p(X", Expand(L"$p(A)X"));
}

TEST_F(ReferenceExpansion, MarkerAcrossTwoNestedValues_IsFound) {
    values[L"A"] = L"$p(B)X";
    values[L"B"] = L"$p(";
    values[L"XY"] = L"1";
    EXPECT_EQ(L"1", Expand(L"$p(A)Y)"));
    EXPECT_EQ((Names{L"A", L"B", L"XY"}), names);
}

TEST_F(ReferenceExpansion, ManyReferences_AreAllExpanded) {
    constexpr std::size_t count = 100'000;
    values[L"X"] = L"12";
    std::wstring text;
    std::wstring expected;
    for (std::size_t i = 0; i < count; ++i) {
        text += L"$p(X) ";
        expected += L"12 ";
    }
    EXPECT_EQ(expected, Expand(text));
    EXPECT_EQ(count, names.size());
}

TEST_F(ReferenceExpansion, OneValueWithManyReferences_IsExpandedWhole) {
    constexpr std::size_t count = 100'000;
    values[L"X"] = L"1";
    for (std::size_t i = 0; i < count; ++i)
        values[L"A"] += L"$p(X)";
    EXPECT_EQ(std::wstring(count, L'1'), Expand(L"$p(A)"));
}

TEST_F(ReferenceExpansion, ManyUnclosedMarkers_StayAsTheyAre) {
    std::wstring text;
    for (int i = 0; i < 100'000; ++i)
        text += L"$p(";
    EXPECT_EQ(text, Expand(text));
}

TEST_F(ReferenceExpansion, FailingReader_EndsTheExpansionWithItsException) {
    values[L"X"] = L"1";
    EXPECT_THROW(Expand(L"$p(X) $p(unknown) $p(X)"), std::out_of_range);
    EXPECT_EQ((Names{L"X", L"unknown"}), names);
}

TEST_F(ReferenceExpansion, FailingReaderInsideAValue_EndsTheExpansion) {
    values[L"A"] = L"$p(unknown)";
    EXPECT_THROW(Expand(L"$p(A)"), std::out_of_range);
}

// Limits

TEST_F(ReferenceExpansion, ValuesAsDeepAsTheLimit_AreExpanded) {
    SetChain(maxReferenceDepth);
    EXPECT_EQ(L"end", Expand(L"$p(v1)"));
    EXPECT_EQ(L"end end", Expand(L"$p(v1) $p(v1)"));
}

TEST_F(ReferenceExpansion, ValuesDeeperThanTheLimit_Fail) {
    SetChain(maxReferenceDepth + 1);
    EXPECT_TRUE(Fails(L"$p(v1)"));
}

TEST_F(ReferenceExpansion, ValuesAsLargeAsTheNestedLimit_AreExpanded) {
    values[L"A"] = L"$p(B)";
    values[L"B"] = std::wstring(maxNestedCharacters, L'b');
    EXPECT_EQ(values[L"B"], Expand(L"$p(A)"));
}

TEST_F(ReferenceExpansion, ValuesLargerThanTheNestedLimit_Fail) {
    values[L"A"] = L"$p(B)";
    values[L"B"] = std::wstring(maxNestedCharacters + 1, L'b');
    EXPECT_TRUE(Fails(L"$p(A)"));
}

TEST_F(ReferenceExpansion, NestedLimit_CountsAllNestedValuesTogether) {
    values[L"A"] = L"$p(B)$p(C)";
    values[L"B"] = std::wstring(maxNestedCharacters - 1, L'b');
    values[L"C"] = L"c";
    EXPECT_EQ(values[L"B"] + L"c", Expand(L"$p(A)"));
    values[L"C"] = L"cc";
    EXPECT_TRUE(Fails(L"$p(A)"));
}

TEST_F(ReferenceExpansion, NestedLimit_CountsOverTheWholeText) {
    values[L"A"] = L"$p(B)";
    values[L"B"] = std::wstring(maxNestedCharacters / 2 + 1, L'b');
    EXPECT_EQ(values[L"B"], Expand(L"$p(A)"));
    EXPECT_TRUE(Fails(L"$p(A)$p(A)"));
}

TEST_F(ReferenceExpansion, ValuesOfTheTextItself_MayBeLargerThanTheNestedLimit) {
    values[L"B"] = std::wstring(maxNestedCharacters + 1, L'b');
    EXPECT_EQ(values[L"B"] + values[L"B"], Expand(L"$p(B)$p(B)"));
}

TEST_F(ReferenceExpansion, ValueThatIsItsOwnReference_FailsAtTheDepthLimit) {
    values[L"A"] = L"$p(A)";
    EXPECT_TRUE(Fails(L"$p(A)"));
    EXPECT_EQ(maxReferenceDepth + 1, names.size());
}

TEST_F(ReferenceExpansion, ValueThatContainsItsOwnReference_FailsAtTheDepthLimit) {
    for (const wchar_t* value : {L"a$p(A)", L"$p(A)a", L"a$p(A)a", L"$p(A)$p(A)"}) {
        names.clear();
        values[L"A"] = value;
        EXPECT_TRUE(Fails(L"text $p(A) text")) << value;
        EXPECT_EQ(maxReferenceDepth + 1, names.size()) << value;
    }
}

TEST_F(ReferenceExpansion, ValuesThatContainEachOther_FailAtTheDepthLimit) {
    values[L"A"] = L"$p(B)";
    values[L"B"] = L"b$p(C)";
    values[L"C"] = L"$p(A)c";
    EXPECT_TRUE(Fails(L"$p(A)"));
    EXPECT_EQ(maxReferenceDepth + 1, names.size());
}

TEST_F(ReferenceExpansion, ValueThatReopensItselfAcrossItsEnd_Ends) {
    // Every round uses up one closing of the text behind.
    values[L"A"] = L"$p(A";
    EXPECT_EQ(L"$p(A", Expand(L"$p(A))))"));
    EXPECT_EQ(4u, names.size());
    EXPECT_TRUE(Fails(L"$p(A" + std::wstring(maxReferenceDepth + 1, L')')));
}

TEST_F(ReferenceExpansion, ReferenceThatOnlyBeginsInAValue_CountsAsInsideIt) {
    values[L"A"] = L"$p(";
    const auto text = [](std::size_t references) {
        std::wstring result = L"$p(A)";
        for (std::size_t i = 1; i < references; ++i)
            result += L"A)";
        return result;
    };
    EXPECT_EQ(L"$p(", Expand(text(maxReferenceDepth)));
    EXPECT_TRUE(Fails(text(maxReferenceDepth + 1)));
}

TEST_F(ReferenceExpansion, ValuesThatDoubleAtEveryLevel_FailInBoundedMemory) {
    for (std::size_t i = 1; i <= maxReferenceDepth; ++i) {
        const std::wstring next = std::to_wstring(i + 1);
        values[L"v" + std::to_wstring(i)] = L"$p(v" + next + L")$p(v" + next + L")";
    }
    values[L"v" + std::to_wstring(maxReferenceDepth + 1)] = L"";
    EXPECT_TRUE(Fails(L"$p(v1)"));
    EXPECT_LE(charactersRead, maxNestedCharacters + 1000);
}

TEST_F(ReferenceExpansion, ValuesThatDoubleWithinTheDepthLimit_FailInBoundedMemory) {
    // 40 levels, so that only the nested characters end it.
    for (std::size_t i = 1; i <= 40; ++i) {
        const std::wstring next = std::to_wstring(i + 1);
        values[L"v" + std::to_wstring(i)] = L"$p(v" + next + L")$p(v" + next + L")";
    }
    values[L"v41"] = L"";
    EXPECT_TRUE(Fails(L"$p(v1)"));
    EXPECT_GT(charactersRead, maxNestedCharacters);
    EXPECT_LE(charactersRead, maxNestedCharacters + 1000);
}

} // namespace

} // namespace vant
