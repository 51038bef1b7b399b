// Reset: clearing everything, and rebuilding every setting from the figure's saved lists.
#include "AnalysisTest.h"
#include "SavedValues.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

SmallFigure twoJoints(const std::string& name = "man")
{
    SmallFigure figure(name);
    figure.segment("arm", 3000)
        .site("arm", "bottom", {0, 80, 0})
        .segment("hand", 500)
        .site("hand", "grip", {0, 80, 0})
        .site("hand", "tip", {0, 70, 0})
        .segment("head", 4000)
        .site("head", "top", {0, 180, 0})
        .site("head", "base", {0, 150, 0})
        .joint("wrist", "arm.bottom", "hand.grip")
        .joint("neck", "arm.bottom", "head.base");
    return figure;
}

const char* const kStrategy = "SSTR_Strategy";
const char* const kLoads = "SSTR_LoadList";
const char* const kTorques = "SSTR_TorqueList";
const char* const kOffsets = "SSTR_LoadWithOffsetList";

/// The warning about an entry, with the host's own text of it.
std::string cannotParse(const qcValue& entry)
{
    return std::string("StaticStrength WARNING: cannot parse ") + entry.toText() + "\n";
}

class Reset : public AnalysisTest {
protected:
    void SetUp() override { load(twoJoints()); }

    void save(const char* key, const qcValue& value) { figure->setProperty(key, value); }
    std::string saved(const char* key) const { return stored(figure, key); }
    std::string loadOn(const std::string& key) const { return stored(site(key), "SSTR_Load"); }
    std::string torqueAt(const std::string& name) const { return stored(joint(name), "SSTR_Torque"); }

    /// A load entry, a torque entry and an offset-load entry that restore.
    static qcValue loadEntry(const char* key = "hand.grip", float y = -1)
    {
        return list({text(key), vector(0, y, 0), text("global")});
    }
    static qcValue torqueEntry(const char* name = "wrist", float x = 1) { return list({text(name), vector(x, 2, 3)}); }
    static qcValue offsetEntry() { return list({text("hand.tip"), vector(1, 0, 0), vector(0, -1, 0), text("global")}); }

    /// Everything that the figure and its parts hold.
    std::string everything() const
    {
        std::string all;
        const auto add = [&all](const qcObject* object) {
            for (int i = 0; i < object->getNumProperties(); ++i)
                all += std::string(object->getFullName()) + " " + object->getPropertyKey(i) + " "
                       + describe(object->getPropertyValue(i)) + "\n";
        };
        add(figure);
        const auto addAll = [&add](qList* parts, auto* kind) {
            for (qList* node = qList::iterator(parts, nullptr); node; node = qList::iterator(parts, node))
                add(static_cast<decltype(kind)>(node->getData()));
        };
        addAll(figure->getSegments(), static_cast<qcSegment*>(nullptr));
        addAll(figure->getSites(), static_cast<qcSite*>(nullptr));
        addAll(figure->getJoints(), static_cast<qcJoint*>(nullptr));
        return all;
    }
};

// ---- Clear ---------------------------------------------------------------------------------------

TEST_F(Reset, ClearWipesEverything)
{
    qVector torque(1, 2, 3);
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    analysis->setWeightLoad(site("head.top"), 1000);
    analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    analysis->setDefinedTorque(joint("wrist"), torque);
    analysis->setFMonJoint(joint("wrist"), {1, 2, 3}, {4, 5, 6});
    analysis->setFMonJoint(joint("neck"), {1, 2, 3}, {4, 5, 6});
    analysis->clear();
    EXPECT_EQ(everything(), "");
    EXPECT_EQ(analysis->getNumLoads(), 0);
    EXPECT_EQ(analysis->getNumDefinedTorques(), 0);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
}

TEST_F(Reset, ClearWipesWhatIsInNoListToo)
{
    site("head.base")->setProperty("SSTR_Load", number(1));
    site("head.base")->setProperty("SSTR_LoadsWithOffsets", number(1));
    joint("neck")->setProperty("SSTR_Torque", number(1));
    joint("neck")->setProperty("SSTR_Force_Moment", number(1));
    analysis->clear();
    EXPECT_EQ(everything(), "");
}

