// Walks on synthetic trees: the cost per segment from 10 to 100 000 segments.
#include "BenchTree.h"

#include "qmStaticStrength.h"

#include "qc/qcScene.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

// Arguments: number of segments, branching. The counter is the time for one segment.
void walkTree(benchmark::State& state)
{
    const int segments = static_cast<int>(state.range(0));
    const std::string text = treeText(segments, static_cast<int>(state.range(1)));
    qcScene scene;
    qcHuman* human = scene.addPosedHuman(text.c_str());
    if (!human) {
        state.SkipWithError("the tree does not read");
        return;
    }
    {
        qmStaticStrength analysis(human);
        analysis.setStrategy(qmStaticStrength::RightFoot);
        analysis.compute();
        // all segments weigh on the ankle: 1 kgf each, the foot too
        qVector force, moment;
        analysis.getJointForces(human->getAnkleJoint(qcRight), force, moment);
        if (force[1] != -static_cast<float>(segments)) {
            state.SkipWithError("the weights do not add up");
            return;
        }
        for (auto _ : state) {
            int status = analysis.compute();
            benchmark::DoNotOptimize(status);
        }
    }
    state.counters["per_segment"] =
        benchmark::Counter(static_cast<double>(segments) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(walkTree)->ArgNames({"segments", "branching"})->ArgsProduct({{10, 100, 1000, 10000, 100000}, {1, 3}});

}   // namespace
