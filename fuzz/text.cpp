// Any bytes as UTF-8, as a number and as a pattern: no failure, and what was decoded once stays as it is.
#include "qel/utils/text.h"
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const bytes(reinterpret_cast<char const*>(data), size);
    std::wstring const wide = Qelutils::fromUtf8(bytes);
    if (Qelutils::fromUtf8(Qelutils::toUtf8(wide)) != wide) std::abort();
    double value = 0, back = 0;
    if (Qelutils::parseNumber(bytes, value) && value == value)
        if (!Qelutils::parseNumber(Qelutils::number(value), back) || back != value) std::abort();
    std::size_t const half = wide.size() / 2;
    Qelutils::matchesWildcard(std::wstring_view(wide).substr(0, half), std::wstring_view(wide).substr(half));
    return 0;
}
