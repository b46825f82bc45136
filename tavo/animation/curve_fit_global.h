// SamplesFitter_multiFit: dense samples become a chain of cubic Bezier segments, all of them at once, by one least
// squares system whose unknowns are the joints and one handle of each. The other handle of a joint is its reflection,
// which makes the curve smooth in its parameter at every joint (C1). Free of any scene: numbers in, numbers out.
//
// Samples are the rows of a matrix, one column a dimension, in whatever unit; each has a parameter (a key parameter, a
// time), in rising order from 0. A sample is a row of the system with four entries side by side, so that the normal
// equations are a band: they are gathered and solved in time linear in the samples and the segments, by elimination
// without pivoting (Golub and Van Loan, "Matrix computations", chapter on banded systems). A pivot below the given
// tolerance means that the samples do not determine the curve, mostly because a segment has too few; N segments need
// 2 N + 2 samples at least.
#pragma once
#include "qel/utils/dense.h"

namespace Tavo {

class SamplesFitter_multiFit {
public:
    using Matrix = Qelp::Matrix<double>;
    using Vector = Qelp::Vector<double>;

    // The largest number that samples and parameters may hold, so that sums of squares stay finite.
    static constexpr double MaxMagnitude = 1e100;

    SamplesFitter_multiFit() = default;
    SamplesFitter_multiFit(SamplesFitter_multiFit const&) = default;
    SamplesFitter_multiFit& operator=(SamplesFitter_multiFit const&) = default;
    virtual ~SamplesFitter_multiFit() = default;

    // Both forms: false, and nothing changes, if there are fewer than 2 samples or no dimension, if the parameters are
    // not one a sample or do not end above 0, if a number is not finite or too large, or if a pivot fails.
    // `pivotTolerance`: the least absolute value of a pivot; in no unit, as the system holds no lengths.
    // `knotEpsilon`: a sample no farther than this behind a knot still belongs to the segment before it.

    // `segments` segments, at least 1. The joints gather where the curve turns (in its first three dimensions), so that
    // each segment has the same share of the turning: the angle at each sample, averaged over `window` samples, is
    // summed up, and where the sum fills a share, a knot is placed. The angle is an arc tangent, so that a turn sharper
    // than a right angle counts as negative. Where that places no knot, because nothing turns, because the share is
    // full at the first sample already or comes too seldom, or because the knot would not come after the one before it
    // and before the end, the knots that are missing are spread evenly over the parameters behind the last one placed.
    bool superSegmentFit(Matrix const& samples, Vector const& parameters, int segments, int window,
                         double pivotTolerance, double knotEpsilon);
    // As few segments, of equal length in the parameter, as leave every sample within `tolerance` of the curve at its
    // parameter. False as well if no number of segments does before a pivot fails.
    bool superSegmentFit(Matrix const& samples, Vector const& parameters, double tolerance, double pivotTolerance,
                         double knotEpsilon);

    unsigned getBreakPointsNum() const { return unsigned(m_knots.size()); }
    // The 3 * knots - 2 control points along the curve: every third is a joint, those beside it its handles. False past
    // the end.
    bool getControlPoint(unsigned index, Vector& out) const;

protected:
    // The curve at the parameter; behind the ends it follows the first and the last segment on. False without a curve.
    bool evaluate(double t, Vector& out, double eps) const;

private:
    Vector m_knots;     // parameters of the joints, the first 0
    Matrix m_controls;  // rows: joint 0, its out handle; then of each joint k: 2k its in handle, 2k+1 the joint
};

}  // namespace Tavo
