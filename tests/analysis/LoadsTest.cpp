// Loads: forces and weights on sites, how they stand on the site and in the figure's list, and reading them back.
#include "AnalysisTest.h"
#include "SavedValues.h"

#include "LoadValues.h"
#include "SavedLists.h"
#include "Units.h"

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

class Loads : public AnalysisTest {
protected:
    void SetUp() override { load(threeSites()); }

    std::string loadOn(const std::string& key) const { return stored(site(key), "SSTR_Load"); }
    std::string loadList() const { return stored(figure, "SSTR_LoadList"); }
    void setList(const qcValue& value) { figure->setProperty("SSTR_LoadList", value); }
    void putOn(const std::string& key, const qcValue& value) { site(key)->setProperty("SSTR_Load", value); }

    // What a site reads as: its type ("none" without), weight and force.
    struct Reading {
        std::string type;
        float weight;
        int status;
        std::array<float, 3> load;
    };
    Reading read(qcSite* from) const
    {
        qVector load(77, 78, 79);
        const char* type = analysis->getLoadType(from);
        const float weight = analysis->getSiteWeight(from);
        const int status = analysis->getSiteLoad(from, load);
        return {type ? type : "none", weight, status, components(load)};
    }
    // No load: 0, null and -1, and the vector that was passed is as it was.
    void expectNoLoad(qcSite* from) const
    {
        const Reading reading = read(from);
        EXPECT_EQ(reading.type, "none");
        EXPECT_EQ(reading.weight, -1.0f);
        EXPECT_EQ(reading.status, 0);
        EXPECT_THAT(reading.load, ElementsAre(77, 78, 79));
    }
};

// ---- Setting forces ------------------------------------------------------------------------------

TEST_F(Loads, GlobalLoadIsStoredOnTheSiteAndListed)
{
    EXPECT_EQ(analysis->setLoad(site("hand.grip"), {1, -2, 3}), 1);   // global unless told otherwise
    EXPECT_EQ(loadOn("hand.grip"), "[(1, -2, 3), \"global\"]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (1, -2, 3), \"global\"]]");

    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "global");
    EXPECT_EQ(reading.weight, -1.0f);
    EXPECT_EQ(reading.status, 1);
    EXPECT_THAT(reading.load, ElementsAre(1, -2, 3));
}

TEST_F(Loads, LocalLoadReadsAsStored)
{
    EXPECT_EQ(analysis->setLoad(site("hand.grip"), {1, -2, 3}, 1), 1);
    EXPECT_EQ(loadOn("hand.grip"), "[(1, -2, 3), \"local\"]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (1, -2, 3), \"local\"]]");

    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "local");
    EXPECT_EQ(reading.weight, -1.0f);
    EXPECT_EQ(reading.status, 1);
    EXPECT_THAT(reading.load, ElementsAre(1, -2, 3));
}

TEST_F(Loads, KindsAreFixedNumbers)
{
    qcValue value;
    ASSERT_EQ(analysis->setLoad(site("hand.tip"), {0, -1, 0}), 1);
    ASSERT_EQ(site("hand.tip")->getProperty("SSTR_Load", &value), 1);
    EXPECT_EQ(value.kind, 9);
    ASSERT_NE(value.firstElement(), nullptr);
    ASSERT_NE(value.firstElement()->next, nullptr);
    EXPECT_EQ(value.firstElement()->next->kind, 7);
    EXPECT_EQ(value.firstElement()->next->next, nullptr);
}

TEST_F(Loads, SettingTwiceOnOneSiteKeepsTheEntryInItsPlace)
{
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    analysis->setLoad(site("head.top"), {0, -2, 0});
    analysis->setWeightLoad(site("hand.tip"), 1000);
    analysis->setLoad(site("hand.grip"), {5, 0, 0}, 1);
    EXPECT_EQ(analysis->getNumLoads(), 3);
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (5, 0, 0), \"local\"], [\"head.top\", (0, -2, 0), \"global\"], "
                          "[\"hand.tip\", (0, -1, 0), \"weight\", 1000]]");
    EXPECT_EQ(loadOn("hand.grip"), "[(5, 0, 0), \"local\"]");
}

// A weight has an element more than a force: nothing of the earlier load stays behind.
TEST_F(Loads, EachKindReplacesAnyOther)
{
    qcSite* grip = site("hand.grip");
    analysis->setWeightLoad(grip, 1000);
    analysis->setLoad(grip, {0, -3, 0});
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -3, 0), \"global\"]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -3, 0), \"global\"]]");
    analysis->setWeightLoad(grip, 1000);
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -1, 0), \"weight\", 1000]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -1, 0), \"weight\", 1000]]");
}

