// Lifecycle: construction, registry, strategy, gravity, the anthropometric scale and the simulation callback.
#include "LifecycleSupport.h"

#include "StrategyNames.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// ---- Construction --------------------------------------------------------------------------------

TEST_F(Lifecycle, FreshObjectOfAFigureWithoutPropertiesHasTheDefaults)
{
    load(twoParts());

    qVector gravity;
    analysis->getGravity(gravity);
    EXPECT_THAT(components(gravity), ElementsAre(0, -980.665f, 0));
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::TwoFeet);
    EXPECT_EQ(analysis->getHuman(), human);
    EXPECT_EQ(analysis->getNumLoads(), 0);
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 0);
    EXPECT_EQ(analysis->getNumDefinedTorques(), 0);
    EXPECT_EQ(analysis->isActive(), 0);
    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "\"Two Feet\"");
    EXPECT_EQ(figure->getNumProperties(), 1);   // the strategy, nothing else
}

TEST_F(Lifecycle, IsNamedAfterTheFigure)
{
    load(twoParts("worker"));
    EXPECT_STREQ(analysis->getName(), "worker");
    EXPECT_STREQ(analysis->getFullName(), "static_strength.worker");
}

TEST_F(Lifecycle, FieldsAfterConstruction)
{
    load(twoParts());
    EXPECT_EQ(field(*analysis, HumanField()), human);
    EXPECT_EQ(field(*analysis, FigureField()), figure);
    EXPECT_EQ(field(*analysis, L5SegmentField()), nullptr);
    EXPECT_EQ(field(*analysis, AnthroScaleField()), human->getAnthroscale());
    EXPECT_EQ(field(*analysis, CallbackField()), nullptr);
    EXPECT_EQ(field(*analysis, ScriptField()), nullptr);
    ASSERT_NE(field(*analysis, ObserverField()), nullptr);
    EXPECT_EQ(field(*analysis, ObserverField())->getSubject(), figure);
    EXPECT_EQ(field(*analysis, ObserverField())->getObject(), analysis);
    ASSERT_NE(field(*analysis, OffsetLoadsField()), nullptr);
    EXPECT_THAT(*field(*analysis, OffsetLoadsField()), IsEmpty());
}

// The order of the fields is part of the interface. On a 64-bit platform, in bytes after the base:
//   human 0, figure 8, gravity 16 (three floats), strategy 28, split factors 32 (four floats),
//   l5Segment 48, anthroScale 56, callback 64, script 72, observer 80, offsetLoads 88, end 96
TEST_F(Lifecycle, FieldsFollowTheBaseInDeclarationOrder)
{
    static_assert(sizeof(void*) == 8 && sizeof(qmStaticStrength::Strategy) == 4);
    load(twoParts());
    const auto offset = [this](const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(analysis)
               - static_cast<std::ptrdiff_t>(sizeof(qcObject));
    };
    EXPECT_EQ(offset(field(*analysis, HumanField())), 0);
    EXPECT_EQ(offset(field(*analysis, FigureField())), 8);
    EXPECT_EQ(offset(field(*analysis, GravityField())), 16);
    EXPECT_EQ(offset(field(*analysis, StrategyInForceField())), 28);
    EXPECT_EQ(offset(field(*analysis, SplitFactorsField())), 32);
    EXPECT_EQ(offset(field(*analysis, L5SegmentField())), 48);
    EXPECT_EQ(offset(field(*analysis, AnthroScaleField())), 56);
    EXPECT_EQ(offset(field(*analysis, CallbackField())), 64);
    EXPECT_EQ(offset(field(*analysis, ScriptField())), 72);
    EXPECT_EQ(offset(field(*analysis, ObserverField())), 80);
    EXPECT_EQ(offset(field(*analysis, OffsetLoadsField())), 88);
    EXPECT_EQ(sizeof(qmStaticStrength), sizeof(qcObject) + 96);
}

