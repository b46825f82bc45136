// trajectory sample: straight spans in place of the keys, even ones or such as follow the bends.
#include "hosts/tavo/paths.h"
#include "hosts/tavo/rotations_in_place.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/trajectory_verbs.h"

#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

// Of adaptive sampling: the fewest segments unless told, places at which each is tested, attempts for a longer one.
constexpr int fewestSegments = 10, tests = 5, refinements = 10;

void check(SampleTrajectoryVerb const& verb) {
    constexpr int most = XTrajectory::MostSegments;
    if (verb.keys.has_value() == verb.tolerance.has_value())
        throw wrongCall("sampling takes one of --keys and --tolerance");
    if (verb.keys && verb.minSegments) throw wrongCall("--min-segments goes with --tolerance");
    if (verb.keys && (*verb.keys < 3 || *verb.keys > most + 1))
        throw wrongCall(fmt::format("--keys is a number from 3 to {}", most + 1));
    if (verb.tolerance && (!(float(*verb.tolerance) > 0) || !std::isfinite(float(*verb.tolerance))))
        throw wrongCall("--tolerance is a number above 0");
    if (verb.minSegments && (*verb.minSegments < 1 || *verb.minSegments > most))
        throw wrongCall(fmt::format("--min-segments is a number from 1 to {}", most));
}

bool sampleOne(XTrajectory path, SampleTrajectoryVerb const& verb) {
    if (verb.keys) return path.UniformSampling(*verb.keys - 1);
    return path.AdaptiveSampling(float(*verb.tolerance), verb.minSegments.value_or(fewestSegments), tests, refinements);
}

}  // namespace

void run(SampleTrajectoryVerb const& verb) {
    static std::wstring const label = L"Sample Trajectory";
    check(verb);
    Session session(verb.input);
    std::string text;
    {
        XChangeBlock const block(session.scene(), label);
        for (XTrajectory const& path : findTrajectories(session.scene(), verb.paths)) {
            int const before = keyCountOf(path);
            RotationsInPlace const rotations(path);
            if (!sampleOne(path, verb))
                throw Failure{ExitCode::failed, fmt::format("{} could not be sampled", pathOf(path))};
            rotations.restore();
            text +=
                fmt::format("{}: {} became {}\n", pathOf(path), counted(std::size_t(before), "key"), keyCountOf(path));
        }
    }
    session.save(verb.output);
    writeResult(text + fmt::format("wrote {}\n", verb.output));
}

}  // namespace host
