// Any bytes, in portions of any size: the reader ends, tells a balanced document and fails with one message at most.
#include "qel/db/xml_reader.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

class Checker : public db::XMLHandler {
public:
    void startElement(db::XMLReader& reader, db::XMLElement const& element) override {
        for (std::size_t i = 0; i < element.attributeCount(); ++i) db::decodeXMLText(element.attribute(i).value);
        check(reader.ok() && reader.depth() == ++depth);
    }
    void endElement(db::XMLReader& reader, std::string_view, std::string_view text) override {
        std::vector<float> values;
        if (!db::parseXMLNumbers(text, values)) check(values.empty());
        check(reader.ok() && reader.depth() == --depth);
    }
    int depth = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    db::StringInputStream stream(std::string(data + 1, data + size), data[0] + 1u);
    db::XMLReader reader(stream, 50);
    Checker checker;
    bool read = reader.read(checker);
    check(read == reader.error().empty() && (!read || checker.depth == 0));
    return 0;
}
