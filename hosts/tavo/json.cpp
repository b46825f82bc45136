#include "hosts/tavo/json.h"

#include "qel/utils/text.h"

#include <cmath>
#include <fmt/format.h>

namespace host {

Json& Json::open(char bracket) {
    separate();
    text_ += bracket;
    first_ = true;
    return *this;
}

Json& Json::close(char bracket) {
    text_ += bracket;
    first_ = false;
    return *this;
}

Json& Json::key(std::string_view name) {
    separate();
    quote(name);
    text_ += ':';
    first_ = true;
    return *this;
}

Json& Json::value(std::string_view text) {
    separate();
    quote(text);
    return *this;
}

Json& Json::value(std::wstring const& text) { return value(std::string_view(Qelutils::toUtf8(text))); }
Json& Json::value(double number) { return raw(std::isfinite(number) ? Qelutils::number(number) : "null"); }
Json& Json::value(float number) { return raw(std::isfinite(number) ? Qelutils::number(number) : "null"); }

Json& Json::raw(std::string_view text) {
    separate();
    text_ += text;
    return *this;
}

void Json::separate() {
    if (!first_) text_ += ',';
    first_ = false;
}

void Json::quote(std::string_view text) {
    text_ += '"';
    for (char const c : text) {
        if (c == '"' || c == '\\')
            (text_ += '\\') += c;
        else if (static_cast<unsigned char>(c) < 0x20)
            text_ += fmt::format("\\u{:04x}", int(c));
        else
            text_ += c;
    }
    text_ += '"';
}

}  // namespace host
