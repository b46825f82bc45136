// The part of a picture of paths that shows them in space: over a grid of metres, at true aspect, with a scale bar.
#pragma once
#include "hosts/tavo/path_picture.h"
#include "hosts/tavo/speed_colours.h"

namespace host {

class PathPanel {
public:
    static constexpr double padding = 44;  // pixels between the paths and the frame, for labels

    PathPanel(PathPicture const& picture, PathView const& view, PathBounds const& bounds, SpeedColours const& colours,
              SvgBox const& area, Svg& svg);

    void draw();

    // For the legend, each 24 pixels wide to the right of a point.
    std::string tickText() const;
    bool marksSamples() const;
    void drawTickSymbol(SvgPoint at) const;
    void drawKeySymbol(SvgPoint at) const;
    void drawSampleSymbol(SvgPoint at) const;
    void drawGuardSymbol(SvgPoint at) const;
    void drawBeforeSymbol(SvgPoint at) const;

private:
    struct Tick {
        double time;
        SvgPoint at, across;  // across: one pixel long, at right angles to the path
        bool isLabelled;
    };

    std::vector<SvgPoint> projected(std::vector<PathPoint> const& points) const;
    double lengthOf(PathState const& state) const;
    double tickStep() const;
    std::vector<Tick> ticksOf(PathState const& state) const;
    SvgPoint across(PathState const& state, double time) const;

    void drawGrid();
    void drawGuards(PathState const& state);
    void drawBefore(PathState const& state);
    void drawLine(PathState const& state);
    void drawTicks(PathState const& state);
    void drawKeys(PathState const& state);
    void drawHandle(SvgPoint key, SvgPoint handle);
    void drawEnds(PathState const& state);
    void drawLabels(PathState const& state);
    void drawLabel(SvgPoint at, SvgPoint across, double distance, std::string const& text, std::string_view attributes);
    void drawScaleBar();
    bool isFree(SvgBox const& box) const;
    double crowding(SvgBox const& box) const;
    std::string timeText(double time) const;

    PathPicture const& picture_;
    PathView view_;
    PathProjection project_;
    SpeedColours const& colours_;
    SvgBox area_;
    Svg& svg_;
    double tickStep_;
    std::vector<SvgBox> taken_;       // by labels
    std::vector<SvgPoint> occupied_;  // by paths
};

}  // namespace host
