// Loads with offsets: the records, the two properties they are written to, and making records from the figure's list.
#include "AnalysisTest.h"
#include "PrivateMembers.h"
#include "SavedValues.h"

#include <climits>
#include <cstddef>
#include <memory>
#include <string>

using ::testing::ElementsAre;
using ::testing::FloatEq;

struct ParseEntry {
    using type = loadWithOffset* (qmStaticStrength::*)(qcValue&) const;
    friend type get(ParseEntry);
};
template struct Expose<ParseEntry, &qmStaticStrength::parseOffsetLoadEntry>;

namespace {

class OffsetLoads : public AnalysisTest {
protected:
    void SetUp() override { load(threeSites()); }

    std::string figureList() const { return stored(figure, "SSTR_LoadWithOffsetList"); }
    std::string siteList(const std::string& key) const { return stored(site(key), "SSTR_LoadsWithOffsets"); }
    loadWithOffset* nth(int n) const { return analysis->getNthLoadWithOffset(n); }

    /// Makes the records that the figure's list says. @return what reset() returned
    int restore(const qcValue& list)
    {
        figure->setProperty("SSTR_LoadWithOffsetList", list);
        return analysis->reset();
    }
};

// ---- The record ----------------------------------------------------------------------------------

// Others read the record field by field, in this order.
TEST(OffsetLoadRecord, FieldsAreInOrder)
{
    EXPECT_EQ(offsetof(loadWithOffset, site), 0u);
    EXPECT_EQ(offsetof(loadWithOffset, offset), sizeof(void*));
    EXPECT_EQ(offsetof(loadWithOffset, type), sizeof(void*) + 16);   // three floats, then up to the next pointer
    EXPECT_EQ(offsetof(loadWithOffset, load), 2 * sizeof(void*) + 16);
    EXPECT_EQ(offsetof(loadWithOffset, mass), 2 * sizeof(void*) + 28);
    EXPECT_EQ(offsetof(loadWithOffset, local), 2 * sizeof(void*) + 32);
}

TEST_F(OffsetLoads, NewAnalysisHasNone)
{
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(nth(0), nullptr);
    EXPECT_EQ(nth(-1), nullptr);
    EXPECT_EQ(figureList(), "absent");
}

TEST_F(OffsetLoads, GlobalLoad)
{
    const loadWithOffset* record = analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {4, 5, 6});
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->site, site("hand.grip"));
    EXPECT_THAT(components(record->offset), ElementsAre(1, 2, 3));
    EXPECT_STREQ(record->type, "global");
    EXPECT_THAT(components(record->load), ElementsAre(4, 5, 6));
    EXPECT_EQ(record->mass, -1.0f);
    EXPECT_FALSE(record->local);

    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (4, 5, 6), \"global\"]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (4, 5, 6), \"global\"]]");
    EXPECT_EQ(stored(site("hand.grip"), "SSTR_Load"), "absent");   // a plain load is another thing
}

TEST_F(OffsetLoads, LocalLoadForAnyFlagButZero)
{
    for (int flag : {1, 2, -1, 256, INT_MIN}) {
        const loadWithOffset* record = analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {4, 5, 6}, flag);
        ASSERT_NE(record, nullptr);
        EXPECT_STREQ(record->type, "local");
        EXPECT_EQ(record->mass, -1.0f);
        EXPECT_TRUE(record->local);
        EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (4, 5, 6), \"local\"]]");
        EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (4, 5, 6), \"local\"]]");
        analysis->clear();
    }
}

// 2000 g under (0, -980.665, 0) cm/s² weigh 2 kgf, straight down.
TEST_F(OffsetLoads, WeightBecomesAForceAlongGravity)
{
    const loadWithOffset* record = analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 2, 3}, 2000);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->site, site("hand.grip"));
    EXPECT_THAT(components(record->offset), ElementsAre(1, 2, 3));
    EXPECT_STREQ(record->type, "weight");
    EXPECT_THAT(components(record->load), ElementsAre(0, -2, 0));
    EXPECT_EQ(record->mass, 2000.0f);
    EXPECT_FALSE(record->local);

    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (0, -2, 0), \"weight\", 2000]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (0, -2, 0), \"weight\", 2000]]");
}