// A pointer to a virtual member holds the byte offset of its slot (plus 1, or with a flag beside it).
template <class Member> std::size_t slotOf(Member member)
{
    std::uintptr_t word = 0;
    static_assert(sizeof member >= sizeof word);
    std::memcpy(&word, &member, sizeof word);
    return (word & ~std::uintptr_t{1}) / sizeof(void*);
}

// Slots 0 and 1 are the destructor, in its two forms.
TEST_F(Lifecycle, VirtualOperationsAreThoseOfAnObjectInOrder)
{
    EXPECT_EQ(slotOf(&qmStaticStrength::attach), 2u);
    EXPECT_EQ(slotOf(&qmStaticStrength::detach), 3u);
    EXPECT_EQ(slotOf(&qmStaticStrength::notify), 4u);
    EXPECT_EQ(slotOf(&qmStaticStrength::invalid), 5u);
    EXPECT_EQ(slotOf(&qmStaticStrength::setName), 6u);
    EXPECT_EQ(slotOf(&qmStaticStrength::toText), 7u);
    EXPECT_EQ(slotOf(static_cast<void (qcObject::*)(long)>(&qmStaticStrength::setTimestamp)), 8u);
    EXPECT_EQ(slotOf(static_cast<void (qcObject::*)()>(&qmStaticStrength::setTimestamp)), 9u);
    EXPECT_EQ(slotOf(&qmStaticStrength::sprint), 10u);
    EXPECT_EQ(slotOf(&qmStaticStrength::searchProperty), 11u);

    // nothing but the destructor is overridden
    load(twoParts());
    const qcObject plain;
    const auto table = [](const qcObject& object) {
        void* const* slots = nullptr;
        std::memcpy(&slots, static_cast<const void*>(&object), sizeof slots);
        return slots;
    };
    EXPECT_NE(table(plain)[0], table(*analysis)[0]);
    for (int slot = 2; slot <= 11; ++slot)
        EXPECT_EQ(table(plain)[slot], table(*analysis)[slot]) << "slot " << slot;
}

// A class derived from it starts where an object's operations end: there is no further one in between.
TEST_F(Lifecycle, AddsNoVirtualOperation)
{
    struct Derived : qmStaticStrength {
        virtual int own() { return 1; }
    };
    EXPECT_EQ(slotOf(&Derived::own), 12u);
}

// The saved weight of 1000 g comes back along the default gravity, whatever was stored beside it.
TEST_F(Lifecycle, ConstructionRestoresWhatTheFigureWasSavedWith)
{
    load(twoParts()
             .property(onFigure(), "SSTR_Strategy", inFile(text("Walking")))
             .property(onFigure(), "SSTR_LoadList",
                       inFile(list({list({text("hand.grip"), vector(0, -3, 0), text("weight"), number(1000)})})))
             .property(onFigure(), "SSTR_TorqueList", inFile(list({list({text("wrist"), vector(1, 2, 3)})})))
             .property(onFigure(), "SSTR_LoadWithOffsetList",
                       inFile(list({list({text("hand.tip"), vector(0, 0, 5), vector(0, 1, 0), text("local")})}))));

    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Walking);
    qVector load, torque;
    EXPECT_EQ(analysis->getSiteLoad(site("hand.grip"), load), 1);
    EXPECT_THAT(components(load), ElementsAre(0, ::testing::FloatEq(-1), 0));
    EXPECT_EQ(analysis->getDefinedTorque(joint("wrist"), torque), 1);
    EXPECT_THAT(components(torque), ElementsAre(1, 2, 3));
    EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
}

// ---- Registry ------------------------------------------------------------------------------------

TEST_F(Lifecycle, HandleOfAHumanIsOneObject)
{
    qcHuman* someone = addHuman(twoParts());
    qmStaticStrength* first = qmStaticStrength::getHandle(someone);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->getHuman(), someone);
    EXPECT_EQ(qmStaticStrength::getHandle(someone), first);
    delete first;
}