TEST_F(Loads, KindTwoIsAWeightOfNothingWithTheGivenForce)
{
    EXPECT_EQ(analysis->setLoad(site("hand.grip"), {1, -2, 3}, 2), 1);
    EXPECT_EQ(loadOn("hand.grip"), "[(1, -2, 3), \"weight\", 0]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (1, -2, 3), \"weight\", 0]]");
    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "weight");
    EXPECT_EQ(reading.weight, 0.0f);
    EXPECT_EQ(reading.status, 1);
    EXPECT_THAT(reading.load, ElementsAre(1, -2, 3));
}

TEST_F(Loads, OtherKindsStoreALoadThatCannotBeRead)
{
    for (int kind : {3, -1, 7, INT_MIN, INT_MAX}) {
        EXPECT_EQ(analysis->setLoad(site("hand.grip"), {1, -2, 3}, kind), 1);
        EXPECT_EQ(loadOn("hand.grip"), "[(1, -2, 3)]");
        EXPECT_EQ(loadList(), "[[\"hand.grip\", (1, -2, 3)]]");
        expectNoLoad(site("hand.grip"));
    }
    EXPECT_EQ(analysis->getNumLoads(), 1);   // it is listed
    EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 1);
}

TEST_F(Loads, NullSiteIsRefusedEverywhere)
{
    EXPECT_EQ(analysis->setLoad(nullptr, {0, -1, 0}), 0);
    EXPECT_EQ(analysis->setWeightLoad(nullptr, 100), 0);
    EXPECT_EQ(analysis->removeLoad(nullptr), 0);
    EXPECT_EQ(loadList(), "absent");
}

TEST_F(Loads, ArgumentMayBeTheObjectsOwnReadOut)
{
    analysis->setLoad(site("hand.grip"), {1, 2, 3});
    qVector load;
    analysis->getSiteLoad(site("hand.grip"), load);
    analysis->setLoad(site("hand.tip"), load);
    load.set(9, 9, 9);   // the property holds its own copy
    EXPECT_EQ(loadOn("hand.tip"), "[(1, 2, 3), \"global\"]");
}

// ---- Setting weights -----------------------------------------------------------------------------

// 500 g under (0, -980.665, 0) cm/s²: 980.665 · 500 · 0.001 / 980.665 = 0.5 kgf downward
TEST_F(Loads, WeightBecomesAForceAlongGravity)
{
    EXPECT_EQ(analysis->setWeightLoad(site("hand.grip"), 500), 1);
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -0.5, 0), \"weight\", 500]");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -0.5, 0), \"weight\", 500]]");
    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "weight");
    EXPECT_EQ(reading.weight, 500.0f);
    EXPECT_EQ(reading.status, 1);
    EXPECT_THAT(reading.load, ElementsAre(0, -0.5f, 0));
}

// The weight goes with this gravity, not with the standard one: 1000 g under (490.3325, 0, -980.665) cm/s²
//   (490.3325, 0, -980.665) · 1 / 980.665 = (0.5, 0, -1) kgf
TEST_F(Loads, WeightUnderAnotherGravity)
{
    analysis->setGravity({490.3325f, 0, -980.665f});
    analysis->setWeightLoad(site("hand.grip"), 1000);
    EXPECT_THAT(read(site("hand.grip")).load, ElementsAre(FloatEq(0.5f), 0, FloatEq(-1)));
    EXPECT_EQ(read(site("hand.grip")).weight, 1000.0f);
}

// factor = weight · 0.001 / 980.6649780273438 in double, narrowed to single before gravity is scaled. The three
// weights are such that the double constant 980.665, or a factor formed in single, gives another last bit.
TEST_F(Loads, FactorOfAWeightIsFormedInDoubleAndNarrowedOnce)
{
    for (float grams : {115.199997f, 230.399994f, 460.799988f}) {
        const double standardGravity = 980.6649780273438;
        const float factor = static_cast<float>(double(grams) * 0.001 / standardGravity);
        const float expected = -980.665f * factor;
        ASSERT_NE(expected, -980.665f * static_cast<float>(double(grams) * 0.001 / 980.665));
        ASSERT_NE(expected, -980.665f * (grams * 0.001f / 980.665f));

        analysis->setWeightLoad(site("hand.grip"), grams);
        EXPECT_THAT(read(site("hand.grip")).load, ElementsAre(0, expected, 0)) << grams << " g";
        EXPECT_EQ(read(site("hand.grip")).weight, grams);

        // each component by itself
        const qVector slanted = weightToLoad({3.3f, -7.7f, 980.0f}, grams);
        EXPECT_THAT(components(slanted), ElementsAre(3.3f * factor, -7.7f * factor, 980.0f * factor));
    }
    EXPECT_EQ(double(STD_G), 980.6649780273438);
}

