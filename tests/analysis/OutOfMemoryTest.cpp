// Out of memory: at every allocation of every public member, one clear report, nothing changed, nothing lost.
//
// For n = 1, 2, 3, … the n-th allocation of a call fails, in a world made anew, until a call comes through. After each
// failure the same call is made once more and succeeds; then the world ends, and as many blocks are alive as before.
#include "MemorySupport.h"

#include <cstring>
#include <new>
#include <ostream>

namespace {

struct Case {
    const char* member;   // as the report names it; empty: std::bad_alloc is thrown, and nothing reported
    const char* situation;
    void (*prepare)(MemoryWorld&);
    bool (*call)(MemoryWorld&);   // whether the result is the one of success
    const char* says = "";        // what a call that comes through reports begins with
};

std::ostream& operator<<(std::ostream& out, const Case& each)
{
    return out << each.member << " " << each.situation;
}

void nothing(MemoryWorld&) {}
void full(MemoryWorld& world)
{
    world.fill();
}
void spoilt(MemoryWorld& world)
{
    world.fill();
    world.spoil();
}

constexpr const char* kScript = "print('a text that is too long to be kept inside a string object')";
qVector torque(4, 5, 6);
qVector out, out2;

template <class Make> bool isMade(Make make)
{
    try {
        make();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

const Case cases[] = {
    // life
    {"", "constructor of a full figure", full,
     [](MemoryWorld& w) { return isMade([&] { qmStaticStrength(w.human); }); }},
    {"", "copy", full, [](MemoryWorld& w) { return isMade([&] { qmStaticStrength copy(w.a()); }); }},
    {"operator=", "of another human's",
     [](MemoryWorld& w) {
         w.fill();
         w.second = std::make_unique<qmStaticStrength>(w.other);
         w.second->setLoadWithOffset(w.othersGrip(), {1, 2, 3}, {0, -1, 0});
     },
     [](MemoryWorld& w) {
         *w.second = w.a();
         return w.second->getHuman() == w.human;
     }},
    {"getHandle", "first request", full,
     [](MemoryWorld& w) {
         const std::unique_ptr<qmStaticStrength> made(qmStaticStrength::getHandle(w.other));
         return made != nullptr;
     }},
    {"setGravity", "", full,
     [](MemoryWorld& w) {
         w.a().setGravity({0, 0, -490});
         return w.a().getGravity(out) == 490.0f;
     }},
    {"setStrategy", "first", [](MemoryWorld& w) { w.a().clear(); },
     [](MemoryWorld& w) {
         w.a().setStrategy(qmStaticStrength::SittingNoFeet);
         return w.a().getStrategy() == qmStaticStrength::SittingNoFeet;
     }},
    {"setStrategy", "another", full,
     [](MemoryWorld& w) {
         w.a().setStrategy(qmStaticStrength::LeftFoot);
         return w.a().getStrategy() == qmStaticStrength::LeftFoot;
     }},
    {"activate", "with a script", nothing, [](MemoryWorld& w) { return w.a().activate(kScript) == 1; }},
    {"run_script", "", [](MemoryWorld& w) { w.a().activate(kScript); },
     [](MemoryWorld& w) {
         static int runs;
         runs = 0;
         qcPy::registerInterpreter([](const char*, void*) { return ++runs; }, nullptr);
         w.a().run_script();
         qcPy::registerInterpreter(nullptr, nullptr);
         return runs == 1;
     }},

    // loads
    {"setLoad", "first", nothing,
     [](MemoryWorld& w) {
         return w.a().setLoad(w.grip(), {0, -1, 0}, 1) == 1;
     }},
    {"setLoad", "in place of another", full,
     [](MemoryWorld& w) {
         return w.a().setLoad(w.grip(), {0, -1, 0}) == 1;
     }},
    {"setLoad", "on another figure", full,
     [](MemoryWorld& w) {
         return w.a().setLoad(w.othersGrip(), {0, -1, 0}) == 1;
     }},
    {"setLoad", "beside entries that cannot be read", spoilt,
     [](MemoryWorld& w) {
         return w.a().setLoad(w.site("arm.distal"), {0, -1, 0}) == 1;
     }},
    {"setWeightLoad", "first", nothing, [](MemoryWorld& w) { return w.a().setWeightLoad(w.grip(), 500) == 1; }},
    {"setWeightLoad", "in place of another", full,
     [](MemoryWorld& w) { return w.a().setWeightLoad(w.tip(), 500) == 1; }},
    {"removeLoad", "", full, [](MemoryWorld& w) { return w.a().removeLoad(w.grip()) == 1; }},
    {"removeLoad", "the last",
     [](MemoryWorld& w) {
         w.a().setLoad(w.tip(), {0, -1, 0});
     },
     [](MemoryWorld& w) { return w.a().removeLoad(w.tip()) == 1; }},
    {"getNumLoads", "", full, [](MemoryWorld& w) { return w.a().getNumLoads() == 2; }},
    {"getNthLoadSite", "", full, [](MemoryWorld& w) { return w.a().getNthLoadSite(1) == w.tip(); }},
    {"getLoadType", "", full, [](MemoryWorld& w) { return w.a().getLoadType(w.tip()) != nullptr; }},
    {"getSiteWeight", "", full,
     [](MemoryWorld& w) {
         const float grams = w.a().getSiteWeight(w.grip());
         EXPECT_TRUE(grams == 1500.0f || grams == -1.0f);
         return grams == 1500.0f;
     }},
    {"getSiteLoad", "", full,
     [](MemoryWorld& w) {
         out = qVector(7, 7, 7);
         const bool read = w.a().getSiteLoad(w.tip(), out) == 1;
         EXPECT_EQ(out[0], read ? 0.0f : 7.0f);
         return read;
     }},

    // loads with offsets
    {"setLoadWithOffset", "first", nothing,
     [](MemoryWorld& w) {
         return w.a().setLoadWithOffset(w.grip(), {1, 2, 3}, {0, -1, 0}) != nullptr;
     }},
    {"setLoadWithOffset", "further", full,
     [](MemoryWorld& w) {
         return w.a().setLoadWithOffset(w.grip(), {1, 2, 3}, {0, -1, 0}, 1) != nullptr;
     }},
    {"setLoadWithOffset", "on another figure", full,
     [](MemoryWorld& w) {
         return w.a().setLoadWithOffset(w.othersGrip(), {1, 2, 3}, {0, -1, 0}) != nullptr;
     }},
    {"setWeightLoadWithOffset", "first", nothing,
     [](MemoryWorld& w) {
         return w.a().setWeightLoadWithOffset(w.grip(), {1, 2, 3}, 100) != nullptr;
     }},
    {"setWeightLoadWithOffset", "further", full,
     [](MemoryWorld& w) {
         return w.a().setWeightLoadWithOffset(w.tip(), {1, 2, 3}, 100) != nullptr;
     }},
    {"removeLoadWithOffset", "", full,
     [](MemoryWorld& w) { return w.a().removeLoadWithOffset(w.a().getNthLoadWithOffset(1)) == 1; }},

    // torques
    {"setDefinedTorque", "first", nothing,
     [](MemoryWorld& w) { return w.a().setDefinedTorque(w.wrist(), torque) == 1; }},
    {"setDefinedTorque", "in place of another", full,
     [](MemoryWorld& w) { return w.a().setDefinedTorque(w.wrist(), torque) == 1; }},
    {"removeDefinedTorque", "", full, [](MemoryWorld& w) { return w.a().removeDefinedTorque(w.wrist()) == 1; }},
    {"getNumDefinedTorques", "", full, [](MemoryWorld& w) { return w.a().getNumDefinedTorques() == 1; }},
    {"getNthDefinedTorqueJoint", "", full,
     [](MemoryWorld& w) { return w.a().getNthDefinedTorqueJoint(0) == w.wrist(); }},
    {"getDefinedTorque", "", full, [](MemoryWorld& w) { return w.a().getDefinedTorque(w.wrist(), out) == 1; }},

    // all of it
    {"reset", "", full, [](MemoryWorld& w) { return w.a().reset() == 1; }},
    {"reset", "of lists that no analysis has read",
     [](MemoryWorld& w) {
         w.fill();
         qcValue kept[3];
         const char* const keys[] = {"SSTR_LoadList", "SSTR_TorqueList", "SSTR_LoadWithOffsetList"};
         for (int i = 0; i < 3; ++i)
             w.figure->getProperty(keys[i], &kept[i]);
         w.a().clear();
         for (int i = 0; i < 3; ++i)
             w.figure->setProperty(keys[i], kept[i]);
     },
     [](MemoryWorld& w) { return w.a().reset() == 1; }},
    {"reset", "with entries that cannot be read", spoilt, [](MemoryWorld& w) { return w.a().reset() == 1; },
     "StaticStrength WARNING: cannot parse 1\n"},
    {"reportLoads", "begun", full, [](MemoryWorld& w) { return w.a().reportLoads(1) != nullptr; }},
    {"reportLoads", "gone on",
     [](MemoryWorld& w) {
         w.fill();
         w.a().reportLoads(1);
     },
     [](MemoryWorld& w) {
         const char* line = w.a().reportLoads();
         EXPECT_STREQ(line ? line : "", line ? "hand.tip\tLocal Load: (0.00, -2.00, 0.00) Kg-F" : "");   // not lost
         return line != nullptr;
     }},

    // results
    {"getJointForces", "", full, [](MemoryWorld& w) { return w.a().getJointForces(w.wrist(), out, out2) == 1; }},
    {"setFMonJoint", "", nothing,
     [](MemoryWorld& w) {
         w.a().setFMonJoint(w.wrist(), {0, -1, 0}, {1, 0, 0});
         return w.wrist()->getNumProperties() == 1;
     }},
};

class OutOfMemory : public ::testing::TestWithParam<Case> {
protected:
    FixedMessageLog log;
};

// What a failed call reports.
std::string reportOf(const char* member)
{
    return *member ? std::string("StaticStrength ERROR: out of memory in ") + member + "\n" : "";
}

void expectSaid(const Case& each, const std::string& said)
{
    EXPECT_EQ(said.substr(0, std::strlen(each.says)), each.says);
    EXPECT_EQ(said.empty(), !*each.says) << said;
}

// Makes a world, fails the n-th allocation of the call in it, and looks. @return whether it came to the n-th allocation
bool tryOnce(const Case& each, long n, FixedMessageLog& log)
{
    const QuietOutput quiet;
    MemoryWorld world;
    each.prepare(world);
    const std::string before = world.state();
    log.take();   // what preparing reports
    CountedHeap::failAllocation(n);
    const bool done = each.call(world);
    const bool failed = CountedHeap::stopFailing();
    if (!failed) {
        EXPECT_TRUE(done);
        expectSaid(each, log.take());
        return false;
    }
    EXPECT_FALSE(done);
    EXPECT_EQ(log.take(), reportOf(each.member));
    EXPECT_EQ(world.state(), before);

    EXPECT_TRUE(each.call(world)) << "the same call, with memory";
    expectSaid(each, log.take());
    return true;
}

TEST(CountedHeapTest, SeesEveryValueAndItsEnd)
{
    const long before = CountedHeap::liveBlocks();
    qcValue* value = new qcValue("text");
    qcValue* copy = dupval(value);
    EXPECT_EQ(CountedHeap::liveBlocks(), before + 4);   // two values and their texts
    qcValue::destroy(value);
    EXPECT_EQ(CountedHeap::liveBlocks(), before + 2);
    freeval(copy);
    EXPECT_EQ(CountedHeap::liveBlocks(), before);
}

// Ending something must not fail: the first allocation, if there were one, would.
TEST(NeedsNoMemory, EveryMemberThatEndsSomething)
{
    const QuietOutput quiet;
    const auto expectNone = [](const char* what, auto end) {
        FixedMessageLog log;
        CountedHeap::failAllocation(1);
        end();
        EXPECT_FALSE(CountedHeap::stopFailing()) << what;
        EXPECT_EQ(log.take(), "") << what;
    };

    MemoryWorld world;
    loadWithOffset* last = world.a().setLoadWithOffset(world.grip(), {1, 2, 3}, {0, -1, 0});
    expectNone("removing the last load with an offset", [&] { world.a().removeLoadWithOffset(last); });
    world.a().activate(kScript);
    expectNone("deactivating", [&] { world.a().deactivate(); });
    world.fill();
    expectNone("clearing", [&] { world.a().clear(); });
    world.fill();
    world.a().activate(kScript);
    expectNone("the destructor", [&] { world.analysis.reset(); });
}

TEST_P(OutOfMemory, IsReportedOnceAndLeavesEverythingAsItWas)
{
    tryOnce(GetParam(), 0, log);   // what is made once for the whole process
    const long alive = CountedHeap::liveBlocks();
    long n = 1;
    while (tryOnce(GetParam(), n, log)) {
        EXPECT_EQ(CountedHeap::liveBlocks(), alive) << "after failure " << n;
        ASSERT_FALSE(HasFailure()) << "at failure " << n;
        ++n;
    }
    EXPECT_GT(n, 1) << "the call allocates nothing";
    RecordProperty("failures", static_cast<int>(n - 1));
}

INSTANTIATE_TEST_SUITE_P(EveryMember, OutOfMemory, ::testing::ValuesIn(cases));

class OutOfMemoryInCompute : public ::testing::TestWithParam<qmStaticStrength::Strategy> {
protected:
    // A body that carries loads of every kind, about to be computed.
    struct Body : MemoryWorld {
        explicit Body(qmStaticStrength::Strategy strategy) : MemoryWorld(smallBody())
        {
            a().setLoad(site("right_hand.right_palmcenter"), {0, -2, 0}, 1);
            a().setWeightLoadWithOffset(site("left_hand.left_palmcenter"), {1, 0, 0}, 500);
            a().setDefinedTorque(figure->findJoint("waist"), torque);
            a().setStrategy(strategy);
        }
        std::vector<std::string> results() const
        {
            std::vector<std::string> all;
            for (qList* node = figure->getJoints(); node; node = qList::iterator(nullptr, node))
                all.push_back(stored(static_cast<qcJoint*>(node->getData()), "SSTR_Force_Moment"));
            return all;
        }
        // A result is stored whole or not at all.
        void expectNoHalfResult()
        {
            for (qList* node = figure->getJoints(); node; node = qList::iterator(nullptr, node)) {
                qcJoint* joint = static_cast<qcJoint*>(node->getData());
                const bool isThere = stored(joint, "SSTR_Force_Moment") != "absent";
                EXPECT_EQ(a().getJointForces(joint, out, out2), isThere ? 1 : 0) << joint->getName();
            }
        }
    };

    // Fails the n-th allocation, then computes again, with memory. @return whether the first came to it
    bool tryOnce(long n, std::vector<std::string>& results)
    {
        Body body(GetParam());
        CountedHeap::failAllocation(n);
        const int status = body.a().compute();
        const bool failed = CountedHeap::stopFailing();
        EXPECT_EQ(status, 1);
        EXPECT_EQ(log.take(), failed ? reportOf("compute") : "");
        EXPECT_EQ(body.a().getStrategy(), GetParam());
        EXPECT_EQ(body.a().getNumLoads(), 1);
        EXPECT_EQ(body.a().getNumLoadsWithOffset(), 1);
        body.expectNoHalfResult();

        body.a().compute();
        results = body.results();
        EXPECT_EQ(log.take(), "");
        return failed;
    }

    FixedMessageLog log;
};

TEST_P(OutOfMemoryInCompute, IsReportedOnceAndTheNextComputationIsWhole)
{
    std::vector<std::string> expected;
    tryOnce(0, expected);
    const long alive = CountedHeap::liveBlocks();
    long n = 0;
    for (bool failed = true; failed;) {
        {
            std::vector<std::string> results;
            failed = tryOnce(++n, results);
            EXPECT_EQ(results, expected);
        }
        EXPECT_EQ(CountedHeap::liveBlocks(), alive) << "after failure " << n;
        ASSERT_FALSE(HasFailure()) << "at failure " << n;
    }
    EXPECT_GT(n, 1) << "the computation allocates nothing";
    RecordProperty("failures", static_cast<int>(n - 1));
}

INSTANTIATE_TEST_SUITE_P(EveryStrategy, OutOfMemoryInCompute,
                         ::testing::Values(qmStaticStrength::TwoFeet, qmStaticStrength::RightFoot,
                                           qmStaticStrength::LeftFoot, qmStaticStrength::Walking,
                                           qmStaticStrength::Sitting, qmStaticStrength::SittingNoFeet,
                                           qmStaticStrength::HandsAndKnees));

}   // namespace
