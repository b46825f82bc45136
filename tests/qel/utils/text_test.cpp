#include "qel/utils/text.h"
#include <clocale>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace Qelutils;

TEST(Text, RoundTripsEveryScalarValueThroughUtf8) {
    std::wstring all;
    for (unsigned c = 0; c < 0x110000; ++c)
        if (c < 0xD800 || c >= 0xE000) all += static_cast<wchar_t>(c);
    EXPECT_EQ(fromUtf8(toUtf8(all)), all);
}

TEST(Text, WritesTheShortestUtf8Form) {
    EXPECT_EQ(toUtf8(L"a\u00e9\u20ac\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(Text, ReplacesLoneSurrogatesAndJoinsPairs) {
    EXPECT_EQ(toUtf8(std::wstring{L'a', wchar_t(0xD800), L'b'}), "a\xEF\xBF\xBD"
                                                                 "b");
    EXPECT_EQ(toUtf8(std::wstring{wchar_t(0xDC00)}), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(std::wstring{wchar_t(0xD83D), wchar_t(0xDE00)}), "\xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8(std::wstring{wchar_t(0x7FFFFFFF)}), "\xEF\xBF\xBD");
}

TEST(Text, ReplacesEachBadUtf8SequenceByOneCharacter) {
    struct Case {
        char const* name;
        std::string bytes;
        std::wstring expected;
    };
    Case const cases[] = {
        {"lone tail", "a\x80z", L"a\uFFFDz"},
        {"overlong slash", "\xC0\xAF", L"\uFFFD\uFFFD"},
        {"overlong three bytes", "\xE0\x80\x80", L"\uFFFD\uFFFD\uFFFD"},
        {"surrogate", "\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
        {"beyond the last plane", "\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"truncated at the end", "x\xE2\x82", L"x\uFFFD"},
        {"truncated before a letter", "\xF0\x9F\x98z", L"\uFFFDz"},
        {"never a byte", "\xFF", L"\uFFFD"},
    };
    for (Case const& c : cases) EXPECT_EQ(fromUtf8(c.bytes), c.expected) << c.name;
}

TEST(Text, NeverFailsOnRandomBytes) {
    unsigned const seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(random() % 16, ' ');
        for (char& c : bytes) c = static_cast<char>(random());
        std::wstring const wide = fromUtf8(bytes);
        EXPECT_EQ(fromUtf8(toUtf8(wide)), wide);
    }
}

TEST(Text, FormatsWideAndUtf8Text) {
    EXPECT_EQ(format(L"[%s|%ls|%hs]", L"w\u00e9", L"l\u20ac", "h\xC3\xA9"), L"[w\u00e9|l\u20ac|h\u00e9]");
    EXPECT_EQ(format(L"%6s|%-6s|%.2s", L"abc", L"abc", L"abc"), L"   abc|abc   |ab");
    EXPECT_EQ(format(L"%*s|%-*s|%*s", 4, L"a", 4, L"b", -4, L"c"), L"   a|b   |c   ");
    EXPECT_EQ(format(L"%s %hs", static_cast<wchar_t*>(nullptr), static_cast<char*>(nullptr)), L"(null) (null)");
    EXPECT_EQ(format(L"%c%lc%hc%%", L'\u20ac', wint_t(L'b'), 'c'), L"\u20acbc%");
}

TEST(Text, APrecisionBoundsUnterminatedText) {
    wchar_t const wide[] = {L'a', L'b'};
    char const narrow[] = {'c', 'd'};
    EXPECT_EQ(format(L"%.*s%.*hs", 2, wide, 2, narrow), L"abcd");
}

TEST(Text, FormatsNumbersAsTheCLibraryDoes) {
    EXPECT_EQ(format(L"%d %5i|%-5d|%05d %+d", -1, 42, 42, 42, 42), L"-1    42|42   |00042 +42");
    EXPECT_EQ(format(L"%u %x %X %#x %o", 4000000000u, 255, 255, 255, 8), L"4000000000 ff FF 0xff 10");
    EXPECT_EQ(format(L"%ld %lld %zu %hhd %hu", -1L, -5000000000LL, std::size_t(7), 300, 65537),
              L"-1 -5000000000 7 44 1");
    EXPECT_EQ(format(L"%f %.2f %8.3f %e %g %.3g", 1.5, 2.345, 3.14159, 1234.5, 1e-7, 1234567.0),
              L"1.500000 2.35 "
              L"   3.142 1.234500e+03 1e-07 1.23e+06");
    EXPECT_EQ(format(L"%Lf %f", 0.25L, HUGE_VAL), L"0.250000 inf");
    EXPECT_EQ(format(L"%.3d|%.f", 7, 2.0), L"007|2");
}

TEST(Text, KeepsMalformedDirectivesAsTheyStand) {
    EXPECT_EQ(format(L"100%! %"), L"100%! %");
    EXPECT_EQ(format(L"%q %5"), L"%q %5");
}

TEST(Text, TheCountDirectiveWritesNothing) {
    int count = 99;
    wchar_t const* const pattern = L"ab%nc";
    EXPECT_EQ(format(pattern, &count), L"abc");
    EXPECT_EQ(count, 99);
}

TEST(Text, AFieldHasAGreatestWidth) {
    EXPECT_EQ(format(L"%999999999d", 1).size(), 65536u);
    EXPECT_EQ(format(L"%*s", std::numeric_limits<int>::min(), L"a").size(), 65536u);
}

namespace {
std::wstring limited(std::size_t limit, wchar_t const* format, ...) {
    std::va_list list;
    va_start(list, format);
    std::wstring const out = formatList(format, list, limit);
    va_end(list);
    return out;
}
}  // namespace

TEST(Text, CutsToTheLimit) {
    EXPECT_EQ(limited(3, L"%s", L"abcdef"), L"abc");
    EXPECT_EQ(limited(6, L"%s", L"abcdef"), L"abcdef");
    EXPECT_EQ(limited(0, L"abc"), L"");
}

TEST(Text, WritesAndReadsADecimalPointInALocaleWithACommaToo) {
    bool found = false;
    for (char const* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "German"})
        found = found || std::setlocale(LC_ALL, name);
    if (!found) GTEST_SKIP() << "no such locale on this machine";
    double value = 0;
    EXPECT_EQ(format(L"%.2f %g", 0.5, -1e20), L"0.50 -1e+20");
    EXPECT_EQ(number(0.5), "0.5");
    EXPECT_TRUE(parseNumber("0.5", value));
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(value, 0.5);
}

TEST(Text, NumbersReadBackToTheSameBits) {
    unsigned const seed = 11;
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    for (int round = 0; round < 20000; ++round) {
        auto const bits = static_cast<std::uint32_t>(random());
        float single, back;
        std::memcpy(&single, &bits, sizeof single);
        if (std::isnan(single)) continue;
        ASSERT_TRUE(parseNumber(number(single), back)) << number(single);
        EXPECT_EQ(std::memcmp(&single, &back, sizeof back), 0) << number(single);
    }
    for (double value : {0.1, -0.0, 5e-324, 1.7976931348623157e308, 1.0 / 3}) {
        double back = 1;
        ASSERT_TRUE(parseNumber(number(value), back));
        EXPECT_EQ(std::memcmp(&value, &back, sizeof back), 0) << value;
    }
}

TEST(Text, ReadsNumbers) {
    struct Case {
        char const* text;
        double expected;
    };
    Case const cases[] = {{"1", 1},  {"+1.5", 1.5}, {" \t2e3\n", 2000}, {".5", 0.5},       {"-.5", -0.5},
                          {"5.", 5}, {"-0", -0.0},  {"1e-400", 0},      {"inf", HUGE_VAL}, {"-inf", -HUGE_VAL}};
    for (Case const& c : cases) {
        double value = 99;
        EXPECT_TRUE(parseNumber(c.text, value)) << c.text;
        EXPECT_EQ(value, c.expected) << c.text;
    }
    double value = 0;
    EXPECT_TRUE(parseNumber("nan", value));
    EXPECT_TRUE(std::isnan(value));
}

TEST(Text, ANumberTooSmallForAFloatReadsAsZero) {
    float value = 1;
    EXPECT_TRUE(parseNumber("-1e-60", value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(std::signbit(value));
}

TEST(Text, RefusesWhatIsNotANumberAndLeavesTheValue) {
    for (char const* text : {"", " ", "+", "-", ".", "e5", "1,5", "1 2", "+-1", "++1", "0x10", "1e999", "abc", "1a"}) {
        float single = 7;
        double wide = 7;
        int whole = 7;
        EXPECT_FALSE(parseNumber(text, single)) << text;
        EXPECT_FALSE(parseNumber(text, wide)) << text;
        EXPECT_FALSE(parseNumber(text, whole)) << text;
        EXPECT_TRUE(single == 7 && wide == 7 && whole == 7) << text;
    }
    float single = 7;
    EXPECT_FALSE(parseNumber("1e39", single));
}

TEST(Text, ReadsIntegersWithinTheirRange) {
    int value = 0;
    EXPECT_TRUE(parseNumber(" +12 ", value));
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(parseNumber("-2147483648", value));
    EXPECT_EQ(value, std::numeric_limits<int>::min());
    EXPECT_FALSE(parseNumber("2147483648", value));
    EXPECT_FALSE(parseNumber("1.0", value));
}

TEST(Text, ChangesTheCaseOfAsciiOnly) {
    EXPECT_EQ(toUpper(L"aZ\u00e4\u00df1"), L"AZ\u00e4\u00df1");
    EXPECT_EQ(toLower(L"aZ\u00c41"), L"az\u00c41");
}

TEST(Text, TrimsBothEnds) {
    EXPECT_EQ(trim(L" \t a b\r\n"), L"a b");
    EXPECT_EQ(trim(L"  "), L"");
    EXPECT_EQ(trim(L""), L"");
}

TEST(Text, MatchesWildcards) {
    struct Case {
        wchar_t const *text, *pattern;
        bool expected;
    };
    Case const cases[] = {{L"", L"", true},
                          {L"", L"*", true},
                          {L"", L"?", false},
                          {L"abc", L"abc", true},
                          {L"abc", L"ab", false},
                          {L"abc", L"a*", true},
                          {L"abc", L"*c", true},
                          {L"abc", L"a?c", true},
                          {L"abc", L"a??c", false},
                          {L"abcbc", L"a*bc", true},
                          {L"abc", L"*b*", true},
                          {L"abc", L"ABC", false},
                          {L"abc", L"****", true},
                          {L"aXbXc", L"a*X*c", true},
                          {L"aXbXd", L"a*X*c", false},
                          {L"a*c", L"a*c", true},
                          {L"mississippi", L"m*si*pi", true}};
    for (Case const& c : cases) EXPECT_EQ(matchesWildcard(c.text, c.pattern), c.expected) << toUtf8(c.pattern);
}

TEST(Text, WildcardsDoNotExplode) {
    std::wstring pattern;
    for (int i = 0; i < 30; ++i) pattern += L"a*";
    EXPECT_FALSE(matchesWildcard(std::wstring(3000, L'a'), pattern + L"b"));
}

TEST(Text, ProposesTheNearestNames) {
    std::wstring const names[] = {L"translationX", L"translationY", L"rotationX", L"Visible", L"hip"};
    auto const nearest = [&](wchar_t const* wanted, int count = 3) {
        return nearestNames(wanted, std::begin(names), std::end(names), count);
    };
    EXPECT_EQ(nearest(L"translatoinx"), L"translationX, translationY");
    EXPECT_EQ(nearest(L"TRANSLATIONY", 1), L"translationY");
    EXPECT_EQ(nearest(L"visibel"), L"Visible");
    EXPECT_EQ(nearest(L"hpi"), L"hip");
    EXPECT_EQ(nearest(L"hop"), L"hip");
    EXPECT_EQ(nearest(L"knee"), L"");
    EXPECT_EQ(nearest(L"trans"), L"translationX, translationY");
    EXPECT_EQ(nearest(L"rotatoin"), L"rotationX");
    EXPECT_EQ(nearest(L"Vsi"), L"Visible");
    EXPECT_EQ(nearest(L"vx"), L"");
    EXPECT_EQ(nearest(L""), L"");
    EXPECT_EQ(nearest(L"hip", 0), L"");
}
