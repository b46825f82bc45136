// play: the scene's own playback, driven by the main loop, with all world matrices read at each frame, as a display
// would; and how fast that went.
#include "hosts/tavo/json.h"
#include "hosts/tavo/session.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"
#include "tavo/kinematics/transform.h"

#include <chrono>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Clock = std::chrono::steady_clock;

// Counts the frames that playback shows, and reads at each what a display would draw.
class Viewer : public XSceneObserver {
public:
    explicit Viewer(XScene& scene) {
        Qelutils::Vector<XObject> found;
        scene.Objects(XTransform::TypeID, SupportsObjectType, found);
        transforms_.assign(found.begin(), found.end());
        XApplication::Instance().AddSceneObserver(this);
    }
    ~Viewer() override { XApplication::Instance().RemoveSceneObserver(this); }

    void OnSceneTimeChanged(XScene&, bool transient) override {
        if (!transient) return;
        ++frames_;
        for (XTransform const& transform : transforms_) sum_ += transform.WorldMatrix().Matrix().Element(3, 1);
    }
    float sum() const { return sum_; }  // so that nobody finds the reads superfluous
    std::int64_t frames() const { return frames_; }

private:
    std::vector<XTransform> transforms_;
    std::int64_t frames_ = 0;
    float sum_ = 0;
};

struct Outcome {
    double seconds = 0;  // of the scene's time
    double took = 0;     // on the clock on the wall
    std::int64_t frames = 0;
    std::size_t objects = 0;
};

// Playback in a time of its own: each tick is one frame later, however long it took.
void playFast(Session& session, double seconds) {
    double const frame = bvh::frameTimeOf(session.scene()).seconds;
    double now = 0;
    wxUtils::setClock([&now] { return std::uint32_t(std::llround(now * 1000)); });
    session.scene().Play();
    Progress progress("playing", std::int64_t(seconds * 1000));
    auto const count = std::int64_t(std::floor(seconds / frame + 1e-4));
    for (std::int64_t i = 1; i <= count; ++i) {
        now = double(i) * frame;
        session.mainLoop().tick();
        progress.advance(std::int64_t(now * 1000));
    }
    session.scene().Stop();
    wxUtils::setClock(nullptr);
}

class ProgressClient : public wxUtils::AppMainLoopTimerClient {
public:
    explicit ProgressClient(double seconds) : progress_("playing", std::int64_t(seconds * 1000)) {}
    void onAppMainLoopTick() override { progress_.advance(wxUtils::timeGetTime() - start_); }
    int getAppMainLoopTickPriority() const override { return 9; }

private:
    std::uint32_t start_ = wxUtils::timeGetTime();
    Progress progress_;
};

void playLive(Session& session, double seconds) {
    ProgressClient progress(seconds);
    session.mainLoop().addTimerClient(&progress);
    session.scene().Play();
    session.mainLoop().run(4, std::uint32_t(std::llround(seconds * 1000)));
    session.scene().Stop();
    session.mainLoop().removeTimerClient(&progress);
}

double secondsOf(Session& session, PlayVerb const& verb) {
    XSceneSettings const settings = session.settings();
    double const range = settings.PlaybackEndTime().Float() - settings.PlaybackStartTime().Float();
    if (verb.seconds && !(*verb.seconds > 0 && *verb.seconds < 4e6)) throw wrongCall("--seconds is a time above 0");
    if (!(range > 0) || settings.FrameRate().Integer() <= 0)
        throw Failure{ExitCode::failed, "there is nothing to play: the scene's playback range is a single moment"};
    return verb.seconds.value_or(range);
}

}  // namespace

void run(PlayVerb const& verb) {
    Session session(verb.input);
    Outcome outcome;
    outcome.seconds = secondsOf(session, verb);
    Viewer viewer(session.scene());
    Clock::time_point const start = Clock::now();
    verb.fast ? playFast(session, outcome.seconds) : playLive(session, outcome.seconds);
    outcome.took = std::chrono::duration<double>(Clock::now() - start).count();
    outcome.frames = viewer.frames();
    double const rate = double(outcome.frames) / std::max(outcome.took, 1e-9);
    if (verb.json) {
        Json json;
        json.open('{').member("seconds", outcome.seconds).member("took", outcome.took);
        json.member("frames", std::size_t(outcome.frames)).member("framesPerSecond", rate);
        return writeResult(json.close('}').take());
    }
    writeResult(fmt::format("played {:.3g} s: {} frames in {:.3g} s, {:.0f} a second\n", outcome.seconds,
                            outcome.frames, outcome.took, rate));
}

}  // namespace host