TEST_F(Reset, ClearKeepsStrategyAndGravityOfTheObject)
{
    analysis->setGravity({1, 2, 3});
    analysis->setStrategy(qmStaticStrength::Sitting);
    analysis->clear();
    EXPECT_EQ(saved(kStrategy), "absent");
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
    qVector gravity;
    analysis->getGravity(gravity);
    EXPECT_THAT(components(gravity), ElementsAre(1, 2, 3));

    // the next reset reads the figure, which says nothing
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::TwoFeet);
}

TEST_F(Reset, ClearAndResetLeaveOtherPropertiesAlone)
{
    figure->setProperty("colour", text("red"));
    figure->setProperty("RightZelHandLoads", text("5"));
    figure->setProperty("SSTR_Other", number(1));
    site("hand.grip")->setProperty("SSTR_LoadList", number(2));   // a figure's key on a site
    joint("wrist")->setProperty("SSTR_Load", number(3));          // a site's key on a joint
    segment("hand")->setProperty("SSTR_Load", number(4));
    figure->setProperty("SSTR_Load", number(5));
    const std::string others = "man RightZelHandLoads \"5\"\nman SSTR_Load 5\nman SSTR_Other 1\nman colour \"red\"\n"
                               "man.hand SSTR_Load 4\nman.hand.grip SSTR_LoadList 2\nman.wrist SSTR_Load 3\n";
    analysis->clear();
    EXPECT_EQ(everything(), others);
    analysis->reset();
    analysis->clear();
    EXPECT_EQ(everything(), others);
}

TEST_F(Reset, ClearTwiceIsHarmless)
{
    analysis->clear();
    analysis->clear();
    EXPECT_EQ(everything(), "");
}

TEST_F(Reset, ClearRemovesComputedResultsFromEveryJoint)
{
    load(smallBody("whole"));
    analysis->compute();
    int before = 0, after = 0;
    const auto count = [this](int& results) {
        for (qList* node = qList::iterator(figure->getJoints(), nullptr); node;
             node = qList::iterator(figure->getJoints(), node))
            results += stored(static_cast<qcJoint*>(node->getData()), "SSTR_Force_Moment") != "absent";
    };
    count(before);
    ASSERT_GT(before, 5);
    analysis->clear();
    count(after);
    EXPECT_EQ(after, 0);
}

// ---- Strategy ------------------------------------------------------------------------------------

TEST_F(Reset, FigureWithoutSavedPropertiesGetsTheDefaultStrategyOnly)
{
    analysis->clear();
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(analysis->getStrategy(), 0);
    EXPECT_EQ(everything(), "man SSTR_Strategy \"Two Feet\"\n");
}

