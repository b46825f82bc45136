#include "hosts/tavo/reading.h"

#include "qel/utils/text.h"
#include "tavo/objects/units.h"

namespace host {

using namespace Tavo;

std::optional<Reading> Reading::of(XObject const& object, std::string const& name) {
    std::wstring const wide = Qelutils::fromUtf8(name);
    Reading reading;
    reading.object_ = object;
    if (object.HasAttribute(wide)) {
        reading.attribute_ = object.Attribute(wide);
        std::optional<Form> const form = formOf(reading.attribute_);
        if (!form) return {};
        reading.form_ = *form;
    } else if (object.SupportsType(XTransform::TypeID) && (name == "WorldTranslation" || name == "WorldRotation")) {
        reading.form_ = name == "WorldTranslation" ? Form::worldTranslation : Form::worldRotation;
    } else {
        return {};
    }
    reading.setParts();
    return reading;
}

std::optional<Reading::Form> Reading::formOf(XAttribute const& attribute) {
    XAttribute const& a = attribute;
    if (a.IsFloat() || a.IsDouble() || a.IsInt() || a.IsEnum() || a.IsBool()) return Form::number;
    if (a.IsVector()) return Form::vector;
    if (a.IsMatrix()) return Form::matrix;
    if (a.IsQuaternion()) return Form::quaternion;
    if (!a.IsCompositeAttribute() || a.IsNode() || a.AttributeCount() == 0) return {};
    for (int i = 0; i < a.AttributeCount(); ++i)
        if (formOf(a.Attribute(i)) != Form::number) return {};
    return Form::compound;
}

void Reading::setParts() {
    single_ = form_ != Form::number || attribute_.IsFloat();
    if (form_ == Form::number) parts_ = {""};
    if (form_ == Form::vector || form_ == Form::worldTranslation) parts_ = {".x", ".y", ".z"};
    if (form_ == Form::quaternion || form_ == Form::worldRotation) parts_ = {".x", ".y", ".z", ".w"};
    for (int i = 0; form_ == Form::matrix && i < 16; ++i)
        parts_.push_back(".m" + std::to_string(i / 4) + std::to_string(i % 4));
    for (int i = 0; form_ == Form::compound && i < attribute_.AttributeCount(); ++i)
        parts_.push_back('.' + Qelutils::toUtf8(attribute_.Attribute(i).Name()));
}

void Reading::read(std::vector<double>& out, bool display) const {
    auto const quaternion = [&out](XQuaternion const& q) { out.insert(out.end(), {q.X(), q.Y(), q.Z(), q.W()}); };
    XTransform const transform(object_);
    switch (form_) {
    case Form::number: out.push_back(readNumber(attribute_, display)); break;
    case Form::vector: readVector(attribute_.Vector(), sg::AttributeUnit(attribute_.Units()), out, display); break;
    case Form::matrix: readMatrix(out, display); break;
    case Form::quaternion: quaternion(attribute_.Quaternion()); break;
    case Form::compound:
        for (int i = 0; i < attribute_.AttributeCount(); ++i)
            out.push_back(readNumber(attribute_.Attribute(i), display));
        break;
    case Form::worldTranslation: readVector(transform.WorldTranslation(), sg::Linear, out, display); break;
    case Form::worldRotation: quaternion(transform.WorldRotation()); break;
    }
}

double Reading::readNumber(XAttribute const& attribute, bool display) const {
    if (attribute.IsInt()) return attribute.Integer();
    if (attribute.IsEnum()) return attribute.Enumeration();
    if (attribute.IsBool()) return attribute.Boolean();
    double const value = attribute.IsDouble() ? attribute.Double() : attribute.Float();
    return display ? convertUnits(attribute, ToExternalUnits, value) : value;
}

void Reading::readVector(XVector3 value, sg::AttributeUnit unit, std::vector<double>& out, bool display) const {
    if (display) object_.Database().ConvertUnits(unit, ToExternalUnits, value);
    out.insert(out.end(), {value.X(), value.Y(), value.Z()});
}

void Reading::readMatrix(std::vector<double>& out, bool display) const {
    XMatrix matrix = attribute_.Matrix();
    if (display) object_.Database().ConvertUnits(ToExternalUnits, matrix);
    for (int i = 0; i < 16; ++i) out.push_back(i == 15 ? 1 : i % 4 == 3 ? 0 : matrix.Element(i / 4, i % 4));
}

double convertUnits(XAttribute const& attribute, XUnitConversionType direction, double value) {
    attribute.Database().ConvertUnits(UnitCodeOf(sg::AttributeUnit(attribute.Units())), direction, value);
    return attribute.IsFloat() ? float(value) : value;
}

std::string displayUnit(XScene const& scene, int unit) {
    XSceneSettings const settings = scene.SceneSettings();
    auto const word = [](auto const& table, int row) {
        return row >= 0 && row < int(std::size(table)) ? Qelutils::toUtf8(table[row].abbreviation) : std::string();
    };
    switch (unit) {
    case sg::Linear: return word(LinearUnitTable, settings.LinearUnits().Enumeration());
    case sg::Angular: return word(AngularUnitTable, settings.AngularUnits().Enumeration());
    case sg::Mass: return word(MassUnitTable, settings.MassUnits().Enumeration());
    case sg::Time: return "frames";
    case sg::Framerate: return Qelutils::toUtf8(FrameRateAbbreviation);
    default: return {};
    }
}

std::string internalUnit(int unit) {
    // By sg::AttributeUnit.
    static constexpr char const* words[] = {"",       "",        "m",         "m/s",   "m/s²", "rad", "rad/s",
                                            "rad/s²", "s",       "kg",        "kg/m³", "N",    "N m", "N/m",
                                            "N s/m",  "N m/rad", "N m s/rad", "fps",   ""};
    return unit >= 0 && unit < int(std::size(words)) ? words[unit] : "";
}

}  // namespace host
