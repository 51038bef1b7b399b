// Allocations: a repeated computation takes nothing from the heap, and a human takes little.
//
// The program replaces malloc, through which operator new goes too, to count what is asked of it. It
// is not built under a sanitizer, which has a malloc of its own.
#include "AnalysisTest.h"

#include <malloc.h>

#include <cstddef>

extern "C" void* __libc_malloc(std::size_t size);

namespace {

volatile std::size_t allocations = 0;   // volatile: a compiler may hold that malloc changes no variable

}   // namespace

// Seen by the libraries too, so that it is theirs.
extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    allocations = allocations + 1;
    return __libc_malloc(size);
}

namespace {

class Allocation : public AnalysisTest, public ::testing::WithParamInterface<qmStaticStrength::Strategy> {};

// Loads of every kind, in an order that leaves no site of a kind out.
void loadEverySite(qmStaticStrength& analysis, qcFigure& figure)
{
    int i = 0;
    for (qList* node = figure.getSites(); node; node = qList::iterator(nullptr, node), ++i) {
        qcSite* site = static_cast<qcSite*>(node->getData());
        switch (i % 4) {
        case 0:
            analysis.setLoad(site, qVector(0, -1, 0), i % 2);
            break;
        case 1:
            analysis.setWeightLoad(site, 500);
            break;
        case 2:
            analysis.setLoadWithOffset(site, qVector(1, 2, 3), qVector(0, -1, 0), i % 2);
            break;
        default:
            analysis.setWeightLoadWithOffset(site, qVector(1, 2, 3), 250);
        }
    }
    qVector torque(1, 2, 3);
    for (qList* node = figure.getJoints(); node; node = qList::iterator(nullptr, node))
        analysis.setDefinedTorque(static_cast<qcJoint*>(node->getData()), torque);
}

TEST(AllocationCounter, SeesAnAllocation)
{
    const std::size_t before = allocations;
    void* const memory = ::operator new(1);   // called by name: clang leaves out a `new` that nobody needs
    EXPECT_GT(allocations, before);
    ::operator delete(memory);
}

TEST_P(Allocation, NoneInARepeatedComputationOfALoadedHuman)
{
    loadDefaultHuman();
    loadEverySite(*analysis, *figure);
    analysis->setStrategy(GetParam());
    analysis->compute();

    const std::size_t before = allocations;
    for (int i = 0; i < 100; ++i)
        analysis->compute();
    EXPECT_EQ(allocations - before, 0u);
}

TEST_P(Allocation, NoneInChangesOfPostureThatAreComputed)
{
    loadDefaultHuman();
    analysis->setStrategy(GetParam());
    qcJoint* knee = joint("right_knee");
    const auto sweep = [&] {
        for (int i = 0; i < 100; ++i) {
            knee->setAngle(1, 0.01 * i);
            analysis->compute();
        }
    };
    sweep();   // a first round: walking changes feet on the way, and joints get their first result

    const std::size_t before = allocations;
    sweep();
    EXPECT_EQ(allocations - before, 0u);
}

INSTANTIATE_TEST_SUITE_P(EveryStrategy, Allocation,
                         ::testing::Values(qmStaticStrength::TwoFeet, qmStaticStrength::RightFoot,
                                           qmStaticStrength::LeftFoot, qmStaticStrength::Walking,
                                           qmStaticStrength::Sitting, qmStaticStrength::SittingNoFeet,
                                           qmStaticStrength::HandsAndKnees));

class MemoryOfAHuman : public AnalysisTest {};

TEST_F(MemoryOfAHuman, WithItsAnalysisIsLessThanOneMebibyte)
{
    loadDefaultHuman();   // a first one fills what is shared by all: pools, keys, the library's own tables
    const std::size_t before = mallinfo2().uordblks;
    qcHuman* second = scene->addHuman(SSTR_SOURCE_DIR "/figures/human.urdf", "second");
    ASSERT_NE(second, nullptr);
    analyses.push_back(std::make_unique<qmStaticStrength>(second));
    analyses.back()->setStrategy(qmStaticStrength::RightFoot);
    analyses.back()->compute();
    const std::size_t taken = mallinfo2().uordblks - before;
    EXPECT_GT(taken, 10000u);   // the measure works
    EXPECT_LT(taken, std::size_t(1) << 20);
    RecordProperty("bytes", static_cast<int>(taken));
}

}   // namespace
