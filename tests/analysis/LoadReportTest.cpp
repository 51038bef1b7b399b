// Load report: the lines, one a call, that tell an analysis's loads, strategy and gravity.
#include "AnalysisTest.h"
#include "DecimalComma.h"
#include "SavedValues.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

using ::testing::ElementsAre;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr std::size_t kLongestLine = 2047;   // characters, in a buffer of 2048

const char* const kLoads = "SSTR_LoadList";
const char* const kStrategy = "SSTR_Strategy";
const char* const kTwoFeet = "Strategy: \"Two Feet\"";
// 980.665 in single precision is 980.66497...
const char* const kDownward = "Gravity: (0.00, -980.66, 0.00) cm/sec^2";

// The state of a report is the module's: each test ends its own.
class LoadReport : public AnalysisTest {
protected:
    void SetUp() override { load(threeSites()); }
    void TearDown() override
    {
        if (analysis)
            rest();
        AnalysisTest::TearDown();
    }

    // The lines until null; a report of a test never has a hundred.
    std::vector<std::string> rest()
    {
        std::vector<std::string> lines;
        const char* line;
        while (lines.size() < 100 && (line = analysis->reportLoads()))
            lines.push_back(line);
        return lines;
    }
    std::vector<std::string> report()
    {
        std::vector<std::string> lines;
        if (const char* line = analysis->reportLoads(1))
            lines.push_back(line);   // before the next one takes its place
        for (const std::string& line : rest())
            lines.push_back(line);
        return lines;
    }
    std::string next(int start = 0)
    {
        const char* line = analysis->reportLoads(start);
        return line ? line : "null";
    }

    qcSite* grip() { return site("hand.grip"); }
    qcSite* tip() { return site("hand.tip"); }
    qcSite* top() { return site("head.top"); }

    // The first line of a report on a list kept as this.
    std::string lineOf(const qcValue& entry)
    {
        figure->setProperty(kLoads, list({entry}));
        const std::string line = next(1);
        EXPECT_EQ(next(), kTwoFeet);
        return line;
    }
    std::string lineOf(const qVector& load, int kind = 0)
    {
        analysis->setLoad(grip(), load, kind);
        return next(1);
    }
    std::string lineOfWeight(float grams)
    {
        analysis->setWeightLoad(grip(), grams);
        return next(1);
    }
};

// ---- The sequence

TEST_F(LoadReport, BeforeAnyStartThereIsNothing)
{
    EXPECT_EQ(analysis->reportLoads(0), nullptr);
    EXPECT_EQ(analysis->reportLoads(), nullptr);
    analysis->setLoad(grip(), {0, -1, 0});
    EXPECT_EQ(analysis->reportLoads(), nullptr);
}

TEST_F(LoadReport, TellsLoadsThenStrategyThenGravityThenNothing)
{
    analysis->setWeightLoad(grip(), 1500);
    analysis->setLoad(tip(), {1, 0, -2.5f});
    EXPECT_STREQ(analysis->reportLoads(1), "hand.grip\tWeight: 1500.0 gr");
    EXPECT_STREQ(analysis->reportLoads(0), "hand.tip\tGlobal Load: (1.00, 0.00, -2.50) Kg-F");
    EXPECT_STREQ(analysis->reportLoads(0), kTwoFeet);
    EXPECT_STREQ(analysis->reportLoads(0), kDownward);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(analysis->reportLoads(0), nullptr);
}

TEST_F(LoadReport, WithoutLoadsItSaysSoAndTellsNoStrategy)
{
    EXPECT_EQ(next(1), "No loads.");
    EXPECT_EQ(next(), kDownward);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(next(), "null");
}

TEST_F(LoadReport, AListOfAnotherKindIsNoLoads)
{
    for (const qcValue& value : {number(1), text("hand.grip"), vector(0, -1, 0), qcValue()}) {
        figure->setProperty(kLoads, value);
        EXPECT_THAT(report(), ElementsAre("No loads.", kDownward)) << describe(value);
    }
}

// Nothing keeps one; there is no entry to tell, and the report still ends as any other.
TEST_F(LoadReport, AnEmptyListIsAListAndEndsLikeOne)
{
    figure->setProperty(kLoads, list({}));
    EXPECT_THAT(report(), ElementsAre("(Error)", kTwoFeet, kDownward));
}