TEST_F(Lifecycle, HandlesOfSeveralHumansAreSeveralObjects)
{
    std::vector<qcHuman*> humans;
    std::vector<qmStaticStrength*> handles;
    for (const char* name : {"anna", "bert", "carl"}) {
        humans.push_back(addHuman(twoParts(name)));
        handles.push_back(qmStaticStrength::getHandle(humans.back()));
    }
    // asked again, in another order
    for (std::size_t i : {2u, 0u, 1u}) {
        EXPECT_EQ(qmStaticStrength::getHandle(humans[i]), handles[i]);
        EXPECT_EQ(handles[i]->getHuman(), humans[i]);
    }

    // the middle one goes, the others stay
    delete handles[1];
    EXPECT_EQ(qmStaticStrength::getHandle(humans[0]), handles[0]);
    EXPECT_EQ(qmStaticStrength::getHandle(humans[2]), handles[2]);
    delete handles[0];
    EXPECT_EQ(qmStaticStrength::getHandle(humans[2]), handles[2]);
    delete handles[2];
}

TEST_F(Lifecycle, HandleAfterDeletionIsANewObjectWithTheStoredStrategy)
{
    qcHuman* someone = addHuman(twoParts());
    qmStaticStrength* first = qmStaticStrength::getHandle(someone);
    first->setStrategy(qmStaticStrength::SittingNoFeet);
    first->setGravity({0, -1, 0});
    delete first;

    std::unique_ptr<qmStaticStrength> second(qmStaticStrength::getHandle(someone));
    EXPECT_EQ(second->getStrategy(), qmStaticStrength::SittingNoFeet);
    qVector gravity;   // is not stored
    EXPECT_EQ(second->getGravity(gravity), 980.665f);
}

TEST_F(Lifecycle, DirectlyConstructedObjectIsTheHandle)
{
    load(twoParts());
    EXPECT_EQ(qmStaticStrength::getHandle(human), analysis);
}

TEST_F(Lifecycle, HandleIsTheFirstRegisteredOfSeveralObjectsOfOneHuman)
{
    load(twoParts());
    qmStaticStrength* first = analysis;
    auto second = std::make_unique<qmStaticStrength>(human);
    auto third = std::make_unique<qmStaticStrength>(human);
    EXPECT_EQ(qmStaticStrength::getHandle(human), first);
    dropAnalysis();
    EXPECT_EQ(qmStaticStrength::getHandle(human), second.get());
    third.reset();
    EXPECT_EQ(qmStaticStrength::getHandle(human), second.get());
}

// ---- Destruction ---------------------------------------------------------------------------------

TEST_F(Lifecycle, DestructionLeavesTheProperties)
{
    load(twoParts());
    qVector torque(1, 2, 3);
    analysis->setStrategy(qmStaticStrength::Sitting);
    analysis->setLoad(site("hand.grip"), {0, -2, 0});
    analysis->setDefinedTorque(joint("wrist"), torque);
    analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    dropAnalysis();

    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "\"Sitting\"");
    EXPECT_EQ(stored(figure, "SSTR_LoadList"), "[[\"hand.grip\", (0, -2, 0), \"global\"]]");
    EXPECT_EQ(stored(figure, "SSTR_TorqueList"), "[[\"wrist\", (1, 2, 3)]]");
    EXPECT_EQ(stored(figure, "SSTR_LoadWithOffsetList"), "[[\"hand.tip\", (1, 0, 0), (0, -1, 0), \"global\"]]");
    EXPECT_EQ(stored(site("hand.grip"), "SSTR_Load"), "[(0, -2, 0), \"global\"]");
    EXPECT_EQ(stored(joint("wrist"), "SSTR_Torque"), "[(1, 2, 3)]");
    EXPECT_EQ(stored(site("hand.tip"), "SSTR_LoadsWithOffsets"), "[[(1, 0, 0), (0, -1, 0), \"global\"]]");
}

