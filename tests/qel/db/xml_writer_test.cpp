#include "qel/db/xml_writer.h"

#include "qel/db/xml_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

std::string const head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// The document that `write` makes, without the first line; the error in its place when it fails.
template<class Write> std::string written(Write write) {
    db::StringOutputStream stream;
    db::XMLWriter writer(stream);
    write(writer);
    if (!writer.finish()) return std::string(writer.error().begin(), writer.error().end());
    EXPECT_EQ(stream.text().substr(0, head.size()), head);
    return stream.text().substr(head.size());
}

// The text of one element that holds `value`.
template<class T> std::string textOf(T const& value) {
    std::string document = written([&](auto& writer) {
        writer.startElement("a");
        writer.text(value);
        writer.endElement();
    });
    return document.substr(3, document.size() - 8);
}

TEST(XMLWriter, ElementsStandOnTheirOwnLines) {
    std::string document = written([](db::XMLWriter& writer) {
        writer.startElement("scene");
        writer.startElement("node");
        writer.attribute("id", 7);
        writer.attribute("name", L"hip");
        writer.startElement("value");
        writer.text(L"x");
        writer.endElement();
        writer.startElement("none");
        writer.endElement();
        writer.endElement();
        writer.endElement();
    });
    EXPECT_EQ(document, "<scene>\n"
                        "  <node id=\"7\" name=\"hip\">\n"
                        "    <value>x</value>\n"
                        "    <none/>\n"
                        "  </node>\n"
                        "</scene>\n");
}

TEST(XMLWriter, EveryKindOfValueHasItsSpelling) {
    EXPECT_EQ(textOf(true), "true");
    EXPECT_EQ(textOf(false), "false");
    EXPECT_EQ(textOf(-2147483647 - 1), "-2147483648");
    EXPECT_EQ(textOf(4294967295u), "4294967295");
    EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(textOf(short(-3)), "-3");
    EXPECT_EQ(textOf(0.1f), "0.1");
    EXPECT_EQ(textOf(0.1), "0.1");
    EXPECT_EQ(textOf("utf-8 \xC3\xA4"), "utf-8 \xC3\xA4");
    EXPECT_EQ(textOf(std::string("<")), "&lt;");
    EXPECT_EQ(textOf(std::wstring(L"\u00E4")), "\xC3\xA4");
    EXPECT_EQ(textOf(std::vector<int>{1, -2, 3}), "1 -2 3");
    EXPECT_EQ(textOf(std::vector<float>{0.5f}), "0.5");
    EXPECT_EQ(textOf(std::vector<double>{}), "");
}

TEST(XMLWriter, SpecialNumbersHaveOneSpelling) {
    float const denormal = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(textOf(-0.0f), "-0");
    EXPECT_EQ(textOf(INFINITY), "inf");
    EXPECT_EQ(textOf(-INFINITY), "-inf");
    EXPECT_EQ(textOf(NAN), "nan");
    EXPECT_EQ(textOf(std::copysign(NAN, -1.0f)), "nan");
    EXPECT_EQ(textOf(std::vector<double>{-NAN, double(NAN)}), "nan nan");
    EXPECT_EQ(textOf(denormal), "1e-45");
}

TEST(XMLWriter, NumbersDoNotFollowTheLocale) {
    char const* const comma[] = {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE"};
    bool found = false;
    for (auto const* name : comma) found = found || std::setlocale(LC_NUMERIC, name);
    EXPECT_EQ(textOf(1234.5), "1234.5");
    std::setlocale(LC_NUMERIC, "C");
    if (!found) GTEST_SKIP() << "no locale with a decimal comma here";
}

template<class Float, class Bits> void expectBitsBack(Bits bits) {
    auto value = std::bit_cast<Float>(bits);
    std::vector<Float> read;
    ASSERT_TRUE(db::parseXMLNumbers(textOf(value), read));
    ASSERT_EQ(read.size(), 1u);
    if (std::isnan(value))
        EXPECT_TRUE(std::isnan(read[0]));
    else
        EXPECT_EQ(std::bit_cast<Bits>(read[0]), bits);
}

TEST(XMLWriter, NumbersOfAllBitPatternsComeBackBitForBit) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    for (std::uint32_t bits :
         {0x00000000u, 0x80000000u, 0x00000001u, 0x807FFFFFu, 0x00800000u, 0x7F7FFFFFu, 0x7F800000u})
        expectBitsBack<float>(bits);
    for (int i = 0; i < 20'000; ++i) {
        expectBitsBack<float>(std::uint32_t(random()));
        expectBitsBack<double>(std::uint64_t(random()));
        expectBitsBack<float>(std::uint32_t(random()) & 0x807FFFFFu);  // denormals
    }
}

TEST(XMLWriter, MarkupIsEscaped) {
    EXPECT_EQ(textOf(L"<&>\"' ]]>"), "&lt;&amp;&gt;&quot;' ]]&gt;");
    EXPECT_EQ(textOf(L"\t\n\r"), "&#9;&#10;&#13;");
    EXPECT_EQ(written([](auto& writer) {
                  writer.startElement("a");
                  writer.attribute("b", L"\"<\n>");
                  writer.endElement();
              }),
              "<a b=\"&quot;&lt;&#10;&gt;\"/>\n");
}

