// Figure gone: an analysis whose human the host has destroyed. It touches nothing of it, says so and can be deleted.
#include "LifecycleSupport.h"

#include "qc/qcFigureFile.h"

#include <functional>
#include <utility>

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

namespace {

std::string gone(const std::string& member)
{
    return "StaticStrength ERROR: " + member + ": the human of man is gone";
}

// How the human may go. Its figure goes last by the host's rules, but nothing keeps it from going first.
enum class Way { kScene, kHumanAlone, kFigureAlone };

std::string nameOf(Way way)
{
    return way == Way::kScene ? "TheScene" : way == Way::kHumanAlone ? "TheHumanAlone" : "TheFigureAlone";
}

class FigureGone : public Callbacks, public ::testing::WithParamInterface<Way> {
protected:
    void SetUp() override
    {
        Callbacks::SetUp();
        if (GetParam() == Way::kScene) {
            load(smallBody());
        } else {
            own.reset(qcFigureFile::readPosedText(smallBody().text().c_str(), "man"));
            ownHuman.reset(qcHuman::create(own.get()));
            ASSERT_NE(ownHuman, nullptr);
            human = ownHuman.get();
            figure = own.get();
            makeAnalysis();
        }
        grip = site("right_hand.right_palmcenter");
        knee = joint("right_knee");
        analysis->setLoad(grip, {0, -1, 0});
        analysis->setLoadWithOffset(grip, {1, 0, 0}, {0, -2, 0});
        torque.set(0, 0, 3);
        analysis->setDefinedTorque(knee, torque);
        analysis->setStrategy(qmStaticStrength::Sitting);
    }
    void TearDown() override
    {
        analyses.clear();
        ownHuman.reset();
        own.reset();
        Callbacks::TearDown();
    }
    void destroy()
    {
        scene.reset();
        if (GetParam() == Way::kFigureAlone)
            own.reset();
        else
            ownHuman.reset();
    }

    // What an analysis says of itself, and the messages that it costs.
    std::vector<std::string> answersOf(qmStaticStrength& asked)
    {
        qVector out(7, 8, 9), other;
        std::vector<std::string> answers = {asked.getName(), asked.getFullName(), asked.getHuman() ? "human" : "none"};
        for (const double number :
             {double(asked.getGravity(out)), double(out[1]), double(asked.getStrategy()), double(asked.isActive()),
              double(asked.getNumLoadsWithOffset()), double(asked.getNthLoadWithOffset(0)->load[1]),
              double(asked.compute()), double(asked.getNumLoads()), double(asked.getNumDefinedTorques()),
              double(asked.getSplitFactor(knee, 1, "waist")), double(asked.getJointForces(knee, out, other)),
              double(asked.setWeightLoad(grip, 500)), double(asked.reset())})
            answers.push_back(std::to_string(number));
        const std::vector<std::string> texts = log.takeTexts();
        answers.insert(answers.end(), texts.begin(), texts.end());
        return answers;
    }