TEST_F(Lifecycle, ObserverComesAndGoesWithTheObject)
{
    load(twoParts());
    std::vector<qcObserver*>& observers = figure->*get(ObserversField());
    EXPECT_THAT(observers, ElementsAre(field(*analysis, ObserverField())));
    figure->notify(qcChanged);
    dropAnalysis();
    EXPECT_THAT(observers, IsEmpty());
    figure->notify(qcChanged);   // reaches nobody
}

// The host may close a scene first: the observer then refers to nothing, and the analysis can still go.
TEST_F(Lifecycle, ObserverDoesNotDangleWhenTheFigureGoesFirst)
{
    load(twoParts());
    analysis->setLoadWithOffset(site("hand.tip"), {1, 0, 0}, {0, -1, 0});
    scene.reset();
    EXPECT_EQ(field(*analysis, ObserverField())->getSubject(), nullptr);
    dropAnalysis();
}

// ---- Strategy ------------------------------------------------------------------------------------

TEST(StrategyNames, AreSixTextsInOrder)
{
    const char* names[] = {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_STREQ(qmStaticStrength::getStrategyName(static_cast<qmStaticStrength::Strategy>(i)), names[i]);
        EXPECT_EQ(strategyIndex(names[i]), i);
    }
}

TEST(StrategyNames, ValuesOfTheEnumeration)
{
    EXPECT_EQ(qmStaticStrength::TwoFeet, 0);
    EXPECT_EQ(qmStaticStrength::RightFoot, 1);
    EXPECT_EQ(qmStaticStrength::LeftFoot, 2);
    EXPECT_EQ(qmStaticStrength::Walking, 3);
    EXPECT_EQ(qmStaticStrength::Sitting, 4);
    EXPECT_EQ(qmStaticStrength::SittingNoFeet, 5);
    EXPECT_EQ(qmStaticStrength::N_STRS, 6);
    EXPECT_EQ(qmStaticStrength::HandsAndKnees, 7);
}

TEST(StrategyNames, ValuesOutsideHaveNone)
{
    EXPECT_EQ(qmStaticStrength::getStrategyName(qmStaticStrength::N_STRS), nullptr);
    EXPECT_EQ(qmStaticStrength::getStrategyName(qmStaticStrength::HandsAndKnees), nullptr);
    for (const int value : {-1, 8, 100})
        EXPECT_EQ(qmStaticStrength::getStrategyName(static_cast<qmStaticStrength::Strategy>(value)), nullptr);
}

TEST_F(Lifecycle, StrategyOutsideTheTableIsKeptAndComputesNothing)
{
    load(twoParts("anna"));
    for (const int value : {-1, 8, 100}) {
        const auto strategy = static_cast<qmStaticStrength::Strategy>(value);
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->getStrategy(), strategy);
        EXPECT_EQ(analysis->compute(), 1);
        EXPECT_EQ(analysis->getStrategy(), strategy);
    }
}

TEST(StrategyNames, LookUpIsExact)
{
    EXPECT_EQ(strategyIndex(nullptr), 0);
    for (const char* none : {"", "sitting", "SITTING", "Sitting ", " Sitting", "Sitting,No Feet", "Sitting No Feet",
                             "Two  Feet", "TwoFeet", "Hands And Knees", "Walking\n"})
        EXPECT_EQ(strategyIndex(none), 6) << '"' << none << '"';
}

TEST_F(Lifecycle, SetStrategyStoresItsName)
{
    load(twoParts());
    const char* names[] = {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"};
    for (int i : {5, 4, 3, 2, 1, 0}) {
        const auto strategy = static_cast<qmStaticStrength::Strategy>(i);
        const long before = figure->getTimestamp();
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->getStrategy(), strategy);
        EXPECT_EQ(stored(figure, "SSTR_Strategy"), '"' + std::string(names[i]) + '"');
        EXPECT_GT(figure->getTimestamp(), before);   // the host sees a changed figure
    }
}