// The factor of a weight is formed in double with 980.6649780273438 and narrowed once, as for plain weights.
TEST_F(OffsetLoads, WeightIsConvertedLikeAPlainOne)
{
    const float grams = 115.199997f;
    const float factor = static_cast<float>(double(grams) * 0.001 / 980.6649780273438);
    const loadWithOffset* record = analysis->setWeightLoadWithOffset(site("hand.grip"), {0, 0, 0}, grams);
    EXPECT_THAT(components(record->load), ElementsAre(0, -980.665f * factor, 0));

    analysis->setWeightLoad(site("hand.grip"), grams);
    qVector plain;
    analysis->getSiteLoad(site("hand.grip"), plain);
    EXPECT_EQ(components(record->load), components(plain));
}

// 1000 g under (490.3325, 0, 0) cm/s²: half a kgf to the left
TEST_F(OffsetLoads, WeightUnderAnotherGravity)
{
    analysis->setGravity({490.3325f, 0, 0});
    const loadWithOffset* record = analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 2, 3}, 1000);
    EXPECT_THAT(components(record->load), ElementsAre(FloatEq(0.5f), 0, 0));
    EXPECT_THAT(components(record->offset), ElementsAre(1, 2, 3));
}

TEST_F(OffsetLoads, WeightBelowZeroStaysAWeight)
{
    const loadWithOffset* record = analysis->setWeightLoadWithOffset(site("hand.grip"), {0, 0, 0}, -1000);
    EXPECT_STREQ(record->type, "weight");
    EXPECT_EQ(record->mass, -1000.0f);
    EXPECT_EQ(record->load[1], 1.0f);
}

TEST_F(OffsetLoads, ArgumentsAreCopied)
{
    qVector offset(1, 2, 3), force(4, 5, 6);
    const loadWithOffset* record = analysis->setLoadWithOffset(site("hand.grip"), offset, force);
    offset.set(9, 9, 9);
    force.set(9, 9, 9);
    EXPECT_THAT(components(record->offset), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(record->load), ElementsAre(4, 5, 6));
}

TEST_F(OffsetLoads, NullIsRefused)
{
    EXPECT_EQ(analysis->setLoadWithOffset(nullptr, {1, 2, 3}, {4, 5, 6}), nullptr);
    EXPECT_EQ(analysis->setWeightLoadWithOffset(nullptr, {1, 2, 3}, 100), nullptr);
    EXPECT_EQ(analysis->removeLoadWithOffset(nullptr), 0);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(figureList(), "absent");   // nothing was written
}

// ---- Sites of other figures ----------------------------------------------------------------------

TEST_F(OffsetLoads, WeightOnAnotherFigureIsRefused)
{
    qcSite* foreign = site("hand.grip");
    load(threeSites("other"));
    EXPECT_EQ(analysis->setWeightLoadWithOffset(foreign, {0, 0, 0}, 100), nullptr);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(figureList(), "absent");
    EXPECT_EQ(stored(foreign, "SSTR_LoadsWithOffsets"), "absent");
}

// A reset looks the key up on this figure: the record of a site that only the other has goes without a word,
// and what stands on the other figure is not this analysis's to remove.
TEST_F(OffsetLoads, ForceOnAnotherFigureLastsUntilAReset)
{
    qcSite* foreign = site("head.top");
    load(SmallFigure("other").segment("hand", 500).site("hand", "grip", {0, 0, 0}));
    const loadWithOffset* record = analysis->setLoadWithOffset(foreign, {1, 2, 3}, {4, 5, 6});
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->site, foreign);
    EXPECT_EQ(figureList(), "[[\"head.top\", (1, 2, 3), (4, 5, 6), \"global\"]]");
    EXPECT_EQ(stored(foreign, "SSTR_LoadsWithOffsets"), "[[(1, 2, 3), (4, 5, 6), \"global\"]]");

    analysis->reset();
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(stored(foreign, "SSTR_LoadsWithOffsets"), "[[(1, 2, 3), (4, 5, 6), \"global\"]]");
}