// The product of weight and 0.001 stays in double, 0.001 is the double one, and the quotient is narrowed before gravity
// is scaled. Each weight gives another number where one of the three is not so.
TEST_F(Loads, NothingButTheFactorOfAWeightIsNarrowed)
{
    const double standardGravity = 980.6649780273438;
    const auto scaled = [](double factor) { return -980.665f * static_cast<float>(factor); };
    const auto expectForce = [this](float grams, float expected) {
        analysis->setWeightLoad(site("hand.grip"), grams);
        EXPECT_THAT(read(site("hand.grip")).load, ElementsAre(0, expected, 0)) << grams << " g";
    };

    for (const auto& [grams, expected] : {std::pair<float, float>{10, -0.0100000007f}, {12345, -12.3449993f}}) {
        const double product = double(grams) * 0.001;
        ASSERT_NE(expected, scaled(double(static_cast<float>(product)) / standardGravity));
        ASSERT_NE(expected, static_cast<float>(-double(980.665f) * (product / standardGravity)));
        expectForce(grams, expected);
    }
    for (const auto& [grams, expected] : {std::pair<float, float>{12345, -12.3449993f}, {72.57f, -0.0725699961f}}) {
        ASSERT_NE(expected, scaled(double(grams) * double(0.001f) / standardGravity));
        expectForce(grams, expected);
    }
}

// Law: a weight's force grows with gravity; doubling is exact in binary.
TEST_F(Loads, ForceOfAWeightIsProportionalToGravity)
{
    const qVector once = weightToLoad({1.1f, -980.665f, 2.3f}, 777.7f);
    const qVector twice = weightToLoad({2.2f, -1961.33f, 4.6f}, 777.7f);
    const qVector against = weightToLoad({-1.1f, 980.665f, -2.3f}, 777.7f);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(twice[i], 2 * once[i]);
        EXPECT_EQ(against[i], -once[i]);
    }
}

// A weight below zero lifts: -500 g gives +0.5 kgf. Only weights of zero or more read as a weight.
TEST_F(Loads, WeightBelowZeroReadsAsAGlobalLoad)
{
    EXPECT_EQ(analysis->setWeightLoad(site("hand.grip"), -500), 1);
    EXPECT_EQ(stored(site("hand.grip"), "SSTR_Load"), "[(-0, 0.5, -0), \"weight\", -500]");
    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "global");
    EXPECT_EQ(reading.weight, -500.0f);
    EXPECT_EQ(reading.status, 1);
    EXPECT_THAT(reading.load, ElementsAre(0, 0.5f, 0));
}

TEST_F(Loads, WeightOfZeroIsAWeight)
{
    analysis->setWeightLoad(site("hand.grip"), 0);
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -0, 0), \"weight\", 0]");
    EXPECT_EQ(read(site("hand.grip")).type, "weight");
    EXPECT_EQ(read(site("hand.grip")).weight, 0.0f);
}

// ---- Sites of other figures ----------------------------------------------------------------------

TEST_F(Loads, WeightOnAnotherFigureIsRefused)
{
    qcSite* foreign = site("hand.grip");
    load(threeSites("other"));
    EXPECT_EQ(analysis->setWeightLoad(foreign, 500), 0);
    EXPECT_EQ(stored(foreign, "SSTR_Load"), "absent");
    EXPECT_EQ(loadList(), "absent");
}

TEST_F(Loads, ForceOnAnotherFigureIsStoredThereAndListedHere)
{
    qcFigure* foreignFigure = figure;
    qcSite* foreign = site("head.top");
    load(SmallFigure("other").segment("hand", 500).site("hand", "grip", {0, 0, 0}));
    EXPECT_EQ(analysis->setLoad(foreign, {0, -1, 0}), 1);
    EXPECT_EQ(stored(foreign, "SSTR_Load"), "[(0, -1, 0), \"global\"]");
    EXPECT_EQ(loadList(), "[[\"head.top\", (0, -1, 0), \"global\"]]");
    EXPECT_EQ(stored(foreignFigure, "SSTR_LoadList"), "absent");
    EXPECT_EQ(analysis->getNumLoads(), 1);
    EXPECT_EQ(analysis->getNthLoadSite(0), nullptr);   // this figure has no such site
    EXPECT_EQ(read(foreign).status, 1);

    EXPECT_EQ(analysis->removeLoad(foreign), 1);
    EXPECT_EQ(stored(foreign, "SSTR_Load"), "absent");
    EXPECT_EQ(loadList(), "absent");
}

// The key names segment and site but no figure: sites of two figures share an entry.
TEST_F(Loads, SitesOfOneKeyShareAnEntry)
{
    qcSite* foreign = site("hand.grip");
    load(threeSites("other"));
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    analysis->setLoad(foreign, {0, -2, 0});
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -2, 0), \"global\"]]");
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -1, 0), \"global\"]");
    EXPECT_EQ(analysis->getNthLoadSite(0), site("hand.grip"));
}

