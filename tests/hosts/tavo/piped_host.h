// The host as a child process that reads from a pipe.
#pragma once
#include "tests/hosts/tavo/host.h"

namespace hosttest {

class PipedHostTest : public HostTest {
protected:
    Outcome piped(std::string const& arguments, std::string const& input) const {
        write(folder / ".in", input);
        std::string const command =
            "cd '" + folder.string() + "' && '" TAVO_BINARY_DIR "/bin/tavo' " + arguments + " <.in >.out 2>.err";
        int const status = std::system(command.c_str());
        Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, textOf(folder / ".out"), textOf(folder / ".err")};
        for (char const* file : {".in", ".out", ".err"}) fs::remove(folder / file);
        return outcome;
    }
};

}  // namespace hosttest
