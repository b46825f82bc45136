// Writes JSON as it comes: objects and arrays are opened and closed by hand, commas and quotes see to themselves. Text
// is UTF-8. Numbers that JSON cannot say (nan, infinities) become null.
#pragma once
#include <string>
#include <string_view>

namespace host {

class Json {
public:
    Json& open(char bracket);   // '{' or '['
    Json& close(char bracket);  // '}' or ']'
    Json& key(std::string_view name);
    Json& value(std::string_view text);
    Json& value(char const* text) { return value(std::string_view(text)); }
    Json& value(std::wstring const& text);
    Json& value(double number);
    Json& value(float number);
    Json& value(int number) { return raw(std::to_string(number)); }
    Json& value(std::size_t number) { return raw(std::to_string(number)); }
    Json& value(bool truth) { return raw(truth ? "true" : "false"); }
    template<class Value> Json& member(std::string_view name, Value const& what) { return key(name).value(what); }
    std::string const& text() const { return text_; }
    std::string take() { return std::move(text_ += '\n'); }

private:
    Json& raw(std::string_view text);
    void separate();
    void quote(std::string_view text);

    std::string text_;
    bool first_ = true;
};

}  // namespace host
