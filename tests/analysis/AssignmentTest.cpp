// Assignment: copies and assigned objects, what they share, and who frees it.
#include "LifecycleSupport.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

TEST_F(Callbacks, CopyIsMemberWise)
{
    load(twoParts());
    analysis->setGravity({1, 2, 3});
    analysis->setStrategy(qmStaticStrength::LeftFoot);
    analysis->setProperty("colour", text("red"));
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    activateQuietly(*analysis, "script");
    for (int i = 0; i < 4; ++i)
        field(*analysis, SplitFactorsField())[i] = 0.125f * static_cast<float>(i + 1);
    field(*analysis, L5SegmentField()) = segment("arm");

    qmStaticStrength copy(*analysis);
    EXPECT_STREQ(copy.getName(), "man");
    EXPECT_STREQ(copy.getFullName(), "static_strength.man");
    EXPECT_EQ(stored(&copy, "colour"), "\"red\"");
    EXPECT_EQ(copy.getHuman(), human);
    EXPECT_EQ(field(copy, FigureField()), figure);
    EXPECT_THAT(components(field(copy, GravityField())), ElementsAre(1, 2, 3));
    EXPECT_EQ(copy.getStrategy(), qmStaticStrength::LeftFoot);
    EXPECT_THAT(field(copy, SplitFactorsField()), ElementsAre(0.125f, 0.25f, 0.375f, 0.5f));
    EXPECT_EQ(field(copy, L5SegmentField()), segment("arm"));
    // shared, not duplicated
    EXPECT_EQ(field(copy, AnthroScaleField()), field(*analysis, AnthroScaleField()));
    EXPECT_EQ(field(copy, CallbackField()), field(*analysis, CallbackField()));
    EXPECT_EQ(field(copy, ScriptField()), field(*analysis, ScriptField()));
    EXPECT_EQ(field(copy, ObserverField()), field(*analysis, ObserverField()));
    EXPECT_EQ(field(copy, OffsetLoadsField()), field(*analysis, OffsetLoadsField()));
    EXPECT_EQ(copy.getNthLoadWithOffset(0), record);
    EXPECT_EQ(copy.isActive(), 1);
    field(*analysis, L5SegmentField()) = nullptr;
}

TEST_F(Callbacks, DestroyingACopyHarmsNothing)
{
    load(twoParts());
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    activateQuietly(*analysis, "script");
    {
        qmStaticStrength copy(*analysis);
    }
    EXPECT_EQ(qmStaticStrength::getHandle(human), analysis);
    EXPECT_EQ(analysis->isActive(), 1);
    EXPECT_EQ(qcSim::getNumBound(), 1);
    EXPECT_EQ(field(*analysis, ObserverField())->getSubject(), figure);
    ASSERT_EQ(analysis->getNthLoadWithOffset(0), record);
    EXPECT_THAT(components(record->load), ElementsAre(0, -1, 0));
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("script"));
}