TEST_F(Reset, StoredNamesGiveTheirStrategies)
{
    const char* names[] = {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"};
    for (int i = 0; i < 6; ++i) {
        save(kStrategy, text(names[i]));
        EXPECT_EQ(analysis->reset(), 0);   // a strategy is no restored list
        EXPECT_EQ(analysis->getStrategy(), i);
        EXPECT_EQ(saved(kStrategy), '"' + std::string(names[i]) + '"');
    }
}

// 6 is kept without a text; the next reset then finds none and takes two feet.
TEST_F(Reset, UnknownNamesGiveSix)
{
    for (const char* unknown : {"", "sitting", "Sitting ", "Standing", "4"}) {
        save(kStrategy, text(unknown));
        EXPECT_EQ(analysis->reset(), 0);
        EXPECT_EQ(analysis->getStrategy(), 6) << unknown;
        EXPECT_EQ(saved(kStrategy), "absent");
        EXPECT_EQ(analysis->reset(), 0);
        EXPECT_EQ(analysis->getStrategy(), 0);
        EXPECT_EQ(saved(kStrategy), "\"Two Feet\"");
    }
}

TEST_F(Reset, StrategyThatIsNoTextIsTwoFeet)
{
    for (const qcValue& other : {number(4), vector(1, 2, 3), list({text("Sitting")}), qcValue()}) {
        analysis->setStrategy(qmStaticStrength::Sitting);
        save(kStrategy, other);
        analysis->reset();
        EXPECT_EQ(analysis->getStrategy(), 0) << describe(other);
        EXPECT_EQ(saved(kStrategy), "\"Two Feet\"");
    }
}

TEST_F(Reset, MarksTheFigureChanged)
{
    const long before = figure->getTimestamp();
    analysis->reset();
    EXPECT_GT(figure->getTimestamp(), before);
}

// ---- Loads ---------------------------------------------------------------------------------------

TEST_F(Reset, LoadsComeBackFromTheList)
{
    save(kLoads, list({loadEntry("head.top"), list({text("hand.grip"), vector(1, 2, 3), text("local")}),
                       list({text("hand.tip"), vector(0, -2, 0), text("weight"), number(2000)})}));
    site("head.base")->setProperty("SSTR_Load", list({vector(0, -1, 0), text("global")}));   // in no list: goes
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(loadOn("head.top"), "[(0, -1, 0), \"global\"]");
    EXPECT_EQ(loadOn("hand.grip"), "[(1, 2, 3), \"local\"]");
    EXPECT_EQ(loadOn("hand.tip"), "[(0, -2, 0), \"weight\", 2000]");
    EXPECT_EQ(loadOn("head.base"), "absent");
    EXPECT_EQ(saved(kLoads), "[[\"head.top\", (0, -1, 0), \"global\"], [\"hand.grip\", (1, 2, 3), \"local\"], "
                             "[\"hand.tip\", (0, -2, 0), \"weight\", 2000]]");
}

// 1000 g under half of standard gravity weigh half a kgf. A force stays as it was given.
TEST_F(Reset, WeightFollowsGravityAndForcesDoNot)
{
    analysis->setWeightLoad(site("hand.grip"), 1000);
    analysis->setLoad(site("hand.tip"), {0, -1, 0});
    analysis->setLoad(site("head.top"), {0, -1, 0}, 1);
    analysis->setGravity({0, -490.3325f, 0});

    qVector load;
    ASSERT_EQ(analysis->getSiteLoad(site("hand.grip"), load), 1);
    EXPECT_THAT(components(load), ElementsAre(0, FloatEq(-0.5f), 0));
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -0.5, 0), \"weight\", 1000]");
    EXPECT_EQ(loadOn("hand.tip"), "[(0, -1, 0), \"global\"]");
    EXPECT_EQ(loadOn("head.top"), "[(0, -1, 0), \"local\"]");
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (0, -0.5, 0), \"weight\", 1000], "
                             "[\"hand.tip\", (0, -1, 0), \"global\"], [\"head.top\", (0, -1, 0), \"local\"]]");
}

TEST_F(Reset, GravityThereAndBackGivesTheSameWeights)
{
    analysis->setWeightLoad(site("hand.grip"), 115.2f);
    const std::string before = everything();
    analysis->setGravity({3, 1, -200});
    EXPECT_NE(everything(), before);
    analysis->setGravity({0, -980.665f, 0});
    EXPECT_EQ(everything(), before);
}

// -500 g under half of standard gravity: +0.25 kgf. A weight of 0 g has the force that it was given until a reset
// converts it: none, and the reset after that drops it.
TEST_F(Reset, WeightsOfZeroAndLessAreConvertedAnewToo)
{
    analysis->setWeightLoad(site("hand.grip"), -500);
    analysis->setGravity({0, -490.3325f, 0});
    EXPECT_EQ(loadOn("hand.grip"), "[(-0, 0.25, -0), \"weight\", -500]");
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (-0, 0.25, -0), \"weight\", -500]]");

    analysis->setLoad(site("hand.grip"), {1, -2, 3}, 2);
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -0, 0), \"weight\", 0]");
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (0, -0, 0), \"weight\", 0]]");

    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre(cannotParse(list({text("hand.grip"), vector(0, -0.0f, 0), text("weight"), number(0)}))));
    EXPECT_EQ(loadOn("hand.grip"), "absent");
    EXPECT_EQ(saved(kLoads), "absent");
}

// What is no number is not too small: it comes back without a word.
TEST_F(Reset, LoadThatIsNotANumberIsRestored)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    save(kLoads, list({list({text("hand.grip"), vector(1, nan, 3), text("global")})}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_TRUE(log.take().empty());
    EXPECT_EQ(analysis->getNumLoads(), 1);
    qVector load;
    ASSERT_EQ(analysis->getSiteLoad(site("hand.grip"), load), 1);
    EXPECT_EQ(load[0], 1);
    EXPECT_TRUE(std::isnan(load[1]));
    EXPECT_EQ(load[2], 3);
}

// The stored force is looked at before the weight is converted: under no gravity a weight becomes a zero force,
// which the reset after that drops like any other zero force.
TEST_F(Reset, WeightUnderNoGravityIsDroppedByTheSecondReset)
{
    analysis->setWeightLoad(site("hand.grip"), 1000);
    analysis->setGravity({0, 0, 0});
    EXPECT_EQ(analysis->getSiteWeight(site("hand.grip")), 1000);
    EXPECT_EQ(loadOn("hand.grip"), "[(0, 0, 0), \"weight\", 1000]");

    analysis->setGravity({0, -980.665f, 0});
    EXPECT_EQ(analysis->getNumLoads(), 0);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre(cannotParse(list({text("hand.grip"), vector(0, 0, 0), text("weight"), number(1000)}))));
}

