// Hand loads: how the figure's texts for its hands are read.
#include "AnalysisTest.h"
#include "DecimalComma.h"
#include "NumberText.h"

#include "HandLoads.h"

#include <cmath>
#include <cstdio>
#include <limits>

using ::testing::ElementsAre;

namespace {

class HandLoads : public AnalysisTest {
protected:
    void SetUp() override
    {
        SmallFigure small;
        small.segment("body", 1000).site("body", "site", {0, 0, 0});
        load(small);
    }

    std::array<float, 3> read(const char* text)
    {
        figure->setProperty("RightZelHandLoads", qcValue(text));
        return components(readHandLoad(figure, qcRight));
    }
    int readLocal(const char* text)
    {
        figure->setProperty("RightZelHandLoadsLocal", qcValue(text));
        return readHandLoadLocal(figure, qcRight);
    }
    void expectNone(const char* text) { EXPECT_THAT(read(text), ElementsAre(7777, 0, 0)) << '"' << text << '"'; }
};

TEST_F(HandLoads, OneNumberIsAVerticalLoad)
{
    EXPECT_THAT(read("12"), ElementsAre(0, 12, 0));
    EXPECT_THAT(read("-2.5"), ElementsAre(0, -2.5f, 0));
    EXPECT_THAT(read("  \t\n 12 \n"), ElementsAre(0, 12, 0));
    EXPECT_THAT(read("0"), ElementsAre(0, 0, 0));
}

TEST_F(HandLoads, TwoNumbersLeaveTheThirdAtZero)
{
    EXPECT_THAT(read("1 2"), ElementsAre(1, 2, 0));
    EXPECT_THAT(read("1 2 forward"), ElementsAre(1, 2, 0));
}

TEST_F(HandLoads, ThreeNumbersAreTheLoad)
{
    EXPECT_THAT(read("1 2 3"), ElementsAre(1, 2, 3));
    EXPECT_THAT(read("1\t2\n3"), ElementsAre(1, 2, 3));
    EXPECT_THAT(read("1 2 3 4 5"), ElementsAre(1, 2, 3));
}

TEST_F(HandLoads, TextWithoutANumberIsNoLoad)
{
    for (const char* text : {"", " ", "none", ",1", "kgf 12", "-", "+", ".", "--3", "e5"})
        expectNone(text);
}

// Only an x of exactly 7777 stands for no load: one number alone has the x 0, and so is a load.
TEST_F(HandLoads, NumberThatStandsForNoLoadIsOneOnlyAsX)
{
    EXPECT_THAT(read("7777"), ElementsAre(0, 7777, 0));
    EXPECT_THAT(read("7777.001 1 2"), ElementsAre(7777.001f, 1, 2));
    ASSERT_NE(7777.001f, 7777.0f);
    EXPECT_THAT(read("-7777 1 2"), ElementsAre(-7777, 1, 2));
    EXPECT_THAT(read("7777 1 2"), ElementsAre(7777, 1, 2));
}

// Reading ends where no number stands: what came before counts.
TEST_F(HandLoads, ReadingEndsAtTheFirstThingThatIsNoNumber)
{
    EXPECT_THAT(read("12kgf"), ElementsAre(0, 12, 0));
    EXPECT_THAT(read("1,2,3"), ElementsAre(0, 1, 0));
    EXPECT_THAT(read("1;2"), ElementsAre(0, 1, 0));
    EXPECT_THAT(read("1 x 3"), ElementsAre(0, 1, 0));
    EXPECT_THAT(read("1 2,5 3"), ElementsAre(1, 2, 0));
}

// A number ends where no further character can belong to it; the next may follow without a blank.
TEST_F(HandLoads, NumbersMayStandSideBySide)
{
    EXPECT_THAT(read("1-2+3"), ElementsAre(1, -2, 3));
    EXPECT_THAT(read("1.5.25"), ElementsAre(1.5f, 0.25f, 0));
}

TEST_F(HandLoads, SignsPointsAndExponents)
{
    EXPECT_THAT(read("+3 .5 5."), ElementsAre(3, 0.5f, 5));
    EXPECT_THAT(read("1e2 2E-1 0x10"), ElementsAre(100, 0.2f, 16));
}

// Minus zero stays minus zero.
TEST_F(HandLoads, MinusZeroKeepsItsSign)
{
    EXPECT_TRUE(std::signbit(read("-0")[1]));
    EXPECT_FALSE(std::signbit(read("-0")[0]));
    EXPECT_TRUE(std::signbit(read("1 2 -0.0")[2]));
}

// Single precision ends at 3.4e38 above and 1.4e-45 below.
TEST_F(HandLoads, NumbersBeyondSinglePrecisionOverflow)
{
    const float infinite = std::numeric_limits<float>::infinity();
    EXPECT_THAT(read("1e39"), ElementsAre(0, infinite, 0));
    EXPECT_THAT(read("1 -1e99999 2"), ElementsAre(1, -infinite, 2));
    EXPECT_THAT(read("1 1e-60 2"), ElementsAre(1, 0, 2));
    EXPECT_THAT(read("inf"), ElementsAre(0, infinite, 0));
    EXPECT_TRUE(std::isnan(read("nan")[1]));
}

// Rounded once, to single precision: 1 + 2^-24 + 2^-60 lies just above the middle between 1 and the next number.
// Through double it would come to the middle first, and then to 1.
TEST_F(HandLoads, NumbersAreRoundedOnce)
{
    EXPECT_THAT(read("1.000000059604644775390625867"), ElementsAre(0, std::nextafter(1.0f, 2.0f), 0));
}

TEST_F(HandLoads, LongTextIsReadWhole)
{
    const std::string text = std::string(100000, ' ') + "1 " + std::string(5000, '0') + "2 3." + std::string(5000, '0');
    EXPECT_THAT(read(text.c_str()), ElementsAre(1, 2, 3));
}

// The standard scan of the same text, in the C locale, is the second way to the same numbers.
TEST_F(HandLoads, OddTextsAreReadLikeTheStandardScan)
{
    for (const char* text : {"1 2 3",
                             "12",
                             "1e",
                             "1e+",
                             "1e 5",
                             "1ex",
                             "0x",
                             "0xg",
                             "0x1p3 2",
                             "0x.8 1",
                             "infinity 1",
                             "infinit 1",
                             "in",
                             "nan(abc) 4",
                             "nan( 4",
                             "NAN 2 3",
                             "INF -inf +inf",
                             "1e2e3",
                             "1..2",
                             "..1",
                             "1 . 2",
                             "+-1",
                             "- 1",
                             "1 - 2",
                             "1_000",
                             "1'000",
                             "1d5",
                             "\v1\f2\r3",
                             "1\x01 2",
                             "1e0000000000000005 2",
                             "00012 0.0001",
                             "1 2e 3",
                             "%f %f %f",
                             "1e-50 1",
                             "3.4028235e38",
                             "3.4028236e38",
                             "1.17549435e-38",
                             "1e-45 1e-46",
                             "\xC2\xA0"
                             "1",
                             "1 2 3kgf",
                             "1f 2f"}) {
        float x = 7777, y = 0, z = 0;
        const int count = [&] {
            const StandardLocale standard;
            return std::sscanf(text, "%f %f %f", &x, &y, &z);
        }();
        if (count == 1) {
            y = x;
            x = 0;
        }
        const std::array<float, 3> expected = {x, y, z}, found = read(text);
        for (std::size_t i = 0; i < 3; ++i)
            if (std::isnan(expected[i]))
                EXPECT_TRUE(std::isnan(found[i])) << '"' << text << '"';
            else
                EXPECT_EQ(found[i], expected[i]) << '"' << text << '"' << " component " << i;
    }
}

TEST_F(HandLoads, EachSideHasItsText)
{
    figure->setProperty("RightZelHandLoads", qcValue("1 2 3"));
    EXPECT_THAT(components(readHandLoad(figure, qcLeft)), ElementsAre(7777, 0, 0));
    figure->setProperty("LeftZelHandLoads", qcValue("4 5 6"));
    EXPECT_THAT(components(readHandLoad(figure, qcLeft)), ElementsAre(4, 5, 6));
    EXPECT_THAT(components(readHandLoad(figure, qcRight)), ElementsAre(1, 2, 3));
    figure->setProperty("LeftZelHandLoadsLocal", qcValue("1"));
    EXPECT_EQ(readHandLoadLocal(figure, qcLeft), 1);
    EXPECT_EQ(readHandLoadLocal(figure, qcRight), 0);
}

TEST_F(HandLoads, OnlyTextsCount)
{
    const qVector vector(1, 2, 3);
    qcValue vectorValue, list;
    vectorValue.set(&vector);
    list.setList(new qcValue("1 2 3"));
    for (const qcValue& value : {qcValue(), qcValue(12.0f), vectorValue, list}) {
        figure->setProperty("RightZelHandLoads", value);
        figure->setProperty("RightZelHandLoadsLocal", value);
        EXPECT_THAT(components(readHandLoad(figure, qcRight)), ElementsAre(7777, 0, 0));
        EXPECT_EQ(readHandLoadLocal(figure, qcRight), 0);
    }
}

TEST_F(HandLoads, MissingTextsAndNoFigureGiveTheDefaults)
{
    for (const qcFigure* from : {static_cast<const qcFigure*>(figure), static_cast<const qcFigure*>(nullptr)})
        for (const qcSide side : {qcRight, qcLeft}) {
            EXPECT_THAT(components(readHandLoad(from, side)), ElementsAre(7777, 0, 0));
            EXPECT_EQ(readHandLoadLocal(from, side), 0);
        }
}

TEST_F(HandLoads, LocalFlagIsAnInteger)
{
    for (const char* text : {"0", "", "abc", " ", "-", "0x1", "0.9", "-0", "+0", "x1"})
        EXPECT_EQ(readLocal(text), 0) << '"' << text << '"';
    EXPECT_EQ(readLocal("1"), 1);
    EXPECT_EQ(readLocal(" \n2x"), 2);
    EXPECT_EQ(readLocal("-3"), -3);
    EXPECT_EQ(readLocal("+7.9"), 7);
}

TEST_F(HandLoads, ReadingChangesNothing)
{
    read("1 2 3");
    const int count = figure->getNumProperties();
    readHandLoad(figure, qcRight);
    readHandLoad(figure, qcLeft);
    readHandLoadLocal(figure, qcLeft);
    EXPECT_EQ(figure->getNumProperties(), count);
    qcValue value;
    char* text = nullptr;
    ASSERT_EQ(figure->getProperty("RightZelHandLoads", &value), 1);
    ASSERT_EQ(value.get(text), 1);
    EXPECT_STREQ(text, "1 2 3");
}

// ---- The decimal point

TEST_F(HandLoads, NumbersHaveADecimalPointInEveryLocale)
{
    const DecimalComma comma;
    EXPECT_THAT(read("1.5 2.25 -3.75"), ElementsAre(1.5f, 2.25f, -3.75f));
    EXPECT_THAT(read("12.5"), ElementsAre(0, 12.5f, 0));
    EXPECT_THAT(read("1,5"), ElementsAre(0, 1, 0));
    EXPECT_TRUE(DecimalComma::inForce());   // the process keeps its locale
}

}   // namespace