TEST_F(LoadReport, EntriesComeInTheOrderOfTheList)
{
    analysis->setLoad(top(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    analysis->setLoad(grip(), {0, -3, 0});
    analysis->setLoad(top(), {0, -4, 0});   // keeps its place
    EXPECT_THAT(report(), ElementsAre("head.top\tGlobal Load: (0.00, -4.00, 0.00) Kg-F",
                                      "hand.tip\tGlobal Load: (0.00, -2.00, 0.00) Kg-F",
                                      "hand.grip\tGlobal Load: (0.00, -3.00, 0.00) Kg-F", kTwoFeet, kDownward));
}

TEST_F(LoadReport, EveryNumberButZeroStarts)
{
    analysis->setLoad(grip(), {0, -1, 0});
    for (const int start : {1, 2, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(next(start), "hand.grip\tGlobal Load: (0.00, -1.00, 0.00) Kg-F") << start;
        EXPECT_EQ(next(), kTwoFeet) << start;
    }
}

// Two loads make four lines and null; a start after 0 to 6 further calls, and one that finds no loads.
TEST_F(LoadReport, AStartBeginsAfreshWhereverTheReportWas)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    const std::vector<std::string> whole = report();
    ASSERT_EQ(whole.size(), 4u);
    for (int further = 0; further <= 6; ++further) {
        analysis->reportLoads(1);
        for (int i = 0; i < further; ++i)
            analysis->reportLoads();
        EXPECT_EQ(report(), whole) << further;
    }
    analysis->reportLoads(1);
    analysis->removeLoad(grip());
    analysis->removeLoad(tip());
    EXPECT_EQ(next(1), "No loads.");
    analysis->setLoad(grip(), {0, -1, 0});
    EXPECT_THAT(report(), ElementsAre(whole[0], kTwoFeet, kDownward));
}

TEST_F(LoadReport, LoadsWithOffsetsAndTorquesAreNotTold)
{
    SmallFigure small("jointed");
    small.segment("arm", 1).site("arm", "end", {}).segment("hand", 1).site("hand", "end", {});
    load(small.joint("wrist", "arm.end", "hand.end"));
    qVector torque(1, 2, 3);
    analysis->setLoadWithOffset(site("hand.end"), {1, 0, 0}, {0, -1, 0});
    analysis->setDefinedTorque(joint("wrist"), torque);
    EXPECT_THAT(report(), ElementsAre("No loads.", kDownward));
    analysis->setLoad(site("hand.end"), {0, -1, 0});
    EXPECT_THAT(report(), ElementsAre("hand.end\tGlobal Load: (0.00, -1.00, 0.00) Kg-F", kTwoFeet, kDownward));
}

// ---- Who owns the lines

TEST_F(LoadReport, EveryLineStandsInOneBuffer)
{
    analysis->setLoad(grip(), {0, -1, 0});
    const char* buffer = analysis->reportLoads(1);
    EXPECT_EQ(analysis->reportLoads(), buffer);
    EXPECT_EQ(analysis->reportLoads(), buffer);
    EXPECT_STREQ(buffer, kDownward);

    load(threeSites("other"));   // another analysis's lines too
    analysis->setLoad(grip(), {0, -2, 0});
    EXPECT_EQ(analysis->reportLoads(1), buffer);
    EXPECT_STREQ(buffer, "hand.grip\tGlobal Load: (0.00, -2.00, 0.00) Kg-F");
}

TEST_F(LoadReport, NoLoadsIsAConstantText)
{
    const char* none = analysis->reportLoads(1);
    const char* gravity = analysis->reportLoads();
    EXPECT_NE(none, gravity);
    EXPECT_STREQ(none, "No loads.");   // still
    EXPECT_STREQ(gravity, kDownward);
}

TEST_F(LoadReport, NoLineEndsInALineBreak)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setWeightLoad(tip(), 5);
    analysis->setLoad(top(), {0, 0, 0});
    std::vector<std::string> lines = report();
    EXPECT_EQ(lines.size(), 5u);
    analysis->clear();
    for (const std::string& line : report())   // no loads
        lines.push_back(line);
    EXPECT_EQ(lines.size(), 7u);
    for (const std::string& line : lines)
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
}

// ---- Entry lines

// The site's x axis is the world's z: the load is told in the site's axes, as stored.
TEST_F(LoadReport, ALocalLoadIsToldAsStored)
{
    SmallFigure turned("turned");
    turned.segment("hand", 500).site("hand", "grip", {0, 80, 0}, {{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}});
    load(turned);
    EXPECT_EQ(lineOf({1, -2, 3}, 1), "hand.grip\tLocal Load: (1.00, -2.00, 3.00) Kg-F");
}

// Exact in binary, so that a tie is a tie: to even.
TEST_F(LoadReport, AForceHasTwoDecimals)
{
    EXPECT_EQ(lineOf({0.125f, 0.375f, -2.625f}), "hand.grip\tGlobal Load: (0.12, 0.38, -2.62) Kg-F");
    EXPECT_EQ(lineOf({-0.001f, -1, -0.0f}), "hand.grip\tGlobal Load: (-0.00, -1.00, -0.00) Kg-F");
    // 2.675 and 1234.565 lie below their ties in single precision
    EXPECT_EQ(lineOf({2.675f, 1234.565f, 1e6f}), "hand.grip\tGlobal Load: (2.67, 1234.56, 1000000.00) Kg-F");
    EXPECT_EQ(lineOf({std::numeric_limits<float>::max(), 0, 0}),
              "hand.grip\tGlobal Load: (340282346638528859811704183484516925440.00, 0.00, 0.00) Kg-F");
}

TEST_F(LoadReport, AForceThatIsNoNumberIsTold)
{
    EXPECT_EQ(lineOf({kInfinity, -kInfinity, 0}), "hand.grip\tGlobal Load: (inf, -inf, 0.00) Kg-F");
    EXPECT_EQ(lineOf({kNotANumber, 1, 0}), "hand.grip\tGlobal Load: (nan, 1.00, 0.00) Kg-F");
}

TEST_F(LoadReport, AWeightHasOneDecimal)
{
    EXPECT_EQ(lineOfWeight(1500), "hand.grip\tWeight: 1500.0 gr");
    EXPECT_EQ(lineOfWeight(0.25f), "hand.grip\tWeight: 0.2 gr");
    EXPECT_EQ(lineOfWeight(0.75f), "hand.grip\tWeight: 0.8 gr");
    EXPECT_EQ(lineOfWeight(1234.56f), "hand.grip\tWeight: 1234.6 gr");
    EXPECT_EQ(lineOfWeight(kInfinity), "hand.grip\tWeight: inf gr");
}

// Zero is a weight, of either sign. Below zero what is told is the force that it became: -2000 g pull upward by 2 kgf;
// zero times a negative factor is -0.
TEST_F(LoadReport, AWeightBelowZeroIsToldAsItsForce)
{
    EXPECT_EQ(lineOf({0, -3, 0}, 2), "hand.grip\tWeight: 0.0 gr");
    EXPECT_EQ(lineOfWeight(-2000), "hand.grip\tGlobal Load: (-0.00, 2.00, -0.00) Kg-F");
    EXPECT_EQ(lineOf(list({text("a.b"), vector(0, -1, 0), text("weight"), number(-0.0f)})), "a.b\tWeight: -0.0 gr");
}

// The stored vector is only looked at for its size; the force is converted anew: 2 kgf upward along gravity.
TEST_F(LoadReport, AWeightIsConvertedAnew)
{
    EXPECT_EQ(lineOf(list({text("a.b"), vector(5, 6, 7), text("weight"), number(-2000)})),
              "a.b\tGlobal Load: (-0.00, 2.00, -0.00) Kg-F");
    figure->removeProperty(kLoads);   // its site is none, a reset would say so
    analysis->setGravity({3 * 980.665f, 0, 0});
    figure->setProperty(kLoads, list({list({text("a.b"), vector(5, 6, 7), text("weight"), number(-2000)})}));
    EXPECT_EQ(next(1), "a.b\tGlobal Load: (-6.00, -0.00, -0.00) Kg-F");
}

TEST_F(LoadReport, AnEntryThatCannotBeReadIsAnErrorAndTheReportGoesOn)
{
    const qcValue down = vector(0, -1, 0);
    const std::vector<qcValue> unreadable = {
        number(1),
        text("hand.grip"),
        qcValue(),
        list({}),
        list({down, text("global")}),
        list({text("a.b")}),
        list({text("a.b"), number(1), text("global")}),
        list({text("a.b"), text("global"), down}),
        list({text("a.b"), down}),
        list({text("a.b"), down, number(1)}),
        list({text("a.b"), down, text("Global")}),
        list({text("a.b"), down, text("")}),
        list({text("a.b"), down, text("weight")}),
        list({text("a.b"), down, text("weight"), text("5")}),
        list({text("a.b"), vector(0, 0, 0), text("global")}),
        list({text("a.b"), vector(0, 0, 0), text("weight"), number(5)}),
    };
    for (const qcValue& entry : unreadable) {
        figure->setProperty(kLoads, list({entry, list({text("c.d"), down, text("local")}), entry}));
        EXPECT_THAT(report(),
                    ElementsAre("(Error)", "c.d\tLocal Load: (0.00, -1.00, 0.00) Kg-F", "(Error)", kTwoFeet, kDownward))
            << describe(entry);
    }
}

// By its magnitude: the components of two of them are 0.9e-5, the lengths 0.9e-5 and 1.3e-5.
TEST_F(LoadReport, ALoadBelow1e5IsAnError)
{
    EXPECT_EQ(lineOf({0, 0, 0}), "(Error)");
    EXPECT_EQ(lineOf({0, -2e-5f, 0}, 1), "hand.grip\tLocal Load: (0.00, -0.00, 0.00) Kg-F");
    EXPECT_EQ(lineOf({0, 0.9e-5f, 0}), "(Error)");
    EXPECT_EQ(lineOf({0.9e-5f, 0.9e-5f, 0}), "hand.grip\tGlobal Load: (0.00, 0.00, 0.00) Kg-F");
    EXPECT_EQ(lineOfWeight(0), "(Error)");
    EXPECT_EQ(lineOfWeight(0.005f), "(Error)");    // 0.5e-5 kgf
    EXPECT_EQ(lineOf({0, -1, 0}, 7), "(Error)");   // a kind that is none
}

// The list alone is told: a key needs no site, a site's own load no entry, and a key is no format.
TEST_F(LoadReport, TheListAloneIsTold)
{
    tip()->setProperty("SSTR_Load", list({vector(0, -9, 0), text("global")}));
    for (const char* key : {"no.such", "", "100%s%n.%d", "Zoë \"the\" hand.\\grip", "a.b.c"})
        EXPECT_EQ(lineOf(list({text(key), vector(0, -1, 0), text("global")})),
                  std::string(key) + "\tGlobal Load: (0.00, -1.00, 0.00) Kg-F");
    // what follows the elements of a load does not matter
    EXPECT_EQ(lineOf(list({text("a.b"), vector(0, -1, 0), text("global"), text("more")})),
              "a.b\tGlobal Load: (0.00, -1.00, 0.00) Kg-F");
}

TEST_F(LoadReport, ReportingChangesNothingThatIsStored)
{
    analysis->setWeightLoad(tip(), 300);
    figure->setProperty(kLoads, list({list({text("hand.grip"), vector(5, 6, 7), text("weight"), number(1000)}),
                                      list({text("hand.tip"), vector(0, 0, 0), text("global")})}));
    const std::string before = stored(figure, kLoads) + stored(tip(), "SSTR_Load") + stored(grip(), "SSTR_Load");
    const long stamp = figure->getTimestamp();
    EXPECT_EQ(report().size(), 4u);
    EXPECT_EQ(stored(figure, kLoads) + stored(tip(), "SSTR_Load") + stored(grip(), "SSTR_Load"), before);
    EXPECT_EQ(figure->getTimestamp(), stamp);
}

// ---- Strategy and gravity lines

TEST_F(LoadReport, EachStrategyIsTold)
{
    analysis->setLoad(grip(), {0, -1, 0});
    const char* const names[] = {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"};
    for (int i = 0; i < 6; ++i) {
        analysis->setStrategy(static_cast<qmStaticStrength::Strategy>(i));
        next(1);
        EXPECT_EQ(next(), std::string("Strategy: \"") + names[i] + "\"");
    }
    // hands and knees has no name: the stored text stays and is told
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    next(1);
    EXPECT_EQ(next(), "Strategy: \"Sitting, No Feet\"");
}

TEST_F(LoadReport, AStrategyThatIsNotStoredIsTold)
{
    analysis->setLoad(grip(), {0, -1, 0});
    figure->removeProperty(kStrategy);
    next(1);
    EXPECT_EQ(next(), "(No Strategy Specified)");
    EXPECT_EQ(next(), kDownward);
}

// Whatever the text, it is told as it stands; what is no text is no strategy.
TEST_F(LoadReport, AnOddStrategyTextIsToldAsItStands)
{
    analysis->setLoad(grip(), {0, -1, 0});
    for (const char* odd : {"two feet", "", "100%s%n%d", "a \"b\" c", "Schöne Füße"}) {
        figure->setProperty(kStrategy, text(odd));
        next(1);
        EXPECT_EQ(next(), std::string("Strategy: \"") + odd + "\"");
    }
    for (const qcValue& value : {number(1), vector(1, 2, 3), list({text("Two Feet")}), qcValue()}) {
        figure->setProperty(kStrategy, value);
        next(1);
        EXPECT_EQ(next(), "(No Strategy Specified)") << describe(value);
        EXPECT_EQ(next(), kDownward);
    }
}

TEST_F(LoadReport, GravityHasTwoDecimals)
{
    const auto told = [this](const qVector& gravity) {
        analysis->setGravity(gravity);
        EXPECT_EQ(next(1), "No loads.");
        return next();
    };
    EXPECT_EQ(told({0, 0, 0}), "Gravity: (0.00, 0.00, 0.00) cm/sec^2");
    EXPECT_EQ(told({0.125f, -162.375f, -0.001f}), "Gravity: (0.12, -162.38, -0.00) cm/sec^2");
    EXPECT_EQ(told({kInfinity, -kInfinity, kNotANumber}), "Gravity: (inf, -inf, nan) cm/sec^2");
}

// ---- Changes in the middle of a report

// A report holds what the list was at its start. The strategy and gravity are those of their lines.
TEST_F(LoadReport, TheLoadsAreThoseOfTheStart)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    analysis->setLoad(top(), {0, -3, 0});
    next(1);
    analysis->setLoad(tip(), {0, -20, 0});
    analysis->removeLoad(grip());
    EXPECT_EQ(next(), "hand.tip\tGlobal Load: (0.00, -2.00, 0.00) Kg-F");
    analysis->clear();
    figure->setProperty(kLoads, number(1));
    EXPECT_EQ(next(), "head.top\tGlobal Load: (0.00, -3.00, 0.00) Kg-F");
    figure->removeProperty(kLoads);
    analysis->setStrategy(qmStaticStrength::Sitting);
    EXPECT_EQ(next(), "Strategy: \"Sitting\"");
    analysis->setGravity({1, 2, 3});
    EXPECT_EQ(next(), "Gravity: (1.00, 2.00, 3.00) cm/sec^2");
    EXPECT_EQ(next(), "null");
}

TEST_F(LoadReport, GoesOnAfterItsFigureIsGone)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setWeightLoad(tip(), 250);
    EXPECT_EQ(next(1), "hand.grip\tGlobal Load: (0.00, -1.00, 0.00) Kg-F");
    dropAnalysis();
    scene = std::make_unique<qcScene>();
    load(threeSites("other"));
    EXPECT_THAT(rest(), ElementsAre("hand.tip\tWeight: 250.0 gr", kTwoFeet, kDownward));
}