TEST_F(Lifecycle, StrategyWithoutANameIsKeptButNotStored)
{
    load(twoParts());
    analysis->setStrategy(qmStaticStrength::Sitting);
    for (auto strategy : {qmStaticStrength::HandsAndKnees, qmStaticStrength::N_STRS}) {
        const long before = figure->getTimestamp();
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->getStrategy(), strategy);
        EXPECT_EQ(stored(figure, "SSTR_Strategy"), "\"Sitting\"");
        EXPECT_GT(figure->getTimestamp(), before);
    }
    analysis->clear();
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "absent");
}

TEST_F(Lifecycle, StoredTextThatDiffersInLetterCaseMatchesNoName)
{
    load(twoParts().property(onFigure(), "SSTR_Strategy", inFile(text("two feet"))));
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::N_STRS);
}

TEST_F(Lifecycle, ComputeDoesNotStoreTheStrategyThatItWorksWith)
{
    load(smallBody());
    analysis->setStrategy(qmStaticStrength::Walking);
    const long before = figure->getTimestamp();
    analysis->compute();
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Walking);
    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "\"Walking\"");
    EXPECT_EQ(figure->getTimestamp(), before);
}

// ---- Gravity -------------------------------------------------------------------------------------

TEST_F(Lifecycle, MagnitudeOfTheDefaultGravity)
{
    load(twoParts());
    qVector gravity(7, 7, 7);
    EXPECT_EQ(analysis->getGravity(gravity), 980.665f);
    EXPECT_THAT(components(gravity), ElementsAre(0, -980.665f, 0));
}

// |(2, -3, 6)| = sqrt(4 + 9 + 36) = 7
TEST_F(Lifecycle, GravityIsReadBackWithItsMagnitude)
{
    load(twoParts());
    qVector given(2, -3, 6), gravity;
    analysis->setGravity(given);
    given.set(0, 0, 0);   // the object holds its own
    EXPECT_EQ(analysis->getGravity(gravity), 7.0f);
    EXPECT_THAT(components(gravity), ElementsAre(2, -3, 6));
    gravity.set(9, 9, 9);
    qVector again;
    analysis->getGravity(again);
    EXPECT_THAT(components(again), ElementsAre(2, -3, 6));
}

// 1000 g under half of standard gravity, turned to +x: factor 1000 · 0.001 / 980.665,
//   (490.3325, 0, 0) cm/s² · factor = (0.5, 0, 0) kgf
TEST_F(Lifecycle, SetGravityResets)
{
    load(twoParts());
    analysis->setWeightLoad(site("hand.grip"), 1000);
    analysis->setFMonJoint(joint("wrist"), {1, 2, 3}, {4, 5, 6});
    site("hand.tip")->setProperty("SSTR_Load", list({vector(0, -1, 0), text("global")}));   // in no list
    analysis->setGravity({490.3325f, 0, 0});

    qVector load;
    ASSERT_EQ(analysis->getSiteLoad(site("hand.grip"), load), 1);
    EXPECT_THAT(components(load), ElementsAre(::testing::FloatEq(0.5f), 0, 0));
    EXPECT_EQ(analysis->getSiteWeight(site("hand.grip")), 1000);
    EXPECT_EQ(stored(joint("wrist"), "SSTR_Force_Moment"), "absent");
    EXPECT_EQ(stored(site("hand.tip"), "SSTR_Load"), "absent");
}

TEST_F(Lifecycle, SetGravityBringsTheStoredStrategyBack)
{
    load(twoParts());
    analysis->setStrategy(qmStaticStrength::Sitting);
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    analysis->setGravity({0, -1, 0});
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
}

TEST_F(Lifecycle, GravityIsEachObjectsOwn)
{
    load(twoParts());
    qmStaticStrength other(human);
    other.setGravity({0, -1, 0});
    qVector gravity;
    EXPECT_EQ(analysis->getGravity(gravity), 980.665f);
}

