// SamplesFitter_simpleFit: dense samples become a chain of cubic Bezier segments, as few as a walk along the samples
// finds. Each segment takes in as many samples as it can reach within the tolerance and is fitted alone, by least
// squares on the lengths of its two handles; their directions come from the samples, so that neighbours meet smoothly.
// Free of any scene: numbers in, numbers out.
//
// Schneider, "An algorithm for automatically fitting digitized curves", Graphics Gems (1990); the ends of segments are
// found by a binary search forward instead of by splitting, and the tangents at joints blend the two chords there.
//
// Samples are the rows of a matrix, in order, one column a dimension, in whatever unit; the tolerance is in the same
// one. Two absolute sizes are part of the method: below 1e-5 a handle counts as none, and the segment's handles stand
// at the thirds of its chord.
#pragma once
#include "qel/utils/dense.h"

namespace Tavo {

class SamplesFitter_simpleFit {
public:
    using Matrix = Qelp::Matrix<double>;
    using Vector = Qelp::Vector<double>;

    // The largest number that samples may hold, so that squares of squares stay finite.
    static constexpr double MaxMagnitude = 1e50;

    SamplesFitter_simpleFit() = default;
    SamplesFitter_simpleFit(SamplesFitter_simpleFit const&) = default;
    SamplesFitter_simpleFit& operator=(SamplesFitter_simpleFit const&) = default;
    virtual ~SamplesFitter_simpleFit() = default;

    // `tolerance`: the largest distance of a sample from its segment. At 0 and below all but exact fits shrink to
    // single
    //   chords; two samples always are a segment.
    // `maxRefinementIterations`: attempts that the search for a segment's end has once more than two samples fit; below
    //   0 as many as it takes. However few, a segment gets on by one sample at least.
    // `maxSamples`: the most samples of one segment, at least 2. The time grows with it: a segment costs a few fits of
    //   that many samples.
    // `refinementSteps`: Newton steps for the samples' places on the segment, each followed by a new fit; 0 keeps those
    //   by chord length.
    // False, and nothing changes, if there is no sample or no dimension, or a number is not finite or too large.
    bool fit(Matrix const& samples, double tolerance, int maxRefinementIterations, int maxSamples, int refinementSteps);

    unsigned getBreakPointsNum() const;  // segments + 1, or 0 without any
    // The 3 * segments + 1 control points along the curve: every third is a joint, those beside it its handles. False
    // past the end.
    bool getControlPoint(unsigned index, Vector& out) const;

protected:
    // The segment of samples first to last. `u` gets the samples' parameters, `control` (4 rows) the control points,
    // `maxError` the largest distance and `splitIndex` the sample that has it first. An error that cannot be measured,
    // because a Newton step has no answer, is infinite. The last argument has no effect.
    void singleSegmentFit(Matrix const& samples, int first, int last, int wholeFirst, int wholeLast,
                          int refinementSteps, Vector& u, Matrix& control, double& maxError, int& splitIndex,
                          float = 0.0001F) const;
    void superSegmentFit(Matrix const& samples, int first, int last, double tolerance, int maxRefinementIterations,
                         int maxSamples, int refinementSteps, Vector& work);
    void samplesReparameterization_noCheck(Matrix const& samples, int first, int last, Vector& u,
                                           Matrix const& control) const;
    void tangentsLength_noCheck(Matrix const& samples, int first, int last, Vector const& u, Vector const& startTangent,
                                Vector const& endTangent, Matrix& control, double eps) const;
    void evaluateBezierSegment_noCheck(Matrix const& control, double t, Vector& out) const;
    void evaluateBezierSegmentFirstDerivative_noCheck(Matrix const& control, double t, Vector& out) const;
    void evaluateBezierSegmentSecondDerivative_noCheck(Matrix const& control, double t, Vector& out) const;

private:
    void measure(Matrix const& samples, int first, int last, Vector const& u, Matrix const& control, double& maxError,
                 int& splitIndex) const;

    Qelp::Vector<Matrix> m_segments;  // each of 4 rows
};

}  // namespace Tavo