TEST_F(LoadReport, GoesOnWithTheFiguresNextAnalysis)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    next(1);
    dropAnalysis();
    makeAnalysis();
    EXPECT_THAT(rest(), ElementsAre("hand.tip\tGlobal Load: (0.00, -2.00, 0.00) Kg-F", kTwoFeet, kDownward));
}

// ---- Two analyses

// The cursor is the first one's; weights are converted, strategy and gravity told, by the one that is called.
TEST_F(LoadReport, AnotherAnalysisContinuesTheCursor)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    analysis->setWeightLoad(top(), -1000);
    qmStaticStrength* first = analysis;
    load(threeSites("other"));
    analysis->setLoad(grip(), {0, -9, 0});
    analysis->setStrategy(qmStaticStrength::Sitting);
    analysis->setGravity({2 * 980.665f, 0, 0});

    EXPECT_STREQ(first->reportLoads(1), "hand.grip\tGlobal Load: (0.00, -1.00, 0.00) Kg-F");
    EXPECT_EQ(next(), "hand.tip\tGlobal Load: (0.00, -2.00, 0.00) Kg-F");
    EXPECT_EQ(next(), "head.top\tGlobal Load: (-2.00, -0.00, -0.00) Kg-F");
    EXPECT_EQ(next(), "Strategy: \"Sitting\"");
    EXPECT_EQ(next(), "Gravity: (1961.33, 0.00, 0.00) cm/sec^2");
    EXPECT_EQ(first->reportLoads(), nullptr);
    EXPECT_EQ(next(), "null");
}