// ---- Anthropometric scale ------------------------------------------------------------------------

class CountingScale : public qcAnthroScale {
public:
    CountingScale(qcFigure* scaled, std::vector<std::string>& strategiesSeen)
        : qcAnthroScale(scaled), figure(scaled), seen(strategiesSeen)
    {}
    void applyScale() override { seen.push_back(stored(figure, "SSTR_Strategy")); }

private:
    qcFigure* figure;
    std::vector<std::string>& seen;
};

// The scale is applied once, before anything is restored: no strategy is stored yet.
TEST_F(Lifecycle, ConstructionAppliesTheScaleOnceBeforeRestoring)
{
    qcHuman* someone = addHuman(twoParts());
    std::vector<std::string> seen;
    (someone->*get(HumansScaleField())) = std::make_unique<CountingScale>(someone->getFigure(), seen);
    qmStaticStrength object(someone);
    EXPECT_THAT(seen, ElementsAre("absent"));
    EXPECT_EQ(field(object, AnthroScaleField()), someone->getAnthroscale());

    // later operations leave the scale alone
    object.reset();
    object.setGravity({0, -1, 0});
    EXPECT_EQ(seen.size(), 1u);
    EXPECT_EQ((object.*get(HumanInfoMember()))(), 1);
    EXPECT_EQ(seen.size(), 2u);
}

TEST_F(Lifecycle, MissingScaleIsMade)
{
    qcHuman* someone = addHuman(twoParts().anthro("init"));
    ASSERT_EQ(someone->getAnthroscale(), nullptr);
    qmStaticStrength object(someone);
    ASSERT_NE(someone->getAnthroscale(), nullptr);
    EXPECT_EQ(field(object, AnthroScaleField()), someone->getAnthroscale());
    EXPECT_FALSE(someone->getAnthroscale()->hasSex());   // the host's default: the figure stays as loaded
    EXPECT_EQ(someone->getFigure()->findSegment("arm")->getMass(), 3000);
    EXPECT_EQ((object.*get(HumanInfoMember()))(), 1);
}

TEST_F(Lifecycle, MissingScaleThatCannotBeMadeIsAnErrorAndTheObjectWorks)
{
    load(twoParts("bert").anthro("none"));
    const std::vector<MessageLog::Message> messages = log.take();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].kind, qcError);
    EXPECT_EQ(messages[0].text, "StaticStrength ERROR: cannot init AnthroScale(bert)");   // no line break

    EXPECT_EQ(field(*analysis, AnthroScaleField()), nullptr);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::TwoFeet);
    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "\"Two Feet\"");
    EXPECT_EQ(qmStaticStrength::getHandle(human), analysis);
    EXPECT_EQ(analysis->setWeightLoad(site("hand.grip"), 500), 1);
    EXPECT_EQ(callPrivate<HumanInfoMember>(*analysis), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: cannot init AnthroScale(bert)"));
}

TEST_F(Lifecycle, ScaleIsLookedForBeforeTheRestore)
{
    load(twoParts().anthro("none").property(onFigure(), "SSTR_LoadList", inFile(list({number(1)}))));
    const std::vector<MessageLog::Message> messages = log.take();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].kind, qcError);
    EXPECT_EQ(messages[1].kind, qcWarning);
}

// ---- Simulation callback -------------------------------------------------------------------------

