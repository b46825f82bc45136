#include "plugins/bvh/writer.h"

#include "plugins/bvh/lexical.h"
#include "plugins/bvh/reader.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace bvh {
namespace {

bool fail(Error& error, std::string message) {
    error = Error{std::move(message)};
    return false;
}

bool outOfMemory(Error& error) noexcept {
    error.message = "no memory";  // fits the string's own storage
    error.line = error.column = 0;
    return false;
}

// Checks --------------------------------------------------------------------------------------------------------------

bool finite(Vec3 const& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

bool checkChannels(Joint const& joint, int column, Error& error) {
    if (joint.column != column) return fail(error, "the columns of joint \"" + joint.name + "\" do not follow");
    for (auto i = joint.channels.begin(); i != joint.channels.end(); ++i) {
        if (static_cast<int>(*i) >= channelKinds || std::find(joint.channels.begin(), i, *i) != i) {
            return fail(error, "joint \"" + joint.name + "\" has a wrong or repeated channel");
        }
    }
    return true;
}

bool checkOffsets(Joint const& joint, Error& error) {
    bool const good = finite(joint.offset) && std::all_of(joint.endSites.begin(), joint.endSites.end(),
                                                          [](EndSite const& site) { return finite(site.offset); });
    return good || fail(error, "an offset of joint \"" + joint.name + "\" is not finite");
}

// Depth first: each joint's parent is among the joints still open, which `open` lists from the root down.
bool checkPlace(Clip const& clip, std::size_t index, std::vector<int>& open, Error& error) {
    Joint const& joint = clip.joints[index];
    while (!open.empty() && open.back() != joint.parent) open.pop_back();
    if (open.empty() && joint.parent != -1) {
        return fail(error, "joint \"" + joint.name + "\" does not stand after its parent, depth first");
    }
    open.push_back(static_cast<int>(index));
    return open.size() <= deepest || fail(error, "joints are nested deeper than " + std::to_string(deepest));
}

bool checkHierarchy(Clip const& clip, Error& error) {
    if (clip.joints.empty()) return fail(error, "the clip has no joints");
    std::vector<int> open;
    int column = 0;
    for (std::size_t i = 0; i < clip.joints.size(); ++i) {
        Joint const& joint = clip.joints[i];
        if (!checkPlace(clip, i, open, error) || !checkChannels(joint, column, error) || !checkOffsets(joint, error)) {
            return false;
        }
        column += static_cast<int>(joint.channels.size());
    }
    return column == clip.channels || fail(error, "the joints have " + std::to_string(column) + " channels, the clip " +
                                                      std::to_string(clip.channels));
}

bool checkMotion(Clip const& clip, Error& error) {
    if (clip.frames < 1) return fail(error, "the clip has no frames");
    if (!(clip.frameTime >= shortestFrameTime && clip.frameTime <= longestFrameTime)) {
        return fail(error, "the frame time lies out of range");
    }
    if (clip.values.size() != static_cast<std::size_t>(clip.frames) * static_cast<std::size_t>(clip.channels)) {
        return fail(error, "the clip has " + std::to_string(clip.values.size()) + " values instead of " +
                               std::to_string(clip.frames) + " x " + std::to_string(clip.channels));
    }
    auto const bad =
        std::find_if_not(clip.values.begin(), clip.values.end(), [](double v) { return std::isfinite(v); });
    if (bad == clip.values.end()) return true;
    return fail(error, "a value of frame " + std::to_string((bad - clip.values.begin()) / clip.channels) +
                           " is not a finite number");
}

// Text ----------------------------------------------------------------------------------------------------------------

constexpr std::size_t longestNumber = 32;  // the shortest form of a double takes at most 24 characters

void appendNumber(std::string& text, double value) {
    char digits[longestNumber];
    text.append(digits, std::to_chars(digits, digits + longestNumber, value).ptr);
}

void appendName(std::string& text, std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '{' || c == '\n' || c == '\r'; }, '_');
    text += name;
}

// Beyond this depth the indentation would be most of the file.
void appendIndent(std::string& text, std::size_t depth) { text.append(std::min<std::size_t>(depth, 64), '\t'); }

void appendOffset(std::string& text, std::size_t depth, Vec3 const& offset) {
    appendIndent(text, depth);
    text += "OFFSET";
    for (double const component : offset) {
        text += ' ';
        appendNumber(text, component);
    }
    text += '\n';
}

void appendBrace(std::string& text, std::size_t depth, char brace) {
    appendIndent(text, depth);
    text += brace;
    text += '\n';
}

void appendEndSite(std::string& text, std::size_t depth, EndSite const& site) {
    appendIndent(text, depth);
    text += "End ";
    appendName(text, site.label);
    text += '\n';
    appendBrace(text, depth, '{');
    appendOffset(text, depth + 1, site.offset);
    appendBrace(text, depth, '}');
}

void appendJoint(std::string& text, std::size_t depth, Joint const& joint) {
    appendIndent(text, depth);
    text += joint.parent < 0 ? "ROOT " : "JOINT ";
    appendName(text, joint.name);
    text += '\n';
    appendBrace(text, depth, '{');
    appendOffset(text, depth + 1, joint.offset);
    appendIndent(text, depth + 1);
    text += "CHANNELS " + std::to_string(joint.channels.size());
    for (Channel const channel : joint.channels) {
        text += ' ';
        text += channelNames[static_cast<std::size_t>(channel)];
    }
    text += '\n';
    for (EndSite const& site : joint.endSites) appendEndSite(text, depth + 1, site);
}