    std::unique_ptr<qcFigure> own;
    std::unique_ptr<qcHuman> ownHuman;
    qcSite* grip = nullptr;
    qcJoint* knee = nullptr;
    qVector torque;
};

// Parts of the figure are handed in as well: they are gone with it, and not looked at.
TEST_P(FigureGone, EveryMemberThatNeedsTheFigureFailsAndSaysSo)
{
    loadWithOffset* record = analysis->getNthLoadWithOffset(0);
    destroy();
    qVector out(7, 8, 9), other(4, 5, 6);
    const std::vector<std::pair<std::string, std::function<bool()>>> members = {
        {"setGravity",
         [&] {
             return analysis->setGravity({0, -1, 0}), true;
         }},
        {"setStrategy", [&] { return analysis->setStrategy(qmStaticStrength::LeftFoot), true; }},
        {"setLoad",
         [&] {
             return analysis->setLoad(grip, {0, -1, 0}) == 0;
         }},
        {"setWeightLoad", [&] { return analysis->setWeightLoad(grip, 500) == 0; }},
        {"removeLoad", [&] { return analysis->removeLoad(grip) == 0; }},
        {"getNumLoads", [&] { return analysis->getNumLoads() == 0; }},
        {"getNthLoadSite", [&] { return analysis->getNthLoadSite(0) == nullptr; }},
        {"getLoadType", [&] { return analysis->getLoadType(grip) == nullptr; }},
        {"getSiteWeight", [&] { return analysis->getSiteWeight(grip) == -1.0f; }},
        {"getSiteLoad", [&] { return analysis->getSiteLoad(grip, out) == 0; }},
        {"setLoadWithOffset",
         [&] {
             return analysis->setLoadWithOffset(grip, {}, {0, -1, 0}) == nullptr;
         }},
        {"setWeightLoadWithOffset", [&] { return analysis->setWeightLoadWithOffset(grip, {}, 5) == nullptr; }},
        {"removeLoadWithOffset", [&] { return analysis->removeLoadWithOffset(record) == 0; }},
        {"setDefinedTorque", [&] { return analysis->setDefinedTorque(knee, torque) == 0; }},
        {"removeDefinedTorque", [&] { return analysis->removeDefinedTorque(knee) == 0; }},
        {"getNumDefinedTorques", [&] { return analysis->getNumDefinedTorques() == 0; }},
        {"getNthDefinedTorqueJoint", [&] { return analysis->getNthDefinedTorqueJoint(0) == nullptr; }},
        {"getDefinedTorque", [&] { return analysis->getDefinedTorque(knee, out) == 0; }},
        {"clear", [&] { return analysis->clear(), true; }},
        {"reset", [&] { return analysis->reset() == 0; }},
        {"reportLoads", [&] { return analysis->reportLoads(1) == nullptr; }},
        {"compute", [&] { return analysis->compute() == 1; }},
        {"setFMonJoint", [&] { return analysis->setFMonJoint(knee, {}, {}), true; }},
        {"getSplitFactor", [&] { return analysis->getSplitFactor(knee, 1, "waist") == 0.0f; }},
        {"activate",
         [&] {
             const bool refused = activateQuietly(*analysis, "script") == 0;
             return refused && analysis->isActive() == 0;
         }},
    };
    for (const auto& [name, fails] : members) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(fails());
        EXPECT_THAT(log.takeTexts(), ElementsAre(gone(name)));
    }
    EXPECT_THAT(components(out), ElementsAre(7, 8, 9));

    EXPECT_EQ(analysis->getJointForces(knee, out, other), 0);
    EXPECT_THAT(components(out), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(other), ElementsAre(0, 0, 0));
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("getJointForces")));
}

TEST_P(FigureGone, WhatTheAnalysisKeepsItselfIsStillThere)
{
    destroy();
    qVector out;
    EXPECT_EQ(analysis->getHuman(), nullptr);
    EXPECT_FLOAT_EQ(analysis->getGravity(out), 980.665f);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 1);
    EXPECT_THAT(components(analysis->getNthLoadWithOffset(0)->load), ElementsAre(0, -2, 0));
    EXPECT_EQ(analysis->isActive(), 0);
    EXPECT_EQ(analysis->deactivate(), 1);
    analysis->run_script();
    qVector zero, sumForce, sumMoment;
    analysis->calcForcesAt(zero, zero, torque, sumForce, sumMoment);
    EXPECT_THAT(components(sumForce), ElementsAre(0, 0, 3));
    EXPECT_STREQ(analysis->getName(), "man");
}

TEST_P(FigureGone, ARefusedChangeChangesNothing)
{
    destroy();
    qVector out;
    analysis->setGravity({0, -1, 0});
    analysis->setStrategy(qmStaticStrength::LeftFoot);
    analysis->clear();
    analysis->reset();
    log.take();
    EXPECT_FLOAT_EQ(analysis->getGravity(out), 980.665f);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
}

TEST_P(FigureGone, AnActiveAnalysisSaysSoOnEveryStepUntilItIsDeactivated)
{
    activateQuietly(*analysis, "script");
    destroy();
    EXPECT_EQ(qcSim::step(2), 2);
    EXPECT_EQ(qcSim::getResult(0), 1);
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("compute"), gone("compute")));
    EXPECT_THAT(scripts, ElementsAre("script", "script"));
    EXPECT_EQ(analysis->deactivate(), 1);
    EXPECT_EQ(qcSim::step(1), 0);
}

