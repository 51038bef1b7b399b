// Benchmark.
#include "Benchmark.h"

#include "Subject.h"
#include "Tree.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <time.h>   // clock_gettime
#include <utility>

namespace {

constexpr int kPostures = 64;
constexpr int kCasesBefore = 10;   // compared before anything is timed
constexpr double kTurn = 0.0005;   // s, at least, that one turn lasts: short, so that few are interrupted
constexpr int kTreeSizes[] = {10, 30, 100, 300, 1000};

using Computation = std::function<void(const std::vector<double>& angles)>;

// Time on a processor; what others do on the machine meanwhile does not count.
double secondsOfThisThread()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

// One of those that are timed: what it does, and the time of one computation in each of its turns.
struct Runner {
    explicit Runner(Computation computation) : compute(std::move(computation)) {}

    double turn(const std::vector<std::vector<double>>& postures)
    {
        const double start = secondsOfThisThread();
        for (int i = 0; i < perTurn; ++i)
            compute(postures[static_cast<std::size_t>(next++ % kPostures)]);
        return secondsOfThisThread() - start;
    }

    Computation compute;
    int perTurn = 1;
    unsigned next = 0;   // posture
    std::vector<double> microseconds;
};

// The value below which a share of the values lies.
double quantile(std::vector<double> values, double share)
{
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

// The analysis, then the witnesses in their order.
std::vector<Runner> runnersOf(Subject& subject)
{
    std::vector<Runner> runners;
    runners.emplace_back([&subject](const std::vector<double>& angles) {
        subject.host.setAngles(angles);
        subject.analysis.compute();
    });
    for (const auto& owned : subject.witnesses)
        runners.emplace_back([witness = owned.get()](const std::vector<double>& angles) {
            witness->setAngles(angles);
            witness->solve();
        });
    return runners;
}

bool agreesInSomeCases(Subject& subject)
{
    std::vector<Tally> tallies(subject.witnesses.size());
    for (unsigned number = 0; number < kCasesBefore; ++number) {
        const Case drawn = drawCase(number, subject.figure, subject.host);
        subject.take(drawn);
        subject.compareOn(Support::kRightFoot, drawn, "case " + std::to_string(number), tallies);
    }
    int disagreements = 0;
    for (const Tally& tally : tallies) {
        disagreements += tally.disagreements;
        for (const std::string& message : tally.messages)
            std::printf("  %s\n", message.c_str());
    }
    return disagreements == 0;
}

// Standing upright under gravity, with no load, in many postures.
std::vector<std::vector<double>> prepare(Subject& subject)
{
    std::vector<std::vector<double>> postures;
    Case bare = drawCase(0, subject.figure, subject.host);
    bare.rootCm = {0, 100, 0};
    bare.rootDegrees = {};
    bare.loads.clear();
    bare.offsetLoads.clear();
    bare.torques.clear();
    bare.handLoads[qcRight] = bare.handLoads[qcLeft] = std::nullopt;
    for (unsigned number = 0; number < kPostures; ++number)
        postures.push_back(drawCase(number, subject.figure, subject.host).angles);
    subject.take(bare);
    subject.analysis.setStrategy(qmStaticStrength::RightFoot);
    for (const auto& witness : subject.witnesses)
        witness->setForces(std::vector<Wrench>(subject.figure.bodies.size()));
    return postures;
}

// Median and quartiles.
void printSpread(const std::vector<double>& values, const char* unit)
{
    std::printf("%8.2f%s (%.2f to %.2f)", quantile(values, 0.5), unit, quantile(values, 0.25), quantile(values, 0.75));
}

void printHead(int rounds)
{
    std::printf("All joint angles anew and what every joint carries then: µs on a processor, median of %d rounds "
                "(quartiles);\nx: times as long as the analysis in the same round.\n\n",
                rounds);
}

void printRow(const Subject& subject, const std::vector<Runner>& runners)
{
    std::printf("%s: %zu joints, %d angles\n", subject.name.c_str(), subject.figure.bodies.size() - 1,
                subject.figure.hinges);
    const std::vector<double>& own = runners.front().microseconds;
    std::printf("  %-9s", "analysis");
    printSpread(own, "");
    for (std::size_t w = 0; w < subject.witnesses.size(); ++w) {
        const std::vector<double>& others = runners[w + 1].microseconds;
        std::vector<double> ratios;
        for (std::size_t i = 0; i < own.size(); ++i)
            ratios.push_back(others[i] / own[i]);
        std::printf("\n  %-9s", subject.witnesses[w]->name());
        printSpread(others, "");
        printSpread(ratios, " x");
    }
    std::printf("\n");
    std::fflush(stdout);
}

bool benchmark(Subject& subject, int rounds)
{
    if (!agreesInSomeCases(subject)) {
        std::printf("%s: disagrees, not timed\n", subject.name.c_str());
        return false;
    }
    const std::vector<std::vector<double>> postures = prepare(subject);
    std::vector<Runner> runners = runnersOf(subject);
    for (Runner& runner : runners)
        while (runner.turn(postures) < kTurn)
            runner.perTurn *= 2;
    for (int round = 0; round < rounds; ++round)
        for (Runner& runner : runners)
            runner.microseconds.push_back(runner.turn(postures) * 1e6 / runner.perTurn);
    printRow(subject, runners);
    return true;
}

}   // namespace

int runBenchmark(int rounds)
{
    printHead(rounds);
    bool agrees = benchmark(*defaultHuman(), rounds);
    if (const std::unique_ptr<Subject> model = publicModel())
        agrees = benchmark(*model, rounds) && agrees;
    for (const int size : kTreeSizes) {
        const Tree tree(size);
        Subject subject("tree of " + std::to_string(size), tree.urdfPath(), tree.rolesPath());
        agrees = benchmark(subject, rounds) && agrees;
    }
    return agrees ? 0 : 1;
}
