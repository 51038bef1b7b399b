// Computations of the default human: by strategy and number of loads, and after a change of posture.
#include "BenchHuman.h"

#include <benchmark/benchmark.h>

namespace {

// A joint that each strategy leaves a result on.
const char* jointOf(qmStaticStrength::Strategy strategy)
{
    return strategy == qmStaticStrength::HandsAndKnees ? "right_knee" : "right_hip";
}

bool ready(BenchHuman& human, qmStaticStrength::Strategy strategy, benchmark::State& state)
{
    human.analysis().setStrategy(strategy);
    human.analysis().compute();
    if (human.hasResult(jointOf(strategy)))
        return true;
    state.SkipWithError("no result");
    return false;
}

// Arguments: strategy, number of loads.
void computeAlone(benchmark::State& state)
{
    BenchHuman human;
    human.addLoads(static_cast<int>(state.range(1)));
    if (!ready(human, static_cast<qmStaticStrength::Strategy>(state.range(0)), state))
        return;
    for (auto _ : state) {
        int status = human.analysis().compute();
        benchmark::DoNotOptimize(status);
    }
    state.SetItemsProcessed(state.iterations());
}

void everyStrategy(benchmark::internal::Benchmark* bench)
{
    using S = qmStaticStrength;
    bench->ArgNames({"strategy", "loads"});
    for (const int strategy :
         {S::TwoFeet, S::RightFoot, S::LeftFoot, S::Walking, S::Sitting, S::SittingNoFeet, S::HandsAndKnees})
        for (const int loads : {0, 10, 1000})
            bench->Args({strategy, loads});
}
BENCHMARK(computeAlone)->Apply(everyStrategy);

// Every joint angle anew, then right foot: every joint of the body gets a result.
void postureAndCompute(benchmark::State& state)
{
    BenchHuman human;
    if (!ready(human, qmStaticStrength::RightFoot, state))
        return;
    int variant = 0;
    for (auto _ : state) {
        human.setPosture(++variant);
        int status = human.analysis().compute();
        benchmark::DoNotOptimize(status);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(postureAndCompute);

// The part of the above that is no analysis: angles and forward kinematics.
void postureAlone(benchmark::State& state)
{
    BenchHuman human;
    qcSegment* segment = human.figure().findSegment("head");
    int variant = 0;
    for (auto _ : state) {
        human.setPosture(++variant);
        benchmark::DoNotOptimize(segment->getGlobalTransform());
    }
}
BENCHMARK(postureAlone);

// Linear in the number of offset loads, not that number times the sites.
void computeByOffsetLoads(benchmark::State& state)
{
    BenchHuman human;
    const qVector load(0, -1, 0), offset(1, 2, 3);
    qcSite* site = human.figure().findSiteByFullName("human.right_hand.right_palmcenter");
    human.analysis().setLoad(site, load);
    for (std::int64_t i = 0; i < state.range(0); ++i)
        human.analysis().setLoadWithOffset(site, offset, load, 0);
    if (!ready(human, qmStaticStrength::RightFoot, state))
        return;
    for (auto _ : state) {
        int status = human.analysis().compute();
        benchmark::DoNotOptimize(status);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(computeByOffsetLoads)->RangeMultiplier(4)->Range(16, 4096)->Complexity(benchmark::oN);

}   // namespace
