// set: new values for attributes, as one step of the history, and the document written anew.
#include "hosts/tavo/find.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/values.h"

#include <fmt/format.h>
#include <optional>

namespace host {
namespace {

using namespace Tavo;

struct Assignment {
    std::vector<XAttribute> attributes;
    std::string value;
};

// The value may hold '=' and so may names: the split is the first whose left side is known.
Assignment parse(XScene& scene, std::string const& text) {
    std::optional<Failure> first;
    for (std::size_t split = text.find('='); split != std::string::npos; split = text.find('=', split + 1)) {
        try {
            return {findAttributes(scene, text.substr(0, split)), text.substr(split + 1)};
        } catch (Failure const& failure) {
            if (!first) first = failure;
        }
    }
    throw first.value_or(wrongCall(fmt::format("\"{}\" is not OBJECT.ATTRIBUTE=VALUE", text)));
}

}  // namespace

void run(SetVerb const& verb) {
    static std::wstring const label = L"Set";
    Session session(verb.input);
    XScene* const display = verb.display ? &session.scene() : nullptr;
    std::size_t count = 0;
    {
        XChangeBlock const block(session.scene(), label);
        for (std::string const& text : verb.assignments) {
            Assignment const assignment = parse(session.scene(), text);
            for (XAttribute const& attribute : assignment.attributes)
                Value::parse(attribute, assignment.value, display).write();
            count += assignment.attributes.size();
        }
    }
    session.save(verb.output);
    writeResult(fmt::format("set {} attribute{}\nwrote {}\n", count, count == 1 ? "" : "s", verb.output));
}

}  // namespace host