void appendHierarchy(std::string& text, Clip const& clip) {
    text += "HIERARCHY\n";
    std::vector<int> open;
    for (std::size_t i = 0; i < clip.joints.size(); ++i) {
        while (!open.empty() && open.back() != clip.joints[i].parent) {
            open.pop_back();
            appendBrace(text, open.size(), '}');
        }
        appendJoint(text, open.size(), clip.joints[i]);
        open.push_back(static_cast<int>(i));
    }
    for (std::size_t depth = open.size(); depth-- > 0;) appendBrace(text, depth, '}');
}

// As the file spelt it, unless the frame time was changed since.
void appendFrameTime(std::string& text, Clip const& clip) {
    char const* const begin = clip.frameTimeText.data();
    char const* const end = begin + clip.frameTimeText.size();
    double spelt = 0;
    if (parseNumber(begin, end, spelt) == end && spelt == clip.frameTime) {
        text += clip.frameTimeText;
    } else {
        appendNumber(text, clip.frameTime);
    }
}

void appendMotion(std::string& text, Clip const& clip) {
    text += "MOTION\nFrames: " + std::to_string(clip.frames) + "\nFrame Time: ";
    appendFrameTime(text, clip);
    text += '\n';
    double const* value = clip.values.data();
    std::string line(static_cast<std::size_t>(clip.channels) * (longestNumber + 1) + 1, ' ');
    for (int frame = 0; frame < clip.frames; ++frame) {
        char* p = line.data();
        for (int i = 0; i < clip.channels; ++i) {
            p = std::to_chars(p, p + longestNumber, *value++).ptr;
            *p++ = ' ';
        }
        if (clip.channels > 0) --p;
        *p++ = '\n';
        text.append(line.data(), static_cast<std::size_t>(p - line.data()));
    }
}

// Files ---------------------------------------------------------------------------------------------------------------

// A new file beside the target that disappears again unless it is given the target's name.
class NewFile {
public:
    explicit NewFile(std::filesystem::path const& target) : target_(target) {
        static std::atomic<unsigned> number{0};
        path_ = target.string() + ".new-" + std::to_string(::getpid()) + '-' + std::to_string(number++);
        file_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    }
    ~NewFile() {
        int const problem = errno;
        if (file_ >= 0) ::close(file_);
        if (file_ >= 0 && !renamed_) ::unlink(path_.c_str());
        errno = problem;
    }
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    // False leaves the reason in errno.
    bool write(std::string_view text) {
        if (file_ < 0 || !keepMode()) return false;
        while (!text.empty()) {
            ssize_t const length = ::write(file_, text.data(), text.size());
            if (length < 0 && errno != EINTR) return false;
            if (length > 0) text.remove_prefix(static_cast<std::size_t>(length));
        }
        return ::fsync(file_) == 0;
    }
    bool rename() {
        renamed_ = ::rename(path_.c_str(), target_.c_str()) == 0;
        if (renamed_) syncFolder();
        return renamed_;
    }

private:
    bool keepMode() const {
        struct stat old {};
        return ::stat(target_.c_str(), &old) != 0 || ::fchmod(file_, old.st_mode & 07777) == 0;
    }
    // The file is safe; that its name is, too, is worth a try only: some file systems refuse.
    void syncFolder() const {
        std::filesystem::path const parent = target_.parent_path();
        int const folder = ::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) return;
        (void)::fsync(folder);
        ::close(folder);
    }

    std::filesystem::path target_;
    std::string path_;
    int file_ = -1;
    bool renamed_ = false;
};

bool save(std::filesystem::path const& path, std::string_view text, Error& error) {
    std::string const failed = "cannot write \"" + path.string() + "\": ";
    std::error_code problem;
    auto const type = std::filesystem::status(path, problem).type();
    bool const exists = type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none;
    if (exists && type != std::filesystem::file_type::regular) return fail(error, failed + "it is no plain file");
    std::filesystem::path const target = exists ? std::filesystem::canonical(path, problem) : path;
    if (exists && problem) return fail(error, failed + problem.message());
    NewFile file{target};
    return (file.write(text) && file.rename()) || fail(error, failed + std::strerror(errno));
}

}  // namespace

bool check(Clip const& clip, Error& error) noexcept {
    try {
        return checkHierarchy(clip, error) && checkMotion(clip, error);
    } catch (std::exception const&) { return outOfMemory(error); }
}

bool write(Clip const& clip, std::string& text, Error& error) noexcept {
    if (!check(clip, error)) return false;
    try {
        std::string result;
        result.reserve(clip.joints.size() * 128 + clip.values.size() * 10);
        appendHierarchy(result, clip);
        appendMotion(result, clip);
        text = std::move(result);
        return true;
    } catch (std::exception const&) { return outOfMemory(error); }
}

bool writeFile(std::filesystem::path const& path, Clip const& clip, Error& error) noexcept {
    try {
        std::string text;
        return write(clip, text, error) && save(path, text, error);
    } catch (std::exception const&) { return outOfMemory(error); }
}

}  // namespace bvh
