#include "qel/db/member_index.h"
#include "tests/qel/db/fixture.h"
#include <algorithm>
#include <random>

namespace db::test {
namespace {

struct Itself {
    int operator()(int number) const { return number; }
};

struct MemberIndexTest : Fixture {
    IntArrayAttribute& array = get<IntArrayAttribute>(makeStep(L"n"), L"IntegerArray");
    MemberIndex<int, Itself> index;
};

TEST_F(MemberIndexTest, AnEmptyArrayHoldsNothing) {
    EXPECT_FALSE(index.contains(array, 0));
    index.removeAt(array, 0);
    EXPECT_FALSE(index.contains(array, 0));
}

TEST_F(MemberIndexTest, AKeyStaysAsLongAsOneOfItsElements) {
    array.setValue({5, 5, 6});
    index.removeAt(array, 0);
    EXPECT_TRUE(index.contains(array, 5));
    index.removeAt(array, 0);
    EXPECT_FALSE(index.contains(array, 5));
    EXPECT_TRUE(index.contains(array, 6));
}

TEST_F(MemberIndexTest, KeysThatComeAndGoForEverDoNotFillIt) {
    for (int i = 0; i < 100000; ++i) {
        array.add(i);
        ASSERT_TRUE(index.contains(array, i));
        index.removeAt(array, 0);
        ASSERT_FALSE(index.contains(array, i));
    }
}

TEST_F(MemberIndexTest, AgreesWithASearchUnderRandomEdits) {
    std::mt19937 random(5);
    for (int i = 0; i < 50000; ++i) {
        int const value = int(random() % 300) - 150;
        std::size_t const size = array.size(), at = size ? random() % size : 0;
        switch (random() % 16) {
        case 0: array.setElement(value, at); break;
        case 1: array.insert(value, at); break;
        case 2: array.removeAt(at); break;
        case 3:
            if (random() % 50 == 0) array.resize(at);
            break;
        case 4:
        case 5:
        case 6:
        case 7:
        case 8:
            if (size) index.removeAt(array, at);
            break;
        default: array.add(value);
        }
        auto const& values = array.getValue();
        int const asked = int(random() % 300) - 150;
        ASSERT_EQ(index.contains(array, asked), std::count(values.begin(), values.end(), asked) > 0) << i;
    }
}

}  // namespace
}  // namespace db::test
