// XAttribute: a value handle on one attribute of a node. All object data goes through it. Like XObject it is weak,
// cheap to copy and never allocates on a read.
//
// Reads never fail and never log: an invalid handle, another kind, or an index out of range gives the kind's empty
// value. A read without an index reads element 0 of an array; a single value ignores the index. A read of a computed or
// connected attribute brings it up to date first.
//
// Writes need the attribute's object to be editable (XObject::IsEditable), and otherwise do nothing; they land in the
// open change block, which the caller provides. Writing element 0 of an empty array appends it; any other index out of
// range is ignored. Writes return the handle, so that calls chain.
//
// Values are in internal units: metres, kilograms, radians, seconds.
#pragma once
#include "qel/sg/node.h"
#include "qel/utils/vector.h"
#include "tavo/app/word.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/object.h"
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"
#include <string>

// An accessor `XAttribute Name() const` for the attribute with that index in the node. The index is a contract.
#define TAVO_ATTRIBUTE(Name, index)                                                                                    \
    XAttribute Name() const { return Attribute(index); }
// Three of them in a row: NameX, NameY, NameZ.
#define TAVO_ATTRIBUTE_XYZ(Name, first)                                                                                \
    TAVO_ATTRIBUTE(Name##X, first)                                                                                     \
    TAVO_ATTRIBUTE(Name##Y, (first) + 1)                                                                               \
    TAVO_ATTRIBUTE(Name##Z, (first) + 2)

namespace Tavo {

class XAnimation;
class XDatabase;
class XKeyframe;

class XAttribute {
public:
    // The words of the value kinds, where a kind is given as text.
    static constexpr XWord FloatType = L"float", DoubleType = L"double", IntegerType = L"integer",
                           EnumType = L"enumeration", BooleanType = L"boolean", StringType = L"string",
                           VectorType = L"vector", MatrixType = L"matrix", QuaternionType = L"quaternion";
    static constexpr XWord FloatArrayType = L"floatArray", DoubleArrayType = L"doubleArray",
                           IntegerArrayType = L"integerArray", EnumArrayType = L"enumerationArray",
                           BooleanArrayType = L"booleanArray", StringArrayType = L"stringArray",
                           VectorArrayType = L"vectorArray", MatrixArrayType = L"matrixArray",
                           QuaternionArrayType = L"quaternionArray";
    static constexpr XWord TrueString = L"True", FalseString = L"False";
    static constexpr int MaxNumericDecimalPlaces = 4, MinNumericDecimalPlaces = 2;
    static constexpr int InvalidID = -1;
    static XAttribute const Undefined;

    constexpr XAttribute() = default;
    XAttribute(db::Attribute* attribute);
    XAttribute(XObject const& object, std::wstring const& name);
    XAttribute(XObject const* object, std::wstring const& name);
    XAttribute(XObject const& object, int index);
    XAttribute(XDatabase& database, int attributeID);
    XAttribute(XDatabase& database, int nodeID, std::wstring const& name);
    XAttribute(XDatabase& database, int nodeID, int index);
    XAttribute(XDatabase& database, std::wstring const& path);
    XAttribute(XDatabase& database, std::wstring const& nodePath, std::wstring const& name);
    XAttribute(XAttribute const&) = default;
    XAttribute& operator=(XAttribute const&) = default;
    virtual ~XAttribute() = default;

    // ---- identity ----
    bool IsValid() const { return getAttribute() != nullptr; }
    db::Attribute* getAttribute() const { return _attribute.getRef(); }
    XDatabase& Database() const;  // XDatabase::Undefined without one
    bool Is(XAttribute const& other) const { return *this == other; }
    bool operator==(XAttribute const& other) const { return getAttribute() == other.getAttribute(); }
    bool operator!=(XAttribute const& other) const { return !(*this == other); }
    bool operator<(XAttribute const& other) const { return AttributeID() < other.AttributeID(); }
    int AttributeID() const;  // InvalidID for an invalid handle
    int ObjectID() const;
    XObject Object() const;
    XAttribute ParentAttribute() const;
    int Index() const;  // in the enclosing attribute; -1 without one

    // ---- names ----
    std::wstring Name() const;
    std::wstring Path() const;                  // "a|b.Pose.X"
    std::wstring LocalPathName() const;         // "Pose.X"
    std::wstring ShortPath() const;             // "b.Pose.X"
    std::wstring EquivalentObjectName() const;  // "b_Pose.X"
    std::wstring DisplayName() const;
    std::wstring ConciseDisplayName() const;
    static std::wstring ConvertToDisplayName(std::wstring const& name);   // "Pose.PositionX": "Pose > Position X"
    static std::wstring ConvertToInternalName(std::wstring const& name);  // drops blanks; not the exact inverse

    // ---- kind ----
    int Type() const;  // a db::AttributeType, -1 for an invalid handle
    std::wstring TypeAsString() const;
    int Units() const;  // an sg::AttributeUnit, -1 for an invalid handle
    std::wstring UnitsAsString() const;
    bool IsInt() const { return is(db::AttributeType::Integer); }
    bool IsBool() const { return is(db::AttributeType::Boolean); }
    bool IsEnum() const { return is(db::AttributeType::Enumeration); }
    bool IsFloat() const { return is(db::AttributeType::Float); }
    bool IsDouble() const { return is(db::AttributeType::Double); }
    bool IsString() const { return is(db::AttributeType::String); }
    bool IsVector() const { return is(db::AttributeType::Vector3); }
    bool IsMatrix() const { return is(db::AttributeType::Matrix); }
    bool IsQuaternion() const { return is(db::AttributeType::Quaternion); }
    bool IsObjectRef() const { return is(db::AttributeType::Pointer); }
    bool IsIntArray() const { return is(db::AttributeType::IntegerArray); }
    bool IsBoolArray() const { return is(db::AttributeType::BooleanArray); }
    bool IsEnumArray() const { return is(db::AttributeType::EnumerationArray); }
    bool IsFloatArray() const { return is(db::AttributeType::FloatArray); }
    bool IsDoubleArray() const { return is(db::AttributeType::DoubleArray); }
    bool IsStringArray() const { return is(db::AttributeType::StringArray); }
    bool IsVectorArray() const { return is(db::AttributeType::Vector3Array); }
    bool IsMatrixArray() const { return is(db::AttributeType::MatrixArray); }
    bool IsQuaternionArray() const { return is(db::AttributeType::QuaternionArray); }
    bool IsObjectRefArray() const { return is(db::AttributeType::PointerArray); }
    bool IsAttributeContainer() const { return is(db::AttributeType::NodeContainer); }
    bool IsAttributeArray() const { return is(db::AttributeType::AttributeArray); }
    bool IsCompositeAttribute() const;
    bool IsNode() const { return is(db::AttributeType::Node); }
    bool IsArrayAttribute() const;  // of any kind, an attribute array included
    bool IsEditable() const;        // by the interface: the object is editable, the attribute not read-only
    bool IsVisible() const;         // neither hidden nor internal

    // ---- read ----
    float Float() const { return read<db::FloatAttribute, db::AttributeType::Float>(&XAttribute::floatAt); }
    double Double() const { return read<db::DoubleAttribute, db::AttributeType::Double>(&XAttribute::doubleAt); }
    int Integer() const { return read<db::IntAttribute, db::AttributeType::Integer>(&XAttribute::integerAt); }
    int Enumeration() const {
        return read<db::EnumAttribute, db::AttributeType::Enumeration>(&XAttribute::enumerationAt);
    }
    bool Boolean() const { return read<db::BoolAttribute, db::AttributeType::Boolean>(&XAttribute::booleanAt); }
    XVector3 Vector() const { return read<db::Vector3Attribute, db::AttributeType::Vector3>(&XAttribute::vectorAt); }
    XMatrix Matrix() const { return read<db::Matrix34Attribute, db::AttributeType::Matrix>(&XAttribute::matrixAt); }
    XQuaternion Quaternion() const {
        return read<db::QuaternionAttribute, db::AttributeType::Quaternion>(&XAttribute::quaternionAt);
    }
    std::wstring String() const { return String(0); }
    XObject ObjectRef() const { return ObjectRef(0); }
    float Float(int index) const { return floatAt(index); }
    double Double(int index) const { return doubleAt(index); }
    int Integer(int index) const { return integerAt(index); }
    int Enumeration(int index) const { return enumerationAt(index); }
    bool Boolean(int index) const { return booleanAt(index); }
    XVector3 Vector(int index) const { return vectorAt(index); }
    XMatrix Matrix(int index) const { return matrixAt(index); }
    XQuaternion Quaternion(int index) const { return quaternionAt(index); }
    std::wstring String(int index) const;
    XObject ObjectRef(int index) const;
    XAttribute AttributeRef() const;  // what a reference points at, also when that is not a node
    XAttribute AttributeRef(int index) const;
    // The whole array; `out` is emptied first.
    void Floats(Qelutils::Vector<float>& out) const;
    void Doubles(Qelutils::Vector<double>& out) const;
    void Integers(Qelutils::Vector<int>& out) const;
    void Enumerations(Qelutils::Vector<int>& out) const;
    void Booleans(Qelutils::Vector<bool>& out) const;
    void Strings(Qelutils::Vector<std::wstring>& out) const;
    Qelutils::Vector<std::wstring> Strings() const;
    void Vectors(Qelutils::Vector<XVector3>& out) const;
    void Matrices(Qelutils::Vector<XMatrix>& out) const;
    void Quaternions(Qelutils::Vector<XQuaternion>& out) const;
    void ObjectRefs(Qelutils::Vector<XObject>& out) const;
    // The flat floats of a float array, without a copy and without evaluation: null when it is computed or connected,
    // or of another kind. Valid until the next write. For loops over the keys of a curve.
    float const* FloatData(int& count) const;
    // Element `index` of the array in ascending order; `index` 0 where none is given.
    float SortedFloat(int index = 0) const;
    double SortedDouble(int index = 0) const;
    int SortedInteger(int index = 0) const;
    std::wstring SortedString(int index = 0) const;
    // The index of the first element that is exactly that value; -1 for none.
    int FindFloat(float value) const;
    int FindDouble(double value) const;
    int FindInteger(int value) const;
    int FindString(std::wstring const& value) const;

    // ---- enumerations: the words of the definition ----
    std::wstring EnumerationString() const;
    std::wstring EnumerationString(int index) const;
    std::wstring EnumerationDisplayString() const;
    std::wstring EnumerationDisplayString(int index) const;
    void EnumerationStrings(Qelutils::Vector<std::wstring>& out) const;
    void EnumerationDisplayStrings(Qelutils::Vector<std::wstring>& out) const;

    // ---- write ----
    XAttribute& SetFloat(float value, int index = 0);
    XAttribute& SetDouble(double value, int index = 0);
    XAttribute& SetInteger(int value, int index = 0);
    XAttribute& SetEnumeration(int value, int index = 0);
    XAttribute& SetEnumeration(std::wstring const& word, int index = 0);  // an unknown word does nothing
    XAttribute& SetBoolean(bool value, int index = 0);
    XAttribute& SetString(std::wstring const& value, int index = 0);
    XAttribute& SetVector(XVector3 const& value, int index = 0);
    XAttribute& SetMatrix(XMatrix const& value, int index = 0);
    XAttribute& SetQuaternion(XQuaternion const& value, int index = 0);
    XAttribute& SetObjectRef(XObject const& value, int index = 0);
    XAttribute& SetAttributeRef(XAttribute const& value, int index = 0);
    XAttribute& ClearObjectRef(int index = 0);
    XAttribute& ClearAttributeRef(int index = 0);
    // A whole array at once: one write.
    XAttribute& SetFloat(Qelutils::Vector<float> const& values);
    XAttribute& SetDouble(Qelutils::Vector<double> const& values);
    XAttribute& SetInteger(Qelutils::Vector<int> const& values);
    XAttribute& SetInteger(int const* values, unsigned int count);
    XAttribute& SetEnumeration(Qelutils::Vector<int> const& values);
    XAttribute& CopyValue(XAttribute const& other);  // of the same kind; otherwise nothing

    // ---- arrays ----
    int ArraySize() const;  // 0 for a single value
    bool SetArraySize(int count);
    bool AddValue();  // a default element; false for references, whose own operations append
    bool InsertValue(int index);
    XAttribute& AddFloat(float value);
    XAttribute& AddDouble(double value);
    XAttribute& AddInteger(int value);
    XAttribute& AddEnumeration(int value);
    XAttribute& AddBoolean(bool value);
    XAttribute& AddString(std::wstring const& value);
    XAttribute& AddVector(XVector3 const& value);
    XAttribute& AddMatrix(XMatrix const& value);
    XAttribute& AddQuaternion(XQuaternion const& value);
    XAttribute& AddObjectRef(XObject const& value);
    XAttribute& AddAttributeRef(XAttribute const& value);
    XAttribute AddAttribute();  // a new element of an attribute array
    XAttribute& InsertFloat(float value, int index);
    XAttribute& InsertDouble(double value, int index);
    XAttribute& InsertInteger(int value, int index);
    XAttribute& InsertEnumeration(int value, int index);
    XAttribute& InsertBoolean(bool value, int index);
    XAttribute& InsertString(std::wstring const& value, int index);
    XAttribute& InsertVector(XVector3 const& value, int index);
    XAttribute& InsertMatrix(XMatrix const& value, int index);
    XAttribute& InsertQuaternion(XQuaternion const& value, int index);
    XAttribute& InsertObjectRef(XObject const& value, int index);
    XAttribute& Clear();
    XAttribute& Delete(int index);
    XAttribute& Delete() { return Delete(0); }

    // ---- composites and attribute arrays; these log what they do not find ----
    XAttribute Attribute(int index) const;
    XAttribute Attribute(std::wstring const& name) const;
    int AttributeCount() const;
    void Attributes(Qelutils::Vector<XAttribute>& out) const;

    // ---- connections ----
    bool IsConnected() const { return IsConnectedInput() || IsConnectedOutput(); }
    bool IsConnectedInput() const;
    bool IsConnectedOutput() const;
    bool HasInput() const { return IsConnectedInput(); }
    bool HasOutput() const { return IsConnectedOutput(); }
    bool HasInputAttribute() const { return IsConnectedInput(); }
    bool HasOutputAttribute() const { return IsConnectedOutput(); }
    XAttribute InputAttribute() const;
    XObject InputObject() const;
    XAttribute OutputAttribute(int index) const;
    XObject OutputObject(int index) const;
    int OutputConnectionCount() const;
    void OutputAttributes(Qelutils::Vector<XAttribute>& out) const;
    void OutputObjects(Qelutils::Vector<XObject>& out) const;
    bool
    ConnectInputTo(XAttribute const& source);  // does not ask whether the object is editable: a difference that stays
    bool ConnectInputTo(std::wstring const& path, std::wstring const& name);
    bool ConnectOutputTo(XAttribute const& target);
    bool ConnectOutputTo(std::wstring const& path, std::wstring const& name);
    XAttribute& Disconnect();
    XAttribute& DisconnectInput();
    XAttribute& DisconnectOutputs();
    bool IsComputed() const;                           // something affects it
    bool IsAssigned() const { return !IsComputed(); }  // also for an invalid handle
    XAttribute& Compute();

    // ---- animation; defined on the animation floor ----
    bool IsAnimatable() const;
    bool IsAnimated() const;
    XAnimation Animation() const;  // the curve that feeds it
    XAnimation CreateAnimation();  // that curve, or a new one
    XAttribute& DeleteAnimation();
    XAttribute& DeleteEmptyAnimation();  // only a curve without keys
    XAttribute& ClearAnimation();
    XKeyframe SetKeyframe();  // the current value at the current time
    XKeyframe SetKeyframe(float time, float value);

    // ---- display: the number Units() goes to the database's ConvertUnits as it is ----
    // There it is read as an XUnitCode, which counts otherwise: an angle (5) is converted like a length, a length (2)
    // not at all. An oddity that stays. XDatabase::ConvertUnits(sg::AttributeUnit, ...) goes by the meaning.
    float DisplayFloat(int index = 0) const;
    double DisplayDouble(int index = 0) const;
    float AsDisplayFloat() const;
    float AsDisplayFloat(float const& value) const;
    float AsInternalFloat(float const& value) const;
    XAttribute& SetDisplayFloat(float value, int index = 0);
    XAttribute& SetDisplayDouble(double value, int index = 0);
    std::wstring DisplayValue() const;  // "1.50"

protected:
    // Null for an invalid handle: the database may be gone with what it held.
    XDatabase* database() const { return getAttribute() ? _database : nullptr; }

private:
    bool is(db::AttributeType kind) const {
        db::Attribute const* a = getAttribute();
        return a && a->getAttributeType() == kind;
    }
    // The common case, a plain stored value: one look at the handle, one test of the kind, one load.
    template<class Plain, db::AttributeType kind, class Value>
    Value read(Value (XAttribute::*otherwise)(int) const) const {
        db::Attribute const* a = getAttribute();
        if (a && a->isPlain(kind)) return Value(static_cast<Plain const*>(a)->raw());
        return (this->*otherwise)(0);
    }
    float floatAt(int index) const;
    double doubleAt(int index) const;
    int integerAt(int index) const;
    int enumerationAt(int index) const;
    bool booleanAt(int index) const;
    XVector3 vectorAt(int index) const;
    XMatrix matrixAt(int index) const;
    XQuaternion quaternionAt(int index) const;
    bool isDriven() const;
    bool isFed(XAttribute const& source) const;
    bool connect(XAttribute const& source, XAttribute const& target) const;
    sg::Scene* graph() const;  // null for an invalid handle
    template<class Value> Value converted(Value value, int direction) const;

    XDatabase* _database = nullptr;
    sg::AttributeHandle _attribute;
};

inline constinit XAttribute const XAttribute::Undefined{};

// Handles on composite image attributes of a material. Their operations are reserved: they give an empty handle or do
// nothing, and are to stay so.
class XTextureAttribute : public XAttribute {
public:
    using XAttribute::XAttribute;
    XTextureAttribute(XAttribute const& attribute) : XAttribute(attribute) {}

    // Both act on an attribute of image kind and do nothing on any other.
    void SetWidthHeightDepth(int width, int height, int depth);
    void SetPixels(unsigned char const* data, int count);

private:
    bool isImage() const;  // a compound of a width, a height, a depth and pixels
};

class XMaterialAttribute : public XAttribute {
public:
    using XAttribute::XAttribute;
    XMaterialAttribute(XAttribute const& attribute) : XAttribute(attribute) {}

    XTextureAttribute GetDiffuseTexture() const { return {}; }
    XTextureAttribute GetSpecularTexture() const { return {}; }
    XTextureAttribute GetAmbientTexture() const { return {}; }
    void SetDiffuse(float, float, float, float) {}
    void SetSpecular(float, float, float, float) {}
    void SetAmbient(float, float, float, float) {}
};

}  // namespace Tavo