TEST_F(Callbacks, ActivatePrintsItsLineOnEveryCall)
{
    load(twoParts());
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(analysis->activate("script"), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "activate callback\n");

    ::testing::internal::CaptureStdout();
    EXPECT_EQ(analysis->activate("script"), 0);   // active already
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "activate callback\n");

    ::testing::internal::CaptureStdout();
    analysis->deactivate();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(Callbacks, ActivateBindsUnderItsKindAndOwner)
{
    load(twoParts());
    EXPECT_EQ(analysis->isActive(), 0);
    EXPECT_EQ(activateQuietly(*analysis, "script"), 1);
    EXPECT_EQ(analysis->isActive(), 1);
    ASSERT_EQ(qcSim::getNumBound(), 1);
    EXPECT_STREQ(qcSim::getBoundKind(0), "qc_simfunc");
    EXPECT_STREQ(qcSim::getBoundOwner(0), "StaticStrength");

    EXPECT_EQ(analysis->deactivate(), 1);
    EXPECT_EQ(analysis->isActive(), 0);
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(field(*analysis, CallbackField()), nullptr);
    EXPECT_EQ(field(*analysis, ScriptField()), nullptr);
    EXPECT_EQ(analysis->deactivate(), 1);   // inactive already
}

TEST_F(Callbacks, SecondActivateIsRefusedAndItsScriptIgnored)
{
    load(twoParts());
    activateQuietly(*analysis, "first");
    EXPECT_EQ(activateQuietly(*analysis, "second"), 0);
    EXPECT_EQ(qcSim::getNumBound(), 1);
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("first"));

    analysis->deactivate();
    scripts.clear();
    activateQuietly(*analysis, nullptr);
    EXPECT_EQ(activateQuietly(*analysis, "third"), 0);
    analysis->run_script();
    EXPECT_THAT(scripts, IsEmpty());
}

TEST_F(Callbacks, ActivateWithoutAScriptBindsAllTheSame)
{
    load(smallBody());
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(activateQuietly(*analysis, none), 1);
        EXPECT_EQ(field(*analysis, ScriptField()), nullptr);
        EXPECT_EQ(qcSim::step(1), 1);
        EXPECT_THAT(scripts, IsEmpty());
        EXPECT_EQ(resultOf("waist").status, 1);   // it computed
        analysis->deactivate();
        analysis->clear();
    }
}

TEST_F(Callbacks, ScriptIsACopy)
{
    load(twoParts());
    char given[] = "print(1)";
    activateQuietly(*analysis, given);
    given[0] = 'X';
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("print(1)"));
}

TEST_F(Callbacks, RunScriptDoesNothingWhenThereIsNone)
{
    load(twoParts());
    analysis->run_script();
    activateQuietly(*analysis, "script");
    analysis->deactivate();
    analysis->run_script();   // dropped with the callback
    EXPECT_THAT(scripts, IsEmpty());
}

TEST_F(Callbacks, ScriptMayFail)
{
    load(smallBody());
    scriptResult = 0;
    activateQuietly(*analysis, "script");
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_EQ(qcSim::getResult(0), 1);   // the computation's, not the script's
}

TEST_F(Callbacks, EachStepComputesAndThenRunsTheScript)
{
    load(smallBody());
    std::vector<int> statuses;
    onScript = [&] {
        statuses.push_back(resultOf("waist").status);   // the result is there already
        joint("waist")->removeProperty("SSTR_Force_Moment");
    };
    activateQuietly(*analysis, "look()");
    EXPECT_EQ(qcSim::step(3), 3);
    EXPECT_THAT(scripts, ElementsAre("look()", "look()", "look()"));
    EXPECT_THAT(statuses, ElementsAre(1, 1, 1));
    EXPECT_EQ(qcSim::getNumResults(), 1);
    EXPECT_EQ(qcSim::getResult(0), 1);
}

TEST_F(Callbacks, NothingRunsOnceDeactivated)
{
    load(smallBody());
    activateQuietly(*analysis, "script");
    analysis->deactivate();
    EXPECT_EQ(qcSim::step(2), 0);
    EXPECT_THAT(scripts, IsEmpty());
    EXPECT_EQ(resultOf("waist").status, 0);
}

TEST_F(Callbacks, ActivatedAgainTakesTheNewScript)
{
    load(smallBody());
    activateQuietly(*analysis, "first");
    analysis->deactivate();
    EXPECT_EQ(activateQuietly(*analysis, "second"), 1);
    qcSim::step(1);
    EXPECT_THAT(scripts, ElementsAre("second"));
}

