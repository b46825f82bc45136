// Where the lines of a console come from: a pipe, or a person with an editor.
#pragma once
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace host {

// What may stand in place of a line's end, from `start` on.
struct Completions {
    std::size_t start = 0;
    std::vector<std::string> words;  // sorted
};

class LineReader {
public:
    using Complete = std::function<Completions(std::string const& line)>;

    virtual ~LineReader() = default;
    // Without its end of line; none at the end of the input.
    virtual std::optional<std::string> read(std::string const& prompt) = 0;
    virtual void completeWith(Complete) {}
};

class PlainLines : public LineReader {
public:
    std::optional<std::string> read(std::string const&) override {
        std::string line;
        return std::getline(std::cin, line) ? std::optional(line) : std::nullopt;
    }
};

}  // namespace host
