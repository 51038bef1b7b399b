// Values freed: every block that a public member takes is given back, on success and on each way to fail.
//
// Each case does something and undoes it. It runs once in a small world, for what is made once: buffers that are kept,
// keys, room in an object for its properties. Then it runs again, and as many blocks are alive as before; and when the
// world ends, as many as before the world. Values and texts are the heap's own here, so that none hides in a pool.
#include "MemorySupport.h"

#include <ostream>

namespace {

struct Case {
    const char* member;
    const char* situation;
    void (*run)(MemoryWorld&);
};

std::ostream& operator<<(std::ostream& out, const Case& each)
{
    return out << each.member << " " << each.situation;
}

qVector force, moment;

// One of every kind, lists cut short, and a wrong kind in every place of a load, a record and a torque.
std::vector<qcValue> shapes()
{
    const qcValue down = vector(0, -1, 0);
    return {qcValue(),
            number(1),
            text("text"),
            down,
            list({}),
            list({number(1)}),
            list({text("hand.grip")}),
            list({down}),
            list({down, number(1)}),
            list({down, text("weight")}),
            list({down, text("weight"), text("heavy")}),
            list({down, text("a kind that nobody knows of")}),
            list({down, down}),
            list({down, text("local")}),
            list({list({text("hand.grip"), down, text("weight")})}),
            list({list({text("hand.grip"), down, down, text("weight")})}),
            list({list({text("wrist"), down}), list({text("hand.grip"), down, text("global")})}),
            list({list({text("hand.grip"), down, down, text("global")}), list({text("wrist")})})};
}

// Runs once for every shape of a property, which is removed at the end.
template <class Run> void withEveryShape(qcObject* object, const char* key, Run run)
{
    for (const qcValue& shape : shapes()) {
        object->setProperty(key, shape);
        run();
    }
    object->removeProperty(key);
}

void readEverything(MemoryWorld& w)
{
    qmStaticStrength& a = w.a();
    for (const int n : {-1, 0, 1, 99}) {
        a.getNthLoadSite(n);
        a.getNthDefinedTorqueJoint(n);
        a.getNthLoadWithOffset(n);
    }
    for (qcSite* site : {static_cast<qcSite*>(nullptr), w.grip(), w.tip(), w.othersGrip()}) {
        a.getLoadType(site);
        a.getSiteWeight(site);
        a.getSiteLoad(site, force);
    }
    for (qcJoint* joint : {static_cast<qcJoint*>(nullptr), w.wrist()}) {
        a.getDefinedTorque(joint, moment);
        a.getJointForces(joint, force, moment);
    }
    a.getNumLoads();
    a.getNumLoadsWithOffset();
    a.getNumDefinedTorques();
    a.getHuman();
    a.getGravity(force);
    a.getStrategy();
    a.isActive();
}

void wholeReport(MemoryWorld& w)
{
    w.a().reportLoads(1);
    while (w.a().reportLoads()) {
    }
}

void computeByEveryStrategy(MemoryWorld& w)
{
    for (int i = 0; i < 8; ++i) {
        w.a().setStrategy(static_cast<qmStaticStrength::Strategy>(i));
        EXPECT_EQ(w.a().compute(), 1);
    }
}

constexpr const char* kScript = "print('a text that is too long to be kept inside a string object')";

const Case cases[] = {
    // life
    {"constructor", "and destructor", [](MemoryWorld& w) { const qmStaticStrength further(w.human); }},
    {"copy", "and assignment, with a script",
     [](MemoryWorld& w) {
         w.fill();
         w.a().activate(kScript);
         qmStaticStrength copy(w.a());
         qmStaticStrength ofOther(w.other);
         ofOther.setLoadWithOffset(w.othersGrip(), {1, 2, 3}, {0, -1, 0});
         ofOther = copy;
         ofOther = static_cast<const qmStaticStrength&>(ofOther);
         copy.deactivate();
         w.a().clear();
         w.other->getFigure()->removeProperty("SSTR_LoadWithOffsetList");
         w.othersGrip()->removeProperty("SSTR_LoadsWithOffsets");
     }},
    {"getHandle", "found, made, null",
     [](MemoryWorld& w) {
         EXPECT_EQ(qmStaticStrength::getHandle(w.human), &w.a());
         EXPECT_EQ(qmStaticStrength::getHandle(nullptr), nullptr);
         delete qmStaticStrength::getHandle(w.other);
     }},
    {"setGravity", "of a full figure",
     [](MemoryWorld& w) {
         w.fill();
         w.a().setGravity({0, 0, -490});
         w.a().setGravity({0, -980.665f, 0});
         w.a().clear();
     }},
    {"setStrategy", "every one, and one without a name",
     [](MemoryWorld& w) {
         for (int i = -1; i < 9; ++i) {
             w.a().setStrategy(static_cast<qmStaticStrength::Strategy>(i));
             qmStaticStrength::getStrategyName(w.a().getStrategy());
         }
         w.a().clear();
     }},
    {"activate", "with a script, twice, without, and deactivate",
     [](MemoryWorld& w) {
         EXPECT_EQ(w.a().activate(kScript), 1);
         EXPECT_EQ(w.a().activate("another"), 0);
         EXPECT_EQ(w.a().deactivate(), 1);
         EXPECT_EQ(w.a().deactivate(), 1);
         for (const char* script : {"", static_cast<const char*>(nullptr)}) {
             EXPECT_EQ(w.a().activate(script), 1);
             EXPECT_EQ(w.a().deactivate(), 1);
         }
     }},
    {"run_script", "with one that ends the analysis' activity, and without",
     [](MemoryWorld& w) {
         qcPy::registerInterpreter(
             [](const char*, void* data) { return static_cast<qmStaticStrength*>(data)->deactivate(); }, &w.a());
         w.a().run_script();
         w.a().activate(kScript);
         EXPECT_EQ(qcSim::step(2), 1);
         EXPECT_EQ(w.a().isActive(), 0);
         qcPy::registerInterpreter(nullptr, nullptr);
         w.a().clear();
     }},

    // loads
    {"setLoad", "of every kind, over another, on another figure, null",
     [](MemoryWorld& w) {
         for (const int kind : {0, 1, 2, 3, -1})
             EXPECT_EQ(w.a().setLoad(w.grip(), {0, -1, 0}, kind), 1);
         EXPECT_EQ(w.a().setLoad(w.othersGrip(), {0, -1, 0}), 1);
         EXPECT_EQ(w.a().setLoad(nullptr, {0, -1, 0}), 0);
         EXPECT_EQ(w.a().removeLoad(w.grip()), 1);
         EXPECT_EQ(w.a().removeLoad(w.othersGrip()), 1);
     }},
    {"setWeightLoad", "on a site, another figure's, null",
     [](MemoryWorld& w) {
         EXPECT_EQ(w.a().setWeightLoad(w.grip(), 500), 1);
         EXPECT_EQ(w.a().setWeightLoad(w.grip(), 700), 1);
         EXPECT_EQ(w.a().setWeightLoad(w.othersGrip(), 500), 0);
         EXPECT_EQ(w.a().setWeightLoad(nullptr, 500), 0);
         EXPECT_EQ(w.a().removeLoad(w.grip()), 1);
     }},
    {"removeLoad", "without one, null, without a list, in a list of other shapes",
     [](MemoryWorld& w) {
         EXPECT_EQ(w.a().removeLoad(w.grip()), 0);
         EXPECT_EQ(w.a().removeLoad(nullptr), 0);
         withEveryShape(w.figure, "SSTR_LoadList", [&w] {
             w.grip()->setProperty("SSTR_Load", list({vector(0, -1, 0), text("global")}));
             EXPECT_EQ(w.a().removeLoad(w.grip()), 1);
         });
     }},
    {"setLoad", "into a list of other shapes",
     [](MemoryWorld& w) {
         withEveryShape(w.figure, "SSTR_LoadList", [&w] { EXPECT_EQ(w.a().setLoad(w.grip(), {0, -1, 0}), 1); });
         w.a().clear();
     }},
    {"getters", "of an empty figure and of a full one",
     [](MemoryWorld& w) {
         readEverything(w);
         w.fill();
         readEverything(w);
         w.a().clear();
     }},
    {"getters", "of loads of other shapes",
     [](MemoryWorld& w) {
         withEveryShape(w.figure, "SSTR_LoadList", [&w] { readEverything(w); });
         withEveryShape(w.grip(), "SSTR_Load", [&w] { readEverything(w); });
     }},
    {"getters", "of torques and results of other shapes",
     [](MemoryWorld& w) {
         withEveryShape(w.figure, "SSTR_TorqueList", [&w] { readEverything(w); });
         withEveryShape(w.wrist(), "SSTR_Torque", [&w] { readEverything(w); });
         withEveryShape(w.wrist(), "SSTR_Force_Moment", [&w] { readEverything(w); });
     }},

    // loads with offsets
    {"setLoadWithOffset", "of every kind, on another figure, null, and removed",
     [](MemoryWorld& w) {
         loadWithOffset* made[] = {w.a().setLoadWithOffset(w.grip(), {1, 2, 3}, {0, -1, 0}),
                                   w.a().setLoadWithOffset(w.tip(), {1, 2, 3}, {0, -1, 0}, 1),
                                   w.a().setWeightLoadWithOffset(w.grip(), {1, 2, 3}, 100),
                                   w.a().setLoadWithOffset(w.othersGrip(), {1, 2, 3}, {0, -1, 0})};
         EXPECT_EQ(w.a().setLoadWithOffset(nullptr, {}, {}), nullptr);
         EXPECT_EQ(w.a().setWeightLoadWithOffset(nullptr, {}, 1), nullptr);
         EXPECT_EQ(w.a().setWeightLoadWithOffset(w.othersGrip(), {}, 1), nullptr);
         EXPECT_EQ(w.a().removeLoadWithOffset(nullptr), 0);
         loadWithOffset stranger = *made[0];
         EXPECT_EQ(w.a().removeLoadWithOffset(&stranger), 0);
         for (loadWithOffset* record : made)
             EXPECT_EQ(w.a().removeLoadWithOffset(record), 1);
         w.a().clear();
         w.othersGrip()->removeProperty("SSTR_LoadsWithOffsets");
     }},

    // torques
    {"setDefinedTorque", "over another, null, and removed; without one",
     [](MemoryWorld& w) {
         qVector torque(1, 2, 3);
         EXPECT_EQ(w.a().setDefinedTorque(w.wrist(), torque), 1);
         EXPECT_EQ(w.a().setDefinedTorque(w.wrist(), torque), 1);
         EXPECT_EQ(w.a().setDefinedTorque(nullptr, torque), 0);
         EXPECT_EQ(w.a().removeDefinedTorque(w.wrist()), 1);
         EXPECT_EQ(w.a().removeDefinedTorque(w.wrist()), 0);
         EXPECT_EQ(w.a().removeDefinedTorque(nullptr), 0);
     }},
    {"setDefinedTorque", "into a list of other shapes, and removed from it",
     [](MemoryWorld& w) {
         qVector torque(1, 2, 3);
         withEveryShape(w.figure, "SSTR_TorqueList", [&] {
             EXPECT_EQ(w.a().setDefinedTorque(w.wrist(), torque), 1);
             EXPECT_EQ(w.a().removeDefinedTorque(w.wrist()), 1);
         });
     }},

    // all of it
    {"reset", "of an empty figure and of a full one",
     [](MemoryWorld& w) {
         EXPECT_EQ(w.a().reset(), 0);
         w.fill();
         EXPECT_EQ(w.a().reset(), 1);
         w.a().clear();
         EXPECT_EQ(w.a().reset(), 0);
         w.a().clear();
     }},
    {"reset", "of lists of other shapes",
     [](MemoryWorld& w) {
         w.fill();
         w.spoil();
         EXPECT_EQ(w.a().reset(), 1);
         for (const char* key : {"SSTR_LoadList", "SSTR_TorqueList", "SSTR_LoadWithOffsetList", "SSTR_Strategy"})
             withEveryShape(w.figure, key, [&w] { w.a().reset(); });
         w.a().clear();
     }},
    {"reportLoads", "whole, without a list, broken off",
     [](MemoryWorld& w) {
         w.fill();
         w.a().reportLoads(1);
         wholeReport(w);
         w.a().clear();
         EXPECT_STREQ(w.a().reportLoads(1), "No loads.");
         wholeReport(w);
     }},
    {"reportLoads", "of loads of other shapes",
     [](MemoryWorld& w) {
         withEveryShape(w.figure, "SSTR_LoadList", [&w] { wholeReport(w); });
         withEveryShape(w.figure, "SSTR_Strategy", [&w] { wholeReport(w); });
         wholeReport(w);
     }},

    // results
    {"setFMonJoint", "over another, null, and the arithmetic",
     [](MemoryWorld& w) {
         qVector from(0, 0, 0), to(0, 1, 0), load(0, -1, 0);
         w.a().setFMonJoint(w.wrist(), {0, -1, 0}, {1, 0, 0});
         w.a().setFMonJoint(w.wrist(), {0, -2, 0}, {1, 0, 0});
         w.a().setFMonJoint(nullptr, {0, -1, 0}, {1, 0, 0});
         w.a().calcForcesAt(from, to, load, force, moment);
         w.a().getSplitFactor(w.wrist(), 1, "waist");
         w.a().getSplitFactor(nullptr, 2, nullptr);
         w.a().clear();
     }},
    {"compute", "of a figure that lacks what every strategy needs",
     [](MemoryWorld& w) {
         w.fill();
         computeByEveryStrategy(w);
         w.a().clear();
     }},

    // a human that is gone
    {"every member that needs the human", "once it is gone, active with a script",
     [](MemoryWorld&) {
         auto scene = std::make_unique<qcScene>();
         qcHuman* human = scene->addPosedHuman(twoParts("gone").text().c_str());
         qcSite* grip = human->getFigure()->findSiteByFullName("gone.hand.grip");
         qcJoint* wrist = human->getFigure()->findJoint("wrist");
         qVector torque(1, 2, 3);
         qmStaticStrength a(human);
         EXPECT_EQ(a.setWeightLoad(grip, 500), 1);
         EXPECT_EQ(a.setDefinedTorque(wrist, torque), 1);
         loadWithOffset* record = a.setLoadWithOffset(grip, {1, 2, 3}, {0, -1, 0});
         EXPECT_EQ(a.activate(kScript), 1);
         scene.reset();

         a.setGravity({0, 0, -490});
         a.setStrategy(qmStaticStrength::Sitting);
         a.setFMonJoint(wrist, {0, -1, 0}, {1, 0, 0});
         a.clear();
         EXPECT_EQ(a.setLoad(grip, {0, -1, 0}), 0);
         EXPECT_EQ(a.setWeightLoad(grip, 700), 0);
         EXPECT_EQ(a.removeLoad(grip), 0);
         EXPECT_EQ(a.getNumLoads(), 0);
         EXPECT_EQ(a.getNthLoadSite(0), nullptr);
         EXPECT_EQ(a.getLoadType(grip), nullptr);
         EXPECT_EQ(a.getSiteWeight(grip), -1.0f);
         EXPECT_EQ(a.getSiteLoad(grip, force), 0);
         EXPECT_EQ(a.setLoadWithOffset(grip, {}, {0, -1, 0}), nullptr);
         EXPECT_EQ(a.setWeightLoadWithOffset(grip, {}, 5), nullptr);
         EXPECT_EQ(a.removeLoadWithOffset(record), 0);
         EXPECT_EQ(a.setDefinedTorque(wrist, torque), 0);
         EXPECT_EQ(a.removeDefinedTorque(wrist), 0);
         EXPECT_EQ(a.getNumDefinedTorques(), 0);
         EXPECT_EQ(a.getNthDefinedTorqueJoint(0), nullptr);
         EXPECT_EQ(a.getDefinedTorque(wrist, torque), 0);
         EXPECT_EQ(a.reset(), 0);
         EXPECT_EQ(a.reportLoads(1), nullptr);
         EXPECT_EQ(a.getJointForces(wrist, force, moment), 0);
         EXPECT_EQ(a.getSplitFactor(wrist, 1, "waist"), 0.0f);
         EXPECT_EQ(a.compute(), 1);
         EXPECT_EQ(a.deactivate(), 1);
         EXPECT_EQ(a.activate(kScript), 0);
     }},
};

// Runs a case twice in a world, and compares what is alive.
void expectAllGivenBack(const SmallFigure& figure, void (*run)(MemoryWorld&))
{
    const QuietOutput quiet;
    FixedMessageLog log;
    const auto runTwice = [&] {
        MemoryWorld world(figure);
        run(world);
        log.take();
        const long before = CountedHeap::liveBlocks();
        run(world);
        log.take();
        EXPECT_EQ(CountedHeap::liveBlocks(), before) << "in the same world";
    };
    runTwice();
    const long before = CountedHeap::liveBlocks();
    runTwice();
    EXPECT_EQ(CountedHeap::liveBlocks(), before) << "when the world has ended";
}

class ValuesFreed : public ::testing::TestWithParam<Case> {};

TEST_P(ValuesFreed, OnEveryWay)
{
    expectAllGivenBack(twoParts(), GetParam().run);
}

INSTANTIATE_TEST_SUITE_P(EveryMember, ValuesFreed, ::testing::ValuesIn(cases));

// The walks with all that they read; a load at the hands that cannot be read among it.
TEST(ValuesFreed, ByComputingABodyByEveryStrategy)
{
    expectAllGivenBack(smallBody(), [](MemoryWorld& w) {
        qVector torque(1, 2, 3);
        qcSite* palm = w.site("right_hand.right_palmcenter");
        w.a().setDefinedTorque(w.figure->findJoint("waist"), torque);
        w.a().setLoadWithOffset(palm, {1, 2, 3}, {0, -1, 0}, 1);
        w.figure->setProperty("RightZelHandLoads", text("1 2 3"));
        computeByEveryStrategy(w);
        w.a().setWeightLoad(palm, 500);
        computeByEveryStrategy(w);
        withEveryShape(palm, "SSTR_Load", [&w] { computeByEveryStrategy(w); });
        w.figure->removeProperty("RightZelHandLoads");
        w.a().clear();
    });
}

// Clavicle, arm and hand form a circle: every walk that comes to the shoulder is broken off with its sums half done.
TEST(ValuesFreed, ByWalksThatAreBrokenOffAtACircle)
{
    SmallFigure body = smallBody();
    body.joint("strap", "right_clavicle.distal", "right_hand.right_palmcenter");
    expectAllGivenBack(body, [](MemoryWorld& w) {
        qVector torque(1, 2, 3);
        qcSite* palm = w.site("right_hand.right_palmcenter");
        w.a().setDefinedTorque(w.figure->findJoint("right_shoulder"), torque);
        w.a().setLoadWithOffset(palm, {1, 2, 3}, {0, -1, 0}, 1);
        w.a().setWeightLoad(palm, 500);
        computeByEveryStrategy(w);
        EXPECT_EQ(w.a().getJointForces(w.figure->findJoint("right_shoulder"), force, moment), 0) << "no circle";
        EXPECT_EQ(w.a().getJointForces(w.figure->findJoint("right_hip"), force, moment), 1) << "nothing else";
        w.a().clear();
    });
}

// A block that is kept is seen: without this, the tests above could not fail.
TEST(ValuesFreed, IsNotSaidOfAValueThatIsKept)
{
    const long before = CountedHeap::liveBlocks();
    qcValue* kept = new qcValue("text");
    EXPECT_EQ(CountedHeap::liveBlocks(), before + 2);   // the value and its text
    freeval(kept);
}

}   // namespace
