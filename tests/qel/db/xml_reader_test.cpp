#include "qel/db/xml_reader.h"

#include "qel/db/xml_writer.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace {

// Writes down what it is told; fails or throws at the element that it is told to dislike.
class Recorder : public db::XMLHandler {
public:
    void startElement(db::XMLReader& reader, db::XMLElement const& element) override {
        told += "<" + std::string(element.name());
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            told += " " + std::string(element.attribute(i).name) + "=" + std::string(element.attribute(i).value);
        told += ">";
        deepest = std::max(deepest, reader.depth());
        if (element.name() == "disliked") reader.fail(L"unknown element");
        if (element.name() == "thrown") throw std::runtime_error("out of range");
    }
    void endElement(db::XMLReader& reader, std::string_view name, std::string_view text) override {
        told += std::string(text) + "</" + std::string(name) + ">";
        if (name == "dislikedEnd") reader.fail(L"wrong value");
    }

    std::string told;
    int deepest = 0;
};

struct Result {
    bool read;
    std::string told;
    std::wstring error;
};

Result readText(std::string const& text, std::size_t portion = std::string::npos, int depthLimit = db::xmlDepthLimit) {
    db::StringInputStream stream(text, portion);
    db::XMLReader reader(stream, depthLimit);
    Recorder recorder;
    bool read = reader.read(recorder);
    EXPECT_EQ(read, reader.error().empty());
    return {read, recorder.told, reader.error()};
}

std::string repeated(char const* text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

TEST(XMLReader, TellsElementsAttributesAndTextInOrder) {
    Result result = readText("<?xml version=\"1.0\"?>\n<!-- c --><s v='1'>\n  <a x='1' y='2'/>\n <b> t </b>\n</s>\n");
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.told, "<s v=1><a x=1 y=2></a><b> t </b></s>");
}

TEST(XMLReader, PortionsOfAnySizeGiveTheSame) {
    std::string const text = "<s v='&lt;\xC3\xA4'>\n<b>x&amp;<![CDATA[<y>]]>\xF0\x9F\x90\x8E&#10;</b></s>";
    for (std::size_t portion : {1, 2, 3, 7, 1000}) {
        Result result = readText(text, portion);
        EXPECT_TRUE(result.read) << portion;
        EXPECT_EQ(result.told, "<s v=<\xC3\xA4><b>x&<y>\xF0\x9F\x90\x8E\n</b></s>") << portion;
    }
}

TEST(XMLReader, AcceptsAByteOrderMarkAndOtherDeclaredEncodings) {
    EXPECT_EQ(readText("\xEF\xBB\xBF<a>x</a>").told, "<a>x</a>");
    EXPECT_EQ(readText("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>").told, "<a>\xC3\xA4</a>");
    EXPECT_EQ(readText(std::string("\xFF\xFE<\0a\0/\0>\0", 10)).told, "<a></a>");
}

TEST(XMLReader, BrokenFilesFailWithLineAndColumn) {
    struct Case {
        std::string text;
        std::wstring error;
    };
    std::string const declared = "<?xml version='1.0'";
    for (auto const& [text, error] : {
             Case{"", L"line 1, column 1: the file is empty"},
             Case{" \n", L"line 2, column 1: the file ends before its document does"},
             Case{"<a>", L"line 1, column 4: the file ends before its document does"},
             Case{"<a>\n <b", L"line 2, column 2: the file ends before its document does"},
             Case{"<a>\xC3", L"line 1, column 4: the file ends before its document does"},
             Case{"<a>\n</b>", L"line 2, column 3: mismatched tag"},
             Case{"<a/><b/>", L"line 1, column 5: junk after document element"},
             Case{"<a x='1' x='2'/>", L"line 1, column 10: duplicate attribute"},
             Case{"<a>&none;</a>", L"line 1, column 4: undefined entity"},
             Case{"<a>\x01</a>", L"line 1, column 4: not well-formed (invalid token)"},
             Case{"<a>&#0;</a>", L"line 1, column 4: reference to invalid character number"},
             Case{"<a>\xFF</a>", L"line 1, column 4: not well-formed (invalid token)"},
             Case{"text", L"line 1, column 1: syntax error"},
             Case{std::string("\0\x7F"
                              "ELF\2\1",
                              7),
                  L"line 1, column 1: not well-formed (invalid token)"},
             Case{declared + " encoding='x'?><a/>", L"line 1, column 31: unknown encoding"},
             Case{"<a>\n x<b/></a>", L"line 2, column 3: text and elements stand side by side"},
             Case{"<a><b/>x</a>", L"line 1, column 9: text and elements stand side by side"},
             Case{"<a><b/>x<b/></a>", L"line 1, column 9: text and elements stand side by side"},
             Case{"<a>\n<disliked/></a>", L"line 2, column 1: unknown element"},
             Case{"<a>\n<dislikedEnd>\n</dislikedEnd></a>", L"line 3, column 1: wrong value"},
             Case{"<a>\n<thrown/></a>", L"line 2, column 1: out of range"},
         }) {
        Result result = readText(text);
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.error, error) << text;
    }
}