TEST_F(Reset, OnlyEntryWithoutForceIsWarnedAboutOnceAndTheListGoes)
{
    const qcValue entry = loadEntry("hand.grip", 0);
    save(kLoads, list({entry}));
    EXPECT_EQ(analysis->reset(), 0);
    const std::vector<MessageLog::Message> messages = log.take();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].kind, qcWarning);
    EXPECT_EQ(messages[0].text, cannotParse(entry));
    EXPECT_EQ(saved(kLoads), "absent");
    EXPECT_EQ(loadOn("hand.grip"), "absent");
    EXPECT_EQ(analysis->getNumLoads(), 0);

    // unless another list restored
    save(kLoads, list({entry}));
    save(kTorques, list({torqueEntry()}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_THAT(log.takeTexts(), ElementsAre(cannotParse(entry)));
}

TEST_F(Reset, LoadEntriesThatDoNotParseAreDroppedEachWithAWarning)
{
    const qcValue key = text("hand.grip"), force = vector(0, -1, 0);
    const std::vector<qcValue> bad = {number(1),
                                      text("hand.grip"),
                                      vector(1, 2, 3),
                                      qcValue(),
                                      list({}),
                                      list({force, text("global")}),
                                      list({key}),
                                      list({key, force}),
                                      list({key, text("global"), force}),
                                      list({key, force, number(0)}),
                                      list({key, force, text("Local")}),
                                      list({key, vector(0, 0.9e-5f, 0), text("local")}),
                                      list({key, force, text("weight")}),
                                      list({key, force, text("weight"), text("1000")})};
    std::vector<std::string> warnings;
    qcValue saving = list({});
    {
        // a good entry before, between and after the bad ones
        qcValue* first = new qcValue(loadEntry("head.top", -3));
        qcValue** link = &first->next;
        const auto append = [&link](const qcValue& entry) {
            *link = new qcValue(entry);
            link = &(*link)->next;
        };
        for (const qcValue& entry : bad) {
            append(entry);
            warnings.push_back(cannotParse(entry));
            if (warnings.size() == 5)
                append(loadEntry("hand.tip", -4));
        }
        append(loadEntry("head.base", -5));
        saving.setList(first);
    }
    save(kLoads, saving);
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(log.takeTexts(), warnings);
    EXPECT_EQ(saved(kLoads), "[[\"head.top\", (0, -3, 0), \"global\"], [\"hand.tip\", (0, -4, 0), \"global\"], "
                             "[\"head.base\", (0, -5, 0), \"global\"]]");
    EXPECT_EQ(loadOn("hand.grip"), "absent");
    EXPECT_EQ(loadOn("head.base"), "[(0, -5, 0), \"global\"]");
}

// The entry is converted before its site is looked for, so the warning shows the force under this gravity.
TEST_F(Reset, LoadOnASiteThatIsGoneIsSkippedWithTheSameWarning)
{
    save(kLoads, list({list({text("hand.thumb"), vector(0, -3, 0), text("weight"), number(1000)}),
                       list({text("man.hand.tip"), vector(0, -3, 0), text("global")}), loadEntry()}));
    EXPECT_EQ(analysis->reset(), 0);   // a skipped entry counts as failed
    EXPECT_THAT(log.takeTexts(),
                ElementsAre(cannotParse(list({text("hand.thumb"), vector(0, -1, 0), text("weight"), number(1000)})),
                            cannotParse(list({text("man.hand.tip"), vector(0, -3, 0), text("global")}))));
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (0, -1, 0), \"global\"]]");
}