// ---- Removing ------------------------------------------------------------------------------------

TEST_F(Loads, RemovingTheOnlyLoadRemovesTheList)
{
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 1);
    EXPECT_EQ(loadOn("hand.grip"), "absent");
    EXPECT_EQ(loadList(), "absent");
    EXPECT_EQ(analysis->getNumLoads(), 0);
    EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 0);
}

TEST_F(Loads, RemovingKeepsTheOthersInTheirOrder)
{
    const auto fill = [this] {
        analysis->setLoad(site("hand.grip"), {1, 0, 0});
        analysis->setLoad(site("head.top"), {2, 0, 0});
        analysis->setLoad(site("hand.tip"), {3, 0, 0});
    };
    const std::string grip = "[\"hand.grip\", (1, 0, 0), \"global\"]", top = "[\"head.top\", (2, 0, 0), \"global\"]",
                      tip = "[\"hand.tip\", (3, 0, 0), \"global\"]";
    fill();
    EXPECT_EQ(loadList(), "[" + grip + ", " + top + ", " + tip + "]");
    analysis->removeLoad(site("hand.grip"));   // the first
    EXPECT_EQ(loadList(), "[" + top + ", " + tip + "]");
    analysis->clear();

    fill();
    analysis->removeLoad(site("head.top"));   // one in the middle
    EXPECT_EQ(loadList(), "[" + grip + ", " + tip + "]");
    analysis->clear();

    fill();
    analysis->removeLoad(site("hand.tip"));   // the last
    EXPECT_EQ(loadList(), "[" + grip + ", " + top + "]");

    // set anew, it goes to the end
    analysis->removeLoad(site("hand.grip"));
    analysis->setLoad(site("hand.grip"), {1, 0, 0});
    EXPECT_EQ(loadList(), "[" + top + ", " + grip + "]");
}

TEST_F(Loads, RemovingWhereThereIsNoneChangesNothing)
{
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 0);
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -1, 0), \"global\"]]");
}

// The site's own property decides: an entry alone is not reached, a property alone is taken off.
TEST_F(Loads, RemovingGoesByTheSitesProperty)
{
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    site("hand.grip")->removeProperty("SSTR_Load");
    EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 0);
    EXPECT_EQ(analysis->getNumLoads(), 1);

    putOn("hand.tip", text("whatever"));
    EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 1);
    EXPECT_EQ(loadOn("hand.tip"), "absent");
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -1, 0), \"global\"]]");

    figure->removeProperty("SSTR_LoadList");
    putOn("hand.tip", text("whatever"));
    EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 1);
    EXPECT_EQ(loadList(), "absent");
}

// A property is there whatever it holds, even nothing.
TEST_F(Loads, EmptyValueOnASiteIsRemovedLikeALoad)
{
    putOn("hand.tip", qcValue());
    EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 1);
    EXPECT_EQ(loadOn("hand.tip"), "absent");
    EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 0);
}

// Where the list has no entry to remove, what stands in its place is not touched, not even an empty list.
TEST_F(Loads, RemovingALoadThatIsNotListedLeavesTheListPropertyAsItIs)
{
    for (const qcValue& other : {list({}), qcValue(), text("x")}) {
        SCOPED_TRACE(describe(other));
        setList(other);
        putOn("hand.tip", text("whatever"));
        EXPECT_EQ(analysis->removeLoad(site("hand.tip")), 1);
        EXPECT_EQ(loadOn("hand.tip"), "absent");
        EXPECT_EQ(loadList(), describe(other));
    }
}

// ---- Counting and finding ------------------------------------------------------------------------

TEST_F(Loads, SitesAreFoundByPosition)
{
    EXPECT_EQ(analysis->getNthLoadSite(0), nullptr);
    analysis->setLoad(site("head.top"), {0, -1, 0});
    analysis->setWeightLoad(site("hand.grip"), 100);
    analysis->setLoad(site("hand.tip"), {0, -1, 0}, 1);

    EXPECT_EQ(analysis->getNthLoadSite(0), site("head.top"));
    EXPECT_EQ(analysis->getNthLoadSite(1), site("hand.grip"));
    EXPECT_EQ(analysis->getNthLoadSite(2), site("hand.tip"));
}

TEST_F(Loads, NegativePositionIsTheFirstAndOneBeyondIsNone)
{
    analysis->setLoad(site("head.top"), {0, -1, 0});
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(analysis->getNthLoadSite(-3), site("head.top"));
    EXPECT_EQ(analysis->getNthLoadSite(INT_MIN), site("head.top"));
    EXPECT_EQ(analysis->getNthLoadSite(analysis->getNumLoads()), nullptr);
    EXPECT_EQ(analysis->getNthLoadSite(INT_MAX), nullptr);
}