TEST_F(Callbacks, DestructionUnbinds)
{
    load(smallBody());
    activateQuietly(*analysis, "script");
    dropAnalysis();
    EXPECT_EQ(qcSim::getNumBound(), 0);
    EXPECT_EQ(qcSim::step(1), 0);
    EXPECT_THAT(scripts, IsEmpty());
}

TEST_F(Callbacks, ScriptMayDeactivateItsOwnAnalysis)
{
    load(smallBody());
    onScript = [this] { analysis->deactivate(); };
    activateQuietly(*analysis, "stop()");
    EXPECT_EQ(qcSim::step(3), 1);
    EXPECT_THAT(scripts, ElementsAre("stop()"));
    EXPECT_EQ(analysis->isActive(), 0);
}

TEST_F(Callbacks, ResultOfAScriptThatDeactivatesIsTheComputations)
{
    load(smallBody());
    onScript = [this] { analysis->deactivate(); };
    activateQuietly(*analysis, "stop()");
    qcSim::step(1);
    ASSERT_EQ(qcSim::getNumResults(), 1);
    EXPECT_EQ(qcSim::getResult(0), 1);
}

TEST_F(Callbacks, ScriptMayDeleteItsOwnAnalysis)
{
    load(smallBody());
    onScript = [this] { dropAnalysis(); };
    activateQuietly(*analysis, "bye()");
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_EQ(qcSim::getNumBound(), 0);
    ASSERT_EQ(qcSim::getNumResults(), 1);
    EXPECT_EQ(qcSim::getResult(0), 1);
    EXPECT_EQ(qcSim::step(1), 0);
}

TEST_F(Callbacks, RunScriptCalledDirectlyMayDeleteTheAnalysis)
{
    load(twoParts());
    onScript = [this] { dropAnalysis(); };
    activateQuietly(*analysis, "bye()");
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("bye()"));
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

TEST_F(Callbacks, ScriptMayActivateAnewWithAnotherScript)
{
    load(smallBody());
    onScript = [this] {
        analysis->deactivate();
        activateQuietly(*analysis, "next");
    };
    activateQuietly(*analysis, "first");
    qcSim::step(1);
    qcSim::step(1);
    EXPECT_THAT(scripts, ElementsAre("first", "next"));
}

TEST_F(Callbacks, SeveralAnalysesRunInTheOrderOfActivation)
{
    load(smallBody("anna"));
    qmStaticStrength* anna = analysis;
    load(smallBody("bert"));
    activateQuietly(*analysis, "bert");
    activateQuietly(*anna, "anna");
    EXPECT_EQ(qcSim::step(1), 2);
    EXPECT_THAT(scripts, ElementsAre("bert", "anna"));
    anna->deactivate();
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(scripts, ElementsAre("bert", "anna", "bert"));
}

// A human may be destroyed before its analysis, and another one be put where it lay: ten humans of one shape, one
// after the other, mostly lie at one address. Each gets an analysis of its own.
TEST_F(Lifecycle, AnAnalysisWhoseFigureIsGoneIsNobodys)
{
    std::vector<qmStaticStrength*> handles;
    for (int i = 0; i < 10; ++i) {
        qcScene own;
        qcHuman* its = own.addPosedHuman(smallBody().text().c_str());
        ASSERT_NE(its, nullptr);
        qmStaticStrength* handle = qmStaticStrength::getHandle(its);
        EXPECT_EQ(std::count(handles.begin(), handles.end(), handle), 0);
        EXPECT_EQ(qmStaticStrength::getHandle(its), handle);
        handles.push_back(handle);
    }
    for (const qmStaticStrength* handle : handles)
        delete handle;
}

TEST_F(Lifecycle, ANullHumanHasNoAnalysis)
{
    EXPECT_EQ(qmStaticStrength::getHandle(nullptr), nullptr);
}

}   // namespace