// A site's list is that of the site, not of its key: of two sites of one key each has its own. The figure's list tells
// keys only, and so a reset finds this figure's site for both.
TEST_F(OffsetLoads, SitesOfOneKeyHaveTheirOwnLists)
{
    qcSite* foreign = site("hand.grip");
    load(threeSites("other"));
    analysis->setLoadWithOffset(foreign, {1, 0, 0}, {0, -1, 0});
    analysis->setLoadWithOffset(site("hand.grip"), {2, 0, 0}, {0, -2, 0});
    EXPECT_EQ(stored(foreign, "SSTR_LoadsWithOffsets"), "[[(1, 0, 0), (0, -1, 0), \"global\"]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(2, 0, 0), (0, -2, 0), \"global\"]]");
    EXPECT_EQ(
        figureList(),
        "[[\"hand.grip\", (1, 0, 0), (0, -1, 0), \"global\"], [\"hand.grip\", (2, 0, 0), (0, -2, 0), \"global\"]]");

    EXPECT_EQ(analysis->reset(), 1);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_EQ(nth(0)->site, site("hand.grip"));
    EXPECT_EQ(nth(1)->site, site("hand.grip"));
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 0, 0), (0, -1, 0), \"global\"], [(2, 0, 0), (0, -2, 0), \"global\"]]");
}

// Each analysis has its own records: the figure's list is that of the one that wrote last, and a site of which it has
// no record keeps what the other wrote there.
TEST_F(OffsetLoads, RecordsAreEachAnalysissOwn)
{
    qmStaticStrength other(human);
    analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    other.setLoadWithOffset(site("hand.tip"), {2, 0, 0}, {0, -2, 0});
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_EQ(other.getNumLoadsWithOffset(), 1);
    EXPECT_EQ(figureList(), "[[\"hand.tip\", (2, 0, 0), (0, -2, 0), \"global\"]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 0, 0), (0, -1, 0), \"global\"]]");
    EXPECT_EQ(siteList("hand.tip"), "[[(2, 0, 0), (0, -2, 0), \"global\"]]");
}

// ---- What a change writes: everything, from the records ------------------------------------------

class WholeOffsetList : public OffsetLoads {
protected:
    void SetUp() override
    {
        OffsetLoads::SetUp();
        a = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
        analysis->setLoadWithOffset(site("head.top"), {2, 0, 0}, {0, -2, 0});
    }
    loadWithOffset* setC() { return analysis->setLoadWithOffset(site("hand.tip"), {3, 0, 0}, {0, -3, 0}); }

    loadWithOffset* a = nullptr;
    const std::string onFigure = "[[\"hand.grip\", (1, 0, 0), (0, -1, 0), \"global\"], "
                                 "[\"head.top\", (2, 0, 0), (0, -2, 0), \"global\"]";
    const std::string ofC = ", [\"hand.tip\", (3, 0, 0), (0, -3, 0), \"global\"]";
    const std::string onGrip = "[[(1, 0, 0), (0, -1, 0), \"global\"]]";
};

TEST_F(WholeOffsetList, IsWrittenAfterASet)
{
    figure->removeProperty("SSTR_LoadWithOffsetList");
    site("hand.grip")->removeProperty("SSTR_LoadsWithOffsets");
    setC();
    EXPECT_EQ(figureList(), onFigure + ofC + "]");
    EXPECT_EQ(siteList("hand.grip"), onGrip);

    site("hand.grip")->removeProperty("SSTR_LoadsWithOffsets");
    analysis->setWeightLoadWithOffset(site("hand.tip"), {4, 0, 0}, 1000);
    EXPECT_EQ(figureList(), onFigure + ofC + ", [\"hand.tip\", (4, 0, 0), (0, -1, 0), \"weight\", 1000]]");
    EXPECT_EQ(siteList("hand.grip"), onGrip);
}

TEST_F(WholeOffsetList, IsWrittenAfterARemoval)
{
    loadWithOffset* c = setC();
    figure->setProperty("SSTR_LoadWithOffsetList", text("x"));
    site("hand.grip")->setProperty("SSTR_LoadsWithOffsets", text("x"));
    analysis->removeLoadWithOffset(c);
    EXPECT_EQ(figureList(), onFigure + "]");
    EXPECT_EQ(siteList("hand.grip"), onGrip);
}

