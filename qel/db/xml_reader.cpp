#include "qel/db/xml_reader.h"

#include "qel/utils/text.h"

#include <exception>
#include <memory>
#include <type_traits>

#include <expat.h>

namespace db {

namespace {

constexpr int pieceSize = 64 * 1024;

static_assert(std::is_same_v<XML_Char, char>, "expat has to be built for UTF-8");

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

// ---- XMLElement

XMLElement::XMLElement(char const* name, char const* const* attributes) : name_(name), attributes_(attributes) {
    while (attributes_[2 * count_]) ++count_;
}

char const* XMLElement::find(std::string_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
        if (name == attributes_[2 * i]) return attributes_[2 * i + 1];
    return nullptr;
}

bool XMLElement::get(std::string_view name, std::wstring& value) const {
    char const* text = find(name);
    if (text) value = decodeXMLText(text);
    return text != nullptr;
}

bool XMLElement::get(std::string_view name, std::string_view& utf8) const {
    char const* text = find(name);
    if (text) utf8 = text;
    return text != nullptr;
}

// ---- XMLReader

// What the parser calls; `user` is the reader.
struct XMLReader::Callbacks {
    static void start(void* user, char const* name, char const** attributes) {
        static_cast<XMLReader*>(user)->start(name, attributes);
    }
    static void end(void* user, char const* name) { static_cast<XMLReader*>(user)->end(name); }
    static void text(void* user, char const* text, int size) {
        auto& reader = *static_cast<XMLReader*>(user);
        reader.tell([&] { reader.addText(std::string_view(text, std::size_t(size))); });
    }
    static void documentType(void* user, char const*, char const*, char const*, int) {
        static_cast<XMLReader*>(user)->fail(L"a document type declaration isn't accepted");
    }
};

XMLReader::XMLReader(InputStream& stream, int depthLimit) : stream_(stream), depthLimit_(depthLimit) {}

bool XMLReader::read(XMLHandler& handler) {
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser{XML_ParserCreate(nullptr), &XML_ParserFree};
    if (!parser) {
        error_ = L"not enough memory";
        return false;
    }
    parser_ = parser.get();
    handler_ = &handler;
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, &Callbacks::start, &Callbacks::end);
    XML_SetCharacterDataHandler(parser_, &Callbacks::text);
    XML_SetStartDoctypeDeclHandler(parser_, &Callbacks::documentType);
    while (feed()) {}
    parser_ = nullptr;
    handler_ = nullptr;
    return ok();
}

// One piece of the stream; false when there is no more, or no use in it.
bool XMLReader::feed() {
    void* buffer = XML_GetBuffer(parser_, pieceSize);
    std::size_t size = buffer ? stream_.read(static_cast<char*>(buffer), pieceSize) : 0;
    if (!stream_.ok())
        error_ = stream_.error();
    else if (!buffer || XML_ParseBuffer(parser_, int(size), size == 0) != XML_STATUS_OK)
        failParser();
    return ok() && size > 0;
}

// The parser's own complaint; where the handler's or ours stopped it, that one stands already.
void XMLReader::failParser() {
    XML_Error code = XML_GetErrorCode(parser_);
    bool cutOff = code == XML_ERROR_NO_ELEMENTS || code == XML_ERROR_UNCLOSED_TOKEN || code == XML_ERROR_PARTIAL_CHAR;
    if (XML_GetCurrentByteIndex(parser_) <= 0 && code == XML_ERROR_NO_ELEMENTS)
        fail(L"the file is empty");
    else if (cutOff)
        fail(L"the file ends before its document does");
    else
        fail(Qelutils::fromUtf8(XML_ErrorString(code)));
}

void XMLReader::fail(std::wstring const& message) {
    if (!ok()) return;
    error_ = L"line " + std::to_wstring(line()) + L", column " + std::to_wstring(column()) + L": " + message;
    if (parser_) XML_StopParser(parser_, XML_FALSE);
}

int XMLReader::line() const { return parser_ ? int(XML_GetCurrentLineNumber(parser_)) : 0; }
int XMLReader::column() const { return parser_ ? int(XML_GetCurrentColumnNumber(parser_)) + 1 : 0; }

// No exception may pass through the parser, and a stopped parser may still call once.
template<class Call> void XMLReader::tell(Call call) {
    if (!ok()) return;
    try {
        call();
    } catch (std::exception const& exception) { fail(Qelutils::fromUtf8(exception.what())); }
}

void XMLReader::start(char const* name, char const* const* attributes) {
    tell([&] {
        if (depth_ == depthLimit_) return fail(L"elements are nested too deeply");
        if (!isBlank(text_)) return fail(L"text and elements stand side by side");
        text_.clear();
        isLeaf_ = true;
        ++depth_;
        handler_->startElement(*this, XMLElement(name, attributes));
    });
}

void XMLReader::end(char const* name) {
    tell([&] {
        if (!isLeaf_ && !isBlank(text_)) return fail(L"text and elements stand side by side");
        if (!isLeaf_) text_.clear();
        isLeaf_ = false;
        --depth_;
        handler_->endElement(*this, name, text_);
        text_.clear();
    });
}

void XMLReader::addText(std::string_view text) { text_ += text; }

}  // namespace db
