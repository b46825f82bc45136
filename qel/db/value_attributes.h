// Attributes with one value. Values of up to eight bytes keep their old value inside the history's record; larger ones
// keep a copy on the heap.
#pragma once
#include "qel/db/handle.h"
#include "qel/utils/values.h"
#include <cstring>
#include <type_traits>

namespace db {

template<class T> inline constexpr bool fitsRecord = std::is_trivially_copyable_v<T> && sizeof(T) <= 8;

// The value that a row gives to a new attribute or a new element.
template<class T> T initialValue(AttributeDef const& def) {
    if constexpr (std::is_same_v<T, std::wstring>)
        return def.initialText;
    else if constexpr (std::is_arithmetic_v<T>)
        return T(def.initial[0]);
    else if constexpr (std::is_same_v<T, Qelp::Vector3>)
        return {float(def.initial[0]), float(def.initial[1]), float(def.initial[2]), 0};
    else if constexpr (std::is_same_v<T, Qelp::Quat>)
        return {float(def.initial[0]), float(def.initial[1]), float(def.initial[2]), float(def.initial[3])};
    else if constexpr (std::is_same_v<T, Qelp::Matrix34>)
        return def.initialMatrix ? *def.initialMatrix : T();
    else
        return T();
}

template<class T, AttributeType K> class ValueAttribute : public SingleValueAttribute {
public:
    using Value = T;
    using Read = std::conditional_t<fitsRecord<T>, T, T const&>;

    ValueAttribute(AttributePlace place, AttributeDef const& def) :
        SingleValueAttribute(place, K), value_(initialValue<T>(def)) {}

    Read getValue() const {
        refresh();
        return value_;
    }
    void setValue(T value) {
        if (!beforeWrite()) return;
        value_ = std::move(value);
        afterWrite();
    }

protected:
    // A small value goes along: it need not be asked for.
    bool beforeWrite() {
        if constexpr (fitsRecord<T>)
            return isNoted() || noteWrite(ValueAttribute::remember());
        else
            return Attribute::beforeWrite();
    }

public:
    // The stored value, without evaluation and without record: for nodes that compute, and for loading.
    T& raw() { return value_; }
    T const& raw() const { return value_; }

    bool compare(Attribute const& other) const override {
        return other.getAttributeType() == K && static_cast<ValueAttribute const&>(other).getValue() == getValue();
    }
    bool assign(Attribute const& other) override {
        if (other.getAttributeType() != K) return false;
        setValue(static_cast<ValueAttribute const&>(other).getValue());
        return true;
    }
    bool isDefaultValue() const override { return getValue() == initialValue<T>(getDef()); }
    void setToDefaultValue() override { setValue(initialValue<T>(getDef())); }

    std::uint64_t remember() override {
        if constexpr (fitsRecord<T>) {
            std::uint64_t word = 0;
            std::memcpy(&word, &value_, sizeof value_);
            return word;
        } else
            return reinterpret_cast<std::uint64_t>(new T(value_));
    }
    void exchange(std::uint64_t& old) override {
        if constexpr (fitsRecord<T>) {
            T before;
            std::memcpy(static_cast<void*>(&before), &old, sizeof before);
            std::memcpy(&old, &value_, sizeof value_);
            value_ = before;
        } else
            std::swap(value_, *reinterpret_cast<T*>(old));
    }
    void forget(std::uint64_t old) override {
        if constexpr (!fitsRecord<T>) delete reinterpret_cast<T*>(old);
    }
    std::size_t historyBytes(std::uint64_t old) const override {
        if constexpr (std::is_same_v<T, std::wstring>)
            return sizeof(T) + reinterpret_cast<T const*>(old)->capacity() * sizeof(wchar_t);
        return fitsRecord<T> ? 0 : sizeof(T);
    }

protected:
    T value_;
};

class IntAttribute final : public ValueAttribute<int, AttributeType::Integer> {
public:
    using ValueAttribute::ValueAttribute;
    IntAttribute& operator=(int v) {
        setValue(v);
        return *this;
    }
};
class BoolAttribute final : public ValueAttribute<bool, AttributeType::Boolean> {
public:
    using ValueAttribute::ValueAttribute;
};
class EnumAttribute final : public ValueAttribute<int, AttributeType::Enumeration> {
public:
    using ValueAttribute::ValueAttribute;
};
class FloatAttribute final : public ValueAttribute<float, AttributeType::Float> {
public:
    using ValueAttribute::ValueAttribute;
    FloatAttribute& operator=(float v) {
        setValue(v);
        return *this;
    }
};
class DoubleAttribute final : public ValueAttribute<double, AttributeType::Double> {
public:
    using ValueAttribute::ValueAttribute;
};
class Vector3Attribute final : public ValueAttribute<Qelp::Vector3, AttributeType::Vector3> {
public:
    using ValueAttribute::ValueAttribute;
};
class Matrix34Attribute final : public ValueAttribute<Qelp::Matrix34, AttributeType::Matrix> {
public:
    using ValueAttribute::ValueAttribute;
};
class QuaternionAttribute final : public ValueAttribute<Qelp::Quat, AttributeType::Quaternion> {
public:
    using ValueAttribute::ValueAttribute;
};

// Row 0 of every node is such an attribute, its name: writing that one renames the node.
class StringAttribute final : public ValueAttribute<std::wstring, AttributeType::String> {
public:
    using ValueAttribute::ValueAttribute;
    StringAttribute& operator=(std::wstring const& v) {
        setValue(v);
        return *this;
    }
    std::wstring const& operator()() const { return getValue(); }
    void setValue(std::wstring value);
    bool assign(Attribute const& other) override;
    void setToDefaultValue() override { setValue(initialValue<std::wstring>(getDef())); }
    void exchange(std::uint64_t& old) override;
    bool isNodeName() const { return row() == 0 && !has(outside); }
};

// A reference to an attribute or a node, which it does not own: null while that is removed, and for good once it died.
class PointerAttribute final : public ValueAttribute<AttributeHandle, AttributeType::Pointer> {
public:
    using ValueAttribute::ValueAttribute;
    Attribute* getValue() const { return ValueAttribute::getValue().getRef(); }
    void setValue(Attribute* target) { ValueAttribute::setValue(AttributeHandle(target)); }
};

static_assert(sizeof(FloatAttribute) == 16 && sizeof(IntAttribute) == 16 && sizeof(Matrix34Attribute) == 80);

}  // namespace db
