#include "plugins/bvh/reader.h"

#include "plugins/bvh/lexical.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

namespace bvh {
namespace {

int channelOf(std::string_view word) {
    auto const found =
        std::find_if(channelNames.begin(), channelNames.end(), [&](char const* name) { return sameWord(name, word); });
    return found == channelNames.end() ? -1 : static_cast<int>(found - channelNames.begin());
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

constexpr bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// A piece of the file fit for a message: short, on one line, no broken character at its end.
std::string excerpt(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::size_t length = std::min(text.size(), longest);
    while (length > 0 && length < text.size() && continuesCharacter(text[length])) --length;
    std::string result{text.substr(0, length)};
    for (char& c : result) {
        if (static_cast<unsigned char>(c) < ' ') c = '?';
    }
    return '"' + result + (length < text.size() ? "...\"" : "\"");
}

// Turns places in a text into lines and columns, asked in ascending order. "\r\n", '\n' and a lone '\r' end a line.
class Places {
public:
    Places(char const* begin, char const* end) : at_(begin), end_(end), lineBegin_(begin) {}

    void moveTo(char const* place) {
        for (; at_ < place; ++at_) {
            bool const pair = *at_ == '\r' && at_ + 1 != end_ && at_[1] == '\n';
            if (pair || (*at_ != '\n' && *at_ != '\r')) continue;
            ++line_;
            lineBegin_ = at_ + 1;
        }
    }
    int line() const { return line_; }
    int column() const {
        return 1 + static_cast<int>(std::count_if(lineBegin_, at_, [](char c) { return !continuesCharacter(c); }));
    }

private:
    char const* at_;
    char const* end_;
    char const* lineBegin_;
    int line_ = 1;
};

class Parser {
public:
    explicit Parser(std::string_view text) : begin_(text.data()), p_(begin_), end_(begin_ + text.size()) {}

    bool run() { return byteOrder() && hierarchy() && motion(); }

    Clip clip;
    Error error;
    Notes notes;

private:
    struct OpenJoint {
        int index;
        bool offset = false;
        bool channels = false;
        bool children = false;
    };

    bool fail(char const* place, std::string message) {
        Places places{begin_, end_};
        places.moveTo(place);
        error = Error{std::move(message), places.line(), places.column()};
        return false;
    }

    // Reading words -------------------------------------------------------------------------------------------------

    void skipBlanks() {
        while (p_ != end_ && isBlank(*p_)) ++p_;
    }

    bool atBrace() const { return *p_ == '{' || *p_ == '}'; }

    // The next word, a brace, or nothing at the end. `at_` is where it stands.
    std::string_view word() {
        skipBlanks();
        at_ = p_;
        if (p_ != end_ && atBrace()) {
            ++p_;
        } else {
            while (p_ != end_ && !isBlank(*p_) && !atBrace()) ++p_;
        }
        return {at_, static_cast<std::size_t>(p_ - at_)};
    }

    // A name is the rest of the line, blanks within it included, up to the brace that may follow on the same line.
    std::string_view restOfLine() {
        char const* const from = p_;
        while (p_ != end_ && *p_ != '\n' && *p_ != '\r' && *p_ != '{') ++p_;
        return trimmed({from, static_cast<std::size_t>(p_ - from)});
    }

    bool expected(std::string const& what, std::string_view found) {
        return fail(at_, found.empty() ? "the file ends where " + what + " should stand"
                                       : what + " expected, found " + excerpt(found));
    }

    bool expect(char const* keyword) {
        std::string_view const found = word();
        return sameWord(found, keyword) || expected(keyword, found);
    }

    bool integer(std::string const& what, long long& value) {
        std::string_view const text = word();
        std::string_view const digits = !text.empty() && text[0] == '+' ? text.substr(1) : text;
        char const* const last = digits.data() + digits.size();
        auto const [next, problem] = std::from_chars(digits.data(), last, value);
        if (problem == std::errc::result_out_of_range) return fail(at_, excerpt(text) + " is too large for " + what);
        return (problem == std::errc{} && next == last) || expected(what + " (a whole number)", text);
    }

    bool endsNumber(char const* p) const {
        return p == end_ || isBlank(*p) || *p == '-' || *p == '+' || *p == '{' || *p == '}';
    }

    // At a number, which must end at a blank, a brace, or the sign of the next one.
    bool number(double& value) {
        char const* const next = parseNumber(p_, end_, value);
        if (!next || !endsNumber(next)) return noNumber(next == nullptr);
        p_ = next;
        return true;
    }

    // What has digits, yet cannot be read at all, is too large; the rest (1.2.3, 12abc, nan) is no number.
    bool noNumber(bool unreadable) {
        std::string_view const text = word();
        if (text.empty()) return fail(at_, "the file ends where a number should stand");
        std::size_t const sign = text[0] == '-' || text[0] == '+';
        bool const tooLarge = unreadable && text.size() > sign && isDigit(text[sign]);
        return fail(at_, excerpt(text) + (tooLarge ? " is too large for a number" : " is not a number"));
    }

    bool vector(Vec3& value) {
        for (double& component : value) {
            skipBlanks();
            if (!number(component)) return false;
        }
        return true;
    }

    // HIERARCHY -----------------------------------------------------------------------------------------------------

    bool byteOrder() {
        std::string_view const text{begin_, static_cast<std::size_t>(end_ - begin_)};
        if (text.substr(0, 2) == "\xFF\xFE" || text.substr(0, 2) == "\xFE\xFF") {
            return fail(begin_, "the file is in UTF-16; only UTF-8 is read");
        }
        if (text.substr(0, 3) == "\xEF\xBB\xBF") begin_ = p_ = begin_ + 3;
        skipBlanks();
        return p_ != end_ || fail(begin_, "the file is empty");
    }

    bool hierarchy() {
        if (!expect("HIERARCHY")) return false;
        for (;;) {
            std::string_view const found = word();
            if (!open_.empty()) {
                if (!insideJoint(found)) return false;
            } else if (sameWord(found, "ROOT")) {
                if (!openJoint()) return false;
            } else if (sameWord(found, "MOTION") && !clip.joints.empty()) {
                return true;
            } else {
                return expected(clip.joints.empty() ? "ROOT" : "ROOT or MOTION", found);
            }
        }
    }

    bool insideJoint(std::string_view found) {
        if (found == "}") return closeJoint();
        if (sameWord(found, "OFFSET")) return offset();
        if (sameWord(found, "CHANNELS")) return channels();
        if (sameWord(found, "JOINT")) return openJoint();
        if (sameWord(found, "End")) return endSite();
        if (found.empty() || sameWord(found, "MOTION") || sameWord(found, "ROOT")) {
            return fail(at_, here() + " is not closed: \"}\" is missing");
        }
        if (channelOf(found) >= 0) return fail(at_, here() + " has more channels than CHANNELS announces");
        return expected("OFFSET, CHANNELS, JOINT, End Site or \"}\"", found);
    }

    Joint& joint() { return clip.joints[static_cast<std::size_t>(open_.back().index)]; }

    std::string here() { return "joint " + excerpt(joint().name); }

    bool openJoint() {
        char const* const keyword = at_;
        int const parent = open_.empty() ? -1 : open_.back().index;
        if (open_.size() >= deepest) return fail(keyword, "joints are nested deeper than " + std::to_string(deepest));
        if (!open_.empty()) open_.back().children = true;
        open_.push_back(OpenJoint{static_cast<int>(clip.joints.size())});
        Joint& opened = clip.joints.emplace_back();
        opened.name = restOfLine();
        opened.parent = parent;
        opened.column = clip.channels;
        std::string_view const brace = word();
        return brace == "{" || expected("\"{\" after " + here(), brace);
    }

    bool closeJoint() {
        if (!open_.back().offset) return fail(at_, here() + " has no OFFSET");
        open_.pop_back();
        return true;
    }

    bool offset() {
        if (open_.back().offset) return fail(at_, here() + " has a second OFFSET");
        open_.back().offset = true;
        return vector(joint().offset);
    }

    bool channels() {
        OpenJoint& open = open_.back();
        if (open.channels) return fail(at_, here() + " has CHANNELS a second time");
        if (open.children) return fail(at_, "CHANNELS of " + here() + " must stand before its child joints");
        open.channels = true;
        long long count = 0;
        if (!integer("the number of channels", count)) return false;
        if (count < 0 || count > channelKinds) {
            return fail(at_, here() + " announces " + std::to_string(count) + " channels; 0 to 6 are possible");
        }
        for (long long i = 0; i < count; ++i) {
            if (!channel(count)) return false;
        }
        clip.channels += static_cast<int>(count);
        return true;
    }

    bool channel(long long announced) {
        std::vector<Channel>& kinds = joint().channels;
        std::string_view const found = word();
        int const kind = channelOf(found);
        if (kind < 0) {
            return expected("channel " + std::to_string(kinds.size() + 1) + " of " + std::to_string(announced) +
                                " (Xposition, Zrotation, ...)",
                            found);
        }
        if (std::find(kinds.begin(), kinds.end(), Channel(kind)) != kinds.end()) {
            return fail(at_, here() + " has " + channelNames[static_cast<std::size_t>(kind)] + " twice");
        }
        kinds.push_back(Channel(kind));
        return true;
    }

    // Some exporters give end sites a CHANNELS line that announces none.
    bool endSite() {
        EndSite site;
        site.label = restOfLine();
        std::string_view const brace = word();
        if (brace != "{") return expected("\"{\" after End Site", brace);
        if (!expect("OFFSET") || !vector(site.offset)) return false;
        std::string_view found = word();
        if (sameWord(found, "CHANNELS")) {
            long long count = 0;
            if (!integer("the number of channels", count)) return false;
            if (count != 0) return fail(at_, "an End Site has no channels");
            found = word();
        }
        joint().endSites.push_back(std::move(site));
        return found == "}" || expected("\"}\" of the End Site", found);
    }

    // MOTION --------------------------------------------------------------------------------------------------------

    std::string_view letters() {
        skipBlanks();
        char const* const from = p_;
        while (p_ != end_ && lower(*p_) >= 'a' && lower(*p_) <= 'z') ++p_;
        return {from, static_cast<std::size_t>(p_ - from)};
    }

    // "Frames:", "FRAMES :", "Frame Time:", "frame time", "FrameTime:".
    bool heading(char const* first, char const* second, char const* whole) {
        skipBlanks();
        at_ = p_;
        std::string found{letters()};
        if (*second && sameWord(found, first)) found += letters();
        if (!sameWord(found, std::string{first} + second)) {
            p_ = at_;
            return expected(whole, word());
        }
        skipBlanks();
        if (p_ != end_ && *p_ == ':') ++p_;
        return true;
    }

    bool frameCount() {
        long long count = 0;
        if (!heading("Frames", "", "Frames:") || !integer("the number of frames", count)) return false;
        if (count < 1) return fail(at_, "the number of frames must be at least 1, not " + std::to_string(count));
        // A frame is a line, if only an empty one: no honest count goes beyond the bytes left.
        if (count > end_ - p_ + 1 || count > std::numeric_limits<int>::max()) {
            return fail(at_, "the file is too short to hold " + std::to_string(count) + " frames");
        }
        clip.frames = static_cast<int>(count);
        return true;
    }

    bool frameTime() {
        if (!heading("Frame", "Time", "Frame Time:")) return false;
        skipBlanks();
        at_ = p_;
        if (!number(clip.frameTime)) return false;
        clip.frameTimeText.assign(at_, p_);
        if (clip.frameTime >= shortestFrameTime && clip.frameTime <= longestFrameTime) return true;
        return fail(at_, clip.frameTime > 0 ? "no frame lasts " + clip.frameTimeText + " seconds"
                                            : "the frame time must be above 0, not " + clip.frameTimeText);
    }

    bool motion() {
        if (!frameCount() || !frameTime()) return false;
        std::size_t const announced = static_cast<std::size_t>(clip.frames) * static_cast<std::size_t>(clip.channels);
        // Two numbers take three bytes at least, so the table is never larger than the text allows.
        std::size_t const possible = static_cast<std::size_t>(end_ - p_) / 2 + 1;
        clip.values.resize(std::min(announced, possible));
        if (!values(announced)) return false;
        skipBlanks();
        if (p_ == end_) return true;
        at_ = p_;
        double extra = 0;
        return number(extra) && fail(at_, "more numbers than the " + announcement() + " announced");
    }

    bool values(std::size_t announced) {
        Places places{begin_, end_};
        double* const values = clip.values.data();
        for (std::size_t i = 0; i < announced; ++i) {
            skipBlanks();
            if (p_ == end_) return tooFew(i);
            char const* const at = p_;
            if (!number(values[i])) return false;
            if (std::fabs(values[i]) > suspiciousValue) note(i, at, places);
        }
        return true;
    }

    std::string announcement() const {
        return std::to_string(clip.frames) + " frames x " + std::to_string(clip.channels) + " channels";
    }

    bool tooFew(std::size_t present) {
        return fail(end_,
                    "the file ends after " + std::to_string(present) + " numbers; " + announcement() + " announced " +
                        std::to_string(static_cast<long long>(clip.frames) * static_cast<long long>(clip.channels)));
    }

    void note(std::size_t index, char const* at, Places& places) {
        if (++notes.suspiciousCount > suspiciousKept) return;
        int const row = static_cast<int>(index / static_cast<std::size_t>(clip.channels));
        int const column = static_cast<int>(index % static_cast<std::size_t>(clip.channels));
        auto const after = std::upper_bound(clip.joints.begin(), clip.joints.end(), column,
                                            [](int wanted, Joint const& joint) { return wanted < joint.column; });
        // Joints without channels share their column with the next one; the last of the equals owns it.
        int const owner = static_cast<int>(after - clip.joints.begin()) - 1;
        places.moveTo(at);
        notes.suspicious.push_back({clip.values[index], row, owner, places.line(), places.column()});
    }

    char const* begin_;
    char const* p_;
    char const* end_;
    char const* at_ = nullptr;
    std::vector<OpenJoint> open_;
};

bool cannotRead(std::filesystem::path const& path, std::string const& why, Error& error) {
    error = Error{"cannot read \"" + path.string() + "\": " + why};
    return false;
}

// Files and pipes; a device may never end.
bool load(std::filesystem::path const& path, std::string& text, Error& error) {
    std::error_code problem;
    auto const type = std::filesystem::status(path, problem).type();
    if (type == std::filesystem::file_type::directory) return cannotRead(path, "it is a folder", error);
    if (type == std::filesystem::file_type::not_found) return cannotRead(path, "there is no such file", error);
    if (type != std::filesystem::file_type::regular && type != std::filesystem::file_type::fifo) {
        return cannotRead(path, problem ? problem.message() : "it is no file", error);
    }
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file{std::fopen(path.c_str(), "rb"), &std::fclose};
    if (!file) return cannotRead(path, std::strerror(errno), error);
    std::array<char, 1 << 16> block;
    while (std::size_t const length = std::fread(block.data(), 1, block.size(), file.get())) {
        text.append(block.data(), length);
    }
    return std::ferror(file.get()) == 0 || cannotRead(path, std::strerror(errno), error);
}

}  // namespace

bool read(std::string_view text, Clip& clip, Error& error, Notes* notes) noexcept {
    try {
        Parser parser{text};
        if (!parser.run()) {
            error = std::move(parser.error);
            return false;
        }
        clip = std::move(parser.clip);
        if (notes) *notes = std::move(parser.notes);
        return true;
    } catch (std::exception const&) {  // bad_alloc or length_error: a table larger than the machine holds
        error.message = "no memory";   // fits the string's own storage
        error.line = error.column = 0;
        return false;
    }
}

bool readFile(std::filesystem::path const& path, Clip& clip, Error& error, Notes* notes) noexcept {
    try {
        std::string text;
        return load(path, text, error) && read(text, clip, error, notes);
    } catch (std::exception const&) {
        error.message = "no memory";
        error.line = error.column = 0;
        return false;
    }
}

}  // namespace bvh
