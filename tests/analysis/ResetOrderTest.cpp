// Reset order: what an observer of the figure finds at the one moment at which it is told, and what clearing leaves.
#include "AnalysisTest.h"
#include "SavedValues.h"

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

using ::testing::ElementsAre;

namespace {

SmallFigure twoHands(const std::string& name)
{
    SmallFigure figure(name);
    figure.segment("arm", 3000)
        .site("arm", "bottom", {0, 80, 0})
        .segment("hand", 500)
        .site("hand", "grip", {0, 80, 0})
        .site("hand", "tip", {0, 70, 0})
        .joint("wrist", "arm.bottom", "hand.grip");
    return figure;
}

/// Runs what a test says whenever the figure is marked changed.
class Witness : public qcObserver {
public:
    template <class See> Witness(qcFigure* observed, See see) : figure(observed), whenTold(std::move(see))
    {
        figure->attach(this, qcChanged);
    }
    ~Witness() override { figure->detach(this); }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    void update(updateProtocol protocol) override
    {
        EXPECT_EQ(protocol, qcChanged);
        whenTold();
    }

private:
    qcFigure* figure;
    std::function<void()> whenTold;
};

class ResetOrder : public AnalysisTest {
protected:
    void SetUp() override { load(twoHands("man")); }

    /// Strategy, load list, torque list, offset-load list of the figure.
    std::vector<std::string> onTheFigure() const
    {
        std::vector<std::string> found;
        for (const char* key : {"SSTR_Strategy", "SSTR_LoadList", "SSTR_TorqueList", "SSTR_LoadWithOffsetList"})
            found.push_back(stored(figure, key));
        return found;
    }
    /// Load, site's offset loads, torque, result on the parts.
    std::vector<std::string> onTheParts() const
    {
        return {stored(site("hand.grip"), "SSTR_Load"), stored(site("hand.tip"), "SSTR_LoadsWithOffsets"),
                stored(joint("wrist"), "SSTR_Torque"), stored(joint("wrist"), "SSTR_Force_Moment")};
    }
    void setEverything()
    {
        qVector torque(1, 2, 3);
        analysis->setStrategy(qmStaticStrength::Walking);
        analysis->setWeightLoad(site("hand.grip"), 1000);
        analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
        analysis->setDefinedTorque(joint("wrist"), torque);
        analysis->setFMonJoint(joint("wrist"), {1, 2, 3}, {4, 5, 6});
    }
};

const std::vector<std::string> kAllAbsent = {"absent", "absent", "absent", "absent"};

// The text is there, and the object has the strategy, when the figure is marked; it is marked once.
TEST_F(ResetOrder, SetStrategyStoresAndThenMarks)
{
    std::vector<std::string> texts;
    std::vector<int> strategies;
    const Witness witness(figure, [&] {
        texts.push_back(stored(figure, "SSTR_Strategy"));
        strategies.push_back(analysis->getStrategy());
    });
    analysis->setStrategy(qmStaticStrength::Sitting);
    EXPECT_THAT(texts, ElementsAre("\"Sitting\""));
    EXPECT_THAT(strategies, ElementsAre(qmStaticStrength::Sitting));
}

// The mark comes when all is wiped and the strategy is stored again, before the lists are rebuilt; there is no other.
TEST_F(ResetOrder, ResetBringsTheStrategyBackBetweenClearingAndRebuilding)
{
    setEverything();
    std::vector<std::vector<std::string>> figures, parts;
    std::vector<int> records;
    const Witness witness(figure, [&] {
        figures.push_back(onTheFigure());
        parts.push_back(onTheParts());
        records.push_back(analysis->getNumLoadsWithOffset());
    });
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_THAT(figures, ElementsAre(ElementsAre("\"Walking\"", "absent", "absent", "absent")));
    EXPECT_THAT(parts, ElementsAre(kAllAbsent));
    EXPECT_THAT(records, ElementsAre(0));

    EXPECT_THAT(onTheFigure(),
                ElementsAre("\"Walking\"", "[[\"hand.grip\", (0, -1, 0), \"weight\", 1000]]",
                            "[[\"wrist\", (1, 2, 3)]]", "[[\"hand.tip\", (1, 0, 0), (0, -1, 0), \"global\"]]"));
    EXPECT_THAT(onTheParts(), ElementsAre("[(0, -1, 0), \"weight\", 1000]", "[[(1, 0, 0), (0, -1, 0), \"global\"]]",
                                          "[(1, 2, 3)]", "absent"));
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
}

// The new gravity is in place before the reset begins.
TEST_F(ResetOrder, SetGravityTakesTheGravityAndThenResets)
{
    setEverything();
    std::vector<std::array<float, 3>> gravities;
    const Witness witness(figure, [&] {
        qVector gravity;
        analysis->getGravity(gravity);
        gravities.push_back(components(gravity));
        EXPECT_EQ(onTheParts(), kAllAbsent);
    });
    analysis->setGravity({1, 2, 3});
    EXPECT_THAT(gravities, ElementsAre(ElementsAre(1, 2, 3)));
}

TEST_F(ResetOrder, ClearMarksNothing)
{
    setEverything();
    int marks = 0;
    const Witness witness(figure, [&] { ++marks; });
    analysis->clear();
    EXPECT_EQ(onTheFigure(), kAllAbsent);
    EXPECT_EQ(marks, 0);
}

// Loads may lie on another figure's sites, listed on the analysed figure. Clearing wipes the lists and the records, and
// the sites and joints of the analysed figure only.
TEST_F(ResetOrder, ClearLeavesTheSitesOfOtherFigures)
{
    qmStaticStrength* own = analysis;
    qcFigure* ownFigure = figure;
    load(twoHands("other"));
    qcSite *grip = site("hand.grip"), *tip = site("hand.tip");
    qcJoint* wrist = joint("wrist");
    analysis = own;
    figure = ownFigure;
    own->setLoad(grip, {0, -2, 0});
    own->setLoad(tip, {0, -3, 0});
    own->setLoadWithOffset(tip, {1, 0, 0}, {0, -1, 0});
    own->setFMonJoint(wrist, {1, 2, 3}, {4, 5, 6});
    setEverything();
    own->clear();

    EXPECT_EQ(stored(grip, "SSTR_Load"), "[(0, -2, 0), \"global\"]");
    EXPECT_EQ(stored(tip, "SSTR_Load"), "[(0, -3, 0), \"global\"]");
    EXPECT_EQ(stored(tip, "SSTR_LoadsWithOffsets"), "[[(1, 0, 0), (0, -1, 0), \"global\"]]");
    EXPECT_EQ(stored(wrist, "SSTR_Force_Moment"), "[(1, 2, 3), (4, 5, 6)]");
    EXPECT_EQ(onTheFigure(), kAllAbsent);
    EXPECT_EQ(onTheParts(), kAllAbsent);
    EXPECT_EQ(own->getNumLoads(), 0);
    EXPECT_EQ(own->getNumLoadsWithOffset(), 0);
}

}   // namespace
