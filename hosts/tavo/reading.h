// Reads what an attribute says as plain numbers: one for a number, three for a vector, sixteen for a matrix.
#pragma once
#include "tavo/kinematics/transform.h"
#include "tavo/objects/scene.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

class Reading {
public:
    // None when the object has no such attribute or it holds no numbers. Beside the attributes' own names, transforms
    // know "WorldTranslation" (x, y, z) and "WorldRotation" (x, y, z, w).
    static std::optional<Reading> of(Tavo::XObject const& object, std::string const& name);

    Tavo::XObject const& object() const { return object_; }
    // "" for a single number, otherwise ".x", ".y", ... or ".m00", ".m01", ... row by row.
    std::vector<std::string> const& parts() const { return parts_; }
    // Appends as many numbers as there are parts, evaluated now; in the scene's display units if so wished. Column 3 of
    // a matrix is 0, 0, 0, 1.
    void read(std::vector<double>& out, bool display) const;
    bool isSingle() const { return single_; }  // numbers have the precision of a float

private:
    enum class Form { number, vector, matrix, quaternion, compound, worldTranslation, worldRotation };

    static std::optional<Form> formOf(Tavo::XAttribute const& attribute);
    void setParts();
    double readNumber(Tavo::XAttribute const& attribute, bool display) const;
    void readVector(Tavo::XVector3 value, sg::AttributeUnit unit, std::vector<double>& out, bool display) const;
    void readMatrix(std::vector<double>& out, bool display) const;

    Tavo::XObject object_;
    Tavo::XAttribute attribute_;
    Form form_ = Form::number;
    std::vector<std::string> parts_;
    bool single_ = true;
};

// A value of the attribute between internal units and those that the scene shows, by what the attribute's unit means.
double convertUnits(Tavo::XAttribute const& attribute, Tavo::XUnitConversionType direction, double value);

// "m", "°", "frames" and so on: the unit in which the scene shows such attributes; empty without one.
std::string displayUnit(Tavo::XScene const& scene, int unit);
// The unit of values inside, "m", "rad", "fps": in which they are where no scene says otherwise.
std::string internalUnit(int unit);

}  // namespace host
