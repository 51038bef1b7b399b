// Simulation: the bound callbacks, which may come and go while they run.
#include "qc/qcSim.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class qcCallback {
public:
    std::string kind;
    std::string owner;
    int (*function)(void*);
    void* data;
    bool bound;
};

namespace {

constexpr const char* kSimulationKind = "qc_simfunc";

// Binding order. One that is unbound while a step runs stays as a husk until the step ends.
std::vector<std::unique_ptr<qcCallback>>& callbacks()
{
    static auto* all = new std::vector<std::unique_ptr<qcCallback>>;   // outlives every owner
    return *all;
}

std::vector<int> lastResults;
int runningSteps = 0;   // steps within steps

void sweepHusks()
{
    auto& all = callbacks();
    for (std::size_t i = all.size(); i > 0; --i)
        if (!all[i - 1]->bound)
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(i - 1));
}

// In progress while it lives; a callback may itself step the simulation.
class StepInProgress {
public:
    StepInProgress() { ++runningSteps; }
    ~StepInProgress()
    {
        if (--runningSteps == 0)
            sweepHusks();
    }
    StepInProgress(const StepInProgress&) = delete;
    StepInProgress& operator=(const StepInProgress&) = delete;
};

const qcCallback* nthBound(int n)
{
    for (const auto& callback : callbacks())
        if (callback->bound && n-- == 0)
            return callback.get();
    return nullptr;
}

}   // namespace

qcCallback* qcSim::bindCallback(const char* kind, const char* owner, int (*function)(void*), void* data)
{
    callbacks().push_back(
        std::unique_ptr<qcCallback>(new qcCallback{kind ? kind : "", owner ? owner : "", function, data, true}));
    return callbacks().back().get();
}

int qcSim::unbindCallback(qcCallback* callback)
{
    for (const auto& candidate : callbacks()) {
        if (candidate.get() != callback || !candidate->bound)
            continue;
        candidate->bound = false;
        if (runningSteps == 0)
            sweepHusks();
        return 1;
    }
    return 0;
}

int qcSim::step(int steps)
{
    int calls = 0;
    lastResults.clear();
    const StepInProgress inProgress;
    for (int n = 0; n < steps; ++n) {
        std::vector<int> results;
        const std::size_t boundBefore = callbacks().size();
        results.reserve(boundBefore);   // first: memory that runs out stops the simulation before a callback runs
        for (std::size_t i = 0; i < boundBefore; ++i) {
            const qcCallback* callback = callbacks()[i].get();
            if (!callback->bound || callback->kind != kSimulationKind)
                continue;
            results.push_back(callback->function(callback->data));
            ++calls;
        }
        lastResults = std::move(results);
    }
    return calls;
}

int qcSim::getNumResults()
{
    return static_cast<int>(lastResults.size());
}

int qcSim::getResult(int i)
{
    return i >= 0 && i < getNumResults() ? lastResults[static_cast<std::size_t>(i)] : 0;
}

int qcSim::getNumBound()
{
    int count = 0;
    for (const auto& callback : callbacks())
        count += callback->bound ? 1 : 0;
    return count;
}

const char* qcSim::getBoundKind(int i)
{
    const qcCallback* callback = i < 0 ? nullptr : nthBound(i);
    return callback ? callback->kind.c_str() : nullptr;
}

const char* qcSim::getBoundOwner(int i)
{
    const qcCallback* callback = i < 0 ? nullptr : nthBound(i);
    return callback ? callback->owner.c_str() : nullptr;
}
