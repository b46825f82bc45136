#include "tests/objects/fixture.h"
#include <cmath>

namespace Tavo {
namespace {

using testing::ElementsAre;
using Kind = db::AttributeType;

class Attribute : public ObjectModel {
protected:
    XAttribute dynamic(Kind kind) {
        return object.getNode()->addDynamic(kind, L"attribute" + std::to_wstring(count++));
    }
    XAttribute floats(std::vector<float> const& values) { return dynamic(Kind::FloatArray).SetFloat(values); }

    XObject object = named(L"object");
    int count = 0;
};

// ---- kinds ----

struct KindRow {
    int type;
    wchar_t const* word;
    bool (XAttribute::*is)() const;
};
constexpr KindRow kinds[] = {
    {1, L"Integer", &XAttribute::IsInt},
    {2, L"Boolean", &XAttribute::IsBool},
    {3, L"Enumeration", &XAttribute::IsEnum},
    {4, L"Float", &XAttribute::IsFloat},
    {5, L"Double", &XAttribute::IsDouble},
    {6, L"String", &XAttribute::IsString},
    {7, L"Vector3", &XAttribute::IsVector},
    {8, L"Matrix", &XAttribute::IsMatrix},
    {9, L"Pointer", &XAttribute::IsObjectRef},
    {10, L"IntegerArray", &XAttribute::IsIntArray},
    {11, L"BooleanArray", &XAttribute::IsBoolArray},
    {12, L"EnumerationArray", &XAttribute::IsEnumArray},
    {13, L"FloatArrat", &XAttribute::IsFloatArray},
    {14, L"DoulbrArray", &XAttribute::IsDoubleArray},
    {15, L"StringArray", &XAttribute::IsStringArray},
    {16, L"Vector3Array", &XAttribute::IsVectorArray},
    {17, L"Matrix34Array", &XAttribute::IsMatrixArray},
    {18, L"PointerArray", &XAttribute::IsObjectRefArray},
    {19, L"NodeContainer", &XAttribute::IsAttributeContainer},
    {24, L"Quaternion", &XAttribute::IsQuaternion},
    {25, L"QuaternionArray", &XAttribute::IsQuaternionArray},
};

TEST_F(Attribute, EveryKindHasItsNumberItsWordAndItsTest) {
    for (KindRow const& row : kinds) {
        XAttribute const a = dynamic(Kind(row.type));
        EXPECT_EQ(a.Type(), row.type);
        EXPECT_EQ(a.TypeAsString(), row.word);
        for (KindRow const& other : kinds) EXPECT_EQ((a.*other.is)(), &row == &other) << row.type << " " << other.type;
    }
}

TEST_F(Attribute, ANodeIsAnAttributeOfItsOwnKind) {
    XAttribute const a(object.getNode());
    EXPECT_EQ(a.TypeAsString(), L"Node");
    EXPECT_TRUE(a.IsNode() && a.IsCompositeAttribute());
    EXPECT_EQ(a.Object(), object);
    EXPECT_EQ(a.Path(), L"object");
}

// ---- reading and writing, a row for every kind of value ----

// One kind through the interface: a value, the default, and the operations on them.
struct Access {
    char const* name;
    Kind single, array;
    std::function<void(XAttribute&, int value, int index)> set, insert;
    std::function<void(XAttribute&, int value)> add;
    std::function<int(XAttribute const&, int index)> get;  // the value; 0 for the empty value
    std::function<int(XAttribute const&)> first;           // the form without an index
};

XMatrix matrixAt(int x) {
    XMatrix m;
    return m.SetTranslation(XVector3(float(x), 0, 0));
}
XQuaternion turned(int x) { return XQuaternion(float(x), 0, 0, 1.0f - float(x)); }
int fromMatrix(XMatrix const& m) { return int(std::lround(m.Translation().X())); }

Access const accesses[] = {
    {"Integer", Kind::Integer, Kind::IntegerArray, [](auto& a, int v, int i) { a.SetInteger(v, i); },
     [](auto& a, int v, int i) { a.InsertInteger(v, i); }, [](auto& a, int v) { a.AddInteger(v); },
     [](auto& a, int i) { return a.Integer(i); }, [](auto& a) { return a.Integer(); }},
    {"Enumeration", Kind::Enumeration, Kind::EnumerationArray, [](auto& a, int v, int i) { a.SetEnumeration(v, i); },
     [](auto& a, int v, int i) { a.InsertEnumeration(v, i); }, [](auto& a, int v) { a.AddEnumeration(v); },
     [](auto& a, int i) { return a.Enumeration(i); }, [](auto& a) { return a.Enumeration(); }},
    {"Boolean", Kind::Boolean, Kind::BooleanArray, [](auto& a, int v, int i) { a.SetBoolean(v != 0, i); },
     [](auto& a, int v, int i) { a.InsertBoolean(v != 0, i); }, [](auto& a, int v) { a.AddBoolean(v != 0); },
     [](auto& a, int i) { return a.Boolean(i) ? 1 : 0; }, [](auto& a) { return a.Boolean() ? 1 : 0; }},
    {"Float", Kind::Float, Kind::FloatArray, [](auto& a, int v, int i) { a.SetFloat(float(v), i); },
     [](auto& a, int v, int i) { a.InsertFloat(float(v), i); }, [](auto& a, int v) { a.AddFloat(float(v)); },
     [](auto& a, int i) { return int(a.Float(i)); }, [](auto& a) { return int(a.Float()); }},
    {"Double", Kind::Double, Kind::DoubleArray, [](auto& a, int v, int i) { a.SetDouble(v, i); },
     [](auto& a, int v, int i) { a.InsertDouble(v, i); }, [](auto& a, int v) { a.AddDouble(v); },
     [](auto& a, int i) { return int(a.Double(i)); }, [](auto& a) { return int(a.Double()); }},
    {"String", Kind::String, Kind::StringArray, [](auto& a, int v, int i) { a.SetString(std::wstring(v, L'x'), i); },
     [](auto& a, int v, int i) { a.InsertString(std::wstring(v, L'x'), i); },
     [](auto& a, int v) { a.AddString(std::wstring(v, L'x')); }, [](auto& a, int i) { return int(a.String(i).size()); },
     [](auto& a) { return int(a.String().size()); }},
    {"Vector", Kind::Vector3, Kind::Vector3Array, [](auto& a, int v, int i) { a.SetVector(XVector3(v, 0, 0), i); },
     [](auto& a, int v, int i) { a.InsertVector(XVector3(v, 0, 0), i); },
     [](auto& a, int v) { a.AddVector(XVector3(v, 0, 0)); }, [](auto& a, int i) { return int(a.Vector(i).X()); },
     [](auto& a) { return int(a.Vector().X()); }},
    {"Matrix", Kind::Matrix, Kind::MatrixArray, [](auto& a, int v, int i) { a.SetMatrix(matrixAt(v), i); },
     [](auto& a, int v, int i) { a.InsertMatrix(matrixAt(v), i); }, [](auto& a, int v) { a.AddMatrix(matrixAt(v)); },
     [](auto& a, int i) { return fromMatrix(a.Matrix(i)); }, [](auto& a) { return fromMatrix(a.Matrix()); }},
    {"Quaternion", Kind::Quaternion, Kind::QuaternionArray,
     [](auto& a, int v, int i) { a.SetQuaternion(turned(v), i); },
     [](auto& a, int v, int i) { a.InsertQuaternion(turned(v), i); },
     [](auto& a, int v) { a.AddQuaternion(turned(v)); }, [](auto& a, int i) { return int(a.Quaternion(i).X()); },
     [](auto& a) { return int(a.Quaternion().X()); }},
};

class EveryKind : public Attribute, public testing::WithParamInterface<Access> {};

TEST_P(EveryKind, ASingleValueIgnoresTheIndex) {
    Access const& kind = GetParam();
    XAttribute a = dynamic(kind.single);
    EXPECT_EQ(kind.get(a, 0), 0);
    kind.set(a, 1, 7);
    EXPECT_EQ(kind.first(a), 1);
    EXPECT_EQ(kind.get(a, 99), 1);
    EXPECT_EQ(a.ArraySize(), 0);
    EXPECT_FALSE(a.SetArraySize(3) || a.AddValue() || a.InsertValue(0));
}

TEST_P(EveryKind, AnArrayGrowsByAddingInsertingAndItsFirstElement) {
    Access const& kind = GetParam();
    XAttribute a = dynamic(kind.array);
    kind.set(a, 1, 1);
    EXPECT_EQ(a.ArraySize(), 0) << "beyond the end";
    kind.set(a, 1, 0);
    EXPECT_EQ(a.ArraySize(), 1) << "the first of an empty array";
    EXPECT_EQ(kind.first(a), 1);
    kind.add(a, 1);
    kind.insert(a, 0, 1);
    EXPECT_EQ(a.ArraySize(), 3);
    EXPECT_EQ(kind.get(a, 0), 1);
    EXPECT_EQ(kind.get(a, 1), 0);
    EXPECT_EQ(kind.get(a, 2), 1);
    EXPECT_TRUE(a.AddValue());
    EXPECT_EQ(kind.get(a, 3), 0);
    a.Delete().Delete(7).Delete(-1);
    EXPECT_EQ(a.ArraySize(), 3);
    a.Clear();
    EXPECT_EQ(a.ArraySize(), 0);
}

TEST_P(EveryKind, OutOfRangeReadsAreEmptyAndWritesAreIgnored) {
    Access const& kind = GetParam();
    XAttribute a = dynamic(kind.array);
    EXPECT_TRUE(a.SetArraySize(3));
    EXPECT_EQ(a.ArraySize(), 3);
    for (int index : {-1, 3, 5, 1 << 30}) {
        kind.set(a, 1, index);
        kind.insert(a, 1, index == 3 ? -7 : index);
        EXPECT_EQ(kind.get(a, index), 0);
    }
    EXPECT_EQ(a.ArraySize(), 3);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(kind.get(a, i), 0);
}

TEST_P(EveryKind, AnotherKindReadsEmptyAndTakesNothing) {
    Access const& kind = GetParam();
    for (Access const& other : accesses) {
        if (other.single == kind.single) continue;
        XAttribute a = dynamic(other.single);
        kind.set(a, 1, 0);
        EXPECT_EQ(kind.get(a, 0), 0);
        EXPECT_EQ(other.get(a, 0), 0) << other.name;
        XAttribute array = dynamic(other.array);
        kind.add(array, 1);
        kind.set(array, 1, 0);
        EXPECT_EQ(array.ArraySize(), 0) << other.name;
    }
}

TEST_P(EveryKind, AnInvalidHandleReadsEmptyAndWritesNothing) {
    Access const& kind = GetParam();
    XAttribute a;
    kind.set(a, 1, 0);
    kind.add(a, 1);
    kind.insert(a, 1, 0);
    EXPECT_EQ(kind.get(a, 0), 0);
    EXPECT_EQ(kind.first(a), 0);
    EXPECT_EQ(errors(), none());
}

TEST_P(EveryKind, WhatIsNotEditableTakesNoWrite) {
    Access const& kind = GetParam();
    TestDocument document;
    sg::Node* node = document.CreateObject(L"Null").getNode();
    XAttribute single(node->addDynamic(kind.single, L"s")), array(node->addDynamic(kind.array, L"a"));
    kind.add(array, 1);
    document.editable = false;
    kind.set(single, 1, 0);
    kind.set(array, 0, 0);
    kind.add(array, 1);
    kind.insert(array, 1, 0);
    array.Clear().Delete(0);
    EXPECT_FALSE(array.SetArraySize(5) || array.AddValue() || array.InsertValue(0));
    EXPECT_EQ(kind.get(single, 0), 0);
    EXPECT_EQ(array.ArraySize(), 1);
    EXPECT_EQ(kind.get(array, 0), 1);
}

TEST_P(EveryKind, AWriteIsUndoneAndRedone) {
    Access const& kind = GetParam();
    XAttribute single = dynamic(kind.single), array = dynamic(kind.array);
    graph().ClearUndoHistory();
    inBlock([&] { kind.set(single, 1, 0), kind.add(array, 1); });
    int const written = kind.get(single, 0);
    graph().Undo();
    EXPECT_EQ(kind.get(single, 0), 0);
    EXPECT_EQ(array.ArraySize(), 0);
    graph().Redo();
    EXPECT_EQ(kind.get(single, 0), written);
    EXPECT_EQ(kind.get(array, 0), 1);
}

TEST_P(EveryKind, CopiesTheValueOfItsOwnKindOnly) {
    Access const& kind = GetParam();
    XAttribute from = dynamic(kind.array), to = dynamic(kind.array), other = dynamic(Kind::Pointer);
    kind.add(from, 1);
    to.CopyValue(from);
    EXPECT_EQ(kind.get(to, 0), 1);
    to.CopyValue(other).CopyValue(XAttribute());
    EXPECT_EQ(to.ArraySize(), 1);
}

INSTANTIATE_TEST_SUITE_P(Values, EveryKind, testing::ValuesIn(accesses),
                         [](auto const& info) { return std::string(info.param.name); });

// ---- whole arrays ----

TEST_F(Attribute, WholeArraysAreOneWrite) {
    XAttribute a = floats({3, 1, 2});
    Qelutils::Vector<float> values;
    a.Floats(values);
    EXPECT_THAT(values, ElementsAre(3, 1, 2));
    int size = 0;
    float const* data = a.FloatData(size);
    ASSERT_EQ(size, 3);
    EXPECT_EQ(data[1], 1);
    EXPECT_EQ(dynamic(Kind::Float).FloatData(size), nullptr);
    int const integers[] = {4, 5};
    EXPECT_EQ(dynamic(Kind::IntegerArray).SetInteger(integers, 2).Integer(1), 5);
    EXPECT_EQ(dynamic(Kind::IntegerArray).SetInteger(nullptr, 2).ArraySize(), 0);
    EXPECT_EQ(dynamic(Kind::StringArray).AddString(L"a").AddString(L"b").Strings().size(), 2u);
}

TEST_F(Attribute, ReadsBeyondTheEndAreZero) { EXPECT_EQ(floats({1, 2, 3}).Float(5), 0); }

TEST_F(Attribute, SortedReadsGoUpwardsAndNotANumberIsLast) {
    XAttribute const a = floats({3, std::nanf(""), 1, 2});
    EXPECT_EQ(a.SortedFloat(), 1);
    EXPECT_EQ(a.SortedFloat(2), 3);
    EXPECT_TRUE(std::isnan(a.SortedFloat(3)));
    EXPECT_EQ(a.SortedFloat(4), 0);
    EXPECT_EQ(a.SortedFloat(-1), 0);
    EXPECT_EQ(dynamic(Kind::StringArray).AddString(L"b").AddString(L"a").SortedString(), L"a");
}

TEST_F(Attribute, FindsTheFirstExactValue) {
    EXPECT_EQ(floats({3, 1, 1}).FindFloat(1), 1);
    EXPECT_EQ(floats({3, 1}).FindFloat(1.0001f), -1);
    EXPECT_EQ(XAttribute().FindInteger(0), -1);
    EXPECT_EQ(dynamic(Kind::StringArray).AddString(L"b").FindString(L"b"), 0);
}

TEST_F(Attribute, AnAbsurdSizeIsRefused) { EXPECT_FALSE(dynamic(Kind::FloatArray).SetArraySize(-1)); }

// ---- references ----

TEST_F(Attribute, ReferencesReadInvalidWhileTheirTargetIsRemoved) {
    XAttribute one = dynamic(Kind::Pointer), many = dynamic(Kind::PointerArray);
    XObject target = named(L"target");
    inBlock([&] { one.SetObjectRef(target), many.AddObjectRef(target).AddObjectRef(object); });
    EXPECT_EQ(one.ObjectRef(), target);
    EXPECT_EQ(many.ObjectRef(1), object);
    inBlock([&] { target.Delete(); });
    EXPECT_FALSE(one.ObjectRef().IsValid() || many.ObjectRef(0).IsValid());
    graph().Undo();
    EXPECT_EQ(many.ObjectRef(0), target);
}

TEST_F(Attribute, ReferenceArraysGrowOnlyByTheirOwnOperations) {
    XAttribute many = dynamic(Kind::PointerArray);
    EXPECT_FALSE(many.AddValue() || many.InsertValue(0));
    many.SetObjectRef(object, 0);
    EXPECT_EQ(many.ArraySize(), 1);
    XObject const other = named(L"other");
    many.InsertObjectRef(other, 0).InsertObjectRef(other, 9).InsertObjectRef(other, -1);
    EXPECT_EQ(many.ArraySize(), 2);
    EXPECT_EQ(many.ObjectRef(0), other);
    many.ClearObjectRef(0);
    EXPECT_FALSE(many.ObjectRef(0).IsValid());
    EXPECT_EQ(many.ArraySize(), 2);
    Qelutils::Vector<XObject> all;
    many.ObjectRefs(all);
    EXPECT_EQ(all.size(), 2u);
}

TEST_F(Attribute, AReferenceMayPointAtAnAttribute) {
    XAttribute one = dynamic(Kind::Pointer), target = dynamic(Kind::Float);
    one.SetAttributeRef(target);
    EXPECT_EQ(one.AttributeRef(), target);
    EXPECT_EQ(one.ObjectRef(), object);
    EXPECT_FALSE(one.ClearAttributeRef().AttributeRef().IsValid());
}

// ---- enumerations ----

TEST_F(Attribute, EnumerationsHaveWords) {
    XAttribute style = XJoint(make(L"Joint")).LocatorStyle();
    Qelutils::Vector<std::wstring> words;
    style.EnumerationStrings(words);
    EXPECT_THAT(words, ElementsAre(L"Solid", L"Wireframe", L"WireframeAxes"));
    EXPECT_EQ(style.SetEnumeration(L"WireframeAxes").Enumeration(), 2);
    EXPECT_EQ(style.EnumerationString(), L"WireframeAxes");
    EXPECT_EQ(style.EnumerationDisplayString(), L"Wireframe Axes");
    EXPECT_EQ(style.SetEnumeration(L"nothing").Enumeration(), 2);
    EXPECT_EQ(style.SetEnumeration(99).EnumerationString(), L"");
    EXPECT_EQ(dynamic(Kind::Float).EnumerationString(), L"");
}

// ---- names and places ----

TEST_F(Attribute, PathsNameTheObjectAndThePlaceWithinIt) {
    XObject const child = make(L"Joint").SetName(L"child");
    XAttribute const a = XJoint(child).RotationQuaternion().Attribute(0);
    EXPECT_EQ(a.Path(), child.Path() + L"." + a.LocalPathName());
    EXPECT_EQ(a.ShortPath(), L"child." + a.LocalPathName());
    EXPECT_EQ(a.EquivalentObjectName(), L"child_" + a.LocalPathName());
    EXPECT_EQ(a.ParentAttribute(), XJoint(child).RotationQuaternion());
    EXPECT_EQ(a.Index(), 0);
    EXPECT_EQ(scene().Attribute(a.Path()), a);
    EXPECT_EQ(scene().Attribute(a.AttributeID()), a);
    EXPECT_EQ(XAttribute(scene(), child.ObjectID(), 45), a.ParentAttribute());
    EXPECT_EQ(XAttribute(scene(), child.Path(), a.LocalPathName()), a);
    EXPECT_EQ(XAttribute(scene(), child.ObjectID(), a.LocalPathName()), a);
}

TEST_F(Attribute, AMissingNameGivesAnInvalidHandleWithoutALine) {
    EXPECT_FALSE(XAttribute(object, L"missing").IsValid() || XAttribute(object, 9999).IsValid() ||
                 XAttribute(object, -1).IsValid() || XAttribute(&object, L"missing").IsValid() ||
                 XAttribute(scene(), L"object.missing").IsValid() || XAttribute(scene(), L"nothing", L"x").IsValid() ||
                 XAttribute(XDatabase::Undefined, L"object.Name").IsValid());
    EXPECT_EQ(errors(), none());
}

TEST_F(Attribute, AnInvalidHandleIsEmptyThroughout) {
    XAttribute const a;
    EXPECT_EQ(a.Type(), -1);
    EXPECT_EQ(a.Units(), -1);
    EXPECT_EQ(a.AttributeID(), -1);
    EXPECT_EQ(a.ObjectID(), -1);
    EXPECT_EQ(a.TypeAsString() + a.UnitsAsString() + a.Path() + a.Name() + a.ShortPath() + a.EquivalentObjectName() +
                  a.DisplayValue(),
              L"");
    EXPECT_FALSE(a.Object().IsValid() || a.ParentAttribute().IsValid() || a.IsEditable() || a.IsVisible());
    EXPECT_EQ(a, XAttribute::Undefined);
}

TEST_F(Attribute, UnitsHaveWords) {
    XJoint const joint(make(L"Joint"));
    EXPECT_EQ(joint.TranslationX().UnitsAsString(), L"linear");
    EXPECT_EQ(joint.RotationX().UnitsAsString(), L"angular");
    EXPECT_EQ(scene().SceneSettings().Time().UnitsAsString(), L"time");
    EXPECT_EQ(dynamic(Kind::Float).UnitsAsString(), L"dimensionless");
}

// ---- composites ----

TEST_F(Attribute, CompositesSayWhatTheyDoNotFind) {
    XAttribute const name = object.Attribute(0), quaternion = XJoint(make(L"Joint")).RotationQuaternion();
    EXPECT_EQ(quaternion.AttributeCount(), 4);
    Qelutils::Vector<XAttribute> children;
    quaternion.Attributes(children);
    EXPECT_EQ(children.size(), 4u);
    std::wstring const path = quaternion.Path();
    EXPECT_FALSE(XAttribute().Attribute(0).IsValid() || name.Attribute(L"x").IsValid() ||
                 quaternion.Attribute(9).IsValid() || quaternion.Attribute(L"nothing").IsValid());
    EXPECT_THAT(
        errors(),
        ElementsAre(L"This is not a valid attribute", name.Path() + L" is not a composite attribute",
                    L"Unable to find an attribute with the index of \"9\" in the composite attribute \"" + path +
                        L"\".",
                    L"Unable to find an attribute named \"nothing\" in the composite attribute \"" + path + L"\"."));
}

TEST_F(Attribute, AttributeArraysGrowElementByElement) {
    XObject const shape = graph().CreateNode(L"BlendShape", L"blend");
    XAttribute targets = shape.Attribute(L"Targets");
    ASSERT_TRUE(targets.IsAttributeArray() && targets.IsArrayAttribute());
    XAttribute first = targets.AddAttribute();
    first.Attribute(L"Label").SetString(L"smile");
    EXPECT_TRUE(targets.InsertValue(0) && targets.AddValue());
    EXPECT_EQ(targets.ArraySize(), 3);
    EXPECT_EQ(targets.Attribute(1), first);
    targets.Delete(0);
    EXPECT_EQ(targets.Attribute(0).Attribute(L"Label").String(), L"smile");
    targets.Clear();
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(targets.ArraySize(), 0);
}

TEST_F(Attribute, OnlyImagesTakePixels) {
    XTextureAttribute image(XObject(graph().CreateNode(L"Material", L"m")).Attribute(L"DiffuseTexture"));
    unsigned char const bytes[] = {7, 255};
    image.SetWidthHeightDepth(2, 1, 1);
    image.SetPixels(bytes, 2);
    EXPECT_EQ(image.Attribute(L"Width").Integer(), 2);
    EXPECT_EQ(image.Attribute(L"Pixels").Integer(1), 255);
    XTextureAttribute other(object.Attribute(0));
    other.SetWidthHeightDepth(1, 1, 1);
    other.SetPixels(bytes, 2);
    EXPECT_FALSE(XMaterialAttribute(image).GetDiffuseTexture().IsValid());
    EXPECT_EQ(errors(), none());
}

// ---- the contract with the node types ----

XObject fresh(XSceneGraph& graph, db::NodeDef const& def) { return graph.createNode(def, def.getClassID()); }

// Writes something else than the default; false where the kind has no value of its own.
bool writeAnother(XAttribute& a) {
    switch (Kind(a.Type())) {
    case Kind::Integer: return a.SetInteger(a.Integer() + 1), true;
    case Kind::Boolean: return a.SetBoolean(!a.Boolean()), true;
    case Kind::Enumeration: return a.SetEnumeration(a.Enumeration() + 1), true;
    case Kind::Float: return a.SetFloat(a.Float() + 1), true;
    case Kind::Double: return a.SetDouble(a.Double() + 1), true;
    case Kind::String: return a.SetString(a.String() + L"x"), true;
    case Kind::Vector3: return a.SetVector(XVector3(4, 5, 6)), true;
    case Kind::Matrix: return a.SetMatrix(matrixAt(4)), true;
    case Kind::Quaternion: return a.SetQuaternion(XQuaternion(1, 0, 0, 0)), true;
    case Kind::Pointer: return a.SetObjectRef(a.Object()), true;
    case Kind::PointerArray: return a.AddObjectRef(a.Object()), true;
    default: return a.IsArrayAttribute() && a.AddValue();
    }
}

TEST_F(Attribute, EveryRowOfEveryTypeIsWrittenUndoneAndRedone) {
    TestDocument document;
    XSceneGraph& g = *document.SceneGraph();
    int rows = 0;
    for (db::NodeDef const* def : db::Registry::getInstance().all()) {
        if (def->isAbstract() || !def->isOfType(sg::Node::Def) || def == &sg::Connection::Def) continue;
        document.BeginChangeBlock();
        XObject object = fresh(g, *def);
        document.EndChangeBlock(L"make");
        ASSERT_TRUE(object.IsValid());
        for (int i = 1; i < object.AttributeCount(); ++i) {
            XAttribute a = object.Attribute(i);
            ASSERT_TRUE(a.IsValid());
            if (a.IsNode() || a.getAttribute()->getDef().outputBit >= 0) continue;
            SCOPED_TRACE(testing::PrintToString(a.Path()));
            EXPECT_TRUE(a.getAttribute()->isDefaultValue());
            EXPECT_EQ(object.Attribute(a.Name()), a);
            document.BeginChangeBlock();
            bool const written = writeAnother(a);
            document.EndChangeBlock(L"write");
            if (!written) continue;
            ++rows;
            EXPECT_FALSE(a.getAttribute()->isDefaultValue());
            EXPECT_TRUE(g.Undo());
            EXPECT_TRUE(a.getAttribute()->isDefaultValue());
            EXPECT_TRUE(g.Redo());
            EXPECT_FALSE(a.getAttribute()->isDefaultValue());
        }
    }
    EXPECT_GT(rows, 300);
}

}  // namespace
}  // namespace Tavo
