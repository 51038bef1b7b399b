// Sizes: what a change costs among n loads, counted in allocations, which every machine counts alike.
//
// Every value and text is a block of the heap's own here, so that each copy of a list is counted element by element.
// The program replaces malloc, as the test of computations does, and is not built under a sanitizer.
#include "AnalysisTest.h"

#include <cstddef>
#include <cstdlib>

extern "C" void* __libc_malloc(std::size_t size);

namespace {

volatile std::size_t allocations = 0;   // volatile: a compiler may hold that malloc changes no variable

// Before the first value asks for memory: from then on it is known.
const int heapIsAskedFor = setenv("QC_VALUE_MEMORY", "heap", 1);

}   // namespace

extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    allocations = allocations + 1;
    return __libc_malloc(size);
}

namespace {

// A hub with 400 sites, at each of which a segment hangs.
class Sizes : public AnalysisTest {
protected:
    static constexpr int kMost = 400;

    void SetUp() override
    {
        ASSERT_EQ(heapIsAskedFor, 0);
        SmallFigure small;
        small.segment("hub", 1000);
        for (int i = 0; i < kMost; ++i) {
            const std::string number = std::to_string(i);
            small.site("hub", "h" + number, {0, 0, 0})
                .segment("s" + number, 1000)
                .site("s" + number, "a", {0, 0, 0})
                .joint("j" + number, "hub.h" + number, "s" + number + ".a");
        }
        load(small);
    }

    enum Input { kLoad, kWeight, kOffsetLoad, kTorque };

    void put(Input input, int i)
    {
        qcSite* at = site("s" + std::to_string(i) + ".a");
        qVector vector(0, -1, 0);
        const bool done = input == kLoad     ? analysis->setLoad(at, vector) == 1
                          : input == kWeight ? analysis->setWeightLoad(at, 500) == 1
                          : input == kOffsetLoad
                              ? analysis->setLoadWithOffset(at, {1, 2, 3}, vector, 0) != nullptr
                              : analysis->setDefinedTorque(joint("j" + std::to_string(i)), vector) == 1;
        ASSERT_TRUE(done);
    }

    template <class Work> static std::size_t allocationsOf(Work work)
    {
        const std::size_t before = allocations;
        work();
        return allocations - before;
    }
};

// Linear: from 100 to 200 and from 200 to 400 there the costs grow as 1 : 2, but for what containers that double take,
// which a tenth is more than enough for; a quadratic cost would grow as 1 : 4.
void expectLinear(std::size_t at100, std::size_t at200, std::size_t at400)
{
    ASSERT_GT(at200, at100 + 100);   // each entry counts
    const double first = static_cast<double>(at200 - at100), second = static_cast<double>(at400 - at200);
    EXPECT_NEAR(second / first, 2, 0.2) << at100 << ", " << at200 << ", " << at400;
}

class SizesOf : public Sizes, public ::testing::WithParamInterface<int> {
protected:
    Input input() const { return static_cast<Input>(GetParam()); }
};

TEST_P(SizesOf, OneSetIsLinearInWhatIsThere)
{
    std::size_t cost[3];
    int there = 0;
    for (const int count : {100, 200, kMost}) {
        for (; there < count - 1; ++there)
            put(input(), there);
        cost[count == 100 ? 0 : count == 200 ? 1 : 2] = allocationsOf([&] { put(input(), there); });
        ++there;
    }
    expectLinear(cost[0], cost[1], cost[2]);
}

TEST_P(SizesOf, AResetIsLinearInWhatIsThere)
{
    std::size_t cost[3];
    int there = 0;
    for (const int count : {100, 200, kMost}) {
        for (; there < count; ++there)
            put(input(), there);
        cost[count == 100 ? 0 : count == 200 ? 1 : 2] = allocationsOf([&] { EXPECT_EQ(analysis->reset(), 1); });
    }
    expectLinear(cost[0], cost[1], cost[2]);
}

INSTANTIATE_TEST_SUITE_P(Every, SizesOf, ::testing::Range(0, 4));

// One allocation a level: the way back to the outer lists takes none.
TEST(ValueCopy, OfANestTakesOneAllocationALevel)
{
    constexpr std::size_t kDepth = 10000;
    qcValue nest(1.0f);
    for (std::size_t i = 0; i < kDepth; ++i) {
        qcValue outer;
        outer.setList(new qcValue(std::move(nest)));
        nest = std::move(outer);
    }
    const std::size_t before = allocations;
    const qcValue copy(nest);
    EXPECT_EQ(allocations - before, kDepth);
}

}   // namespace