TEST_F(LoadReport, AStartElsewhereEndsTheReportAtHand)
{
    analysis->setLoad(grip(), {0, -1, 0});
    analysis->setLoad(tip(), {0, -2, 0});
    qmStaticStrength* first = analysis;
    load(threeSites("other"));
    analysis->setLoad(top(), {0, -8, 0});
    analysis->setLoad(grip(), {0, -9, 0});
    first->reportLoads(1);
    EXPECT_EQ(next(1), "head.top\tGlobal Load: (0.00, -8.00, 0.00) Kg-F");
    EXPECT_STREQ(first->reportLoads(), "hand.grip\tGlobal Load: (0.00, -9.00, 0.00) Kg-F");

    load(threeSites("third"));
    analysis->setGravity({1, 2, 3});
    first->reportLoads(1);
    EXPECT_EQ(next(1), "No loads.");
    EXPECT_STREQ(first->reportLoads(), kDownward);   // no load of its own any more, no strategy
    EXPECT_EQ(next(), "null");
}

// ---- Long lines, and the decimal point

// The longest line that fits is told whole; of a longer one the key is cut, and what follows it stays.
TEST_F(LoadReport, ALongKeyIsCutAndTheLoadStays)
{
    const std::string weightTail = "\tWeight: 1500.0 gr";
    // the longest numbers have 39 digits before the point: 2^127 is exact
    const float huge = std::ldexp(1.0f, 127);
    const std::string big = "170141183460469231731687303715884105728.00";
    const std::string forceTail = "\tLocal Load: (" + big + ", -" + big + ", " + big + ") Kg-F";
    const auto weightLine = [&](const std::string& key) {
        return lineOf(list({text(key.c_str()), vector(0, -1, 0), text("weight"), number(1500)}));
    };
    const auto forceLine = [&](const std::string& key) {
        return lineOf(list({text(key.c_str()), vector(huge, -huge, huge), text("local")}));
    };
    const std::size_t fitting = kLongestLine - weightTail.size();
    for (const std::size_t length : {fitting, fitting + 1, kLongestLine + 1, std::size_t(100000)}) {
        EXPECT_EQ(weightLine(std::string(length, 'k')), std::string(fitting, 'k') + weightTail) << length;
        EXPECT_EQ(forceLine(std::string(length, 'k')), std::string(kLongestLine - forceTail.size(), 'k') + forceTail);
    }
    EXPECT_EQ(weightLine(std::string(fitting - 1, 'k')), std::string(fitting - 1, 'k') + weightTail);

    // two bytes of one character over the border: both go
    const std::string before(fitting - 1, 'k');
    EXPECT_EQ(weightLine(before + "\xC3\xA4"), before + weightTail);
    EXPECT_EQ(weightLine(before.substr(1) + "\xC3\xA4"), before.substr(1) + "\xC3\xA4" + weightTail);
}

TEST_F(LoadReport, ALongStrategyTextIsCutWithinItsQuotes)
{
    analysis->setLoad(grip(), {0, -1, 0});
    const std::string start = "Strategy: \"";
    const std::size_t fitting = kLongestLine - start.size() - 1;
    for (const std::size_t length : {fitting - 1, fitting, fitting + 1, std::size_t(100000)}) {
        figure->setProperty(kStrategy, text(std::string(length, 's').c_str()));
        next(1);
        EXPECT_EQ(next(), start + std::string(std::min(length, fitting), 's') + '"');
        EXPECT_EQ(next(), kDownward);
    }
}

TEST_F(LoadReport, NumbersHaveADecimalPointInEveryLocale)
{
    const DecimalComma comma;
    analysis->setWeightLoad(grip(), 1500);
    analysis->setLoad(tip(), {1234.5f, 0, -2.5f});
    EXPECT_THAT(report(), ElementsAre("hand.grip\tWeight: 1500.0 gr",
                                      "hand.tip\tGlobal Load: (1234.50, 0.00, -2.50) Kg-F", kTwoFeet, kDownward));
    EXPECT_TRUE(DecimalComma::inForce());   // the process keeps its locale
}

}   // namespace
