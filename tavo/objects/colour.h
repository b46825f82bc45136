// A colour: red, green, blue and alpha, each from 0 to 1. A plain value.
#pragma once

namespace Tavo {

class XColour {
public:
    constexpr XColour() = default;
    constexpr XColour(float red, float green, float blue, float alpha = 1) :
        _red(red), _green(green), _blue(blue), _alpha(alpha) {}

    constexpr float Red() const { return _red; }
    constexpr float Green() const { return _green; }
    constexpr float Blue() const { return _blue; }
    constexpr float Alpha() const { return _alpha; }
    constexpr bool operator==(XColour const&) const = default;

private:
    float _red = 0, _green = 0, _blue = 0, _alpha = 1;
};

}  // namespace Tavo
