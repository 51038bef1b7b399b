// Human gone fuzzer: analyses, copies and callbacks whose human and figure are destroyed before them.
//
// Analyses may outlive their human, as long as they are not asked about it; another human has one of its own.
#include "AnalysedHuman.h"
#include "Check.h"
#include "SmallFigure.h"

#include "qmStaticStrength.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    silenceOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);
    const SilentMessages messages;
    auto human = std::make_unique<AnalysedHuman>(threeSites().text());
    std::vector<std::unique_ptr<qmStaticStrength>> analyses;
    analyses.emplace_back(qmStaticStrength::getHandle(human->human()));
    for (int n = data.ConsumeIntegralInRange(0, 4); n > 0; --n) {
        qmStaticStrength& one = *analyses[data.ConsumeIntegralInRange<std::size_t>(0, analyses.size() - 1)];
        switch (data.ConsumeIntegralInRange(0, 3)) {
        case 0:
            analyses.push_back(std::make_unique<qmStaticStrength>(one));
            break;
        case 1:
            analyses.push_back(std::make_unique<qmStaticStrength>(human->human()));
            break;
        case 2:
            one.setLoadWithOffset(human->sites().front(), {1, 2, 3}, {0, -1, 0}, 0);
            break;
        default:
            one = *analyses.back();
        }
    }
    for (const auto& analysis : analyses)
        if (data.ConsumeBool())
            analysis->activate("");
    for (int n = data.ConsumeIntegralInRange(0, 2); n > 0 && !analyses.empty(); --n)
        analyses.erase(analyses.begin());

    human.reset();
    for (const auto& analysis : analyses) {
        qVector gravity;
        analysis->getGravity(gravity);
        analysis->getStrategy();
        check(analysis->deactivate() == 1 && analysis->isActive() == 0, "an analysis outlives its human quietly");
    }
    human = std::make_unique<AnalysedHuman>(threeSites().text());
    std::unique_ptr<qmStaticStrength> next(qmStaticStrength::getHandle(human->human()));
    for (const auto& analysis : analyses)
        check(analysis != next, "a new human has an analysis of its own");
    check(next->compute() == 1 && next->getNumLoadsWithOffset() == 0, "a new human begins without loads");
    if (data.ConsumeBool())
        analyses.clear();
    else
        next.reset();
    return 0;
}
