// Reads an XML document from a stream, piece by piece, and tells a handler of its elements as they come.
//
// Any file may be given: what is empty, cut off, no XML, nested too deeply, with text beside elements, or with a
// document type declaration (and so entities of its own) ends the reading with one message that names line and column.
// The handler adds its own checks by `fail`. Memory grows with the longest text and the depth, not with the document.
// UTF-8 is expected; a byte order mark is skipped, and a declared UTF-16, ISO-8859-1 or US-ASCII is understood.
#pragma once
#include "qel/db/streams.h"
#include "qel/db/xml_text.h"

#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace db {

class XMLReader;

// The start of an element. Lives for the duration of the call that is given it, and so does what it gives out.
class XMLElement {
public:
    struct Attribute {
        std::string_view name, value;  // UTF-8; decodeXMLText makes wide text of a value
    };

    XMLElement(char const* name, char const* const* attributes);

    std::string_view name() const { return name_; }
    std::size_t attributeCount() const { return count_; }
    // In the order of the file; `index` below attributeCount().
    Attribute attribute(std::size_t index) const { return {attributes_[2 * index], attributes_[2 * index + 1]}; }

    bool has(std::string_view name) const { return find(name) != nullptr; }
    // False, with `value` left alone, when the attribute is missing or doesn't hold such a value.
    bool get(std::string_view name, std::wstring& value) const;
    bool get(std::string_view name, std::string_view& utf8) const;
    template<class T> bool get(std::string_view name, T& value) const {
        char const* text = find(name);
        return text && parseXMLNumber(text, value);
    }

private:
    char const* find(std::string_view name) const;

    std::string_view name_;
    char const* const* attributes_;  // name, value, name, value, ..., null
    std::size_t count_ = 0;
};

// Receives the document. It must not throw; an exception is taken as a failure with its text.
class XMLHandler {
public:
    virtual ~XMLHandler() = default;
    virtual void startElement(XMLReader& reader, XMLElement const& element) = 0;
    // `text`: all of an element without elements, as UTF-8, blanks included; empty for an element that holds elements.
    // decodeXMLText makes wide text of it, parseXMLNumbers a list.
    virtual void endElement(XMLReader& reader, std::string_view name, std::string_view text) = 0;
};

class XMLReader {
public:
    explicit XMLReader(InputStream& stream, int depthLimit = xmlDepthLimit);

    // The whole document, once. False when the stream, the document or the handler failed; what the handler was told
    // before then stays told.
    bool read(XMLHandler& handler);

    // For the handler: ends the reading with this message, line and column put before it. Nothing more is told.
    void fail(std::wstring const& message);

    // Where the piece starts that is being told, both counted from 1.
    int line() const;
    int column() const;
    int depth() const { return depth_; }  // elements open; in startElement with, in endElement without the one told

    bool ok() const { return error_.empty(); }
    std::wstring const& error() const { return error_; }

private:
    struct Callbacks;

    void start(char const* name, char const* const* attributes);
    void end(char const* name);
    void addText(std::string_view text);
    bool feed();
    void failParser();
    template<class Call> void tell(Call call);

    InputStream& stream_;
    int depthLimit_;
    XML_ParserStruct* parser_ = nullptr;  // while reading
    XMLHandler* handler_ = nullptr;       // likewise
    std::string text_;                    // since the last tag
    bool isLeaf_ = false;                 // no element was told in the innermost one
    int depth_ = 0;
    std::wstring error_;
};

}  // namespace db
