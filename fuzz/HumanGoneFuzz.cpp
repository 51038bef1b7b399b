// Human gone fuzzer: analyses, copies and callbacks that outlive their human, called in any order and deleted in any.
//
// Beside them lives another human with analyses of its own. Parts of the one that is gone are never handed in: they are
// freed, and no caller may. What an analysis without its human is asked for it refuses, saying so, and touches nothing.
#include "AnalysedHuman.h"
#include "Check.h"
#include "SmallFigure.h"
#include "SpelledValues.h"

#include "qmStaticStrength.h"

#include "qc/qcFigureFile.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

std::unique_ptr<AnalysedHuman> newHuman()
{
    static const std::string text = threeSites().text();
    return std::make_unique<AnalysedHuman>(text);
}

/// An analysis and the human that it is of; without one once that is gone.
struct Analysis {
    std::unique_ptr<qmStaticStrength> real;
    const AnalysedHuman* of;
};

class GoneWorld {
public:
    explicit GoneWorld(FuzzedDataProvider& source) : data(source) {}

    void run();

private:
    static constexpr std::size_t kMostAnalyses = 8;

    Analysis& any() { return analyses[data.ConsumeIntegralInRange<std::size_t>(0, analyses.size() - 1)]; }
    /// A part of the human that lives, or null.
    template <class Part> Part* partOf(const std::vector<Part*>& parts)
    {
        const std::size_t n = data.ConsumeIntegralInRange<std::size_t>(0, parts.size());
        return n < parts.size() ? parts[n] : nullptr;
    }

    void add(qmStaticStrength* real, const AnalysedHuman* of)
    {
        analyses.push_back({std::unique_ptr<qmStaticStrength>(real), of});
    }
    void handle(const AnalysedHuman& human);
    void prepare(const AnalysedHuman& human);
    void goes(std::unique_ptr<AnalysedHuman>& human);
    void callAny();
    void step();
    bool failsAt(qmStaticStrength& one, qcSite* site, qcJoint* joint, qVector& out);
    void checkNeedsHuman(const Analysis& one);

    FuzzedDataProvider& data;
    const SilentMessages messages;
    std::unique_ptr<AnalysedHuman> going, staying;
    std::vector<Analysis> analyses;
};

// Made on request where the human has none yet.
void GoneWorld::handle(const AnalysedHuman& human)
{
    qmStaticStrength* found = qmStaticStrength::getHandle(human.human());
    for (const Analysis& known : analyses) {
        if (known.real.get() != found)
            continue;
        check(known.of == &human, "a human's analysis is of this human, not of one that is gone");
        return;
    }
    add(found, &human);
}

// Up to five analyses of a human, some of them copies, some active, some with loads.
void GoneWorld::prepare(const AnalysedHuman& human)
{
    handle(human);
    for (int n = data.ConsumeIntegralInRange(0, 4); n > 0; --n) {
        Analysis& one = any();
        switch (data.ConsumeIntegralInRange(0, 4)) {
        case 0:
            add(new qmStaticStrength(*one.real), one.of);
            break;
        case 1:
            add(new qmStaticStrength(human.human()), &human);
            break;
        case 2:
            one.real->setLoadWithOffset(one.of->sites().front(), {1, 2, 3}, {0, -1, 0}, 0);
            break;
        case 3:
            one.real->activate(data.ConsumeBool() ? "script" : "");
            break;
        default:
            *one.real = *analyses.back().real;
            one.of = analyses.back().of;
        }
    }
}

void GoneWorld::goes(std::unique_ptr<AnalysedHuman>& human)
{
    for (Analysis& analysis : analyses)
        if (analysis.of == human.get())
            analysis.of = nullptr;
    human.reset();
}

// Calls a member that needs the human. Returns whether it answered as one that fails.
bool GoneWorld::failsAt(qmStaticStrength& one, qcSite* site, qcJoint* joint, qVector& out)
{
    qVector force(1, 2, 3), moment(4, 5, 6);
    const int n = data.ConsumeIntegralInRange(-1, 4);
    switch (data.ConsumeIntegralInRange(0, 24)) {
    case 0:
        one.setGravity({0, 0, -981});
        return true;
    case 1:
        one.setStrategy(static_cast<qmStaticStrength::Strategy>(n));
        return true;
    case 2:
        return one.setLoad(site, out, n) == 0;
    case 3:
        return one.setWeightLoad(site, 500) == 0;
    case 4:
        return one.removeLoad(site) == 0;
    case 5:
        return one.getNumLoads() == 0;
    case 6:
        return one.getNthLoadSite(n) == nullptr;
    case 7:
        return one.getLoadType(site) == nullptr;
    case 8:
        return one.getSiteWeight(site) == -1.0f;
    case 9:
        return one.getSiteLoad(site, out) == 0;
    case 10:
        return one.setLoadWithOffset(site, force, moment, n) == nullptr;
    case 11:
        return one.setWeightLoadWithOffset(site, force, 500) == nullptr;
    case 12:
        return one.removeLoadWithOffset(one.getNthLoadWithOffset(n)) == 0;
    case 13:
        return one.setDefinedTorque(joint, moment) == 0;
    case 14:
        return one.removeDefinedTorque(joint) == 0;
    case 15:
        return one.getNumDefinedTorques() == 0;
    case 16:
        return one.getNthDefinedTorqueJoint(n) == nullptr;
    case 17:
        return one.getDefinedTorque(joint, out) == 0;
    case 18:
        one.clear();
        return true;
    case 19:
        return one.reset() == 0;
    case 20:
        return one.reportLoads(n) == nullptr;
    case 21:
        return one.compute() == 1;
    case 22:
        return one.getJointForces(joint, force, moment) == 0 && spelled(force) == spelled(qVector())
               && spelled(moment) == spelled(qVector());
    case 23:
        one.setFMonJoint(joint, force, moment);
        return true;
    default:
        return one.getSplitFactor(joint, n, "waist") == 0;
    }
}

