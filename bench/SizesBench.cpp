// Sizes: what each operation costs by the number of loads that are there, of joints at a site, of segments in a chain.
//
// Google Benchmark fits each to its order: one set is linear in what is there (the lists are written out whole), and so
// are a reset and a computation.
#include "BenchTree.h"

#include "qmStaticStrength.h"

#include "qc/qcScene.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

// The root of a tree is its right foot, so that one walk meets every segment.
class BenchFigure {
public:
    explicit BenchFigure(int segments, int branching)
    {
        human = scene.addPosedHuman(treeText(segments, branching).c_str());
        if (!human)
            return;
        owned = std::make_unique<qmStaticStrength>(human);
        owned->setStrategy(qmStaticStrength::RightFoot);
    }
    BenchFigure(const BenchFigure&) = delete;
    BenchFigure& operator=(const BenchFigure&) = delete;

    bool isRead() const { return human != nullptr; }
    qmStaticStrength& analysis() { return *owned; }
    qcSite* site(int segment) const
    {
        return human->getFigure()->findSiteByFullName(("tree.s" + std::to_string(segment) + ".proximal").c_str());
    }
    qcJoint* joint(int segment) const { return human->getFigure()->findJoint(("j" + std::to_string(segment)).c_str()); }

    void store(const char* key, const qcValue& value) { human->getFigure()->setProperty(key, value); }

    /// Every segment weighs 1 kgf, whole numbers in single precision. @return what the ankle carries, upwards positive
    float weight()
    {
        qVector force, moment;
        owned->compute();
        owned->getJointForces(human->getAnkleJoint(qcRight), force, moment);
        return -force[1];
    }

private:
    qcScene scene;
    qcHuman* human = nullptr;
    std::unique_ptr<qmStaticStrength> owned;
};

enum Input { kLoads, kOffsetLoads, kTorques };

void put(BenchFigure& figure, Input input, int segment)
{
    qVector vector(0, -1, 0);
    if (input == kLoads)
        figure.analysis().setLoad(figure.site(segment), vector);
    else if (input == kOffsetLoads)
        figure.analysis().setLoadWithOffset(figure.site(segment), qVector(1, 0, 0), vector, 0);
    else
        figure.analysis().setDefinedTorque(figure.joint(segment), vector);
}

int countOf(BenchFigure& figure, Input input)
{
    return input == kLoads         ? figure.analysis().getNumLoads()
           : input == kOffsetLoads ? figure.analysis().getNumLoadsWithOffset()
                                   : figure.analysis().getNumDefinedTorques();
}

qcValue* newList(const std::vector<qcValue*>& elements)
{
    for (std::size_t i = 1; i < elements.size(); ++i)
        elements[i - 1]->next = elements[i];
    qcValue* list = new qcValue;
    list->setList(elements.empty() ? nullptr : elements.front());
    return list;
}

// A figure that carries `count` of them, on segments 1, 2, …; all at once, as a saved scene brings them: one by one
// they would be set by the square of their number.
bool fill(benchmark::State& state, BenchFigure& figure, Input input, int count)
{
    const qVector vector(0, -1, 0);
    const auto newVector = [&] {
        qcValue* value = new qcValue;
        value->set(&vector);
        return value;
    };
    std::vector<qcValue*> entries;
    for (int i = 1; i <= count; ++i) {
        const std::string number = std::to_string(i);
        const std::string key = input == kTorques ? "j" + number : "s" + number + ".proximal";
        std::vector<qcValue*> entry = {new qcValue(key.c_str()), newVector()};
        if (input == kOffsetLoads)
            entry.push_back(newVector());
        if (input != kTorques)
            entry.push_back(new qcValue("global"));
        entries.push_back(newList(entry));
    }
    const std::unique_ptr<qcValue> list(newList(entries));
    constexpr const char* kLists[] = {"SSTR_LoadList", "SSTR_LoadWithOffsetList", "SSTR_TorqueList"};
    if (figure.isRead()) {
        figure.store(kLists[input], *list);
        figure.analysis().reset();
        if (countOf(figure, input) == count)
            return true;
    }
    state.SkipWithError("not all are there");
    return false;
}

// The last of n is set anew: the longest look for its entry.
template <Input input> void setOneAmong(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    BenchFigure figure(count + 1, count);
    if (!fill(state, figure, input, count))
        return;
    for (auto _ : state) {
        put(figure, input, count);
        if (input == kOffsetLoads)   // a record more each time: take it off again
            figure.analysis().removeLoadWithOffset(figure.analysis().getNthLoadWithOffset(count));
    }
    state.SetComplexityN(count);
}
BENCHMARK_TEMPLATE(setOneAmong, kLoads)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);
BENCHMARK_TEMPLATE(setOneAmong, kOffsetLoads)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);
BENCHMARK_TEMPLATE(setOneAmong, kTorques)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);

template <Input input> void resetAll(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    BenchFigure figure(count + 1, count);
    if (!fill(state, figure, input, count))
        return;
    for (auto _ : state)
        benchmark::DoNotOptimize(figure.analysis().reset());
    if (countOf(figure, input) != count)
        state.SkipWithError("a reset lost some");
    state.SetComplexityN(count);
}
BENCHMARK_TEMPLATE(resetAll, kLoads)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);
BENCHMARK_TEMPLATE(resetAll, kOffsetLoads)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);
BENCHMARK_TEMPLATE(resetAll, kTorques)->Arg(100)->Arg(1000)->Arg(2500)->Arg(5000)->Complexity(benchmark::oN);

void computeFigure(benchmark::State& state, int segments, int branching)
{
    BenchFigure figure(segments, branching);
    if (!figure.isRead() || figure.weight() != static_cast<float>(segments)) {
        state.SkipWithError("the weights do not add up");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(figure.analysis().compute());
    state.SetComplexityN(segments);
}

void computeChain(benchmark::State& state)
{
    computeFigure(state, static_cast<int>(state.range(0)), 1);
}
BENCHMARK(computeChain)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// All segments but the first hang on it, each at a site of its own.
void computeFan(benchmark::State& state)
{
    const int joints = static_cast<int>(state.range(0));
    computeFigure(state, joints + 1, joints);
}
BENCHMARK(computeFan)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

// Reading the text of a chain and making its human and its analysis.
void readChain(benchmark::State& state)
{
    const int segments = static_cast<int>(state.range(0));
    const std::string text = treeText(segments, 1);
    for (auto _ : state) {
        qcScene scene;
        qcHuman* human = scene.addPosedHuman(text.c_str());
        if (!human) {
            state.SkipWithError("the chain does not read");
            return;
        }
        qmStaticStrength analysis(human);
        benchmark::DoNotOptimize(analysis.getNumLoads());
    }
    state.SetComplexityN(segments);
}
BENCHMARK(readChain)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

}   // namespace