TEST_F(Loads, EntryOfASiteThatIsGoneHasNoSite)
{
    setList(list({list({text("hand.thumb"), vector(0, -1, 0), text("global")}),
                  list({text("man.hand.grip"), vector(0, -1, 0), text("global")}),
                  list({text("hand.grip"), vector(0, -1, 0), text("global")})}));
    EXPECT_EQ(analysis->getNumLoads(), 3);
    EXPECT_EQ(analysis->getNthLoadSite(0), nullptr);
    EXPECT_EQ(analysis->getNthLoadSite(1), nullptr);   // a key names no figure
    EXPECT_EQ(analysis->getNthLoadSite(2), site("hand.grip"));
}

// ---- Saved lists of odd shapes -------------------------------------------------------------------

TEST_F(Loads, ElementsOfAnyShapeAreCountedButHaveNoSite)
{
    setList(list({number(1), text("hand.grip"), vector(1, 2, 3), qcValue(), list({}), list({number(5)}),
                  list({list({text("hand.grip")})}), list({text("hand.grip")})}));
    EXPECT_EQ(analysis->getNumLoads(), 8);
    for (int n = 0; n < 7; ++n)
        EXPECT_EQ(analysis->getNthLoadSite(n), nullptr) << n;
    EXPECT_EQ(analysis->getNthLoadSite(7), site("hand.grip"));   // the key alone suffices
}

TEST_F(Loads, ElementsOfAnyShapeAreKeptAndPassedOver)
{
    const std::string odd = "1, \"hand.grip\", (1, 2, 3), empty, [], [5], [[\"hand.grip\"]]";
    setList(list({number(1), text("hand.grip"), vector(1, 2, 3), qcValue(), list({}), list({number(5)}),
                  list({list({text("hand.grip")})})}));
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(loadList(), "[" + odd + ", [\"hand.grip\", (0, -1, 0), \"global\"]]");
    analysis->setLoad(site("hand.grip"), {0, -2, 0});
    EXPECT_EQ(loadList(), "[" + odd + ", [\"hand.grip\", (0, -2, 0), \"global\"]]");
    analysis->removeLoad(site("hand.grip"));
    EXPECT_EQ(loadList(), "[" + odd + "]");   // not empty: it stays
}

TEST_F(Loads, EntryOfAKeyAloneIsFilledAndEntryOfTooMuchIsCutToTheLoad)
{
    setList(list({list({text("hand.tip")}),
                  list({text("hand.grip"), number(1), text("local"), text("more"), list({number(2)})})}));
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    analysis->setLoad(site("hand.tip"), {0, -2, 0});
    EXPECT_EQ(loadList(), "[[\"hand.tip\", (0, -2, 0), \"global\"], [\"hand.grip\", (0, -1, 0), \"global\"]]");
}

TEST_F(Loads, FirstOfTwoEntriesOfOneKeyIsMeant)
{
    setList(list({list({text("hand.tip"), number(1)}), list({text("hand.grip"), number(2)}),
                  list({text("hand.grip"), number(3)})}));
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(loadList(), "[[\"hand.tip\", 1], [\"hand.grip\", (0, -1, 0), \"global\"], [\"hand.grip\", 3]]");
    analysis->removeLoad(site("hand.grip"));
    EXPECT_EQ(loadList(), "[[\"hand.tip\", 1], [\"hand.grip\", 3]]");
}

TEST_F(Loads, KeysCompareExactly)
{
    setList(list({list({text("Hand.grip"), number(1)}), list({text("hand.Grip"), number(2)}),
                  list({text("hand.gri"), number(3)}), list({text("hand.grip "), number(4)}),
                  list({text("man.hand.grip"), number(5)}), list({text(""), number(6)})}));
    const std::string before = loadList();
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(loadList(), before.substr(0, before.size() - 1) + ", [\"hand.grip\", (0, -1, 0), \"global\"]]");
    analysis->removeLoad(site("hand.grip"));
    EXPECT_EQ(loadList(), before);
}

TEST_F(Loads, ListPropertyThatIsNoListCountsAsEmpty)
{
    for (const qcValue& other : {text("hand.grip"), number(3), vector(1, 2, 3), qcValue()}) {
        setList(other);
        EXPECT_EQ(analysis->getNumLoads(), 0) << describe(other);
        EXPECT_EQ(analysis->getNthLoadSite(0), nullptr) << describe(other);
        EXPECT_EQ(analysis->getNthLoadSite(-1), nullptr) << describe(other);
        analysis->setLoad(site("hand.grip"), {0, -1, 0});   // the first one replaces it
        EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -1, 0), \"global\"]]");
    }
}

TEST_F(Loads, EmptyListHasNoLoads)
{
    setList(list({}));
    EXPECT_EQ(analysis->getNumLoads(), 0);
    EXPECT_EQ(analysis->getNthLoadSite(0), nullptr);
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(loadList(), "[[\"hand.grip\", (0, -1, 0), \"global\"]]");
}

