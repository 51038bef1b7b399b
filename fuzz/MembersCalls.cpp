// Members world: the calls that set, remove, restore, report and compute, each with what it has to answer; and what
// changes properties without any call.
#include "MembersWorld.h"

#include "Check.h"
#include "SpelledValues.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using Strategy = qmStaticStrength::Strategy;

// ---- Loads ----

void MembersWorld::setLoad(ModelledAnalysis& object)
{
    qcSite* site = anySite();
    const bool weight = data.ConsumeBool();
    Load load{weight ? 2 : data.ConsumeIntegralInRange(-1, 3), weight ? qVector() : vector(), weight ? number() : 0};
    const bool own = site && figureOf(site->getSegment()->getFigure()) == object.of;
    if (weight) {
        load.load = weightForce(object.gravity, load.grams);
        check(object.real->setWeightLoad(site, load.grams) == (own ? 1 : 0), "a weight goes on the own figure's sites");
    } else {
        check(object.real->setLoad(site, load.load, load.kind) == (site ? 1 : 0), "a force goes on every site");
    }
    if (!site || (weight && !own))
        return;
    figureOf(site->getSegment()->getFigure())->siteLoads[site] = load;
    setEntry(object.of->loads, keyOf(site), load);
}

void MembersWorld::removeLoad(ModelledAnalysis& object)
{
    qcSite* site = anySite();
    FigureModel* figure = site ? figureOf(site->getSegment()->getFigure()) : nullptr;
    const bool had = figure && figure->siteLoads.erase(site) > 0;
    const int removed = object.real->removeLoad(site);
    check(!modelled || removed == (had ? 1 : 0), "a load that is there is removed");
    if (had)
        removeEntry(object.of->loads, keyOf(site));
}

void MembersWorld::setOffsetLoad(ModelledAnalysis& object)
{
    if (object.records->size() > 12)
        return;
    qcSite* site = anySite();
    const bool weight = data.ConsumeBool();
    const qVector offset = vector();
    Load load{weight ? 2 : data.ConsumeIntegralInRange(0, 1), weight ? qVector() : vector(), weight ? number() : 0};
    const bool own = site && figureOf(site->getSegment()->getFigure()) == object.of;
    const loadWithOffset* record;
    if (weight) {
        load.load = weightForce(object.gravity, load.grams);
        record = object.real->setWeightLoadWithOffset(site, offset, load.grams);
        check((record != nullptr) == own, "a weight goes on the own figure's sites, with an offset too");
    } else {
        record = object.real->setLoadWithOffset(site, offset, load.load, load.kind);
        check((record != nullptr) == (site != nullptr), "a force goes on every site, with an offset too");
    }
    if (!record)
        return;
    object.records->push_back({site, offset, load, weight ? load.grams : -1.0f, record});
    modelSave(object);
}

void MembersWorld::removeOffsetLoad(ModelledAnalysis& object)
{
    if (!modelled) {
        object.real->removeLoadWithOffset(object.real->getNthLoadWithOffset(data.ConsumeIntegralInRange(-1, 12)));
        return;
    }
    loadWithOffset* record = nullptr;
    const ModelledAnalysis& owner = anyObject();   // perhaps another one
    if (!owner.records->empty() && !oneIn(8))
        record = const_cast<loadWithOffset*>((*owner.records)[index(owner.records->size())].record);
    else if (!formerRecords.empty())
        record = formerRecords[index(formerRecords.size())];
    const auto place = std::find_if(object.records->begin(), object.records->end(),
                                    [record](const OffsetLoad& known) { return known.record == record; });
    const bool known = place != object.records->end();
    check(object.real->removeLoadWithOffset(record) == (known ? 1 : 0),
          "a record of the analysis is removed, no other");
    if (!known)
        return;
    formerRecords.push_back(record);
    object.records->erase(place);
    modelSave(object);
}

void MembersWorld::setTorque(ModelledAnalysis& object)
{
    qcJoint* joint = anyJoint();
    qVector torque = vector();
    check(object.real->setDefinedTorque(joint, torque) == (joint ? 1 : 0), "a torque goes on every joint");
    if (!joint)
        return;
    figureOf(joint->getFigure())->jointTorques[joint] = torque;
    setEntry(object.of->torques, joint->getName(), torque);
}

void MembersWorld::removeTorque(ModelledAnalysis& object)
{
    qcJoint* joint = anyJoint();
    FigureModel* figure = joint ? figureOf(joint->getFigure()) : nullptr;
    const bool had = figure && figure->jointTorques.erase(joint) > 0;
    const int removed = object.real->removeDefinedTorque(joint);
    check(!modelled || removed == (had ? 1 : 0), "a torque that is there is removed");
    if (had)
        removeEntry(object.of->torques, joint->getName());
}