// What another hand put into the list is no record, and goes.
TEST_F(WholeOffsetList, HoldsTheRecordsOnly)
{
    figure->setProperty("SSTR_LoadWithOffsetList",
                        list({list({text("hand.tip"), vector(9, 0, 0), vector(0, -9, 0), text("global")})}));
    site("hand.grip")
        ->setProperty("SSTR_LoadsWithOffsets", list({list({vector(9, 0, 0), vector(0, -9, 0), text("global")})}));
    setC();
    EXPECT_EQ(figureList(), onFigure + ofC + "]");
    EXPECT_EQ(siteList("hand.grip"), onGrip);
    EXPECT_EQ(siteList("hand.tip"), "[[(3, 0, 0), (0, -3, 0), \"global\"]]");
}

// A record changed in place is written as it is at the next change.
TEST_F(WholeOffsetList, ShowsWhatTheRecordsHoldThen)
{
    a->offset.set(7, 8, 9);
    a->load.set(0, 0, 5);
    setC();
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (7, 8, 9), (0, 0, 5), \"global\"], "
                            "[\"head.top\", (2, 0, 0), (0, -2, 0), \"global\"]"
                                + ofC + "]");
    EXPECT_EQ(siteList("hand.grip"), "[[(7, 8, 9), (0, 0, 5), \"global\"]]");
}

// ---- Order ---------------------------------------------------------------------------------------

TEST_F(OffsetLoads, TwoOnOneSiteAreTwoEntriesInTheOrderSet)
{
    loadWithOffset* first = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    loadWithOffset* second = analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 0, 0}, 2000);
    EXPECT_NE(first, second);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_EQ(siteList("hand.grip"),
              "[[(1, 0, 0), (0, -1, 0), \"global\"], [(1, 0, 0), (0, -2, 0), \"weight\", 2000]]");
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 0, 0), (0, -1, 0), \"global\"], "
                            "[\"hand.grip\", (1, 0, 0), (0, -2, 0), \"weight\", 2000]]");
}

TEST_F(OffsetLoads, SitesMayAlternate)
{
    analysis->setLoadWithOffset(site("head.top"), {1, 0, 0}, {0, -1, 0});
    analysis->setLoadWithOffset(site("hand.grip"), {2, 0, 0}, {0, -2, 0}, 1);
    analysis->setLoadWithOffset(site("head.top"), {3, 0, 0}, {0, -3, 0});
    EXPECT_EQ(figureList(), "[[\"head.top\", (1, 0, 0), (0, -1, 0), \"global\"], "
                            "[\"hand.grip\", (2, 0, 0), (0, -2, 0), \"local\"], "
                            "[\"head.top\", (3, 0, 0), (0, -3, 0), \"global\"]]");
    EXPECT_EQ(siteList("head.top"), "[[(1, 0, 0), (0, -1, 0), \"global\"], [(3, 0, 0), (0, -3, 0), \"global\"]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(2, 0, 0), (0, -2, 0), \"local\"]]");
    EXPECT_EQ(siteList("hand.tip"), "absent");
}

TEST_F(OffsetLoads, RecordsAreFoundByPosition)
{
    loadWithOffset* records[3];
    for (loadWithOffset*& record : records)
        record = analysis->setLoadWithOffset(site("hand.grip"), {0, 0, 0}, {0, -1, 0});
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 3);
    for (int n = 0; n < 3; ++n)
        EXPECT_EQ(nth(n), records[n]);
    EXPECT_EQ(nth(3), nullptr);
    EXPECT_EQ(nth(INT_MAX), nullptr);
    EXPECT_EQ(nth(-1), nullptr);   // unlike plain loads: a negative position is none
    EXPECT_EQ(nth(INT_MIN), nullptr);
}

// ---- Removing ------------------------------------------------------------------------------------

