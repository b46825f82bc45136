// The editor of a console's lines at a terminal: history, and names completed by TAB. Of the executable alone.
#include "hosts/tavo/console.h"
#include "hosts/tavo/line_reader.h"
#include "hosts/tavo/lua_verbs.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <editline/readline.h>
#include <filesystem>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr int mostLines = 1000;  // of history

// Empty when there is no place for it.
fs::path historyFile() {
    char const* const state = std::getenv("XDG_STATE_HOME");
    char const* const home = std::getenv("HOME");
    bool const hasState = state && *state == '/';  // a relative one is to be passed over
    if (!hasState && !(home && *home)) return {};
    fs::path const folder = (hasState ? fs::path(state) : fs::path(home) / ".local/state") / "tavo";
    std::error_code failure;
    fs::create_directories(folder, failure);
    return failure ? fs::path() : folder / "repl_history";
}

class LineEditor : public LineReader {
public:
    LineEditor() : history_(historyFile()) {
        std::setlocale(LC_CTYPE, "");
        current = this;
        rl_readline_name = "tavo";
        rl_initialize();
        rl_basic_word_break_characters = wordBreaks;
        rl_attempted_completion_function = complete;
        rl_completion_append_character = '\0';
        using_history();
        stifle_history(mostLines);
        if (!history_.empty()) read_history(history_.c_str());
    }
    ~LineEditor() override { current = nullptr; }

    std::optional<std::string> read(std::string const& prompt) override {
        char* const text = readline(prompt.c_str());
        if (!text) return {};
        std::string line = text;
        std::free(text);
        remember(line);
        return line;
    }
    void completeWith(Complete complete) override { complete_ = std::move(complete); }

private:
    void remember(std::string const& line) {
        if (line.empty() || line == last_) return;
        last_ = line;
        add_history(line.c_str());
        if (!history_.empty()) write_history(history_.c_str());
    }

    // The editor asks for one word after the other.
    static char* nextWord(char const*, int state) {
        std::size_t const next = current->next_ = state ? current->next_ + 1 : 0;
        return next < current->words_.size() ? strdup(current->words_[next].c_str()) : nullptr;
    }
    static char** complete(char const* text, int, int end) {
        rl_attempted_completion_over = 1;  // no names of files
        if (!current || !current->complete_) return nullptr;
        current->words_ = current->complete_(std::string(rl_line_buffer, std::size_t(end))).words;
        return rl_completion_matches(text, nextWord);
    }

    static inline LineEditor* current = nullptr;  // the editor's functions are plain ones
    static inline char wordBreaks[] = " \t\n\"\\'`@$><=;|&{}()[]+-*/%#~^,.:";

    fs::path history_;
    Complete complete_;
    std::vector<std::string> words_;
    std::size_t next_ = 0;
    std::string last_;
};

}  // namespace

void run(ReplVerb const& verb) {
    if (isatty(STDIN_FILENO)) {
        LineEditor editor;
        return runConsole(verb, editor);
    }
    PlainLines lines;
    runConsole(verb, lines);
}

}  // namespace host
