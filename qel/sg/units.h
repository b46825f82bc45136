// The units of attributes: what a number means. Values are in metres, kilograms, radians and seconds throughout.
#pragma once

namespace sg {

enum AttributeUnit : int {
    Dimensionless = 0,
    External,
    Linear,
    Velocity,
    Acceleration,
    Angular,
    AngularVelocity,
    AngularAcceleration,
    Time,
    Mass,
    Density,
    Force,
    Torque,
    Stiffness,
    Damping,
    AngularStiffness,
    AngularDamping,
    Framerate,
    Filename,
};

// How angles are counted where an operation offers the choice.
enum class AngularUnit : int { Degrees = 0, Radians = 1 };

// Two floats that differ by less count as equal wherever the graph compares positions and angles.
inline float g_floatTolerance = 1e-5f;

}  // namespace sg
