// How the host speaks: results on standard output, messages on standard error, one exit code.
//
// A verb that cannot go on throws a Failure; main prints it, if it tells something, and returns its code. Nothing has
// been written by then: a verb opens its output only when it holds all of it.
#pragma once
#include "qel/utils/logger.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host {

enum class ExitCode : int {
    done = 0,
    failed = 1,
    wrongCall = 2,
    badInput = 3,
    missed = 4,  // a quality that the command line asks for
};

struct Failure {
    ExitCode code = ExitCode::failed;
    std::string message;
};

// "no object matches "Hipz"; did you mean Hips?": the message, and the names that `wanted` may have been meant to be,
// or what is said where none of them is near.
Failure wrongCall(std::string const& message);
Failure wrongCall(std::string const& message, std::string const& wanted, std::vector<std::wstring> const& names,
                  std::string const& otherwise = "");

std::string counted(std::size_t count, char const* what);  // "1 key", "2 keys"

void printError(std::string const& message);
void printWarning(std::string const& message);

// Standard output, or the file that appears whole or not at all. Throws a Failure when it cannot be written.
void writeResult(std::string const& text);
void writeResult(std::string const& text, std::string const& file);

// Where the core's warnings and errors go: standard error. Errors may be kept instead, for a message of the host's own.
class ConsoleLog : public Qelutils::BasicLogger {
public:
    void Log(Level level, char const* text) override;
    void Log(Level level, wchar_t const* text) override;
    void Log(Level level, std::wstring const& text) override;
    void keepErrorsIn(std::vector<std::string>* errors) { errors_ = errors; }  // null: printed again
    // Errors that the host tells in its own words.
    void passOver(std::function<bool(std::string const&)> isTold) { isTold_ = std::move(isTold); }

private:
    std::function<bool(std::string const&)> isTold_;
    std::vector<std::string>* errors_ = nullptr;
};

// A bar on standard error while something takes its time; nothing in a pipe. Draws at most a hundred times, and takes
// itself away at the end.
class Progress {
public:
    Progress(std::string label, std::int64_t total);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    void advance(std::int64_t done);

private:
    std::string label_;
    std::int64_t total_;
    int drawn_ = -1;  // percent; -1 before the first
    bool shown_;
};

}  // namespace host