TEST_P(FigureGone, CopiesKnowItToo)
{
    qmStaticStrength copy(*analysis);
    load(smallBody("other"));
    qmStaticStrength assigned(*analysis);   // of the other one first
    assigned = copy;
    analyses.pop_back();
    destroy();
    EXPECT_EQ(copy.compute(), 1);
    EXPECT_EQ(assigned.getNumLoads(), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("compute"), gone("getNumLoads")));
}

// A copy, and an analysis that is assigned to, share what the original keeps; the last of them frees it.
TEST_P(FigureGone, ACopyMadeAfterwardsAnswersAsTheOriginal)
{
    destroy();
    const std::vector<std::string> expected = answersOf(*analysis);
    EXPECT_THAT(expected, IsSupersetOf({gone("compute"), gone("getNumLoads"), gone("reset")}));
    auto copy = std::make_unique<qmStaticStrength>(*analysis);
    qmStaticStrength copyOfCopy(*copy);
    EXPECT_EQ(answersOf(*copy), expected);
    EXPECT_EQ(answersOf(*analysis), expected);
    EXPECT_EQ(copy->getNthLoadWithOffset(0), analysis->getNthLoadWithOffset(0));
    copy.reset();
    EXPECT_EQ(answersOf(copyOfCopy), expected);
    EXPECT_EQ(answersOf(*analysis), expected);
}

TEST_P(FigureGone, OriginalAndCopyMadeAfterwardsCanBeDeletedInEitherOrder)
{
    destroy();
    const std::vector<std::string> expected = answersOf(*analysis);
    analyses.push_back(std::make_unique<qmStaticStrength>(*analysis));
    analyses.push_back(std::make_unique<qmStaticStrength>(*analysis));
    analyses[2].reset();   // a copy before the original
    EXPECT_EQ(answersOf(*analyses[0]), expected);
    analyses[0].reset();   // the original before a copy
    EXPECT_EQ(answersOf(*analyses[1]), expected);
    analyses[1].reset();
}

TEST_P(FigureGone, AnActiveOnesCopyMadeAfterwardsIsActiveAsLongAsTheOriginal)
{
    activateQuietly(*analysis, "script");
    destroy();
    const std::vector<std::string> expected = answersOf(*analysis);
    auto first = std::make_unique<qmStaticStrength>(*analysis);
    qmStaticStrength second(*analysis);
    EXPECT_EQ(answersOf(second), expected);
    EXPECT_EQ(second.isActive(), 1);
    first.reset();
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(scripts, ElementsAre("script"));
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("compute")));
    dropAnalysis();
    EXPECT_EQ(second.isActive(), 0);
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(second.compute(), 1);
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("compute")));
}

TEST_P(FigureGone, WhatItIsAssignedToAnswersAsItDoes)
{
    destroy();
    qmStaticStrength& original = *analysis;
    const std::vector<std::string> expected = answersOf(original);
    const qmStaticStrength& itself = original;
    original = itself;
    EXPECT_EQ(answersOf(original), expected);

    scene = std::make_unique<qcScene>();
    load(smallBody("other"));
    activateQuietly(*analysis, "other");   // and is so no more
    *analysis = original;
    EXPECT_EQ(answersOf(*analysis), expected);
    EXPECT_EQ(answersOf(original), expected);
    EXPECT_EQ(qcSim::getNumBound(), 0);
    analyses[0].reset();
    EXPECT_EQ(answersOf(*analysis), expected);
    dropAnalysis();
    scene.reset();
}

