// Input: each operation that sets, reads or removes something, by the number of loads that are there already.
#include "BenchHuman.h"

#include <benchmark/benchmark.h>

namespace {

qcSite* palmOf(BenchHuman& human)
{
    return human.figure().findSiteByFullName("human.right_hand.right_palmcenter");
}

void setLoad(benchmark::State& state)
{
    BenchHuman human;
    human.addLoads(static_cast<int>(state.range(0)));
    const qVector load(0, -1, 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(human.analysis().setLoad(palmOf(human), load));
}
BENCHMARK(setLoad)->Arg(0)->Arg(10)->Arg(100);

void setAndRemoveLoad(benchmark::State& state)
{
    BenchHuman human;
    const qVector load(0, -1, 0);
    for (auto _ : state) {
        human.analysis().setLoad(palmOf(human), load);
        benchmark::DoNotOptimize(human.analysis().removeLoad(palmOf(human)));
    }
}
BENCHMARK(setAndRemoveLoad);

void setWeightLoad(benchmark::State& state)
{
    BenchHuman human;
    for (auto _ : state)
        benchmark::DoNotOptimize(human.analysis().setWeightLoad(palmOf(human), 5000.0f));
}
BENCHMARK(setWeightLoad);

void setAndRemoveOffsetLoad(benchmark::State& state)
{
    BenchHuman human;
    const qVector load(0, -1, 0), offset(1, 2, 3);
    for (std::int64_t i = 0; i < state.range(0); ++i)
        human.analysis().setLoadWithOffset(palmOf(human), offset, load, 0);
    for (auto _ : state)
        human.analysis().removeLoadWithOffset(human.analysis().setLoadWithOffset(palmOf(human), offset, load, 0));
}
BENCHMARK(setAndRemoveOffsetLoad)->Arg(0)->Arg(10)->Arg(1000);

void setDefinedTorque(benchmark::State& state)
{
    BenchHuman human;
    qVector torque(1, 2, 3);
    qcJoint* elbow = human.figure().findJoint("right_elbow");
    for (auto _ : state)
        benchmark::DoNotOptimize(human.analysis().setDefinedTorque(elbow, torque));
}
BENCHMARK(setDefinedTorque);

void getSiteLoad(benchmark::State& state)
{
    BenchHuman human;
    human.analysis().setLoad(palmOf(human), qVector(0, -1, 0));
    qVector load;
    for (auto _ : state)
        benchmark::DoNotOptimize(human.analysis().getSiteLoad(palmOf(human), load));
}
BENCHMARK(getSiteLoad);

void getJointForces(benchmark::State& state)
{
    BenchHuman human;
    human.analysis().compute();
    qcJoint* waist = human.figure().findJoint("waist");
    qVector force, moment;
    for (auto _ : state)
        benchmark::DoNotOptimize(human.analysis().getJointForces(waist, force, moment));
}
BENCHMARK(getJointForces);

void setStrategy(benchmark::State& state)
{
    BenchHuman human;
    for (auto _ : state)
        human.analysis().setStrategy(qmStaticStrength::Sitting);
}
BENCHMARK(setStrategy);

void setGravityAndReset(benchmark::State& state)
{
    BenchHuman human;
    human.addLoads(static_cast<int>(state.range(0)));
    for (auto _ : state)
        human.analysis().setGravity(qVector(0, -980.665f, 0));
}
BENCHMARK(setGravityAndReset)->Arg(0)->Arg(10)->Arg(1000);

}   // namespace
