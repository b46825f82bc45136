// A scene's playback, and the settings of its time line and its units.
#include "qel/utils/text.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/scene_rows.h"
#include <algorithm>
#include <cmath>

namespace Tavo {
namespace {

using Setting = XAttribute (XSceneSettings::*)() const;

// ---- playback. While it lasts the scene holds a block of its own, which begins and ends outside those of the script

void stop(XScriptCall& call, XScene& scene) {
    if (scene.IsPlaying() || scene.IsSimulating()) call.Script().OutsideBlocks(scene, [&] { scene.Stop(); });
}

XScriptFunction playback(char const* name, XScene& (XScene::*start)(), char const* help) {
    return {name,
            [start](XScriptCall& call, XScene& scene) {
                if (scene.IsValid()) call.Script().OutsideBlocks(scene, [&] { (scene.*start)(); });
            },
            {},
            help};
}

XScriptFunction step(char const* name, XScene& (XScene::*go)(), char const* help) {
    return {name,
            [go](XScriptCall& call, XScene& scene) {
                stop(call, scene);
                (scene.*go)();
            },
            {},
            help};
}

// ---- settings ----

XScriptFunction time(char const* name, Setting setting, char const* help) {
    return {name, [setting](XScene const& scene) { return (scene.SceneSettings().*setting)().Float(); }, {}, help};
}

XScriptFunction setTime(char const* name, Setting setting, char const* help) {
    return {name,
            [setting](XScriptCall& call, XScene& scene, float seconds) {
                if (!std::isfinite(seconds)) call.Fail("argument 1 (seconds) must be finite");
                (scene.SceneSettings().*setting)().SetFloat(seconds);
            },
            {"seconds"},
            help};
}

XScriptFunction units(char const* name, Setting setting, char const* help) {
    return {name,
            [setting](XScene const& scene) { return (scene.SceneSettings().*setting)().EnumerationString(); },
            {},
            help};
}

[[noreturn]] void refuseUnits(XScriptCall& call, Qelutils::Vector<std::wstring> const& words) {
    std::string all;
    for (std::wstring const& word : words) all += (all.empty() ? "" : ", ") + Qelutils::toUtf8(word);
    call.Fail("argument 1 (units) must be one of " + all + ", or its number from 0 on");
}

// Nothing for an empty word.
void setUnits(XScriptCall& call, XAttribute attribute, XScriptKey const& key) {
    if (!attribute.IsValid() || (!key.isNumber && key.text.empty())) return;
    Qelutils::Vector<std::wstring> words;
    attribute.EnumerationStrings(words);
    int const number = key.isNumber ? key.number : int(std::find(words.begin(), words.end(), key.text) - words.begin());
    if (number < 0 || number >= int(words.size())) refuseUnits(call, words);
    attribute.SetEnumeration(number);
}

XScriptFunction setUnits(char const* name, Setting setting, char const* help) {
    return {name,
            [setting](XScriptCall& call, XScene& scene, XScriptKey const& key) {
                setUnits(call, (scene.SceneSettings().*setting)(), key);
            },
            {"units"},
            help};
}

}  // namespace

std::vector<XScriptFunction> scenePlaybackRows() {
    return {
        {"stop", stop, {}, "Stops playback and simulation."},
        playback("play", &XScene::Play, "Plays forward from the current time; ends the script's step before it."),
        playback("playReverse", &XScene::PlayReverse,
                 "Plays backward from the current time; ends the script's step before it."),
        step("goToFirstFrame", &XScene::GoToFirstFrame, "Goes to the start of the playback range."),
        step("goToPreviousFrame", &XScene::GoToPreviousFrame, "Goes one whole frame back, around the playback range."),
        step("goToNextFrame", &XScene::GoToNextFrame, "Goes one whole frame on, around the playback range."),
        step("goToLastFrame", &XScene::GoToLastFrame, "Goes to the end of the playback range."),
    };
}

std::vector<XScriptFunction> sceneTimeRows() {
    using S = XSceneSettings;
    return {
        units("linearUnits", &S::LinearUnits, "The word of the unit in which lengths are shown: \"Metres\"."),
        units("angularUnits", &S::AngularUnits, "The word of the unit in which angles are shown: \"Degrees\"."),
        {"frameRate",
         [](XScene const& scene) { return scene.SceneSettings().FrameRate().Integer(); },
         {},
         "Frames per second."},
        setUnits("setLinearUnits", &S::LinearUnits,
                 "The unit in which lengths are shown, by its word or its number from 0 on; scripts see metres."),
        setUnits("setAngularUnits", &S::AngularUnits,
                 "The unit in which angles are shown, by its word or its number from 0 on; scripts see radians."),
        {"setFrameRate",
         [](XScene& scene, int framesPerSecond) { scene.SceneSettings().FrameRate().SetInteger(framesPerSecond); },
         {"framesPerSecond"},
         "Frames per second; the times of keys stay."},
        time("startTime", &S::StartTime, "The start of the time range, in seconds."),
        time("endTime", &S::EndTime, "The end of the time range, in seconds."),
        time("playbackStartTime", &S::PlaybackStartTime, "The start of the range that is played, in seconds."),
        time("playbackEndTime", &S::PlaybackEndTime, "The end of the range that is played, in seconds."),
        setTime("setStartTime", &S::StartTime, "The start of the time range, in seconds."),
        setTime("setEndTime", &S::EndTime, "The end of the time range, in seconds."),
        setTime("setPlaybackStartTime", &S::PlaybackStartTime, "The start of the range that is played, in seconds."),
        setTime("setPlaybackEndTime", &S::PlaybackEndTime, "The end of the range that is played, in seconds."),
        time("time", &S::Time, "The current time, in seconds."),
        setTime("setTime", &S::Time, "Goes to a time, in seconds."),
    };
}

}  // namespace Tavo
