// Moves a scene's time through a row of moments, to evaluate there, and back at the end. Nothing of it is recorded.
#pragma once
#include "tavo/objects/scene.h"

namespace host {

class TimeSteps {
public:
    explicit TimeSteps(Tavo::XScene& scene) : scene_(scene), time_(scene.SceneSettings().Time()), now_(time_.Float()) {
        scene_.BeginChangeBlock(true);
    }
    ~TimeSteps() {
        time_.SetFloat(now_);
        scene_.EndChangeBlock();
    }
    TimeSteps(TimeSteps const&) = delete;
    TimeSteps& operator=(TimeSteps const&) = delete;
    void go(float seconds) { time_.SetFloat(seconds); }

private:
    Tavo::XScene& scene_;
    Tavo::XAttribute time_;
    float now_;
};

}  // namespace host