TEST_F(OffsetLoads, RemovingTheOnlyOneLeavesAnEmptyValueAndTheSitesOldList)
{
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    EXPECT_EQ(analysis->removeLoadWithOffset(record), 1);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(nth(0), nullptr);
    EXPECT_EQ(figureList(), "empty");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 0, 0), (0, -1, 0), \"global\"]]");

    // until everything is cleared
    analysis->clear();
    EXPECT_EQ(figureList(), "absent");
    EXPECT_EQ(siteList("hand.grip"), "absent");
}

TEST_F(OffsetLoads, RemovingOneRewritesItsSiteWhileOthersRemainThere)
{
    loadWithOffset* first = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    loadWithOffset* second = analysis->setLoadWithOffset(site("head.top"), {2, 0, 0}, {0, -2, 0});
    loadWithOffset* third = analysis->setLoadWithOffset(site("hand.grip"), {3, 0, 0}, {0, -3, 0});

    EXPECT_EQ(analysis->removeLoadWithOffset(first), 1);
    EXPECT_EQ(nth(0), second);
    EXPECT_EQ(nth(1), third);
    EXPECT_EQ(nth(2), nullptr);
    EXPECT_EQ(siteList("hand.grip"), "[[(3, 0, 0), (0, -3, 0), \"global\"]]");
    EXPECT_EQ(
        figureList(),
        "[[\"head.top\", (2, 0, 0), (0, -2, 0), \"global\"], [\"hand.grip\", (3, 0, 0), (0, -3, 0), \"global\"]]");

    // the last one there goes, another site still has one: the old list stays
    EXPECT_EQ(analysis->removeLoadWithOffset(third), 1);
    EXPECT_EQ(siteList("hand.grip"), "[[(3, 0, 0), (0, -3, 0), \"global\"]]");
    EXPECT_EQ(figureList(), "[[\"head.top\", (2, 0, 0), (0, -2, 0), \"global\"]]");

    // and set anew it is written afresh
    analysis->setLoadWithOffset(site("hand.grip"), {4, 0, 0}, {0, -4, 0});
    EXPECT_EQ(siteList("hand.grip"), "[[(4, 0, 0), (0, -4, 0), \"global\"]]");
}

TEST_F(OffsetLoads, OtherRecordsStayWhereTheyAre)
{
    loadWithOffset* first = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    const loadWithOffset* second = analysis->setLoadWithOffset(site("hand.grip"), {2, 0, 0}, {0, -2, 0});
    for (int i = 0; i < 100; ++i)
        analysis->setLoadWithOffset(site("hand.tip"), {0, 0, 0}, {0, 0, 0});
    analysis->removeLoadWithOffset(first);
    EXPECT_EQ(nth(0), second);
    EXPECT_THAT(components(second->offset), ElementsAre(2, 0, 0));
    EXPECT_THAT(components(second->load), ElementsAre(0, -2, 0));
}

TEST_F(OffsetLoads, TypeOutlivesTheRecord)
{
    loadWithOffset* record = analysis->setWeightLoadWithOffset(site("hand.grip"), {0, 0, 0}, 1);
    const char* type = record->type;
    analysis->removeLoadWithOffset(record);
    EXPECT_STREQ(type, "weight");
}

// A record of somebody else is refused and not freed.
TEST_F(OffsetLoads, RecordThatIsNotHeldIsRefused)
{
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -1, 0});
    loadWithOffset foreign = *record;
    EXPECT_EQ(analysis->removeLoadWithOffset(&foreign), 0);

    qmStaticStrength other(human);   // has restored a record of its own from the same list
    ASSERT_EQ(other.getNumLoadsWithOffset(), 1);
    EXPECT_EQ(analysis->removeLoadWithOffset(other.getNthLoadWithOffset(0)), 0);
    EXPECT_EQ(other.getNumLoadsWithOffset(), 1);
    EXPECT_THAT(components(other.getNthLoadWithOffset(0)->load), ElementsAre(0, -1, 0));

    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_EQ(nth(0), record);
}

// ---- Restoring -----------------------------------------------------------------------------------

