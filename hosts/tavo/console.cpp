#include "hosts/tavo/console.h"

#include "qel/db/streams.h"
#include "qel/utils/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <unistd.h>

namespace host {
namespace {

bool isSet(char const* variable) {
    char const* const value = std::getenv(variable);
    return value && *value;
}

bool isTerminal() {
    char const* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && !(kind && std::strcmp(kind, "dumb") == 0);
}

bool isColoured() { return isTerminal() && !isSet("NO_COLOR"); }

void printLine(char const* word, char const* colour, std::string const& message) {
    std::fflush(stdout);
    if (isColoured())
        fmt::print(stderr, "\x1b[{}m{}:\x1b[0m {}\n", colour, word, message);
    else
        fmt::print(stderr, "{}: {}\n", word, message);
}

}  // namespace

Failure wrongCall(std::string const& message) { return {ExitCode::wrongCall, message}; }

Failure wrongCall(std::string const& message, std::string const& wanted, std::vector<std::wstring> const& names,
                  std::string const& otherwise) {
    std::wstring const near =
        Qelutils::nearestNames(Qelutils::fromUtf8(wanted), names.data(), names.data() + names.size());
    if (near.empty()) return wrongCall(message + otherwise);
    return wrongCall(message + "; did you mean " + Qelutils::toUtf8(near) + '?');
}

std::string counted(std::size_t count, char const* what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void printError(std::string const& message) { printLine("error", "1;31", message); }
void printWarning(std::string const& message) { printLine("warning", "1;33", message); }

void writeResult(std::string const& text) {
    bool const written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) throw Failure{ExitCode::failed, fmt::format("cannot write the result: {}", std::strerror(errno))};
}

void writeResult(std::string const& text, std::string const& file) {
    if (file.empty()) return writeResult(text);
    db::FileOutputStream stream{Qelutils::fromUtf8(file)};
    stream.write(text.data(), text.size());
    if (!stream.commit()) throw Failure{ExitCode::failed, Qelutils::toUtf8(stream.error())};
}

void ConsoleLog::Log(Level level, char const* text) {
    if (level == Error && isTold_ && isTold_(text)) return;
    if (level == Error) errors_ ? errors_->push_back(text) : printError(text);
    if (level == Warning) printWarning(text);
}
void ConsoleLog::Log(Level level, wchar_t const* text) { Log(level, Qelutils::toUtf8(text).c_str()); }
void ConsoleLog::Log(Level level, std::wstring const& text) { Log(level, Qelutils::toUtf8(text).c_str()); }

Progress::Progress(std::string label, std::int64_t total) :
    label_(std::move(label)), total_(std::max<std::int64_t>(total, 1)), shown_(isTerminal()) {}

Progress::~Progress() {
    if (drawn_ >= 0) fmt::print(stderr, "\r\x1b[K");
}

void Progress::advance(std::int64_t done) {
    if (!shown_) return;
    int const percent = int(std::clamp<std::int64_t>(done * 100 / total_, 0, 100));
    if (percent == drawn_) return;
    drawn_ = percent;
    bool const coloured = isColoured();
    fmt::print(stderr, "\r{} {}{:<25}{} {:3}%", label_, coloured ? "\x1b[32m" : "",
               std::string(std::size_t(percent / 4), '#'), coloured ? "\x1b[0m" : "", percent);
    std::fflush(stderr);
}

}  // namespace host
