// Deep and wide: chains of up to a hundred thousand segments, ten thousand joints at one site, thousands of loads,
// values nested as deep as memory lets them. The results are known by hand; the stack is a small one.
#include "ComputeSupport.h"
#include "LargeFigures.h"
#include "SavedValues.h"
#include "SmallStack.h"

#include <utility>
#include <vector>

using ::testing::ElementsAre;

namespace {

const int kLinks = deepLinks();
constexpr int kFan = 10000;

// A list of the elements, which are left empty.
qcValue listOf(std::vector<qcValue>& elements)
{
    qcValue* first = nullptr;
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        qcValue* moved = new qcValue(std::move(*element));
        moved->next = first;
        first = moved;
    }
    qcValue value;
    value.setList(first);
    return value;
}

class DeepAndWide : public Compute {
protected:
    void loadText(const std::string& text)
    {
        human = scene->addPosedHuman(text.c_str());
        ASSERT_NE(human, nullptr);
        figure = human->getFigure();
        makeAnalysis();
    }
};

// n links of 1 kgf, each 0.25 cm to the left of and 1 cm below the one before it. At joint k hang links k … n:
//   force   n - k + 1 kgf down: whole numbers below 2^24, exact
//   moment  about the joint, which lies at link k - 1: lever of link i is 0.25 (i - k + 1) cm, so with m = n - k + 1
//           Mz = -0.0980665 · 0.25 · m (m + 1) / 2 N·m; each joint adds two terms of one sign, each has seen at most
//           3 roundings
struct ChainJoint {
    int number, links;
    double force() const { return links - number + 1; }
    double moment() const { return -kNm * 0.125 * force() * (force() + 1); }
};

class DeepChain : public DeepAndWide {
protected:
    void loadChain(const std::string& hookSegment, const SmallFigure::Vector& position)
    {
        loadText(LargeFigure(smallBody(), hookSegment, position).chain(kLinks, 1000, {0.25, -1, 0}).text());
    }
    void expectChain(int links = kLinks) const
    {
        for (const int number : {1, 2, 777, kLinks / 2, kLinks - 1, kLinks}) {
            const ChainJoint expected{number, links};
            const Result result = resultOf("c" + std::to_string(number));
            ASSERT_EQ(result.status, 1) << number;
            EXPECT_THAT(components(result.force), ElementsAre(0, -static_cast<float>(expected.force()), 0)) << number;
            EXPECT_EQ(result.moment[0], 0) << number;
            EXPECT_NEAR(double(result.moment[2]), expected.moment(),
                        roundingBound(2 * (links - number + 1) + 3, -expected.moment()))
                << number;
        }
    }
    const std::string last = std::to_string(kLinks);

    void clearResults()
    {
        for (qList* node = figure->getJoints(); node; node = qList::iterator(nullptr, node))
            static_cast<qcJoint*>(node->getData())->removeProperty("SSTR_Force_Moment");
    }
};

// The chain hangs in the right hand: every strategy that walks outward past the hand finds the same at its joints. At
// the wrist the hand's 0.5 kgf come to it: 100 000.5 is exact in 24 bits. Then a weight of 500 kgf and a torque of
// 64 N·m about y at the last link come to every joint; the weight hangs 0.25 (n - k + 1) cm to the left of joint k.
TEST_F(DeepChain, InAHandIsSummedByEveryStrategyThatWalksTheArms)
{
    loadChain("right_hand", {-20, 72, 0});
    runOnSmallStack([this] {
        for (const Strategy strategy :
             {qmStaticStrength::TwoFeet, qmStaticStrength::RightFoot, qmStaticStrength::LeftFoot,
              qmStaticStrength::Sitting, qmStaticStrength::SittingNoFeet}) {
            SCOPED_TRACE(qmStaticStrength::getStrategyName(strategy));
            clearResults();
            compute(strategy);
            expectChain();
            EXPECT_THAT(components(resultOf("right_wrist").force),
                        ElementsAre(0, -(static_cast<float>(kLinks) + 0.5f), 0));
        }

        ASSERT_EQ(analysis->setLoad(site("k" + last + ".a"), {0, -500, 0}), 1);
        qVector torque(0, 64, 0);
        ASSERT_EQ(analysis->setDefinedTorque(joint("c" + last), torque), 1);
        compute(qmStaticStrength::RightFoot);
        for (const int number : {1, kLinks / 2, kLinks}) {
            const ChainJoint chain{number, kLinks};
            const double moment = chain.moment() - kNm * 500 * 0.25 * chain.force();
            const Result result = resultOf("c" + std::to_string(number));
            EXPECT_THAT(components(result.force), ElementsAre(0, -static_cast<float>(chain.force() + 500), 0));
            EXPECT_EQ(result.moment[1], 64) << number;   // a torque has no lever: nothing is added to it
            EXPECT_NEAR(double(result.moment[2]), moment, roundingBound(2 * (kLinks - number + 1) + 4, -moment));
        }
    });
}

