// Writes an XML document to a stream as it is told, holding 64 KB at most and the names of the open elements.
//
// An element holds text or elements, never both; each element starts on a line of its own. Text may hold any character
// (see xml_text.h), numbers come back bit for bit, the same calls always give the same bytes. A wrong call (a name that
// isn't of ASCII letters, digits, '_', '.', '-' with a letter or '_' first; an attribute after content; text beside
// elements; an end too many; elements nested deeper than xmlDepthLimit; a second root) makes the document fail, as does
// the stream: later calls then do nothing and `finish` says so. That names are not repeated in an element is the
// caller's duty.
//
//     writer.startElement("node");
//     writer.attribute("id", 7);
//     writer.values(lengths);
//     writer.endElement();
//     bool saved = writer.finish() && stream.commit();
#pragma once
#include "qel/db/streams.h"

#include <concepts>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace db {

class XMLWriter {
public:
    explicit XMLWriter(OutputStream& stream);

    void startElement(std::string_view name);
    void endElement();

    // `value`: wide text, UTF-8, a bool ("true" or "false"), any integer, float, double, or a contiguous range of int,
    // float or double.
    template<class T> void attribute(std::string_view name, T const& value) {
        if (!openAttribute(name)) return;
        put(value);
        closeAttribute();
    }
    // The same kinds; in the innermost element, after what it has already.
    template<class T> void text(T const& value) {
        if (openContent()) put(value);
    }
    // Numbers of a list, with a blank before each but the first of the element.
    template<class T> void value(T number) {
        if (openListItem()) put(number);
    }
    void values(std::span<int const> list);
    void values(std::span<float const> list);
    void values(std::span<double const> list);

    // To be called once, when all elements are ended: hands the rest to the stream. Does not commit it.
    bool finish();
    bool ok() const { return error_.empty(); }
    std::wstring const& error() const { return error_; }

private:
    enum class Place { Outside, StartTag, Text, Elements };  // what stands last in the innermost element

    void put(std::wstring_view text);
    void put(std::string_view utf8);
    void put(bool value) { putRaw(value ? "true" : "false"); }
    void put(int value);
    void put(long long value);
    void put(unsigned long long value);
    void put(float value);
    void put(double value);
    template<std::signed_integral T> void put(T value) { put(static_cast<long long>(value)); }
    template<std::unsigned_integral T> void put(T value) { put(static_cast<unsigned long long>(value)); }
    void put(std::span<int const> list);
    void put(std::span<float const> list);
    void put(std::span<double const> list);
    void put(wchar_t const* text) { put(std::wstring_view(text)); }
    void put(char const* utf8) { put(std::string_view(utf8)); }

    template<class Character> void putCharacters(std::basic_string_view<Character> text);
    template<class T> void putNumber(T value);
    template<class T> void putList(std::span<T const> list);
    template<class T> void putListItems(std::span<T const> list);
    void putRaw(std::string_view bytes);
    void putLine();
    bool openAttribute(std::string_view name);
    void closeAttribute() { putRaw("\""); }
    bool openContent();
    bool openListItem();
    char* make(std::size_t bytes);  // room for so many; what is used of it is told to `take`
    void take(char const* end);
    void flush();
    bool fail(std::wstring message);

    OutputStream& stream_;
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    std::string names_;                // of the open elements, one after the other
    std::vector<std::size_t> starts_;  // of each of them in names_
    Place place_ = Place::Outside;
    bool hasRoot_ = false;
    std::wstring error_;
};

}  // namespace db