TEST_P(FigureGone, AssignedFromAnotherItIsTheOthers)
{
    analysis->setName("forsaken");
    destroy();
    qmStaticStrength& assigned = *analysis;
    const qmStaticStrength copy(assigned);   // shares what is let go of
    scene = std::make_unique<qcScene>();
    load(smallBody("other"));
    analysis->setWeightLoad(site("right_hand.right_palmcenter"), 2000);
    assigned = *analysis;
    EXPECT_EQ(assigned.getHuman(), human);
    EXPECT_STREQ(assigned.getName(), "other");
    EXPECT_EQ(assigned.getNumLoads(), 1);
    EXPECT_EQ(assigned.getNumLoadsWithOffset(), 0);
    EXPECT_EQ(assigned.compute(), 1);
    // kgf at the waist: the nine segments above weigh 29, and 2 lie in the hand
    EXPECT_NEAR(double(resultOf("waist").force[1]), -31.0, roundingBound(10, 31));
    dropAnalysis();
    EXPECT_EQ(assigned.getNumLoads(), 1);
    scene.reset();
    EXPECT_EQ(assigned.getNumLoads(), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: getNumLoads: the human of other is gone"));
}

TEST_P(FigureGone, TheAnalysisCanBeDeletedActiveOrNot)
{
    activateQuietly(*analysis, "script");
    destroy();
    analyses.clear();
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(qcSim::step(1), 0);
}

INSTANTIATE_TEST_SUITE_P(With, FigureGone, ::testing::Values(Way::kScene, Way::kHumanAlone, Way::kFigureAlone),
                         [](const auto& tested) { return nameOf(tested.param); });

class FigureAloneGone : public FigureGone {};

// The human can be asked for; an analysis cannot be made of it any more.
TEST_P(FigureAloneGone, TheHumanIsGivenNoAnalysis)
{
    destroy();
    EXPECT_EQ(qmStaticStrength::getHandle(human), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("getHandle")));
}

INSTANTIATE_TEST_SUITE_P(With, FigureAloneGone, ::testing::Values(Way::kFigureAlone),
                         [](const auto& tested) { return nameOf(tested.param); });

// ---- In a script ---------------------------------------------------------------------------------

using InAScript = Callbacks;

TEST_F(InAScript, TheSceneOfTheRunningAnalysisMayBeClosed)
{
    load(smallBody());
    onScript = [this] { scene.reset(); };
    activateQuietly(*analysis, "close()");
    EXPECT_EQ(qcSim::step(2), 2);
    EXPECT_THAT(scripts, ElementsAre("close()", "close()"));
    EXPECT_THAT(log.takeTexts(), ElementsAre(gone("compute")));   // of the second step
}

TEST_F(InAScript, TheSceneMayBeClosedAndItsAnalysisDeleted)
{
    load(smallBody());
    onScript = [this] {
        scene.reset();
        dropAnalysis();
    };
    activateQuietly(*analysis, "end()");
    EXPECT_EQ(qcSim::step(2), 1);
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

// Of three that run one after the other, the second one's script deletes the first or the third.
TEST_F(InAScript, AnotherAnalysisMayBeDeletedBeforeOrAfterItsTurn)
{
    for (const std::size_t victim : {0u, 2u}) {
        SCOPED_TRACE(victim);
        scripts.clear();
        analyses.clear();
        scene = std::make_unique<qcScene>();
        for (const char* name : {"anna", "bert", "carl"}) {
            load(smallBody(name));
            activateQuietly(*analysis, name);
        }
        onScript = [this, victim] {
            if (scripts.back() == "bert" && analyses[victim])
                analyses[victim].reset();
        };
        EXPECT_EQ(qcSim::step(1), victim == 0 ? 3 : 2);
        EXPECT_EQ(qcSim::step(1), 2);
        EXPECT_EQ(qcSim::getNumBound(), 2);
        EXPECT_EQ(scripts, victim == 0 ? (std::vector<std::string>{"anna", "bert", "carl", "bert", "carl"})
                                       : (std::vector<std::string>{"anna", "bert", "anna", "bert"}));
    }
    analyses.clear();
}

TEST_F(InAScript, AllAnalysesMayBeDeletedAndNewOnesMade)
{
    load(smallBody("anna"));
    load(smallBody("bert"));
    for (const auto& each : analyses)
        activateQuietly(*each, each->getName());
    onScript = [this] {
        onScript = nullptr;
        analyses.clear();
        makeAnalysis();
        activateQuietly(*analysis, "new");
    };
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(scripts, ElementsAre("anna", "new"));
}

}   // namespace
