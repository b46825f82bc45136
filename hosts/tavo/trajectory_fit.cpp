// trajectory fit: few keys with handles in place of dense ones, and how near they come.
#include "hosts/tavo/closeness.h"
#include "hosts/tavo/json.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/rotations_in_place.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/trajectory_verbs.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

// What the fitter is given beside the tolerance: attempts for a longer segment, the most keys that one segment may
// stand for, and rounds in which keys find their places on it.
constexpr int refinements = 20, mostKeysOfSegment = 2000, places = 2;
constexpr float duplicates = 0;    // only keys that repeat a place are left out: many small steps are a way
constexpr double rounding = 1e-6;  // of places as floats, metres, that no tolerance is missed by

struct Fit {
    std::string path;
    double tolerance;
    int before, after = 0;
    double largest = 0, mean = 0;  // of the distances of the keys before from the path after, metres
    double seconds = 0;
};

double toleranceOf(XTrajectory const& path, FitTrajectoryVerb const& verb) {
    double const length = double(path.MaxArcLength().Float());
    double const tolerance = verb.tolerance ? *verb.tolerance : *verb.percent / 100 * length;
    if (!(tolerance > 0)) throw Failure{ExitCode::failed, fmt::format("{} has no length", pathOf(path))};
    return tolerance;
}

void check(FitTrajectoryVerb const& verb) {
    if (verb.tolerance.has_value() == verb.percent.has_value())
        throw wrongCall("a fit takes one of --tolerance and --percent");
    double const given = verb.tolerance ? *verb.tolerance : *verb.percent;
    if (!(given > 0) || !std::isfinite(given))
        throw wrongCall(fmt::format("{} is a number above 0", verb.tolerance ? "--tolerance" : "--percent"));
    if (verb.maxKeys && *verb.maxKeys < 2) throw wrongCall("--max-keys is a number from 2 on");
}

void checkSampled(XTrajectory const& path) {
    if (!path.IsTranslationCurveSampled().Boolean())
        throw Failure{ExitCode::failed, fmt::format("{} is a spline already; `tavo trajectory sample` gives it dense "
                                                    "keys",
                                                    pathOf(path))};
}

// The dense keys, along the path, while it is fitted.
struct Dense {
    std::vector<Qelp::Vector3> places;
    std::vector<float> fractions;

    explicit Dense(XTrajectory const& path) {
        Qelutils::Vector<Qelp::Vector3> const positions = positionsOf(path);
        for (int key = 0; key < int(positions.size()); ++key)
            if (int const slot = path.ParameterIndex(float(key)); slot >= 0) {
                places.push_back(positions[std::size_t(slot)]);
                fractions.push_back(path.ArcLengthMap(float(key)));
            }
    }
};

void measure(XTrajectory const& path, Dense const& dense, Fit& fit) {
    // At least as many places as there were keys, and enough to know the bends of a cubic curve.
    Closeness const closeness(path, 16 + 4 * fit.before / std::max(fit.after, 1));
    double sum = 0;
    for (std::size_t i = 0; i < dense.places.size(); ++i) {
        double const distance = closeness.distance(dense.places[i], double(dense.fractions[i]));
        fit.largest = std::max(fit.largest, distance), sum += distance;
    }
    fit.mean = sum / double(std::max<std::size_t>(dense.places.size(), 1));
}

Fit fitOne(XTrajectory path, FitTrajectoryVerb const& verb) {
    using Clock = std::chrono::steady_clock;
    checkSampled(path);
    Fit fit{pathOf(path), toleranceOf(path, verb), keyCountOf(path)};
    Dense const dense(path);
    RotationsInPlace const rotations(path);
    Clock::time_point const start = Clock::now();
    bool const fitted =
        path.FitSampledCurveTranslation(0, float(fit.tolerance), refinements, mostKeysOfSegment, places, duplicates);
    fit.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (!fitted) throw Failure{ExitCode::failed, fmt::format("{} could not be fitted", fit.path)};
    rotations.restore();
    fit.after = keyCountOf(path);
    measure(path, dense, fit);
    return fit;
}

// What was measured is compared with what was asked for, whatever the fitter promises.
void checkMissed(Fit const& fit, FitTrajectoryVerb const& verb) {
    auto const miss = [&fit](std::string const& what) {
        return Failure{ExitCode::missed, fmt::format("{}: {}; nothing was written", fit.path, what)};
    };
    if (verb.maxKeys && fit.after > *verb.maxKeys)
        throw miss(fmt::format("a tolerance of {} m takes {}, more than the {} allowed", figure(fit.tolerance),
                               counted(std::size_t(fit.after), "key"), *verb.maxKeys));
    if (fit.largest > fit.tolerance * 1.001 + rounding)
        throw miss(
            fmt::format("{} m off at worst, beyond the tolerance of {} m", figure(fit.largest), figure(fit.tolerance)));
}

std::string textOf(std::vector<Fit> const& fits, FitTrajectoryVerb const& verb) {
    std::string text;
    for (Fit const& fit : fits) {
        text += fmt::format("{}: {} became {}\n", fit.path, counted(std::size_t(fit.before), "key"), fit.after);
        if (!verb.report) continue;
        text += fmt::format("  error      largest {} m, mean {} m, of {} m allowed\n", figure(fit.largest),
                            figure(fit.mean), figure(fit.tolerance));
        text += fmt::format("  time       {} s\n", figure(fit.seconds));
    }
    return text + fmt::format("wrote {}\n", verb.output);
}

std::string jsonOf(std::vector<Fit> const& fits, FitTrajectoryVerb const& verb) {
    Json json;
    json.open('{').member("file", verb.input.file).key("paths").open('[');
    for (Fit const& fit : fits)
        json.open('{')
            .member("path", fit.path)
            .member("tolerance", fit.tolerance)
            .member("keysBefore", fit.before)
            .member("keysAfter", fit.after)
            .member("largestError", fit.largest)
            .member("meanError", fit.mean)
            .member("seconds", fit.seconds)
            .close('}');
    return json.close(']').member("wrote", verb.output).close('}').take();
}

}  // namespace

void run(FitTrajectoryVerb const& verb) {
    static std::wstring const label = L"Fit Trajectory";
    check(verb);
    Session session(verb.input);
    std::vector<Fit> fits;
    {
        XChangeBlock const block(session.scene(), label);
        for (XTrajectory const& path : findTrajectories(session.scene(), verb.paths))
            fits.push_back(fitOne(path, verb));
    }
    for (Fit const& fit : fits) checkMissed(fit, verb);
    session.save(verb.output);
    writeResult(verb.json ? jsonOf(fits, verb) : textOf(fits, verb));
}

}  // namespace host
