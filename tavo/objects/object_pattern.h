// The pattern that every typed object follows, once. A type XFoo over XBar with the node class sg::FooNode is
//
//     class XFoo : public XTyped<XFoo, XBar, sg::FooNode> {
//     public:
//         static constexpr XWord TypeID = L"Foo";
//         using XTyped::XTyped;
//
//         TAVO_ATTRIBUTE(Radius, 51)
//         TAVO_ATTRIBUTE(Style, 52)
//
//         void onInitialize() override;  // if there is anything to override
//     };
//     using XFooDef = XTypedDef<XFoo>;
//
// and has with that: the constructors (default, from XObject, from sg::Node*, from db::Node*, copy), XFoo::Undefined,
// ObjectRefCount(), Definition(), definition(), isValid(), and XFooDef with CreateObject and CanUnregister. A type
// without a node class of its own names none and takes its base's test of validity.
//
// TAVO_ATTRIBUTE stands in tavo/objects/attribute.h.
//
// A handle counts in its own type and in all above it. Undefined is ready before static objects are constructed, as
// long as the members of the type have constant initialisers. A type that overrides onConstruct says the same in its
// member initialisers: constructors run those, assignments run onConstruct.
#pragma once
#include "tavo/objects/object.h"
#include "tavo/objects/object_def.h"
#include <type_traits>
#include <typeinfo>

namespace Tavo {

class XSceneObject;

namespace detail {
XObject objectByID(XDatabase* database, int id);  // a null database gives an invalid handle
template<class Class> Class ownerOf(bool (Class::*)() const);
// Where the class that a type inherits supportsSelection from is the base of all that have it.
template<class Object> constexpr bool inheritsSupportsSelection() {
    if constexpr (requires { ownerOf(&Object::supportsSelection); })
        return std::is_same_v<decltype(ownerOf(&Object::supportsSelection)), XSceneObject>;
    else
        return false;
}
}  // namespace detail

template<class Object> class XTypedDef;

template<class Self, class BaseObject, class... NodeClasses> class XTyped : public BaseObject {
public:
    using Base = BaseObject;

    XTyped() { ++_count; }
    constexpr XTyped(XUndefined tag) : BaseObject(tag) {}
    XTyped(XObject const& object) : BaseObject(object) { ++_count; }
    XTyped(sg::Node* node) : BaseObject(node) { ++_count; }
    XTyped(db::Node* node) : BaseObject(node) { ++_count; }
    XTyped(XTyped const& other) : BaseObject(other) { ++_count; }
    XTyped& operator=(XTyped const&) = default;
    ~XTyped() override { --_count; }

    static Self const& Undefined;

    static int ObjectRefCount() { return _count; }
    static XObjectDef& Definition() {
        static XTypedDef<Self> definition;
        return definition;
    }

    XObjectDef* definition() const override { return &Definition(); }
    bool isValid() const override {
        if constexpr (sizeof...(NodeClasses) == 0)
            return BaseObject::isValid();
        else
            return (this->isNodeOfType(NodeClasses::Def) || ...);
    }

private:
    template<class> friend class XTypedDef;
    static void appendNodeTypes([[maybe_unused]] auto const& append) { (append(NodeClasses::ClassID), ...); }

    static inline int _count = 1;
};

template<class Self, class BaseObject, class... NodeClasses>
Self const& XTyped<Self, BaseObject, NodeClasses...>::Undefined = detail::undefined<Self>.value;

// The definition of a typed object; its base is the definition of the type's base.
template<class Object>
class XTypedDef : public std::conditional_t<std::is_same_v<typename Object::Base, XObject>, XObjectDef,
                                            XTypedDef<typename Object::Base>> {
public:
    XTypedDef() {
        static_assert(Object::TypeID != Object::Base::TypeID, "a typed object needs a TypeID of its own");
        Object::appendNodeTypes([this](std::wstring const& classID) { this->appendNodeType(classID); });
        this->appendObjectType(Object::TypeID);
    }
    XObject* CreateObject(XDatabase* database, int id) override {
        if constexpr (std::is_constructible_v<Object, XObject>)
            return new Object(detail::objectByID(database, id));
        else
            return new Object();  // a value without a node
    }
    bool CanUnregister() const override { return Object::ObjectRefCount() <= 1 && XTypedDef::BaseDef::CanUnregister(); }
    // A definition that derives from this one may make handles of another class.
    bool AlwaysSupportsSelection() const override {
        return detail::inheritsSupportsSelection<Object>() && typeid(*this) == typeid(XTypedDef);
    }

private:
    using BaseDef = std::conditional_t<std::is_same_v<typename Object::Base, XObject>, XObjectDef,
                                       XTypedDef<typename Object::Base>>;
};

}  // namespace Tavo