TEST(XMLWriter, WhatXMLCanNotHoldIsEscapedWithDigits) {
    EXPECT_EQ(textOf(std::wstring(L"a\0b", 3)), "a\xE2\x90\x9B"
                                                "0000b");
    EXPECT_EQ(textOf(std::wstring(1, wchar_t(0x1F))), "\xE2\x90\x9B"
                                                      "001F");
    EXPECT_EQ(textOf(std::wstring(1, wchar_t(0xFFFE))), "\xE2\x90\x9B"
                                                        "FFFE");
    EXPECT_EQ(textOf(std::wstring(1, wchar_t(0xD800))), "\xE2\x90\x9B"
                                                        "D800");
    EXPECT_EQ(textOf(std::wstring(1, db::xmlEscape)), "\xE2\x90\x9B"
                                                      "241B");
    EXPECT_EQ(textOf(L"\x7F\u0085"), "\x7F\xC2\x85");
}

TEST(XMLWriter, ValuesAboveUnicodeBecomeTheReplacementCharacter) {
    EXPECT_EQ(textOf(std::wstring{wchar_t(0x110000), wchar_t(-1)}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(XMLWriter, PiecesOfTextFollowEachOther) {
    EXPECT_EQ(written([](auto& writer) {
                  writer.startElement("a");
                  writer.text(L"x");
                  writer.text(1);
                  writer.text(L"");
                  writer.endElement();
              }),
              "<a>x1</a>\n");
}

TEST(XMLWriter, ListsArePartedByOneBlankHoweverTheyAreGiven) {
    std::vector<float> const list{2, 3};
    EXPECT_EQ(written([&](auto& writer) {
                  writer.startElement("a");
                  writer.value(1);
                  writer.values(list);
                  writer.values(std::vector<int>{});
                  writer.value(true);
                  writer.values(std::vector<int>{4});
                  writer.endElement();
              }),
              "<a>1 2 3 true 4</a>\n");
}

TEST(XMLWriter, AnEmptyListLeavesTheElementEmpty) {
    EXPECT_EQ(written([](auto& writer) {
                  writer.startElement("a");
                  writer.values(std::vector<float>{});
                  writer.endElement();
              }),
              "<a/>\n");
}

TEST(XMLWriter, NothingIsLostAtTheEdgesOfItsBuffer) {
    std::vector<int> numbers(100'000);
    std::string expected;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = int(i * 7919);
        expected += (i ? " " : "") + std::to_string(numbers[i]);
    }
    EXPECT_EQ(textOf(numbers), expected);
    for (std::size_t size : {1023, 1024, 1025, 65535, 65536, 300000})
        EXPECT_EQ(textOf(std::wstring(size, L'\1')).size(), size * 7) << size;
}

TEST(XMLWriter, WrongCallsFailTheDocument) {
    using Writer = db::XMLWriter;
    struct Case {
        char const* error;
        std::function<void(Writer&)> write;
    };
    auto open = [](Writer& writer) { writer.startElement("a"); };
    for (auto const& [error, write] : {
             Case{"The XML document isn't complete", [](Writer&) {}},
             Case{"The XML document isn't complete", open},
             Case{"No XML element is open", [](Writer& writer) { writer.endElement(); }},
             Case{"\"\" is no XML name", [](Writer& writer) { writer.startElement(""); }},
             Case{"\"a b\" is no XML name", [](Writer& writer) { writer.startElement("a b"); }},
             Case{"\"1a\" is no XML name", [](Writer& writer) { writer.startElement("1a"); }},
             Case{"\"a=\" is no XML name",
                  [=](Writer& writer) {
                      open(writer);
                      writer.attribute("a=", 1);
                  }},
             Case{"An XML document has one outermost element",
                  [=](Writer& writer) {
                      open(writer);
                      writer.endElement();
                      open(writer);
                  }},
             Case{"An XML element can't hold text and elements",
                  [=](Writer& writer) {
                      open(writer);
                      writer.text(L"x");
                      open(writer);
                  }},
             Case{"XML text stands in an element that holds no elements",
                  [=](Writer& writer) {
                      open(writer);
                      open(writer);
                      writer.endElement();
                      writer.text(L"x");
                  }},
             Case{"XML text stands in an element that holds no elements", [](Writer& writer) { writer.value(1); }},
             Case{"XML attributes come first in their element",
                  [=](Writer& writer) {
                      open(writer);
                      writer.text(L"x");
                      writer.attribute("b", 1);
                  }},
             Case{"XML attributes come first in their element", [](Writer& writer) { writer.attribute("b", 1); }},
             Case{"XML elements are nested too deeply",
                  [=](Writer& writer) {
                      for (int i = 0; i <= db::xmlDepthLimit; ++i) open(writer);
                  }},
         }) {
        EXPECT_EQ(written(write), error);
    }
}

TEST(XMLWriter, TheFirstFailureStands) {
    EXPECT_EQ(written([](auto& writer) {
                  writer.startElement("1");
                  writer.endElement();
                  writer.attribute("=", 1);
                  writer.text(L"x");
              }),
              "\"1\" is no XML name");
}

TEST(XMLWriter, DeepDocumentsGrowWithTheirDepthOnly) {
    std::string document = written([](auto& writer) {
        for (int i = 0; i < db::xmlDepthLimit; ++i) writer.startElement("a");
        for (int i = 0; i < db::xmlDepthLimit; ++i) writer.endElement();
    });
    EXPECT_LT(document.size(), std::size_t(db::xmlDepthLimit) * 150);
}

class FailingStream : public db::OutputStream {
public:
    bool write(char const*, std::size_t) override { return fail(L"the disk is full"); }
    bool commit() override { return false; }
};

TEST(XMLWriter, AFailingStreamFailsTheDocument) {
    FailingStream stream;
    db::XMLWriter writer(stream);
    writer.startElement("a");
    for (int i = 0; i < 100'000; ++i) writer.value(i);
    writer.endElement();
    EXPECT_FALSE(writer.ok());
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(writer.error(), L"the disk is full");
}

}  // namespace
