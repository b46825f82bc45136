// run: a script on a file, and what becomes of it written, unless the script fails.
#include "hosts/tavo/script_session.h"
#include "qel/db/streams.h"
#include "qel/utils/text.h"
#include "tavo/extension/lua/script_reference.h"

#include <fmt/format.h>
#include <iostream>
#include <iterator>

namespace host {
namespace {

std::string contents(std::string const& file) {
    db::FileInputStream stream{Qelutils::fromUtf8(file)};
    std::string part(65536, '\0'), all;
    while (std::size_t const count = stream.read(part.data(), part.size())) all.append(part, 0, count);
    if (!stream.ok()) throw Failure{ExitCode::badInput, Qelutils::toUtf8(stream.error())};
    return all;
}

ScriptChunk chunkOf(RunVerb const& verb) {
    if (verb.code) return {*verb.code, "=(command line)", verb.arguments};
    if (verb.script == "-") return {{std::istreambuf_iterator<char>(std::cin), {}}, "=stdin", verb.arguments};
    return {contents(verb.script), '@' + verb.script, verb.arguments};
}

// Without a script's file, the first name is that of FILE.
RunVerb settled(RunVerb verb) {
    bool const needsScript = !verb.code && !verb.reference && !verb.annotations;
    if (needsScript && verb.script.empty()) throw wrongCall("which script? a file, - for standard input, or -e CODE");
    if (needsScript) return verb;
    if (!verb.input.file.empty())
        throw wrongCall(fmt::format("without a script there is one FILE: {} or {}", verb.script, verb.input.file));
    verb.input.file = verb.script;
    verb.script = "-e";
    return verb;
}

void runScript(RunVerb const& verb) {
    ScriptChunk const chunk = chunkOf(verb);
    ScriptSession scripts(verb);
    scripts.setArguments(verb.script, verb.arguments);
    ScriptEnding const ending = scripts.run(chunk);
    scripts.scene().Stop();  // playback is a block that is open
    Tavo::XApplication::Instance().Update();
    if (!ending.error.empty()) printError(ending.error);
    if (!verb.output.empty() && (ending.isGood() || verb.keep)) scripts.session().save(verb.output);
    if (!ending.isGood()) throw Failure{ExitCode(ending.exitCode.value_or(int(ExitCode::failed))), ""};
}

}  // namespace

void run(RunVerb const& given) {
    RunVerb const verb = settled(given);
    if (verb.reference) return writeResult(Tavo::ScriptReferencePage());
    if (!verb.annotations) return runScript(verb);
    ScriptSession scripts(verb);
    writeResult(Tavo::ScriptAnnotations(scripts.scene()));
}

}  // namespace host