TEST_F(OffsetLoads, ForceReadsMinusOneAsMassWhenSetAndZeroWhenRestored)
{
    EXPECT_EQ(analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {4, 5, 6})->mass, -1.0f);
    EXPECT_EQ(analysis->setLoadWithOffset(site("hand.tip"), {1, 2, 3}, {4, 5, 6}, 1)->mass, -1.0f);
    const std::string before = figureList();
    EXPECT_EQ(analysis->reset(), 1);

    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_EQ(nth(0)->site, site("hand.grip"));
    EXPECT_THAT(components(nth(0)->offset), ElementsAre(1, 2, 3));
    EXPECT_STREQ(nth(0)->type, "global");
    EXPECT_THAT(components(nth(0)->load), ElementsAre(4, 5, 6));
    EXPECT_EQ(nth(0)->mass, 0.0f);
    EXPECT_FALSE(nth(0)->local);
    EXPECT_EQ(nth(1)->site, site("hand.tip"));
    EXPECT_STREQ(nth(1)->type, "local");
    EXPECT_EQ(nth(1)->mass, 0.0f);
    EXPECT_TRUE(nth(1)->local);
    EXPECT_EQ(figureList(), before);
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (4, 5, 6), \"global\"]]");
}

// 2000 g: (0, -2, 0) kgf under standard gravity, (0, 0, 1) under (0, 0, 490.3325) cm/s². The force set as a force
// and the offsets stay.
TEST_F(OffsetLoads, WeightRestoredAfterAChangeOfGravityIsConvertedAnew)
{
    analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 2, 3}, 2000);
    analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {0, -2, 0});
    analysis->setGravity({0, 0, 490.3325f});

    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_STREQ(nth(0)->type, "weight");
    EXPECT_THAT(components(nth(0)->load), ElementsAre(0, 0, FloatEq(1)));
    EXPECT_THAT(components(nth(0)->offset), ElementsAre(1, 2, 3));
    EXPECT_EQ(nth(0)->mass, 2000.0f);
    EXPECT_THAT(components(nth(1)->load), ElementsAre(0, -2, 0));
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (0, 0, 1), \"weight\", 2000], "
                            "[\"hand.grip\", (1, 2, 3), (0, -2, 0), \"global\"]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (0, 0, 1), \"weight\", 2000], [(1, 2, 3), (0, -2, 0), \"global\"]]");
}

// -500 g under half of standard gravity: +0.25 kgf. 0 g: no force, whatever the entry says; unlike a plain load it
// stays.
TEST_F(OffsetLoads, WeightsOfZeroAndLessAreConvertedAnewToo)
{
    analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 2, 3}, -500);
    analysis->setGravity({0, -490.3325f, 0});
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (-0, 0.25, -0), \"weight\", -500]]");
    EXPECT_EQ(siteList("hand.grip"), "[[(1, 2, 3), (-0, 0.25, -0), \"weight\", -500]]");
    EXPECT_THAT(components(nth(0)->load), ElementsAre(0, 0.25f, 0));
    EXPECT_EQ(nth(0)->mass, -500.0f);

    EXPECT_EQ(restore(list({list({text("hand.grip"), vector(1, 2, 3), vector(1, -2, 3), text("weight"), number(0)})})),
              1);
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (0, -0, 0), \"weight\", 0]]");
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(figureList(), "[[\"hand.grip\", (1, 2, 3), (0, -0, 0), \"weight\", 0]]");
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_EQ(nth(0)->mass, 0.0f);
}

// Making a record of an entry writes the converted force back into the entry: 2000 g weigh 2 kgf.
TEST_F(OffsetLoads, WeightIsWrittenBackIntoTheEntry)
{
    qcValue entry = list({text("hand.grip"), vector(1, 2, 3), vector(0, -9, 0), text("weight"), number(2000)});
    const std::unique_ptr<loadWithOffset> record(callPrivate<ParseEntry>(*analysis, entry));
    ASSERT_NE(record, nullptr);
    EXPECT_THAT(components(record->load), ElementsAre(0, -2, 0));
    EXPECT_EQ(describe(entry), "[\"hand.grip\", (1, 2, 3), (0, -2, 0), \"weight\", 2000]");
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);   // it is not in the list by that
}

