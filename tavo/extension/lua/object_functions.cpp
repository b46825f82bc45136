#include "tavo/extension/lua/script_sets.h"
#include "tavo/kinematics/render_object.h"
#include <algorithm>
#include <limits>

namespace Tavo {
namespace {

using Objects = Qelutils::Vector<XObject>;

constexpr double lowest = std::numeric_limits<float>::lowest(), highest = std::numeric_limits<float>::max();
constexpr int smallest = std::numeric_limits<int>::min(), largest = std::numeric_limits<int>::max();

// Scripts count from 1.
int indexOf(int number) { return number > 0 ? number - 1 : -1; }

XObject childOf(XObject const& object, XScriptKey const& key) {
    return key.isNumber ? object.Child(indexOf(key.number)) : object.Child(key.text);
}

XAttribute attributeOf(XObject const& object, XScriptKey const& key) {
    return key.isNumber ? object.Attribute(indexOf(key.number)) : object.Attribute(key.text);
}

XComparisonMode comparison(bool derived) { return derived ? SupportsObjectType : IsObjectType; }

Objects childrenOf(XObject const& object, std::wstring const& type, bool derived) {
    Objects out;
    if (type.empty())
        object.ChildObjects(out);
    else
        object.ChildObjects(out, type, comparison(derived));
    return out;
}

Objects descendantsOf(XObject const& object, std::wstring const& type, bool derived) {
    Objects out;
    if (type.empty())
        object.DescendantObjects(out);
    else
        object.DescendantObjects(out, type, comparison(derived));
    return out;
}

// What can't be deleted is said by the object itself; of what is gone already there is nothing to say.
void erase(XObject object) {
    if (object.IsValid()) object.Delete();
}

// Nothing hangs below what is gone, or is of another document.
void setParent(XObject& object, XObject const& parent, bool keepWorld) {
    if (parent.IsValid() && &parent.Database() == &object.Database()) object.SetParent(parent, false, keepWorld);
}

// A list of four is one value, so that what `colour` gave can be set; vectors are no colours.
XColour takeColour(XScriptCall& call) {
    float parts[4];
    if (!call.HasNext() || call.IsNextNumber()) {
        for (float& part : parts) part = float(call.TakeNumber());
    } else {
        auto const list = call.TakeNumbers();
        if (list.size() != 4) call.Fail("a colour is red, green, blue and alpha: four numbers, or a list of four");
        std::copy(list.begin(), list.end(), parts);
    }
    return {parts[0], parts[1], parts[2], parts[3]};
}

Qelutils::Vector<float> listOf(XColour const& colour) {
    return {colour.Red(), colour.Green(), colour.Blue(), colour.Alpha()};
}

}  // namespace

XScriptSet const& ObjectFunctions() {
    // clang-format off
    static XScriptSet const set{"Object", "Anything in a scene.", {
        {"isValid", &XObject::IsValid, {},
         "Whether the object is there: not deleted, and in a scene that is open."},
        {"createObject", [](XObject& object, std::wstring const& type) { return object.CreateObject(type); }, {"type"},
         "A new object of that type in the same scene, or nil for an unknown type."},
        {"copy", [](XObject& object, std::wstring const& name) { return object.Copy(name); }, {"name"},
         "A copy beside it, without what hangs below; without a name it is called after this one with \"_copy\"."},
        {"delete", [](XObject& object) { erase(object); }, {},
         "Deletes it with all that hangs below it."},
        {"deleteChild", [](XObject& object, XScriptKey const& child) { erase(childOf(object, child)); }, {"child"},
         "Deletes one of its children, by name or by number, of which 1 is the first."},
        {"deleteChildren", [](XObject& object) { object.DeleteChildObjects(); }, {},
         "Deletes all that hangs below it."},
        {"deselect", [](XObject& object) { XSceneObject(object).Deselect(); }, {},
         "Takes it out of its scene's selection."},
        {"attribute", &attributeOf, {"attribute"},
         "One of its attributes, by name or by number, of which 1 is the first; an invalid one where there is none."},
        {"attributeCount", &XObject::AttributeCount, {},
         "The number of its attributes."},
        {"attributes",
         [](XObject const& object) {
             Qelutils::Vector<XAttribute> out;
             object.Attributes(out);
             return out;
         },
         {}, "A list of all its attributes."},
        {"addCustomBool",
         [](XObject& object, std::wstring const& name, bool initial, bool isArray) {
             return object.AddBooleanAttribute(name, initial, isArray);
         },
         {"name", "initial", "isArray"},
         "Gives it a new attribute that is true or false; an invalid one comes back where the name is taken."},
        {"addCustomFloat",
         [](XObject& object, std::wstring const& name, float initial, float minimum, float maximum, bool isArray) {
             return object.AddFloatAttribute(name, initial, minimum, maximum, isArray);
         },
         {"name", "initial", {"minimum", lowest}, {"maximum", highest}, "isArray"},
         "Gives it a new attribute for a number; an invalid one comes back where the name is taken."},
        {"addCustomInteger",
         [](XObject& object, std::wstring const& name, int initial, int minimum, int maximum, bool isArray) {
             return object.AddIntegerAttribute(name, initial, minimum, maximum, isArray);
         },
         {"name", "initial", {"minimum", smallest}, {"maximum", largest}, "isArray"},
         "Gives it a new attribute for a whole number; an invalid one comes back where the name is taken."},
        {"addCustomString",
         [](XObject& object, std::wstring const& name, std::wstring const& initial, bool isArray) {
             return object.AddStringAttribute(name, initial, isArray);
         },
         {"name", "initial", "isArray"},
         "Gives it a new attribute for a text; an invalid one comes back where the name is taken."},
        {"addCustomVector",
         [](XObject& object, std::wstring const& name, XVector3 const& initial, bool isArray) {
             return object.AddVectorAttribute(name, initial, isArray);
         },
         {"name", "initial", "isArray"},
         "Gives it a new attribute for a vector; an invalid one comes back where the name is taken."},
        {"addCustomMatrix",
         [](XObject& object, std::wstring const& name, XMatrix const& initial, bool isArray) {
             return object.AddMatrixAttribute(name, initial, isArray);
         },
         {"name", "initial", "isArray"},
         "Gives it a new attribute for a matrix; an invalid one comes back where the name is taken."},
        {"child", &childOf, {"child"},
         "One of its children, by name or by number, of which 1 is the first; nil where there is none."},
        {"childCount", &XObject::ChildCount, {},
         "The number of its children."},
        {"children", &childrenOf, {"type", "derived"},
         "A list of its children: all, or those of a type, with those of the types that derive from it if so told."},
        {"descendants", &descendantsOf, {"type", "derived"},
         "A list of all that hangs below it, parents before children: all, or those of a type, as of children."},
        {"id", &XObject::ObjectID, {},
         "The number by which scene:object finds it; -1 when it is gone."},
        {"name", &XObject::Name, {},
         "Its name."},
        {"parent", &XObject::Parent, {},
         "What it hangs below; nil for what hangs below nothing."},
        {"path", &XObject::Path, {},
         "The names from the top of the scene down to its own, joined with \"|\"."},
        {"type", &XObject::ObjectType, {},
         "The word of its type."},
        {"hasAttribute", &XObject::HasAttribute, {"name"},
         "Whether it has an attribute of that name."},
        {"hasChildren", &XObject::HasChildObjects, {},
         "Whether something hangs below it."},
        {"hasParent", &XObject::HasParent, {},
         "Whether it hangs below something."},
        {"supportsType", [](XObject const& object, std::wstring const& type) { return object.SupportsType(type); },
         {"type"}, "Whether it is of that type, or of one that derives from it."},
        {"isType", [](XObject const& object, std::wstring const& type) { return object.IsType(type); }, {"type"},
         "Whether it is of exactly that type."},
        {"types",
         [](XObject const& object) {
             std::vector<std::wstring> out;
             return object.IsValid() ? object.ObjectTypes(out) : out;
         },
         {}, "A list of the words of its types, from \"Object\" to its own."},
        {"remove", [](XObject& object) { object.Remove(); }, {},
         "Deletes it alone: its children move to its parent, and stay where they are in the world."},
        {"select", [](XObject& object) { XSceneObject(object).Select(); }, {},
         "Selects it alone in its scene."},
        {"selectAppend", [](XObject& object) { XSceneObject(object).SelectAppend(); }, {},
         "Selects it in its scene beside what is selected there."},
        {"isSelected", [](XObject const& object) { return XSceneObject(object).IsSelected(); }, {},
         "Whether it is selected in its scene."},
        {"setName", [](XObject& object, std::wstring const& name) { object.SetName(name); }, {"name"},
         "Renames it; the name is made unique among its siblings."},
        {"setParent", &setParent, {"parent", {"keepWorld", true}},
         "Hangs it below another object of its scene; it stays where it is in the world, unless told otherwise."},
        {"unparent", [](XObject& object) { object.Unparent(); }, {},
         "Hangs it below the scene's root; it stays where it is in the world."},
    }};
    // clang-format on
    return set;
}

XScriptSet const& RenderObjectFunctions() {
    // clang-format off
    static XScriptSet const set{"RenderObject", "An object that is drawn.", {
        {"colour", [](XRenderObject const& object) { return listOf(object.ColourValue()); }, {},
         "A list of its colour's red, green, blue and alpha, from 0 to 1."},
        {"visible", [](XRenderObject const& object) { return object.Visible().Boolean(); }, {},
         "Whether it is shown."},
        {"setColour", [](XScriptCall& call, XRenderObject& object) { object.SetColour(takeColour(call)); },
         {"red", "green", "blue", {"alpha", 1}},
         "Sets its colour, as four numbers from 0 to 1 or a list of four, such as colour gives."},
        {"setVisible", &XRenderObject::SetVisible, {"visible"},
         "Shows or hides it."},
    }};
    // clang-format on
    return set;
}

}  // namespace Tavo
