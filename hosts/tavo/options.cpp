#include "hosts/tavo/options.h"

namespace host {

CLI::Option* addInput(CLI::App& app, Input& input) {
    CLI::Option* const file = app.add_option("FILE", input.file, "a motion clip or a scene")->required()->type_name("");
    app.add_option("--units", input.units, "of a clip's lengths: mm, cm, m, in, ft, yd, or auto to guess")
        ->type_name("UNIT");
    app.add_option("--positions", input.positions,
                   "of a clip: its position channels replace OFFSET, add to it, or auto to judge")
        ->type_name("MODE");
    return file;
}

CLI::Option* addOutput(CLI::App& app, std::string& output, char const* what) {
    return app.add_option("-o,--output", output, what)->required()->type_name("OUT");
}

}  // namespace host
