// Playback and frame stepping. The scene holds a transient change block open for the whole of playback, so that a time
// that is played is shown and no undo step.
#include "tavo/objects/scene.h"
#include <cmath>

namespace Tavo {
namespace {

constexpr double secondsPerMillisecond = 0.001;

struct PlaybackRange {
    double start, end, rate;  // seconds, seconds, frames per second

    explicit PlaybackRange(XSceneSettings const& settings) :
        start(settings.PlaybackStartTime().Float()), end(settings.PlaybackEndTime().Float()),
        rate(settings.FrameRate().Integer()) {}
    double length() const { return end - start; }
    bool isPlayable() const { return length() > 0 && rate > 0; }
};

// The frame after `time`. A time that stands on a frame, within a thousandth of a step, moves on from that frame, so
// that rounding cannot hold it there. A step beyond the range comes back by the length of the range: its two ends are
// the same moment of a cycle, and from the one the step leads to the frame that follows the other. A time is stored as
// a float, and so it is the float that is compared with the end.
double nextFrame(double time, PlaybackRange const& range) {
    double const step = 1 / range.rate;
    double next = std::ceil(range.rate * time) / range.rate;
    if (std::abs(next - time) <= XScene::FrameTimeThreshold * step) next += step;
    return float(next) > range.end ? next - range.length() : next;
}

double previousFrame(double time, PlaybackRange const& range) {
    double const step = 1 / range.rate;
    double previous = std::floor(range.rate * time) / range.rate;
    if (std::abs(previous - time) <= XScene::FrameTimeThreshold * step) previous -= step;
    return float(previous) < range.start ? previous + range.length() : previous;
}

}  // namespace

XScene& XScene::SetSceneMode(XSceneMode mode) {
    Stop();
    if (mode == PlayingForwardMode) return Play();
    if (mode == PlayingReverseMode) return PlayReverse();
    _mode = mode;
    return *this;
}

XScene& XScene::Play() {
    startPlayback(PlayingForwardMode);
    return *this;
}

XScene& XScene::PlayReverse() {
    startPlayback(PlayingReverseMode);
    return *this;
}

XScene& XScene::Stop() {
    if (!IsPlaying() && !IsSimulating()) return *this;
    _mode = InteractiveMode;
    EndChangeBlock();
    return *this;
}

void XScene::startPlayback(XSceneMode mode) {
    Stop();
    BeginChangeBlock(true);
    _mode = mode;
    _currentStamp = _startStamp = wxUtils::timeGetTime();
    _playbackStart = _sceneSettings.Time().Float();
}

void XScene::onAppMainLoopTick() {
    PlaybackRange const range(_sceneSettings);
    if (!IsPlaying() || !range.isPlayable()) return;
    _currentStamp = wxUtils::timeGetTime();
    double elapsed = (_currentStamp - _startStamp) * secondsPerMillisecond;
    elapsed -= std::floor(elapsed / range.length()) * range.length();
    double time = _playbackStart;
    if (_mode == PlayingForwardMode) {
        time += elapsed;
        if (time > range.end) time -= range.length();
    } else {
        time -= elapsed;
        if (time < range.start) time += range.length();
    }
    setTime(float(time));
    CommitTransient();
}

void XScene::setTime(float time) {
    XAttribute attribute = _sceneSettings.Time();
    if (attribute.Float() != time) attribute.SetFloat(time);
}

XScene& XScene::GoToFirstFrame() {
    Stop();
    setTime(_sceneSettings.PlaybackStartTime().Float());
    return *this;
}

XScene& XScene::GoToLastFrame() {
    Stop();
    setTime(_sceneSettings.PlaybackEndTime().Float());
    return *this;
}

XScene& XScene::GoToNextFrame() {
    stepFrame(true);
    return *this;
}

XScene& XScene::GoToPreviousFrame() {
    stepFrame(false);
    return *this;
}

void XScene::stepFrame(bool forward) {
    Stop();
    PlaybackRange const range(_sceneSettings);
    if (!range.isPlayable()) return;
    double const time = _sceneSettings.Time().Float();
    setTime(float(forward ? nextFrame(time, range) : previousFrame(time, range)));
}

}  // namespace Tavo
