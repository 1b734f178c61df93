// Class identifiers from texts.

#include "platform/system.h"

#include <gtest/gtest.h>

namespace vant {

namespace {

constexpr CLSID calculator = {0x1111BFC7, 0x28AF, 0x4B67, {0xB4, 0x26, 0xF2, 0x0A, 0xEB, 0x66, 0xF7, 0x82}};

TEST(ClassId, Text_IsReadInEitherCase) {
    for (const wchar_t* text :
         {L"{1111BFC7-28AF-4b67-B426-F20AEB66F782}", L"{1111bfc7-28af-4B67-b426-f20aeb66f782}"}) {
        CLSID classId = {};
        EXPECT_EQ(S_OK, CLSIDFromString(text, &classId));
        EXPECT_EQ(calculator, classId);
    }
}

TEST(ClassId, OtherForms_AreRefused) {
    for (const wchar_t* text : {
             L"",
             L"{",
             L"{}",
             L"1111BFC7-28AF-4B67-B426-F20AEB66F782",        // no braces
             L"{1111BFC7-28AF-4B67-B426-F20AEB66F782",       // not closed
             L"{1111BFC7-28AF-4B67-B426-F20AEB66F78}",       // a digit less
             L"{1111BFC7-28AF-4B67-B426-F20AEB66F7822}",     // a digit more
             L"{1111BFC7-28AF-4B67-B426-F20AEB66F782}x",     // something behind
             L" {1111BFC7-28AF-4B67-B426-F20AEB66F782}",     // something before
             L"{1111BFC728AF-4B67-B426-F20AEB66F782-}",      // a hyphen elsewhere
             L"{1111BFC7 28AF 4B67 B426 F20AEB66F782}",      // other separators
             L"{ 111BFC7-28AF-4B67-B426-F20AEB66F782}",      // a blank for a digit
             L"{+111BFC7-28AF-4B67-B426-F20AEB66F782}",      // a sign
             L"{0x11BFC7-28AF-4B67-B426-F20AEB66F782}",      // a prefix
             L"{1111BFCG-28AF-4B67-B426-F20AEB66F782}",      // no digit
             L"{1111BFC\uFF17-28AF-4B67-B426-F20AEB66F782}", // a digit of another script
             L"(1111BFC7-28AF-4B67-B426-F20AEB66F782)",
         }) {
        CLSID classId = {};
        EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromString(text, &classId)) << testing::PrintToString(text);
    }
}

TEST(ClassId, NullText_IsTheIdentifierOfNothing) {
    CLSID classId = calculator;
    EXPECT_EQ(S_OK, CLSIDFromString(nullptr, &classId));
    EXPECT_EQ(CLSID{}, classId);
}

TEST(ClassId, NullOutput_IsRefused) {
    EXPECT_EQ(E_INVALIDARG, CLSIDFromString(L"{1111BFC7-28AF-4B67-B426-F20AEB66F782}", nullptr));
    EXPECT_EQ(E_INVALIDARG, CLSIDFromProgID(L"VantCommands.Calculator", nullptr));
}

} // namespace

} // namespace vant
