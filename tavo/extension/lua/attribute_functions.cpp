#include "tavo/extension/lua/attribute_keys.h"
#include "tavo/extension/lua/attribute_values.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

using Attribute = XAttribute const&;

std::vector<XScriptFunction> identityRows() {
    return {
        {"id", &XAttribute::AttributeID, {}, "Its number in the scene; -1 for none."},
        {"isValid", &XAttribute::IsValid, {}, "Whether it is there: its object was not deleted."},
        {"name", &XAttribute::Name, {}, "Its name."},
        {"displayName", &XAttribute::DisplayName, {}, "Its name for people: Pose.PositionX is Pose > Position X."},
        {"path", &XAttribute::Path, {}, "The path of its object, a dot, and where it is in that."},
        {"type", &XAttribute::TypeAsString, {}, "The word of its kind, such as Float, Enumeration or Vector3Array."},
        {"units", &XAttribute::UnitsAsString, {}, "The word of its unit, such as linear, angular or dimensionless."},
        {"object", &XAttribute::Object, {}, "The object that it belongs to."},
        {"isEditable", &XAttribute::IsEditable, {}, "Whether it can be edited."},
        {"isVisible", &XAttribute::IsVisible, {}, "Whether an interface should show it."},
        {"isConnected", &XAttribute::IsConnected, {}, "Whether it has an input or outputs."},
        {"isArrayAttribute", &XAttribute::IsArrayAttribute, {}, "Whether it holds an array, of whatever kind."},
        {"isAttributeArray", &XAttribute::IsAttributeArray, {}, "Whether it holds an array of attributes."},
        {"isAnimatable", &XAttribute::IsAnimatable, {}, "Whether it can be keyed."},
        {"isAnimated", &XAttribute::IsAnimated, {}, "Whether a curve feeds it."},
    };
}

std::vector<XScriptFunction> valueRows() {
    return {
        {"get",
         &getAttributeValue,
         {"index"},
         "Its value, in metres, radians and seconds: a number, true or false, a text, the word of an enumeration, a "
         "vector, quaternion or matrix, or the object that it refers to. An array gives the list of its values, or, "
         "with "
         "an index from 1, one of them; a composite the list of the values of its parts."},
        {"set",
         &setAttributeValue,
         {"value", "index"},
         "Writes its value, of an array the one at that index, from 1, or the first one; a list replaces all values of "
         "an array, and those of the parts of a composite."},
        {"add", &addAttributeValue, {"value"}, "Appends a value to an array, or an element to an array of attributes."},
        {"insert",
         &insertAttributeValue,
         {"value", "index"},
         "Inserts a value into an array, at that index, from 1, or as the first one."},
        {"delete",
         [](XAttribute& a, int index) { a.Delete(fromScriptIndex(index)); },
         {{"index", 1}},
         "Removes the value at that index, from 1, of an array."},
        {"size", [](Attribute a) { return a.ArraySize(); }, {}, "The number of values of an array; otherwise 0."},
        {"setSize", &setAttributeSize, {"count"}, "Makes an array that long; new values are the default."},
        {"clear", [](XAttribute& a) { a.Clear(); }, {}, "Empties an array."},
    };
}

std::vector<XScriptFunction> connectionRows() {
    return {
        {"connect",
         [](XAttribute& a, Attribute target) { return a.ConnectOutputTo(target); },
         {"target"},
         "Lets its value flow into another attribute, given as such or by its path; whether that is so now."},
        {"disconnect", [](XAttribute& a) { a.Disconnect(); }, {}, "Takes away its input and its outputs."},
        {"disconnectInput", [](XAttribute& a) { a.DisconnectInput(); }, {}, "Takes away its input."},
        {"disconnectOutputs", [](XAttribute& a) { a.DisconnectOutputs(); }, {}, "Takes away its outputs."},
        {"inputObject",
         &XAttribute::InputObject,
         {},
         "The object whose attribute flows into it; nil without an input."},
        {"outputObject",
         [](Attribute a, int index) { return a.OutputObject(fromScriptIndex(index)); },
         {{"index", 1}},
         "The object that it flows into by the output at that index, from 1; nil if there is none."},
        {"outputCount", &XAttribute::OutputConnectionCount, {}, "The number of its outputs."},
        {"attribute",
         [](Attribute a, XScriptKey const& key) {
             if (!a.IsValid()) return XAttribute();
             return key.isNumber ? a.Attribute(fromScriptIndex(key.number)) : a.Attribute(key.text);
         },
         {"nameOrIndex"},
         "What it encloses, by its name or its index, from 1: a part of a composite, an element of an array of "
         "attributes."},
        {"attributeCount", &XAttribute::AttributeCount, {}, "The number of attributes that it encloses."},
    };
}

}  // namespace

XScriptSet const& AttributeFunctions() {
    static XScriptSet const set = [] {
        XScriptSet made{"Attribute", "A value of an object.", identityRows()};
        for (auto const& part : {valueRows(), connectionRows(), attributeKeyFunctions()})
            made.functions.insert(made.functions.end(), part.begin(), part.end());
        return made;
    }();
    return set;
}

}  // namespace Tavo
