// Node types for the tests of the database: one with every kind of attribute, free of any graph.
#pragma once
#include "qel/db/database.h"

namespace db::test {

inline constexpr wchar_t const* colours[] = {L"Red", L"Green", L"Blue"};
inline constexpr AttributeDef pairRows[] = {row::real(0, L"First", 1), row::text(1, L"Second", L"two")};
inline constexpr AttributeDef elementRows[] = {row::compound(0, L"Element", pairRows)};
inline constexpr AttributeDef allRows[] = {
    row::text(0, L"Name"),
    row::integer(1, L"Integer", 7),
    row::boolean(2, L"Boolean", true),
    row::enumeration(3, L"Enumeration", colours, 1),
    row::real(4, L"Float", 0.5),
    row::doublePrecision(5, L"Double", 0.25),
    row::text(6, L"String", L"text"),
    row::vector(7, L"Vector3"),
    row::matrix(8, L"Matrix"),
    row::pointer(9, L"Pointer"),
    row::quaternion(10, L"Quaternion"),
    row::array(11, L"IntegerArray", AttributeType::IntegerArray, 3),
    row::array(12, L"BooleanArray", AttributeType::BooleanArray),
    row::enumerationArray(13, L"EnumerationArray", colours),
    row::array(14, L"FloatArray", AttributeType::FloatArray),
    row::array(15, L"DoubleArray", AttributeType::DoubleArray),
    row::array(16, L"StringArray", AttributeType::StringArray),
    row::array(17, L"Vector3Array", AttributeType::Vector3Array),
    row::array(18, L"MatrixArray", AttributeType::MatrixArray),
    row::array(19, L"PointerArray", AttributeType::PointerArray),
    row::array(20, L"QuaternionArray", AttributeType::QuaternionArray),
    row::nodeContainer(21, L"NodeContainer"),
    row::compound(22, L"Compound", pairRows),
    row::attributeArray(24, L"Elements", elementRows),  // 23 is a gap
};
static_assert(row::isSound(allRows, 0));

inline Node* makePlain(void* at, NodeDef const& def) { return new (at) Node(def); }
inline NodeDef const& allDef() {
    static NodeDef const def(L"test", L"All", nullptr, allRows, sizeof(Node), makePlain);
    return def;
}

template<class A> A& get(Node* n, wchar_t const* name) { return *reinterpret_cast<A*>(n->findAttribute(name)); }

}  // namespace db::test