TEST_F(Callbacks, CopyThatOutlivesItsOriginalFreesNothing)
{
    load(twoParts());
    analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    activateQuietly(*analysis, "script");
    auto copy = std::make_unique<qmStaticStrength>(*analysis);
    dropAnalysis();
    copy.reset();   // the sanitizer sees a second release
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

TEST_F(Lifecycle, CopyIsNotInTheRegistry)
{
    load(twoParts());
    qmStaticStrength copy(*analysis);
    dropAnalysis();
    std::unique_ptr<qmStaticStrength> handle(qmStaticStrength::getHandle(human));
    EXPECT_NE(handle.get(), &copy);
}

TEST_F(Callbacks, AssignmentIsMemberWiseAndReturnsTheAssignedTo)
{
    load(twoParts("anna"));
    qmStaticStrength* anna = analysis;
    load(twoParts("bert"));
    qmStaticStrength* bert = analysis;
    bert->setGravity({1, 2, 3});
    bert->setStrategy(qmStaticStrength::RightFoot);
    bert->setProperty("colour", text("red"));
    bert->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    activateQuietly(*bert, "script");
    for (int i = 0; i < 4; ++i)
        field(*bert, SplitFactorsField())[i] = 0.125f * static_cast<float>(i + 1);
    field(*bert, L5SegmentField()) = segment("arm");

    EXPECT_EQ(&(*anna = *bert), anna);
    EXPECT_STREQ(anna->getName(), "bert");
    EXPECT_STREQ(anna->getFullName(), "static_strength.bert");
    EXPECT_EQ(stored(anna, "colour"), "\"red\"");
    EXPECT_THAT(field(*anna, SplitFactorsField()), ElementsAre(0.125f, 0.25f, 0.375f, 0.5f));
    EXPECT_EQ(field(*anna, L5SegmentField()), segment("arm"));
    EXPECT_EQ(anna->getHuman(), human);
    EXPECT_EQ(field(*anna, FigureField()), figure);
    EXPECT_THAT(components(field(*anna, GravityField())), ElementsAre(1, 2, 3));
    EXPECT_EQ(anna->getStrategy(), qmStaticStrength::RightFoot);
    EXPECT_EQ(field(*anna, AnthroScaleField()), field(*bert, AnthroScaleField()));
    EXPECT_EQ(field(*anna, CallbackField()), field(*bert, CallbackField()));
    EXPECT_EQ(field(*anna, ScriptField()), field(*bert, ScriptField()));
    EXPECT_EQ(field(*anna, ObserverField()), field(*bert, ObserverField()));
    EXPECT_EQ(field(*anna, OffsetLoadsField()), field(*bert, OffsetLoadsField()));
}

// The registry holds the objects, and asks each for its human. anna, registered first, is bert's human's from the
// assignment on; her own has none any more. When she goes, bert is found again.
TEST_F(Lifecycle, AssignmentLeavesTheRegistryAsItIs)
{
    load(twoParts("anna"));
    qmStaticStrength* anna = analysis;
    qcHuman* annasHuman = human;
    load(twoParts("bert"));
    qmStaticStrength* bert = analysis;
    *anna = *bert;
    EXPECT_EQ(qmStaticStrength::getHandle(human), anna);

    qmStaticStrength* fresh = qmStaticStrength::getHandle(annasHuman);
    ASSERT_TRUE(fresh != anna && fresh != bert);
    EXPECT_EQ(fresh->getHuman(), annasHuman);
    EXPECT_EQ(qmStaticStrength::getHandle(annasHuman), fresh);

    analyses.erase(analyses.begin());   // anna
    EXPECT_EQ(qmStaticStrength::getHandle(human), bert);
    EXPECT_EQ(qmStaticStrength::getHandle(annasHuman), fresh);
    delete fresh;
}

// Each has an observer, a record, a script and a callback of its own; after the assignment both point to
// the second one's. Whoever goes first, each is released once and nothing is left behind.
class AssignedObjects : public Callbacks, public ::testing::WithParamInterface<bool> {};

TEST_P(AssignedObjects, AreDestroyedInEitherOrder)
{
    const auto make = [this](const char* name, const char* script) {
        qmStaticStrength* made = qmStaticStrength::getHandle(addHuman(twoParts(name)));
        qcFigure* its = made->getHuman()->getFigure();
        made->setLoadWithOffset(its->findSiteByFullName((std::string(name) + ".hand.tip").c_str()), {1, 0, 0},
                                {0, -1, 0});
        activateQuietly(*made, script);
        return made;
    };
    std::unique_ptr<qmStaticStrength> anna(make("anna", "first")), bert(make("bert", "second"));
    *anna = *bert;
    if (GetParam()) {
        anna.reset();
        bert.reset();
    } else {
        bert.reset();
        anna.reset();
    }
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(qcSim::step(1), 0);   // calls nobody
    for (const char* name : {"anna", "bert"})
        EXPECT_THAT(scene->findHuman(name)->getFigure()->*get(ObserversField()), IsEmpty()) << name;
}
INSTANTIATE_TEST_SUITE_P(Order, AssignedObjects, ::testing::Bool());

// The callback runs the object that bound it. It ends with that object, although another one points to it too;
// a simulation step in between must not reach what is gone.
TEST_F(Callbacks, CallbackEndsWithItsObjectThoughAnAssignedOneSharesIt)
{
    load(twoParts("anna"));
    qmStaticStrength* anna = analysis;
    load(twoParts("bert"));
    activateQuietly(*analysis, "script");
    *anna = *analysis;
    dropAnalysis();   // bert, who bound it
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(qcSim::step(1), 0);
    EXPECT_EQ(anna->isActive(), 0);
    anna->run_script();   // gone with it
    EXPECT_THAT(scripts, IsEmpty());
}

// anna shares what bert bound; bert goes on when anna goes.
TEST_F(Callbacks, CallbackOutlivesAnObjectThatOnlySharesIt)
{
    load(twoParts("bert"));
    qmStaticStrength* bert = analysis;
    load(twoParts("anna"));
    activateQuietly(*bert, "script");
    *analysis = *bert;
    dropAnalysis();   // anna
    EXPECT_EQ(bert->isActive(), 1);
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(log.takeTexts(), Not(IsEmpty()));   // it computed: two parts have no legs to stand on
    EXPECT_THAT(scripts, ElementsAre("script"));
    bert->deactivate();
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

TEST_F(Callbacks, DeactivatingOneOfTwoThatShareEndsItForBoth)
{
    load(twoParts("bert"));
    qmStaticStrength* bert = analysis;
    load(twoParts("anna"));
    activateQuietly(*bert, "script");
    *analysis = *bert;
    analysis->deactivate();
    EXPECT_EQ(bert->isActive(), 0);
    EXPECT_EQ(qcSim::getNumBound(), 0);
    bert->run_script();
    EXPECT_THAT(scripts, IsEmpty());
}

TEST_F(Callbacks, CopyAssignedBackLeavesAllAsItWas)
{
    load(twoParts("anna"));
    qcSite* site = static_cast<qcSite*>(figure->getSites()->getData());
    const loadWithOffset* record = analysis->setLoadWithOffset(site, qVector(1, 2, 3), qVector(0, -1, 0));
    activateQuietly(*analysis, "script");
    const qmStaticStrength saved(*analysis);
    *analysis = saved;
    EXPECT_EQ(analysis->isActive(), 1);
    EXPECT_EQ(analysis->getNthLoadWithOffset(0), record);
    EXPECT_EQ(record->load[1], -1.0f);
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(log.takeTexts(), Not(IsEmpty()));   // it computed: two parts have no legs to stand on
    EXPECT_THAT(scripts, ElementsAre("script"));
}

TEST_F(Callbacks, CopyThatActivatedItselfUnbindsWhenItGoes)
{
    load(twoParts("anna"));
    {
        qmStaticStrength copy(*analysis);
        activateQuietly(copy, "script");
        EXPECT_EQ(qcSim::getNumBound(), 1);
    }
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(qcSim::step(1), 0);
}

TEST_F(Callbacks, AssignmentToItselfChangesNothing)
{
    load(twoParts());
    loadWithOffset* record = analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    activateQuietly(*analysis, "script");
    qmStaticStrength& itself = *analysis;
    *analysis = itself;
    EXPECT_EQ(analysis->getNthLoadWithOffset(0), record);
    EXPECT_EQ(analysis->isActive(), 1);
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("script"));
    EXPECT_EQ(qmStaticStrength::getHandle(human), analysis);
}

}   // namespace