// On hands and knees the walk at the right knee meets the toes, and with them the chain.
TEST_F(DeepChain, OnAToeIsSummedOnHandsAndKnees)
{
    loadChain("right_toes", {-10, 0, 5});
    runOnSmallStack([this] {
        compute(qmStaticStrength::HandsAndKnees);
        expectChain();
    });
}

// The figure comes and goes on the small stack as well, and a reset finds the load at its end again.
TEST_F(DeepChain, IsMadeResetReportedAndDestroyedWithoutDeepRecursion)
{
    runOnSmallStack([this] {
        loadChain("right_hand", {-20, 72, 0});
        analysis->setWeightLoad(site("k" + last + ".a"), 1500);
        analysis->reset();
        EXPECT_EQ(analysis->getSiteWeight(site("k" + last + ".a")), 1500);
        EXPECT_STREQ(analysis->reportLoads(1), ("k" + last + ".a\tWeight: 1500.0 gr").c_str());
        EXPECT_EQ(joint("c" + last)->getSite(1), site("k" + last + ".a"));
        analyses.clear();
        scene.reset();
    });
}

// ---- Wide

// m segments of 1 kgf hang side by side on one site of the right hand, number i at 0.25 i cm to its left. One joint
// finds its own segment: 1 kgf and -0.0980665 · 0.25 i N·m (3 roundings). The wrist, 8 cm above the palm's place and in
// the same vertical as the hook, finds all:
//   force   m + 0.5 kgf, exact
//   moment  Mz = -0.0980665 · 0.25 · m (m + 1) / 2 N·m
class WideFan : public DeepAndWide {
protected:
    void SetUp() override
    {
        loadText(LargeFigure(smallBody(), "right_hand", {-20, 72, 0}).fan(kFan, 1000, {0.25, 0, 0}).text());
    }
    std::string key(int i) const { return "w" + std::to_string(i) + ".a"; }
    double fanMoment() const { return -kNm * 0.125 * kFan * (kFan + 1.0); }
};

TEST_F(WideFan, OfTenThousandJointsAtOneSiteIsSummed)
{
    int atHook = 0;
    for (qList* node = static_cast<qcSiteImp*>(site("right_hand.hook"))->getJoints(); node;
         node = qList::iterator(nullptr, node))
        ++atHook;
    EXPECT_EQ(atHook, kFan);
    compute(qmStaticStrength::TwoFeet);
    const Result wrist = resultOf("right_wrist");
    EXPECT_THAT(components(wrist.force), ElementsAre(0, -(kFan + 0.5f), 0));
    EXPECT_NEAR(double(wrist.moment[2]), fanMoment(), roundingBound(kFan + 5, -fanMoment()));
    for (const int i : {1, 2, kFan / 2, kFan}) {
        const Result result = resultOf("f" + std::to_string(i));
        EXPECT_THAT(components(result.force), ElementsAre(0, -1, 0)) << i;
        EXPECT_NEAR(double(result.moment[2]), -kNm * 0.25 * i, roundingBound(3, kNm * 0.25 * i)) << i;
    }
}

