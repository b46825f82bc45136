// A started application whose scripts run as a user's would, and whose results come back as text.
#pragma once
#include "tests/app/fixture.h"
#include <gtest/gtest.h>
#include <string>

namespace Tavo {

class Scripts : public StartedApplication {
protected:
    XLuaScript& lua() { return *XApplication::Instance().LuaScript(); }

    // Runs a script in which `scene` is the active scene; it has to end well.
    void run(std::string const& text) {
        EXPECT_EQ(0, lua().RunScript(Qelutils::fromUtf8("local scene = app.scene()\n" + text))) << lua().LastError();
    }
    // What the script's `return` gives, as tostring shows it, separated by blanks.
    std::string eval(std::string const& text) {
        run("local function body()\n" + text +
            "\nend\nlocal values = table.pack(body())\nfor i = 1, values.n do values[i] = tostring(values[i]) end\n"
            "result = table.concat(values, ' ')");
        return Qelutils::toUtf8(lua().State()->GetGlobal("result").ToString());
    }
    // The first line of what a script that has to fail says.
    std::string failure(std::string const& text) {
        EXPECT_NE(0, lua().RunScript(Qelutils::fromUtf8("local scene = app.scene()\n" + text)));
        std::string const& error = lua().LastError();
        return error.substr(0, error.find('\n'));
    }
};

}  // namespace Tavo