TEST(XMLReader, EveryCutOfADocumentFails) {
    std::string const text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a x=\"&lt;\"><b>1 \xC3\xA4 &#10;</b><c/></a>";
    for (std::size_t size = 0; size < text.size(); ++size) EXPECT_FALSE(readText(text.substr(0, size)).read) << size;
    EXPECT_TRUE(readText(text).read);
}

TEST(XMLReader, DocumentTypesAndEntitiesAreRefused) {
    std::string laughs = "<!DOCTYPE a [<!ENTITY l0 \"ha\">";
    for (int i = 1; i < 30; ++i) {
        std::string name = "&l" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY l" + std::to_string(i) + " \"" + name + name + "\">";
    }
    laughs += "]><a>&l29;</a>";
    for (auto const& text :
         {laughs, std::string("<!DOCTYPE a><a/>"), std::string("<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a/>")}) {
        Result result = readText(text);
        EXPECT_EQ(result.error.substr(result.error.find(L": ")), L": a document type declaration isn't accepted");
        EXPECT_EQ(result.told, "");
    }
}

TEST(XMLReader, DepthIsLimited) {
    std::string const deep = repeated("<a>", 10) + repeated("</a>", 10);
    EXPECT_TRUE(readText(deep, 1000, 10).read);
    EXPECT_EQ(readText(deep, 1000, 9).error, L"line 1, column 28: elements are nested too deeply");
}

TEST(XMLReader, AnAbsurdlyDeepFileFailsCleanly) {
    Result result = readText(repeated("<a>", 200'000) + repeated("</a>", 200'000));
    EXPECT_EQ(result.error, L"line 1, column 30001: elements are nested too deeply");
}

TEST(XMLReader, WhatTheWriterNestsAtMostIsRead) {
    db::StringOutputStream stream;
    db::XMLWriter writer(stream);
    for (int i = 0; i < db::xmlDepthLimit; ++i) writer.startElement("a");
    for (int i = 0; i < db::xmlDepthLimit; ++i) writer.endElement();
    ASSERT_TRUE(writer.finish());
    EXPECT_TRUE(readText(stream.text()).read);
}

TEST(XMLReader, NothingIsToldAfterAFailure) {
    EXPECT_EQ(readText("<a><disliked/><b/></a>").told, "<a><disliked>");
    EXPECT_EQ(readText("<a><dislikedEnd>x</dislikedEnd><b/></a>").told, "<a><dislikedEnd>x</dislikedEnd>");
}

TEST(XMLReader, AStreamThatFailsSaysSo) {
    db::FileInputStream stream(L"/none/at/all", 0);
    db::XMLReader reader(stream);
    Recorder recorder;
    EXPECT_FALSE(reader.read(recorder));
    EXPECT_EQ(reader.error(), stream.error());
    EXPECT_FALSE(reader.error().empty());
}

