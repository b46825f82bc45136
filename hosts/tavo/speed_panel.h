// The part of a picture of paths that shows speed over time, in the colours of the paths; an earlier state in grey
// dashes.
#pragma once
#include "hosts/tavo/path_picture.h"
#include "hosts/tavo/speed_colours.h"

namespace host {

class SpeedPanel {
public:
    SpeedPanel(PathPicture const& picture, SpeedColours const& colours, SvgBox const& area, Svg& svg);

    void draw();

private:
    SvgPoint at(PathState::Moment const& moment) const { return {xOf(moment.time), yOf(moment.speed)}; }
    double xOf(double time) const;
    double yOf(double speed) const;
    void take(PathState const& state);
    void drawAxes();
    void drawBefore(PathState const& state);
    void drawLine(PathState const& state);

    PathPicture const& picture_;
    SpeedColours const& colours_;
    SvgBox area_;
    Svg& svg_;
    double first_ = 1e300, last_ = -1e300, most_ = 0;  // seconds, metres a second
};

}  // namespace host