void GoneWorld::checkNeedsHuman(const Analysis& one)
{
    qcSite* site = staying ? partOf(staying->sites()) : nullptr;
    qcJoint* joint = staying ? partOf(staying->joints()) : nullptr;
    const qVector before(7, 8, 9);
    qVector out = before;
    if (one.of) {
        failsAt(*one.real, site, joint, out);
        return;
    }
    const auto text = [this] { return staying ? qcFigureFile::posedText(*staying->figure()) : ""; };
    const std::string untouched = text();
    const int errors = messages.errors(), records = one.real->getNumLoadsWithOffset();
    check(failsAt(*one.real, site, joint, out), "what needs the human fails without it");
    check(messages.errors() == errors + 1, "and says so once");
    check(spelled(out) == spelled(before), "and leaves its output as it was");
    check(one.real->getNumLoadsWithOffset() == records, "and the records");
    check(text() == untouched, "and every other human");
}

// An analysis without its human runs as well, and gives the 1 of compute().
void GoneWorld::step()
{
    qcSim::step(data.ConsumeIntegralInRange(0, 2));
    for (int i = 0; i < qcSim::getNumResults(); ++i)
        check(qcSim::getResult(i) == 1, "every analysis gives 1 for a step");
}

void GoneWorld::callAny()
{
    Analysis& one = any();
    qmStaticStrength& real = *one.real;
    qVector a(1, 2, 3), b(4, 5, 6), c(7, 8, 9), force, moment;
    check(real.getHuman() == (one.of ? one.of->human() : nullptr), "an analysis knows whether its human is gone");
    switch (data.ConsumeIntegralInRange(0, 11)) {
    case 0:
        if (analyses.size() < kMostAnalyses)
            add(new qmStaticStrength(real), one.of);
        break;
    case 1: {
        const Analysis& from = any();
        real = *from.real;
        one.of = from.of;
        break;
    }
    case 2:
        check(real.deactivate() == 1 && real.isActive() == 0, "an analysis can always be deactivated");
        break;
    case 3: {
        const bool active = real.isActive() == 1;
        check(real.activate("script") == (one.of && !active ? 1 : 0), "only an analysis with its human is activated");
        break;
    }
    case 4:
        real.run_script();
        break;
    case 5:
        step();
        break;
    case 6:
        check(real.getGravity(force) == force.mag(), "gravity is kept");
        qmStaticStrength::getStrategyName(real.getStrategy());
        real.calcForcesAt(a, b, c, force, moment);
        break;
    case 7:
        if (staying && analyses.size() < kMostAnalyses)
            handle(*staying);
        break;
    default:
        checkNeedsHuman(one);
    }
}

void GoneWorld::run()
{
    going = newHuman();
    const bool together = data.ConsumeBool();   // else the other human may come to lie where the first one was
    if (together)
        staying = newHuman();
    prepare(*going);
    if (together && data.ConsumeBool())
        handle(*staying);
    goes(going);
    if (!together)
        staying = newHuman();
    qmStaticStrength* next = qmStaticStrength::getHandle(staying->human());
    handle(*staying);
    check(next->compute() == 1 && next->getNumLoadsWithOffset() == 0, "a new human begins without loads");

    while (!analyses.empty() && data.remaining_bytes() > 0) {
        const int what = data.ConsumeIntegralInRange(0, 31);
        if (what == 0)
            goes(staying);
        else if (what < 4)
            analyses.erase(analyses.begin() + (&any() - analyses.data()));
        else
            callAny();
    }
    if (data.ConsumeBool())
        goes(staying);
    analyses.clear();
    check(qcSim::getNumBound() == 0, "no callback outlives its analysis");
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);
    GoneWorld(data).run();
    return 0;
}