// On each of the first 5 000 segments 2 kgf, and on each of the others 1 kgf at 4 cm to the left of its site. With
// m = 10 000, h = m / 2:
//   force   m + 0.5 + 2 h + h kgf
//   moment  Mz = -0.0980665 (0.125 m (m + 1) + 2 · 0.125 h (h + 1) + Σ_{i = h+1}^{m} (0.25 i + 4)) N·m
TEST_F(WideFan, CarriesFiveThousandLoadsAndFiveThousandLoadsWithOffsets)
{
    const int half = kFan / 2;
    // as a saved scene brings them: set one by one, each would copy the list of those before it
    std::vector<qcValue> loads, offsets;
    for (int i = 1; i <= half; ++i)
        loads.push_back(list({text(key(i).c_str()), vector(0, -2, 0), text("global")}));
    for (int i = half + 1; i <= kFan; ++i)
        offsets.push_back(list({text(key(i).c_str()), vector(4, 0, 0), vector(0, -1, 0), text("global")}));
    figure->setProperty("SSTR_LoadList", listOf(loads));
    figure->setProperty("SSTR_LoadWithOffsetList", listOf(offsets));
    ASSERT_EQ(analysis->reset(), 1);
    ASSERT_EQ(analysis->getNumLoads(), half);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), half);

    compute(qmStaticStrength::TwoFeet);
    const double m = kFan, h = half;
    const double moment =
        -kNm * (0.125 * m * (m + 1) + 0.25 * h * (h + 1) + 0.125 * (m * (m + 1) - h * (h + 1)) + 4 * (m - h));
    const Result wrist = resultOf("right_wrist");
    EXPECT_THAT(components(wrist.force), ElementsAre(0, -static_cast<float>(m + 0.5 + 3 * h), 0));
    EXPECT_NEAR(double(wrist.moment[2]), moment, roundingBound(3 * kFan, -moment));
}

// All at one site: 5 000 loads of 1 kgf at offsets of 0.25 i cm to the left of the hook, the list in the order of
// setting.
//   force   m + 0.5 + h kgf        Mz = the fan's and -0.0980665 · 0.125 h (h + 1) N·m
TEST_F(WideFan, CarriesFiveThousandLoadsWithOffsetsAtOneSite)
{
    const int half = kFan / 2;
    std::vector<qcValue> offsets;
    for (int i = 1; i <= half; ++i)
        offsets.push_back(list(
            {text("right_hand.hook"), vector(0.25f * static_cast<float>(i), 0, 0), vector(0, -1, 0), text("global")}));
    figure->setProperty("SSTR_LoadWithOffsetList", listOf(offsets));
    ASSERT_EQ(analysis->reset(), 1);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), half);
    EXPECT_EQ(analysis->getNthLoadWithOffset(half - 1)->offset[0], 0.25f * static_cast<float>(half));
    EXPECT_EQ(analysis->getNthLoadWithOffset(half), nullptr);

    compute(qmStaticStrength::TwoFeet);
    const double h = half, moment = fanMoment() - kNm * 0.125 * h * (h + 1);
    const Result wrist = resultOf("right_wrist");
    EXPECT_THAT(components(wrist.force), ElementsAre(0, -static_cast<float>(kFan + 0.5 + h), 0));
    EXPECT_NEAR(double(wrist.moment[2]), moment, roundingBound(2 * kFan, -moment));

    // one goes from their middle; the others keep their order
    ASSERT_EQ(analysis->removeLoadWithOffset(analysis->getNthLoadWithOffset(99)), 1);
    EXPECT_EQ(analysis->getNthLoadWithOffset(98)->offset[0], 0.25f * 99);
    EXPECT_EQ(analysis->getNthLoadWithOffset(99)->offset[0], 0.25f * 101);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), half - 1);
}

// All have a torque of 1 N·m about y, which the wrist finds summed.
TEST_F(WideFan, HasATorqueAtEachOfTenThousandJoints)
{
    std::vector<qcValue> torques;
    for (int i = 1; i <= kFan; ++i)
        torques.push_back(list({text(("f" + std::to_string(i)).c_str()), vector(0, 1, 0)}));
    figure->setProperty("SSTR_TorqueList", listOf(torques));
    ASSERT_EQ(analysis->reset(), 1);
    EXPECT_EQ(analysis->getNumDefinedTorques(), kFan);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(kFan - 1), joint("f10000"));
    compute(qmStaticStrength::TwoFeet);
    EXPECT_EQ(resultOf("right_wrist").moment[1], kFan);   // whole numbers: exact
}