TEST_F(Loads, KeysOfAnyLengthAreWhole)
{
    const std::string segmentName(300, 's'), siteName(400, 't');
    load(SmallFigure("long")
             .segment(segmentName, 1)
             .site(segmentName, siteName, {0, 0, 0})
             .site(segmentName, siteName + "x", {0, 0, 0}));
    const std::string key = segmentName + "." + siteName;
    analysis->setLoad(site(key), {0, -1, 0});
    analysis->setLoad(site(key + "x"), {0, -2, 0});
    EXPECT_EQ(loadList(), "[[\"" + key + "\", (0, -1, 0), \"global\"], [\"" + key + "x\", (0, -2, 0), \"global\"]]");
    EXPECT_EQ(analysis->getNthLoadSite(1), site(key + "x"));
}

// ---- Reading back --------------------------------------------------------------------------------

TEST_F(Loads, SiteWithoutALoadHasNone)
{
    expectNoLoad(site("hand.grip"));
}

// The texts of the types are there once, and outlive the loads.
TEST_F(Loads, TypesAreConstantTexts)
{
    const char* texts[3][2];
    qcSite* const sites[2] = {site("hand.grip"), site("hand.tip")};
    for (int i = 0; i < 2; ++i) {
        analysis->setLoad(sites[i], {1, 2, 3}, 0);
        texts[0][i] = analysis->getLoadType(sites[i]);
        analysis->setLoad(sites[i], {1, 2, 3}, 1);
        texts[1][i] = analysis->getLoadType(sites[i]);
        analysis->setWeightLoad(sites[i], 5);
        texts[2][i] = analysis->getLoadType(sites[i]);
        analysis->removeLoad(sites[i]);
    }
    const char* const expected[3] = {"global", "local", "weight"};
    for (int kind = 0; kind < 3; ++kind) {
        EXPECT_STREQ(texts[kind][0], expected[kind]);
        EXPECT_EQ(texts[kind][0], texts[kind][1]) << expected[kind];   // the same text, not an equal one
    }
}

TEST_F(Loads, MisshapenLoadsReadAsNone)
{
    for (const qcValue& misshapen :
         {text("global"), number(1), vector(0, -1, 0), qcValue(), list({}), list({vector(0, -1, 0)}),
          list({text("global"), vector(0, -1, 0)}), list({vector(0, -1, 0), number(1)}),
          list({vector(0, -1, 0), vector(0, -1, 0), text("global")}), list({number(1), text("global")}),
          list({vector(0, -1, 0), text("Global")}), list({vector(0, -1, 0), text("")}),
          list({vector(0, -1, 0), text("weights"), number(1)})}) {
        SCOPED_TRACE(describe(misshapen));
        putOn("hand.grip", misshapen);
        expectNoLoad(site("hand.grip"));
    }
}

// Who does not ask for the weight gets the force of a weight load without a weight.
TEST_F(Loads, WeightLoadWithoutItsWeightStillHasAForce)
{
    for (const qcValue& without :
         {list({vector(0, -1, 0), text("weight")}), list({vector(0, -1, 0), text("weight"), text("1")})}) {
        SCOPED_TRACE(describe(without));
        putOn("hand.grip", without);
        const Reading reading = read(site("hand.grip"));
        EXPECT_EQ(reading.type, "none");
        EXPECT_EQ(reading.weight, -1.0f);
        EXPECT_EQ(reading.status, 1);
        EXPECT_THAT(reading.load, ElementsAre(0, -1, 0));
    }
}

TEST_F(Loads, FurtherElementsAreIgnored)
{
    putOn("hand.grip", list({vector(0, -1, 0), text("local"), number(500), text("more")}));
    const Reading reading = read(site("hand.grip"));
    EXPECT_EQ(reading.type, "local");
    EXPECT_EQ(reading.weight, -1.0f);   // only a weight load has one
    EXPECT_EQ(reading.status, 1);
}

// The stored force is read, not converted again.
TEST_F(Loads, WeightLoadReadsTheStoredForce)
{
    putOn("hand.grip", list({vector(7, 8, 9), text("weight"), number(1000)}));
    EXPECT_THAT(read(site("hand.grip")).load, ElementsAre(7, 8, 9));
    EXPECT_EQ(read(site("hand.grip")).weight, 1000.0f);
}

