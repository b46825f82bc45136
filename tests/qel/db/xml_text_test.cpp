#include "qel/db/xml_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(XMLText, DecodesUtf8AndEscapes) {
    struct Case {
        char const* utf8;
        std::wstring text;
    };
    for (auto const& [utf8, text] :
         {Case{"", L""}, Case{"plain \\0001", L"plain \\0001"}, Case{"\xC3\xA4\xF0\x9F\x90\x8E", L"\u00E4\U0001F40E"},
          Case{"a\u241B0000b\u241B001F", std::wstring(L"a\0b\x1F", 4)}, Case{"\u241B241B0001", L"\u241B0001"},
          Case{"\u241BFFFF", std::wstring(1, wchar_t(0xFFFF))}}) {
        EXPECT_EQ(db::decodeXMLText(utf8), text) << utf8;
    }
}

TEST(XMLText, AnEscapeWithoutItsDigitsStandsForItself) {
    for (auto const* text : {L"\u241B", L"\u241B12", L"\u241B00G1", L"\u241Bffff", L"\u241B\u241B", L"a\u241B-001"}) {
        std::string utf8;
        for (wchar_t const* c = text; *c; ++c)
            if (*c == db::xmlEscape)
                utf8 += "\u241B";
            else
                utf8 += char(*c);
        EXPECT_EQ(db::decodeXMLText(utf8), text) << utf8;
    }
}

TEST(XMLText, ListsOfNumbersAreParted) {
    std::vector<float> floats{9};
    EXPECT_TRUE(db::parseXMLNumbers(" 1\t-2.5\n1e3  inf -inf\r\n", floats));
    EXPECT_EQ(floats, (std::vector<float>{9, 1, -2.5f, 1000, INFINITY, -INFINITY}));
    std::vector<int> ints;
    EXPECT_TRUE(db::parseXMLNumbers("2147483647 -2147483648 0", ints));
    EXPECT_EQ(ints, (std::vector<int>{2147483647, -2147483647 - 1, 0}));
    std::vector<double> doubles;
    EXPECT_TRUE(db::parseXMLNumbers("", doubles));
    EXPECT_TRUE(db::parseXMLNumbers(" \n ", doubles));
    EXPECT_TRUE(doubles.empty());
}

TEST(XMLText, AListWithAnythingElseIsRefusedWhole) {
    for (auto const* list : {"1 x", "1,2", "1 2.5.1", "1 -", "1 1e", "0x1p3", "1 \xC3\xA4", "1 1e999"}) {
        std::vector<float> values{7};
        EXPECT_FALSE(db::parseXMLNumbers(list, values)) << list;
        EXPECT_EQ(values, (std::vector<float>{7})) << list;
    }
    std::vector<int> ints;
    for (auto const* list : {"1.5", "2147483648", "-2147483649", "nan"})
        EXPECT_FALSE(db::parseXMLNumbers(list, ints)) << list;
}

TEST(XMLText, ASingleNumberLeavesTheValueAloneWhenItIsNone) {
    for (auto const* text : {"", " ", "x", "1 2", "1x"}) {
        int value = 7;
        EXPECT_FALSE(db::parseXMLNumber(text, value)) << text;
        EXPECT_EQ(value, 7);
    }
    double value = 0;
    EXPECT_TRUE(db::parseXMLNumber(" 0.1 ", value));
    EXPECT_EQ(value, 0.1);
}

TEST(XMLText, TruthHasFourSpellings) {
    for (auto const* text : {"true", "false", "1", "0"}) {
        bool value = text[0] != 't' && text[0] != '1';
        EXPECT_TRUE(db::parseXMLNumber(text, value));
        EXPECT_EQ(value, text[0] == 't' || text[0] == '1');
    }
    bool value = true;
    EXPECT_FALSE(db::parseXMLNumber("yes", value));
    EXPECT_TRUE(value);
}

}  // namespace
