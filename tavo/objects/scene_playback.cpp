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
// that rounding cannot hold it there. From the last frame of the range the step leads to the first; a time that was
// outside to begin with moves by the length of the range.
double nextFrame(double time, PlaybackRange const& range) {
    double const step = 1 / range.rate, near = XScene::FrameTimeThreshold * step;
    double next = std::ceil(range.rate * time) / range.rate;
    if (std::abs(next - time) <= near) next += step;
    if (next <= range.end + near) return next;
    return time <= range.end + near ? range.start : next - range.length();
}

double previousFrame(double time, PlaybackRange const& range) {
    double const step = 1 / range.rate, near = XScene::FrameTimeThreshold * step;
    double previous = std::floor(range.rate * time) / range.rate;
    if (std::abs(previous - time) <= near) previous -= step;
    if (previous >= range.start - near) return previous;
    return time >= range.start - near ? range.end : previous + range.length();
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