// Unlike plain loads, none is too small.
TEST_F(OffsetLoads, LoadOfNothingIsRestored)
{
    analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {0, 0, 0});
    analysis->setWeightLoadWithOffset(site("hand.grip"), {1, 2, 3}, 0);
    analysis->reset();
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_EQ(nth(1)->mass, 0.0f);
}

TEST_F(OffsetLoads, EntriesThatDoNotParseAreDroppedWithoutAWord)
{
    const qcValue key = text("hand.grip"), offset = vector(1, 2, 3), force = vector(0, -1, 0);
    EXPECT_EQ(restore(list({number(1),
                            text("hand.grip"),
                            qcValue(),
                            list({}),
                            list({offset, force, text("global")}),
                            list({key}),
                            list({key, offset}),
                            list({key, offset, force}),
                            list({key, offset, force, number(0)}),
                            list({key, offset, text("global"), force}),
                            list({key, text("global"), offset, force}),
                            list({key, offset, force, text("Global")}),
                            list({key, offset, force, text("")}),
                            list({key, offset, force, text("weight")}),
                            list({key, offset, force, text("weight"), text("5")}),
                            list({key, offset, force, text("weight"), force}),
                            list({text("hand.thumb"), offset, force, text("global")}),
                            list({text("Hand.grip"), offset, force, text("global")}),
                            list({text("man.hand.grip"), offset, force, text("global")}),
                            list({text("hand.tip"), offset, force, text("local"), number(7), text("more")})})),
              1);   // a failed entry does not count here
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_EQ(nth(0)->site, site("hand.tip"));
    EXPECT_EQ(nth(0)->mass, 0.0f);   // what follows the type of a force is not a mass
    EXPECT_EQ(figureList(), "[[\"hand.tip\", (1, 2, 3), (0, -1, 0), \"local\"]]");
    EXPECT_EQ(siteList("hand.tip"), "[[(1, 2, 3), (0, -1, 0), \"local\"]]");
    EXPECT_EQ(siteList("hand.grip"), "absent");
}

TEST_F(OffsetLoads, ListThatRestoresNothingBecomesAnEmptyValue)
{
    for (const qcValue& nothing : {list({number(1)}), list({}), qcValue(), text("hand.grip"), number(3)}) {
        EXPECT_EQ(restore(nothing), 1) << describe(nothing);   // the property was there
        EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
        EXPECT_EQ(figureList(), "empty");
    }
}

TEST_F(OffsetLoads, EqualEntriesAreSeparateRecords)
{
    const qcValue entry = list({text("hand.grip"), vector(1, 2, 3), vector(0, -1, 0), text("global")});
    restore(list({entry, entry}));
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_NE(nth(0), nth(1));
}

TEST_F(OffsetLoads, NextAnalysisRestoresThem)
{
    analysis->setLoadWithOffset(site("hand.grip"), {1, 2, 3}, {4, 5, 6}, 1);
    analysis->setWeightLoadWithOffset(site("hand.tip"), {0, 0, 0}, 2000);
    const std::string before = figureList();
    dropAnalysis();
    makeAnalysis();
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_STREQ(nth(0)->type, "local");
    EXPECT_STREQ(nth(1)->type, "weight");
    EXPECT_EQ(figureList(), before);
}

// Law: whatever was set, restoring it a second time changes nothing any more.
TEST_F(OffsetLoads, ResetTwiceIsResetOnce)
{
    analysis->setLoadWithOffset(site("head.top"), {0.1f, 0.2f, 0.3f}, {-0.7f, 1e-7f, 3e5f}, 1);
    analysis->setWeightLoadWithOffset(site("hand.grip"), {0, 0, 0}, 115.2f);
    analysis->setLoadWithOffset(site("head.top"), {0, 0, 0}, {0, 0, 0});
    analysis->setGravity({1.5f, -970, 0.25f});
    const std::string list = figureList(), top = siteList("head.top"), grip = siteList("hand.grip");
    analysis->reset();
    EXPECT_EQ(figureList(), list);
    EXPECT_EQ(siteList("head.top"), top);
    EXPECT_EQ(siteList("hand.grip"), grip);
}

}   // namespace
