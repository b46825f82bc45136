// A new object of a type, and a check of what a typed handle says about its type and attributes.
#pragma once
#include "tests/app/fixture.h"

namespace Tavo {

// Registers the type unless the scene knows it already.
template<class Object> Object makeObject(XScene& scene) {
    if (!scene.ObjectDefinition(Object::TypeID)) scene.CoreModule().Register(new XTypedDef<Object>);
    return Object(scene.CreateObject(Object::TypeID));
}

struct AttributeNumber {
    int number;
    wchar_t const* name;
    XAttribute accessor;
};
#define TAVO_NUMBER(object, number, Name)                                                                              \
    { number, L## #Name, (object).Name() }

// Numbers and names are a contract; an accessor must lead to the attribute of its name.
inline void expectNumbers(XObject const& object, std::vector<AttributeNumber> const& attributes) {
    for (AttributeNumber const& each : attributes) {
        XAttribute const attribute = object.Attribute(each.number);
        EXPECT_EQ(attribute.Name(), each.name) << each.number;
        EXPECT_TRUE(each.accessor.IsValid() && each.accessor == attribute) << Qelutils::toUtf8(each.name);
    }
}

// The handle is valid on a node of its own type alone, and its definition names its base and its node class.
template<class Object> void expectType(XScene& scene, wchar_t const* typeID, wchar_t const* nodeType) {
    Object const object = makeObject<Object>(scene);
    ASSERT_TRUE(object.IsValid());
    EXPECT_EQ(object.ObjectType(), typeID);
    EXPECT_EQ(object.ObjectDefinition()->NodeType(), nodeType);
    EXPECT_TRUE(object.SupportsType(Object::Base::TypeID));
    EXPECT_TRUE(typename Object::Base(object).IsValid());
    EXPECT_FALSE(Object(scene.Selection()).IsValid());
    EXPECT_FALSE(Object::Undefined.IsValid());
}

}  // namespace Tavo