TEST_F(Loads, TinyLoadIsStoredAndReadButDroppedByAReset)
{
    analysis->setLoad(site("hand.grip"), {0, 0.9e-5f, 0});
    analysis->setLoad(site("hand.tip"), {0, -1.1e-5f, 0});
    EXPECT_EQ(analysis->getNumLoads(), 2);
    EXPECT_EQ(read(site("hand.grip")).type, "global");
    EXPECT_EQ(read(site("hand.grip")).status, 1);
    EXPECT_THAT(read(site("hand.grip")).load, ElementsAre(0, 0.9e-5f, 0));

    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(log.takeTexts().size(), 1u);   // the warning about the dropped one
    expectNoLoad(site("hand.grip"));
    EXPECT_EQ(analysis->getNumLoads(), 1);
    EXPECT_THAT(read(site("hand.tip")).load, ElementsAre(0, -1.1e-5f, 0));
}

TEST_F(Loads, LoadsOutliveTheAnalysis)
{
    analysis->setLoad(site("hand.grip"), {0, -1, 0}, 1);
    dropAnalysis();
    makeAnalysis();
    EXPECT_EQ(analysis->getNumLoads(), 1);
    EXPECT_EQ(read(site("hand.grip")).type, "local");
}

// Two analyses of one figure hold no loads of their own.
TEST_F(Loads, AnalysesOfOneFigureShareTheLoads)
{
    qmStaticStrength other(human);
    other.setLoad(site("hand.grip"), {0, -1, 0});
    EXPECT_EQ(analysis->getNumLoads(), 1);
    EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 1);
    EXPECT_EQ(other.getNumLoads(), 0);
}

// ---- The values by themselves --------------------------------------------------------------------

TEST(LoadValues, AreMadeByKind)
{
    const auto made = [](int kind) {
        qcValue* value = makeLoadValue({1, 2, 3}, kind, 40);
        const std::string description = describe(*value);
        qcValue::destroy(value);
        return description;
    };
    EXPECT_EQ(made(0), "[(1, 2, 3), \"global\"]");
    EXPECT_EQ(made(1), "[(1, 2, 3), \"local\"]");
    EXPECT_EQ(made(2), "[(1, 2, 3), \"weight\", 40]");
    EXPECT_EQ(made(3), "[(1, 2, 3)]");
    EXPECT_EQ(made(-1), "[(1, 2, 3)]");
}

TEST(LoadValues, AreDecodedByKind)
{
    struct {
        qcValue value;
        int local;
        float weight;
    } const cases[] = {{list({vector(1, 2, 3), text("global")}), 0, -1},
                       {list({vector(1, 2, 3), text("local")}), 1, -1},
                       {list({vector(1, 2, 3), text("weight"), number(40)}), 0, 40}};
    for (const auto& [value, expectedLocal, expectedWeight] : cases) {
        SCOPED_TRACE(describe(value));
        qVector load;
        int local = 7;
        float weight = 7;
        EXPECT_EQ(decodeLoadValue(value, load, local, &weight), 1);
        EXPECT_THAT(components(load), ElementsAre(1, 2, 3));
        EXPECT_EQ(local, expectedLocal);
        EXPECT_EQ(weight, expectedWeight);
        local = 7;
        EXPECT_EQ(decodeLoadValue(value, load, local, nullptr), 1);
        EXPECT_EQ(local, expectedLocal);
    }
}

// The weight decides, with the gravity passed in: 2000 g under (0, 0, -490.3325) cm/s² = (0, 0, -1) kgf.
TEST(LoadEntries, WeightIsConvertedAnewAndWrittenBack)
{
    qcValue entry = list({text("hand.grip"), vector(0, -2, 0), text("weight"), number(2000)});
    char* key = nullptr;
    qcValue* value = nullptr;
    ASSERT_EQ(parseLoadEntry(entry, {0, 0, -490.3325f}, key, &value), 1);
    EXPECT_STREQ(key, "hand.grip");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(describe(*value), "[(0, 0, -1), \"weight\", 2000]");
    EXPECT_EQ(describe(entry), "[\"hand.grip\", (0, 0, -1), \"weight\", 2000]");
    qcValue::destroy(value);
}

TEST(LoadEntries, ValueIsOptional)
{
    qcValue entry = list({text("hand.grip"), vector(0, -2, 0), text("local")});
    char* key = nullptr;
    EXPECT_EQ(parseLoadEntry(entry, {0, -980.665f, 0}, key, nullptr), 1);
    EXPECT_STREQ(key, "hand.grip");
    EXPECT_EQ(describe(entry), "[\"hand.grip\", (0, -2, 0), \"local\"]");
}

TEST(LoadEntries, EveryElementIsChecked)
{
    const qcValue key = text("hand.grip"), force = vector(0, -2, 0);
    for (qcValue entry : {text("hand.grip"), qcValue(), list({}), list({force, text("global")}), list({key}),
                          list({key, text("global")}), list({key, force}), list({key, force, number(0)}),
                          list({key, force, text("GLOBAL")}), list({key, vector(0, 0, 0), text("global")}),
                          list({key, vector(0, 0.9e-5f, 0), text("local")}), list({key, force, text("weight")}),
                          list({key, force, text("weight"), text("2000")}),
                          list({key, vector(0, 0, 0), text("weight"), number(2000)})}) {
        SCOPED_TRACE(describe(entry));
        const std::string before = describe(entry);
        char* name = nullptr;
        qcValue* value = nullptr;
        const int status = parseLoadEntry(entry, {0, -1, 0}, name, &value);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(describe(entry), before);
        if (status)
            qcValue::destroy(value);
    }
}