void MembersWorld::setStrategy(ModelledAnalysis& object)
{
    object.strategy = data.ConsumeIntegralInRange(-1, 8);
    object.real->setStrategy(static_cast<Strategy>(object.strategy));
    if (qmStaticStrength::getStrategyName(static_cast<Strategy>(object.strategy)))
        object.of->strategy = object.strategy;
    check(object.real->compute() == 1, "a computation returns 1 under every strategy");
}

// ---- Clear and reset ----

namespace {

void checkNoResults(const AnalysedHuman& human)
{
    for (const qcJoint* joint : human.joints())
        check(!hasProperty(joint, "SSTR_Force_Moment"), "neither clearing nor resetting leaves a result");
}

}   // namespace

void MembersWorld::clear(ModelledAnalysis& object)
{
    object.real->clear();
    modelClear(object);
    checkNoResults(*object.of->human);
}

void MembersWorld::reset(ModelledAnalysis& object, const qVector* gravity)
{
    if (gravity) {
        object.gravity = *gravity;
        object.real->setGravity(*gravity);
        modelReset(object);
    } else {
        const int result = object.real->reset();
        const int meant = modelReset(object);
        check(!modelled || result == meant, "a reset tells whether a list was restored whole");
    }
    checkNoResults(*object.of->human);
}

// ---- Report and results ----

void MembersWorld::report(ModelledAnalysis& object)
{
    if (data.ConsumeBool()) {
        object.real->reportLoads(data.ConsumeIntegralInRange(-1, 1));
        return;
    }
    // with "No loads." in place of a line for the strategy where there are none
    const std::size_t most = static_cast<std::size_t>(object.real->getNumLoads()) + 2;
    std::size_t lines = 0;
    for (const char* line = object.real->reportLoads(1); line; line = object.real->reportLoads(0)) {
        check(std::strlen(line) < 2048, "a line of the report fits");
        check(++lines <= most, "a report ends");
    }
    check(!modelled || lines == object.of->loads.size() + 2, "a report has a line a load, the strategy and gravity");
}

void MembersWorld::useResults(ModelledAnalysis& object)
{
    qcJoint* joint = anyJoint();
    qVector force(1, 2, 3), moment(4, 5, 6);
    switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
        check(object.real->compute() == 1, "a computation returns 1");
        break;
    case 1: {
        const qVector givenForce = vector(), givenMoment = vector();
        object.real->setFMonJoint(joint, givenForce, givenMoment);
        check(object.real->getJointForces(joint, force, moment) == (joint ? 1 : 0), "a result that was set is there");
        if (joint)
            check(spelled(force) == spelled(givenForce) && spelled(moment) == spelled(givenMoment),
                  "a result is what was set");
        break;
    }
    case 2: {
        qVector point = vector(), position = vector(), load = vector();
        object.real->calcForcesAt(position, point, load, force, moment);
        break;
    }
    default:
        object.real->getSplitFactor(joint, data.ConsumeIntegralInRange(-1, 4), joint ? joint->getName() : nullptr);
    }
}

// ---- Behind their backs ----

void MembersWorld::meddle()
{
    static constexpr const char* keys[] = {"SSTR_LoadList", "SSTR_TorqueList",  "SSTR_LoadWithOffsetList",
                                           "SSTR_Strategy", "SSTR_Load",        "SSTR_LoadsWithOffsets",
                                           "SSTR_Torque",   "SSTR_Force_Moment"};
    const auto anyPart = [this]() -> qcObject* {
        const int kind = data.ConsumeIntegralInRange(0, 2);
        qcFigure* figure = anyFigure().human->figure();
        qcSite* site = anySite();
        qcJoint* joint = anyJoint();
        if (kind == 1 && site)
            return site;
        if (kind == 2 && joint)
            return joint;
        return figure;
    };
    qcValue value;
    const qcObject* from = anyPart();
    from->getProperty(data.PickValueInArray(keys), &value);
    if (oneIn(4)) {   // its own first element
        const qcValue whole = value;
        if (const qcValue* first = whole.firstElement())
            value = *first;
    } else if (oneIn(3)) {
        const qcValue alone = value;
        value.setList(dupval(&alone));
    }
    qcObject* to = anyPart();
    const char* key = data.PickValueInArray(keys);
    if (oneIn(4))
        to->removeProperty(key);
    else
        to->setProperty(key, value);
}
