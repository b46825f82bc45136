// The words of enumerations that several tables share: nodes, and the commands that make them.
#pragma once

namespace sg {

inline constexpr wchar_t const* eulerOrders[] = {L"XYZ", L"XZY", L"YXZ", L"YZX", L"ZXY", L"ZYX"};
inline constexpr wchar_t const* rotationInterpolations[] = {L"Quaternion", L"Euler"};
inline constexpr wchar_t const* boneStyles[] = {L"Wireframe", L"Solid", L"Hidden"};
inline constexpr wchar_t const* locatorStyles[] = {L"Solid", L"Wireframe", L"WireframeAxes"};
inline constexpr wchar_t const* axesStyles[] = {L"ShowSelected", L"Show", L"Hide"};
inline constexpr wchar_t const* limitTypes[] = {L"BallSocket", L"Hinge"};
inline constexpr wchar_t const* shapes[] = {L"Box", L"Capsule", L"Cylinder", L"Sphere"};
inline constexpr wchar_t const* displayStyles[] = {L"Shaded", L"ShadedEdges", L"ShadedWireframe", L"Edges",
                                                   L"Wireframe"};

}  // namespace sg