// The whole length counts: sqrt(0.8² + 0.8²) · 1e-5 = 1.13e-5 kgf, although each component is below 1e-5.
TEST(LoadEntries, MagnitudeIsTheVectors)
{
    qcValue entry = list({text("hand.grip"), vector(-0.8e-5f, 0, 0.8e-5f), text("global")});
    char* key = nullptr;
    EXPECT_EQ(parseLoadEntry(entry, {0, -1, 0}, key, nullptr), 1);
}

// Below 1e-5 fails, and 1e-5 in single precision, 9.99999975e-06, is below; the next number, 1.00000007e-05, is not.
TEST(LoadEntries, LeastMagnitudeIsOneHundredThousandthInDouble)
{
    ASSERT_LT(double(1e-5f), 1e-5);
    char* key = nullptr;
    qcValue below = list({text("hand.grip"), vector(0, 1e-5f, 0), text("global")});
    EXPECT_EQ(parseLoadEntry(below, {0, -1, 0}, key, nullptr), 0);
    qcValue above = list({text("hand.grip"), vector(0, std::nextafter(1e-5f, 1.0f), 0), text("global")});
    EXPECT_EQ(parseLoadEntry(above, {0, -1, 0}, key, nullptr), 1);
}

// What is no number is not below it either.
TEST(LoadEntries, LoadThatIsNotANumberIsRead)
{
    qcValue entry = list({text("hand.grip"), vector(0, std::numeric_limits<float>::quiet_NaN(), 0), text("global")});
    char* key = nullptr;
    EXPECT_EQ(parseLoadEntry(entry, {0, -1, 0}, key, nullptr), 1);
}

// ---- The load in the world -----------------------------------------------------------------------

// The segment is turned a quarter about z (its x points up, its y to the right), the site a quarter about x
// (its y points forward). A local (1, 2, 3) turns with the segment, not with the site:
//   1 · (0, 1, 0) + 2 · (-1, 0, 0) + 3 · (0, 0, 1) = (-2, 1, 3) kgf
// and the segment's position (10, 20, 30) does not enter. Nor does the site's second position.
class GlobalSiteLoad : public AnalysisTest {
protected:
    void SetUp() override
    {
        load(SmallFigure("man")
                 .segment("hand", 500, {0, 0, 0}, {10, 20, 30}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}})
                 .site("hand", "grip", {40, 50, 60}, {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}})
                 .secondPosition("hand.grip", {1, 2, 3}));
    }
    qVector force, point;
};

TEST_F(GlobalSiteLoad, GlobalLoadStaysAsItIs)
{
    analysis->setLoad(site("hand.grip"), {1, 2, 3});
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 1);
    EXPECT_THAT(components(force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(point), ElementsAre(40, 50, 60));   // the site's position
}

TEST_F(GlobalSiteLoad, LocalLoadTurnsWithTheSegmentNotTheSite)
{
    analysis->setLoad(site("hand.grip"), {1, 2, 3}, 1);
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 1);
    EXPECT_THAT(components(force), ElementsAre(-2, 1, 3));
    EXPECT_THAT(components(point), ElementsAre(40, 50, 60));
}

TEST_F(GlobalSiteLoad, WeightLoadIsItsForce)
{
    analysis->setWeightLoad(site("hand.grip"), 2000);
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 1);
    EXPECT_THAT(components(force), ElementsAre(0, -2, 0));
}

TEST_F(GlobalSiteLoad, SiteWithoutALoadIsNoError)
{
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 0);
}

TEST_F(GlobalSiteLoad, LoadThatCannotBeReadIsAnError)
{
    analysis->setLoad(site("hand.grip"), {1, 2, 3}, 3);
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 0);
    const std::vector<MessageLog::Message> messages = log.take();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].kind, qcError);
    EXPECT_EQ(messages[0].text, "StaticStrength ERROR: illegal load at site grip");   // no line break
}

// A weight load whose weight is missing has a force, and only that is asked for here.
TEST_F(GlobalSiteLoad, WeightLoadNeedsNoWeight)
{
    site("hand.grip")->setProperty("SSTR_Load", list({vector(0, -1, 0), text("weight")}));
    EXPECT_EQ(globalSiteLoad(site("hand.grip"), force, point), 1);
    EXPECT_THAT(components(force), ElementsAre(0, -1, 0));
}

}   // namespace