// ---- Nested values

// An innermost text in `depth` lists.
qcValue nest(int depth, qcValue value)
{
    for (; depth > 0; --depth) {
        qcValue outer;
        outer.setList(new qcValue(std::move(value)));
        value = std::move(outer);
    }
    return value;
}

std::string nestText(int depth, const std::string& inner)
{
    const std::size_t size = static_cast<std::size_t>(depth);
    return std::string(size, '(') + inner + std::string(size, ')');
}

class NestedValues : public Compute {
protected:
    void SetUp() override { load(threeSites()); }
    static constexpr int kDepth = 100000;
};

TEST_F(NestedValues, AreCopiedStoredReadAndToldWithoutDeepRecursion)
{
    runOnSmallStack([this] {
        const qcValue value = nest(kDepth, qcValue("inmost"));
        figure->setProperty("nest", value);
        qcValue copy;
        ASSERT_EQ(figure->getProperty("nest", &copy), 1);
        EXPECT_EQ(copy.toText(), nestText(kDepth, "\"inmost\""));
        qcValue* duplicate = dupval(&copy);
        EXPECT_EQ(duplicate->toText(), nestText(kDepth, "\"inmost\""));
        qcValue::destroy(duplicate);
    });
}

// Lists beside lists at every level: ((((0) 1) 2) 3), and the mirrored (0 (1 (2 (3)))).
TEST_F(NestedValues, KeepTheirOrderAtEveryLevel)
{
    std::string left = "(0)", right = "(5000)";
    qcValue onLeft = list({number(0)}), onRight = list({number(5000)});
    for (int i = 1; i <= 5000; ++i) {
        left = "(" + left + " " + std::to_string(i) + ")";
        qcValue* first = new qcValue(std::exchange(onLeft, qcValue()));
        first->next = new qcValue(static_cast<float>(i));
        onLeft.setList(first);
        right = "(" + std::to_string(5000 - i) + " " + right + ")";
        qcValue* head = new qcValue(static_cast<float>(5000 - i));
        head->next = new qcValue(std::exchange(onRight, qcValue()));
        onRight.setList(head);
    }
    EXPECT_EQ(qcValue(onLeft).toText(), left);
    EXPECT_EQ(qcValue(onRight).toText(), right);
}

// A saved entry of such a kind is told, dropped, and the entry behind it restored.
TEST_F(NestedValues, InASavedListAreWarnedOfAndPassedOver)
{
    runOnSmallStack([this] {
        std::vector<qcValue> entries;
        entries.push_back(nest(kDepth, qcValue("inmost")));
        entries.push_back(list({text("hand.grip"), vector(0, -2, 0), text("global")}));
        figure->setProperty("SSTR_LoadList", listOf(entries));
        EXPECT_EQ(analysis->reset(), 0);
        EXPECT_THAT(log.takeTexts(),
                    ElementsAre("StaticStrength WARNING: cannot parse " + nestText(kDepth, "\"inmost\"") + "\n"));
        EXPECT_EQ(analysis->getNumLoads(), 1);
        qVector read;
        EXPECT_EQ(analysis->getSiteLoad(site("hand.grip"), read), 1);
        EXPECT_THAT(components(read), ElementsAre(0, -2, 0));
    });
}

TEST_F(NestedValues, AreNoLoadNoTorqueNoResultAndNoStrategy)
{
    runOnSmallStack([this] {
        const qcValue deep = nest(kDepth, qcValue("local"));
        site("hand.grip")->setProperty("SSTR_Load", deep);
        qVector vector;
        EXPECT_EQ(analysis->getSiteLoad(site("hand.grip"), vector), 0);
        EXPECT_EQ(analysis->getLoadType(site("hand.grip")), nullptr);
        EXPECT_EQ(analysis->getSiteWeight(site("hand.grip")), -1.0f);
        EXPECT_EQ(analysis->removeLoad(site("hand.grip")), 1);
        figure->setProperty("SSTR_Strategy", deep);
        EXPECT_STREQ(analysis->reportLoads(1), "No loads.");
        EXPECT_STREQ(analysis->reportLoads(), "Gravity: (0.00, -980.66, 0.00) cm/sec^2");
    });
}

}   // namespace
