// Attributes with an array of values. An array is flat, so that evaluation and callers read plain memory; its history
// is kept in small pages and splices: one edited element of 100,000 keeps one page, not a copy.
#pragma once
#include "qel/db/value_attributes.h"
#include <algorithm>
#include <memory>
#include <span>
#include <vector>

namespace db {

// What one undo item did to an array, in order. Each step is its own inverse: the list runs backwards and forwards.
template<class T> class ArrayHistory {
public:
    static constexpr std::size_t page = sizeof(T) >= 64 ? 1 : 64 / sizeof(T);  // elements: a cache line

    void keepPage(std::vector<T> const& v, std::size_t p) {
        if (steps_.empty() || steps_.back().splice) steps_.emplace_back();
        Step& s = steps_.back();
        std::size_t const from = p * page, to = std::min(from + page, v.size());
        s.pages.push_back(std::uint32_t(p));
        s.old.insert(s.old.end(), v.begin() + long(from), v.begin() + long(to));
    }
    // Values that this item itself inserted need no keeping: undoing the insertion takes them away.
    bool covers(std::size_t index) const {
        return !steps_.empty() && steps_.back().splice && index >= steps_.back().at &&
               index < steps_.back().at + steps_.back().inserted;
    }
    bool hasOpenPages() const { return !steps_.empty() && !steps_.back().splice; }
    void keepSplice(std::size_t at, std::size_t inserted, std::vector<T> old) {
        if (old.empty() && !steps_.empty() && steps_.back().splice && at == steps_.back().at + steps_.back().inserted) {
            steps_.back().inserted += inserted;  // a run of appends is one step
            return;
        }
        Step& s = steps_.emplace_back();
        s.splice = true;
        s.at = at;
        s.inserted = inserted;
        s.old = std::move(old);
    }
    // Whatever happens to the array from here on, undoing brings these values back.
    void keepWhole(std::vector<T> const& v) {
        Step& s = steps_.emplace_back();
        s.splice = s.whole = true;
        s.inserted = std::size_t(-1);
        s.old = v;
    }
    void toggle(std::vector<T>& v) {
        for (std::size_t k = 0; k < steps_.size(); ++k) toggle(steps_[undone_ ? k : steps_.size() - 1 - k], v);
        undone_ = !undone_;
    }
    std::size_t bytes() const {
        std::size_t sum = sizeof *this;
        for (Step const& s : steps_) sum += sizeof s + 4 * s.pages.capacity() + sizeof(T) * s.old.capacity();
        return sum;
    }

private:
    struct Step {
        std::vector<std::uint32_t> pages;
        std::vector<T> old;
        std::size_t at = 0, inserted = 0;
        bool splice = false, whole = false;
    };
    static void toggle(Step& s, std::vector<T>& v) {
        if (!s.splice) return togglePages(s, v);
        if (s.whole) return v.swap(s.old);
        if (s.at == 0 && s.inserted == v.size()) {  // the whole changes hands, nothing is copied
            s.inserted = s.old.size();
            v.swap(s.old);
            return;
        }
        auto const first = v.begin() + long(s.at), last = first + long(s.inserted);
        std::vector<T> out(std::make_move_iterator(first), std::make_move_iterator(last));
        v.insert(v.erase(first, last), s.old.begin(), s.old.end());
        s.inserted = s.old.size();
        s.old = std::move(out);
    }
    static void togglePages(Step& s, std::vector<T>& v) {
        auto old = s.old.begin();
        for (std::uint32_t p : s.pages) {
            std::size_t const from = p * page, count = std::min(page, v.size() - from);
            std::swap_ranges(old, old + long(count), v.begin() + long(from));
            old += long(count);
        }
    }

    std::vector<Step> steps_;
    bool undone_ = false;
};

template<class T, AttributeType K> class PlainArrayAttribute : public ArrayAttribute {
public:
    using Element = std::conditional_t<std::is_same_v<T, std::uint8_t>, bool, T>;
    using Read = std::conditional_t<(sizeof(T) <= 8), Element, Element const&>;
    using History = ArrayHistory<T>;

    PlainArrayAttribute(AttributePlace place, AttributeDef const&) : ArrayAttribute(place, K) {}

    std::vector<T> const& getValue() const {
        refresh();
        return raw();
    }
    // Without evaluation and without record.
    std::vector<T> const& raw() const {
        static std::vector<T> const none;
        return body_ ? body_->values : none;
    }
    std::vector<T>& raw() { return changed(); }
    // Moves when an element that was there changes or goes, by whatever way: an edit, an undo, a connection, loading.
    // Appending leaves it, so that whoever keeps something made of the elements reads on from where he stopped.
    std::uint64_t revision() const { return body_ ? body_->revision : 0; }

    std::size_t size() const override { return getValue().size(); }
    // Beyond the end: the default of the kind.
    Read getElement(std::size_t i) const {
        std::vector<T> const& v = getValue();
        if (i < v.size()) return v[i];
        static T const none{};
        return none;
    }
    bool setElement(Element value, std::size_t i) {  // false beyond the end
        if (i >= stored().size() || !beginEdit()) return false;
        keepPage(i);
        changed()[i] = std::move(value);
        afterWrite();
        return true;
    }
    // The elements from `first` on become these: one write for all, and none where every bit is the same. False, and no
    // change, where they reach beyond the end, and of what takes no edits.
    bool setElements(std::size_t first, std::span<T const> values) requires std::is_trivially_copyable_v<T> {
        std::size_t const size = stored().size(), end = first + values.size();
        if (first > size || values.size() > size - first) return false;
        T* v = nullptr;  // once the write has begun
        for (std::size_t at = first, next; at < end; at = next) {
            next = std::min(end, (at / History::page + 1) * History::page);
            T const* const source = values.data() + (at - first);
            if (std::memcmp(source, stored().data() + at, (next - at) * sizeof(T)) == 0) continue;
            if (!v && !beginEdit()) return false;
            if (!v) v = changed().data();
            for (std::size_t i : {at, next - 1}) keepPage(i);  // one of them may be an element that is new
            std::copy_n(source, next - at, v + at);
        }
        if (v) afterWrite();
        return true;
    }
    void setValue(std::vector<T> values) { splice(0, stored().size(), std::move(values)); }
    void setValue(Element const* values, std::size_t count) { setValue(std::vector<T>(values, values + count)); }
    void add(Element value) { insert(std::move(value), stored().size()); }
    bool insert(Element value, std::size_t i) {  // false beyond the end
        if (i > stored().size() || !beginEdit()) return false;
        std::vector<T>& v = edited(i);
        v.insert(v.begin() + long(i), T(std::move(value)));
        noteSplice(i, 1, {});
        return true;
    }
    bool removeAt(std::size_t i) override {
        if (i >= stored().size() || isRemoved() || has(live)) return false;
        splice(i, 1, {});
        return true;
    }
    void resize(std::size_t count) override {
        std::size_t const now = stored().size();
        if (count < now)
            splice(count, now - count, {});
        else if (count > now)
            splice(now, 0, std::vector<T>(count - now, T(getDefaultElement())));
    }
    Element getDefaultElement() const { return initialValue<Element>(getDef()); }

    bool compare(Attribute const& other) const override {
        return other.getAttributeType() == K && static_cast<PlainArrayAttribute const&>(other).getValue() == getValue();
    }
    bool assign(Attribute const& other) override {
        if (other.getAttributeType() != K) return false;
        setValue(static_cast<PlainArrayAttribute const&>(other).getValue());
        return true;
    }
    bool isDefaultValue() const override { return getValue().empty(); }
    void setToDefaultValue() override { resize(0); }

    std::uint64_t remember() override {
        Body& b = body();
        b.open = new History;
        b.kept.clear();
        return reinterpret_cast<std::uint64_t>(b.open);
    }
    void exchange(std::uint64_t& old) override { reinterpret_cast<History*>(old)->toggle(changed()); }
    void forget(std::uint64_t old) override { delete reinterpret_cast<History*>(old); }
    std::size_t historyBytes(std::uint64_t old) const override { return reinterpret_cast<History*>(old)->bytes(); }

protected:
    void keepWhole() override {
        Body& b = body();
        b.open->keepWhole(b.values);
        b.kept.clear();
    }

private:
    // Steps of the history lean on the values they were made for, so what is computed or flows in is not edited.
    bool beginEdit() { return !has(live) && beforeWrite(); }

    struct Body {
        std::vector<T> values;
        std::uint64_t revision = 0;
        History* open = nullptr;          // of the item being recorded; valid while the flag `recorded` is set
        std::vector<std::uint64_t> kept;  // a bit per page of the open step
    };
    Body& body() {
        if (!body_) body_ = std::make_unique<Body>();
        return *body_;
    }
    std::vector<T> const& stored() const { return raw(); }
    std::vector<T>& changed() {  // to be changed anywhere
        ++body().revision;
        return body_->values;
    }
    std::vector<T>& edited(std::size_t from) {  // to be changed from that place on
        return from < stored().size() ? changed() : body().values;
    }
    void keepPage(std::size_t i) {
        if (body_->open->covers(i)) return;
        Body& b = *body_;
        std::size_t const p = i / History::page;
        if (b.kept.size() <= p / 64) b.kept.resize((b.values.size() / History::page) / 64 + 1);
        std::uint64_t const bit = 1ull << (p % 64);
        if (b.kept[p / 64] & bit) return;
        b.kept[p / 64] |= bit;
        b.open->keepPage(b.values, p);
    }
    void noteSplice(std::size_t at, std::size_t inserted, std::vector<T> old) {
        if (body_->open->hasOpenPages()) body_->kept.clear();  // places moved: pages start anew
        body_->open->keepSplice(at, inserted, std::move(old));
        afterWrite();
    }
    void splice(std::size_t at, std::size_t removed, std::vector<T> inserted) {
        if (!beginEdit()) return;
        std::vector<T>& v = edited(at);
        std::size_t const count = inserted.size();
        std::vector<T> out;
        if (removed == v.size()) {  // the whole changes hands
            out = std::move(v);
            v = std::move(inserted);
        } else {
            auto const first = v.begin() + long(at), last = first + long(removed);
            out.assign(std::make_move_iterator(first), std::make_move_iterator(last));
            v.insert(v.erase(first, last), inserted.begin(), inserted.end());
        }
        noteSplice(at, count, std::move(out));
    }

    std::unique_ptr<Body> body_;
};

class IntArrayAttribute final : public PlainArrayAttribute<int, AttributeType::IntegerArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class BoolArrayAttribute final : public PlainArrayAttribute<std::uint8_t, AttributeType::BooleanArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class EnumArrayAttribute final : public PlainArrayAttribute<int, AttributeType::EnumerationArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class FloatArrayAttribute final : public PlainArrayAttribute<float, AttributeType::FloatArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class DoubleArrayAttribute final : public PlainArrayAttribute<double, AttributeType::DoubleArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class StringArrayAttribute final : public PlainArrayAttribute<std::wstring, AttributeType::StringArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class Vector3ArrayAttribute final : public PlainArrayAttribute<Qelp::Vector3, AttributeType::Vector3Array> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class Matrix34ArrayAttribute final : public PlainArrayAttribute<Qelp::Matrix34, AttributeType::MatrixArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};
class QuaternionArrayAttribute final : public PlainArrayAttribute<Qelp::Quat, AttributeType::QuaternionArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
};

// References, not owned: an element reads null while its target is removed.
class PointerArrayAttribute final : public PlainArrayAttribute<AttributeHandle, AttributeType::PointerArray> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
    Attribute* getElement(std::size_t i) const { return PlainArrayAttribute::getElement(i).getRef(); }
    bool setElement(Attribute* target, std::size_t i) {
        return PlainArrayAttribute::setElement(AttributeHandle(target), i);
    }
    void add(Attribute* target, bool = true) { PlainArrayAttribute::add(AttributeHandle(target)); }
    bool insert(Attribute* target, std::size_t i, bool = true) {
        return PlainArrayAttribute::insert(AttributeHandle(target), i);
    }
};

// An ordered list of nodes, not owned.
class NodeContainer final : public PlainArrayAttribute<AttributeHandle, AttributeType::NodeContainer> {
public:
    using PlainArrayAttribute::PlainArrayAttribute;
    inline void add(Node* node);
    inline Node* getNode(std::size_t i) const;
};

}  // namespace db