TEST_F(Reset, RestoredEntriesHoldOnlyWhatALoadHolds)
{
    save(kLoads, list({list({text("hand.grip"), vector(0, -1, 0), text("global"), number(5), text("more")}),
                       list({text("hand.tip"), vector(0, -1, 0), text("weight"), number(1000), text("more")})}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (0, -1, 0), \"global\"], [\"hand.tip\", (0, -1, 0), \"weight\", 1000]]");
}

TEST_F(Reset, RestoredTorqueEntriesHoldOnlyNameAndVector)
{
    save(kTorques, list({list({text("wrist"), vector(1, 2, 3), text("more"), number(5)})}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(saved(kTorques), "[[\"wrist\", (1, 2, 3)]]");
    EXPECT_EQ(torqueAt("wrist"), "[(1, 2, 3)]");
}

TEST_F(Reset, EntriesOfOneKeyCollapseToTheLaterInTheEarliersPlace)
{
    save(kLoads, list({loadEntry("hand.grip", -1), loadEntry("head.top", -2),
                       list({text("hand.grip"), vector(0, -3, 0), text("local")})}));
    save(kTorques, list({torqueEntry("wrist", 1), torqueEntry("neck", 2), torqueEntry("wrist", 3)}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(saved(kLoads), "[[\"hand.grip\", (0, -3, 0), \"local\"], [\"head.top\", (0, -2, 0), \"global\"]]");
    EXPECT_EQ(loadOn("hand.grip"), "[(0, -3, 0), \"local\"]");
    EXPECT_EQ(saved(kTorques), "[[\"wrist\", (3, 2, 3)], [\"neck\", (2, 2, 3)]]");
    EXPECT_EQ(torqueAt("wrist"), "[(3, 2, 3)]");
}

// ---- Torques -------------------------------------------------------------------------------------

TEST_F(Reset, TorquesComeBackFromTheList)
{
    save(kTorques, list({torqueEntry("neck", 5), torqueEntry("wrist", 6)}));
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(torqueAt("neck"), "[(5, 2, 3)]");
    EXPECT_EQ(torqueAt("wrist"), "[(6, 2, 3)]");
    EXPECT_EQ(saved(kTorques), "[[\"neck\", (5, 2, 3)], [\"wrist\", (6, 2, 3)]]");
}

TEST_F(Reset, TorqueEntriesThatDoNotParseAreDroppedEachWithAWarning)
{
    const std::vector<qcValue> bad = {number(1),
                                      qcValue(),
                                      list({}),
                                      list({text("wrist")}),
                                      list({text("wrist"), number(1)}),
                                      list({vector(1, 2, 3), text("wrist")}),
                                      torqueEntry("elbow"),
                                      torqueEntry("Wrist"),
                                      torqueEntry("man.wrist")};
    for (const qcValue& entry : bad) {
        save(kTorques, list({entry, torqueEntry("neck")}));
        EXPECT_EQ(analysis->reset(), 0) << describe(entry);
        EXPECT_THAT(log.takeTexts(), ElementsAre(cannotParse(entry)));
        EXPECT_EQ(saved(kTorques), "[[\"neck\", (1, 2, 3)]]");
        EXPECT_EQ(torqueAt("wrist"), "absent");
    }
}

TEST_F(Reset, TorqueListWithoutAGoodEntryGoes)
{
    save(kTorques, list({torqueEntry("elbow")}));
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(saved(kTorques), "absent");
}

TEST_F(Reset, LoadsAreRestoredBeforeTorques)
{
    const qcValue torque = torqueEntry("elbow"), force = loadEntry("hand.thumb");
    save(kTorques, list({torque}));
    save(kLoads, list({force}));
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre(cannotParse(force), cannotParse(torque)));
}

// ---- What is returned ----------------------------------------------------------------------------

TEST_F(Reset, ReturnsOneWhenAtLeastOneListWasRestoredWhole)
{
    const qcValue good[3] = {list({loadEntry()}), list({torqueEntry()}), list({offsetEntry()})};
    const qcValue bad = list({number(1)});
    const char* keys[3] = {kLoads, kTorques, kOffsets};

    // each list: 0 absent, 1 good, 2 with an entry that does not parse (which the offset loads do not count)
    for (int mix = 0; mix < 27; ++mix) {
        const int state[3] = {mix % 3, mix / 3 % 3, mix / 9};
        analysis->clear();
        int warnings = 0;
        for (int i = 0; i < 3; ++i) {
            if (state[i] == 1)
                save(keys[i], good[i]);
            if (state[i] == 2)
                save(keys[i], bad);
            warnings += i < 2 && state[i] == 2;
        }
        const int expected = state[0] == 1 || state[1] == 1 || state[2] != 0;
        EXPECT_EQ(analysis->reset(), expected) << state[0] << state[1] << state[2];
        EXPECT_EQ(static_cast<int>(log.take().size()), warnings) << state[0] << state[1] << state[2];
    }
}

TEST_F(Reset, OneBadEntryAmongGoodOnesFailsItsList)
{
    save(kLoads, list({number(1), loadEntry()}));
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_EQ(analysis->reset(), 1);   // now it holds only the good one
}

// Present but without elements: nothing failed.
TEST_F(Reset, EmptyListsAndPropertiesThatAreNoListsRestoreNothingAndCount)
{
    for (const char* key : {kLoads, kTorques})
        for (const qcValue& nothing : {list({}), qcValue(), text("hand.grip"), number(1)}) {
            save(key, nothing);
            EXPECT_EQ(analysis->reset(), 1) << key << " " << describe(nothing);
            EXPECT_EQ(saved(key), "absent");
            EXPECT_EQ(everything(), "man SSTR_Strategy \"Two Feet\"\n");
        }
}

// ---- Results and records -------------------------------------------------------------------------

TEST_F(Reset, ResultsAreGoneUntilTheNextComputation)
{
    load(smallBody("whole"));
    analysis->compute();
    ASSERT_EQ(resultOf("waist").status, 1);
    analysis->reset();
    EXPECT_EQ(resultOf("waist").status, 0);
    analysis->compute();
    EXPECT_EQ(resultOf("waist").status, 1);
}

TEST_F(Reset, SiteListThatARemovalLeftBehindGoes)
{
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    analysis->removeLoadWithOffset(record);
    ASSERT_NE(stored(site("hand.tip"), "SSTR_LoadsWithOffsets"), "absent");
    EXPECT_EQ(analysis->reset(), 1);   // the empty value was there
    EXPECT_EQ(stored(site("hand.tip"), "SSTR_LoadsWithOffsets"), "absent");
    EXPECT_EQ(saved(kOffsets), "empty");
}

// The list on the figure decides, not the records of the object.
TEST_F(Reset, RecordsAreThoseOfTheFiguresList)
{
    analysis->setLoadWithOffset(site("hand.grip"), {1, 0, 0}, {0, -9, 0});
    save(kOffsets, list({offsetEntry(), offsetEntry()}));
    EXPECT_EQ(analysis->reset(), 1);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
    EXPECT_EQ(analysis->getNthLoadWithOffset(0)->site, site("hand.tip"));

    figure->removeProperty(kOffsets);
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(saved(kOffsets), "absent");   // there was none: none is written
}

// ---- Laws ----------------------------------------------------------------------------------------

class ResetLaws : public Reset {
protected:
    void SetUp() override
    {
        Reset::SetUp();
        qVector torque(0.1f, -0.2f, 0.3f), zero(0, 0, 0);
        analysis->setStrategy(qmStaticStrength::LeftFoot);
        analysis->setWeightLoad(site("head.top"), 115.2f);
        analysis->setLoad(site("hand.grip"), {0.1f, 0.7f, -1e-3f}, 1);
        analysis->setDefinedTorque(joint("neck"), torque);
        analysis->setDefinedTorque(joint("wrist"), zero);
        analysis->setLoadWithOffset(site("hand.tip"), {1, 2, 3}, {4, 5, 6});
        analysis->setWeightLoadWithOffset(site("head.top"), {1, 2, 3}, 460.8f);
    }
};

TEST_F(ResetLaws, ResetChangesNothingThatIsWellFormed)
{
    const std::string before = everything();
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(everything(), before);
}

TEST_F(ResetLaws, NextAnalysisFindsTheSame)
{
    const std::string before = everything();
    dropAnalysis();
    EXPECT_EQ(everything(), before);
    makeAnalysis();
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::LeftFoot);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 2);
}

// A second object for the same human restores the same from the same lists; what either sets is there for both.
TEST_F(ResetLaws, SecondObjectOfOneHumanSharesTheProperties)
{
    const std::string before = everything();
    qmStaticStrength second(human);
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(second.getNumLoads(), analysis->getNumLoads());
    second.clear();
    EXPECT_EQ(everything(), "");
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 2);   // the records are each object's own
}

// The same settings on two figures give the same, whatever happened before on one of them.
TEST_F(ResetLaws, FiguresDoNotInfluenceOneAnother)
{
    const std::string before = everything();
    qcFigure* first = figure;
    load(twoJoints("other"));
    analysis->setGravity({1, 1, 1});
    analysis->setLoad(site("hand.grip"), {0, -1, 0});
    analysis->clear();
    figure = first;
    EXPECT_EQ(everything(), before);
}

}   // namespace