TEST(XMLReader, DepthCountsTheElementTold) {
    db::StringInputStream stream("<a><b/><b><c/></b></a>");
    db::XMLReader reader(stream);
    Recorder recorder;
    EXPECT_TRUE(reader.read(recorder));
    EXPECT_EQ(recorder.deepest, 3);
    EXPECT_EQ(reader.depth(), 0);
}

// Asks an element in the words of a loader.
class Asker : public db::XMLHandler {
public:
    void startElement(db::XMLReader&, db::XMLElement const& element) override { ask(element); }
    void endElement(db::XMLReader&, std::string_view, std::string_view) override {}
    std::function<void(db::XMLElement const&)> ask;
};

TEST(XMLReader, AttributesAreAskedByNameAndKind) {
    db::StringInputStream stream("<a i='7' f='0.1' t='1 x\u241B0001' b='true' e=''/>");
    db::XMLReader reader(stream);
    Asker asker;
    asker.ask = [](db::XMLElement const& element) {
        int i = 0;
        float f = 0;
        bool b = false;
        std::wstring t;
        std::string_view utf8;
        EXPECT_TRUE(element.get("i", i) && element.get("f", f) && element.get("b", b) && element.get("t", t));
        EXPECT_TRUE(i == 7 && f == 0.1f && b && t == L"1 x\1");
        EXPECT_TRUE(element.get("t", utf8) && utf8 == "1 x\u241B0001");
        EXPECT_FALSE(element.get("t", i) || element.get("e", i) || element.get("none", i) || element.get("none", t));
        EXPECT_EQ(i, 7);
        EXPECT_TRUE(element.has("e") && !element.has("none"));
    };
    EXPECT_TRUE(reader.read(asker));
}

// ---- Round trips with the writer

class Collector : public db::XMLHandler {
public:
    void startElement(db::XMLReader&, db::XMLElement const& element) override { element.get("t", attribute); }
    void endElement(db::XMLReader&, std::string_view, std::string_view utf8) override {
        text = db::decodeXMLText(utf8);
    }
    std::wstring attribute, text;
};

void expectTextBack(std::wstring const& text) {
    db::StringOutputStream out;
    db::XMLWriter writer(out);
    writer.startElement("a");
    writer.attribute("t", text);
    writer.text(text);
    writer.endElement();
    ASSERT_TRUE(writer.finish());
    db::StringInputStream in(out.text());
    db::XMLReader reader(in);
    Collector collector;
    ASSERT_TRUE(reader.read(collector)) << out.text();
    EXPECT_EQ(collector.attribute, text);
    EXPECT_EQ(collector.text, text);
}

TEST(XMLRoundTrip, EveryCharacterComesBack) {
    for (char32_t first = 0; first <= 0x10FFFF; first += 0x400) {
        std::wstring text;
        for (char32_t c = first; c < first + 0x400; ++c) text += wchar_t(c);
        expectTextBack(text);
    }
}

TEST(XMLRoundTrip, RandomTextsOfAwkwardCharactersComeBack) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::wstring const awkward =
        std::wstring(L"\0\1 \t\r\n<>&\"'];#0123ABFF\u241B\u0085\u2028\uFEFF\uFFFD\U0010FFFF", 32);
    for (int i = 0; i < 2000; ++i) {
        std::wstring text(random() % 60, L' ');
        for (wchar_t& c : text) c = awkward[random() % awkward.size()];
        expectTextBack(text);
    }
}

TEST(XMLRoundTrip, BlanksAtTheEdgesOfATextStay) {
    for (auto const* text : {L"", L" ", L"  x  ", L"\n", L"\r\n", L"\t\t"}) expectTextBack(text);
}

TEST(XMLReader, RandomGarbageFailsWithoutHarm) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::string const good = "<a x='1'>\n<b y=\"&lt;\">text &#10;</b><c/></a>";
    for (int i = 0; i < 3000; ++i) {
        std::string text = good;
        for (int change = 0; change < 3; ++change) text[random() % text.size()] = char(random());
        Result result = readText(text, 1 + random() % 20);
        EXPECT_TRUE(result.read || result.error.starts_with(L"line "));
    }
}

}  // namespace
