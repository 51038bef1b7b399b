// Members world: what clearing and resetting leave, and the comparison of every property and getter with the model.
#include "MembersWorld.h"

#include "Check.h"
#include "SpelledValues.h"

#include <cstring>
#include <map>
#include <string>

void MembersWorld::modelClear(ModelledAnalysis& object)
{
    FigureModel& figure = *object.of;
    figure.siteLoads.clear();
    figure.siteOffsets.clear();
    figure.jointTorques.clear();
    figure.loads.clear();
    figure.torques.clear();
    figure.hasOffsetList = false;
    figure.offsets.clear();
    figure.strategy = -1;
    object.records->clear();
}

int MembersWorld::modelReset(ModelledAnalysis& object)
{
    FigureModel& figure = *object.of;
    const FigureModel saved = figure;
    modelClear(object);
    object.strategy = figure.strategy = saved.strategy < 0 ? 0 : saved.strategy;

    bool whole = true;
    for (auto [key, load] : saved.loads) {
        qcSite* site = figure.siteOf(key);
        if (!site || !load.readable() || double(load.load.mag()) < 1e-5) {
            whole = false;
            continue;
        }
        if (load.kind == 2)
            load.load = weightForce(object.gravity, load.grams);
        figure.siteLoads[site] = load;
        setEntry(figure.loads, key, load);
    }
    bool result = whole && !saved.loads.empty();
    whole = true;
    for (const auto& [name, torque] : saved.torques) {
        qcJoint* joint = figure.jointOf(name);
        whole &= joint != nullptr;
        if (!joint)
            continue;
        figure.jointTorques[joint] = torque;
        setEntry(figure.torques, name, torque);
    }
    result |= whole && !saved.torques.empty();
    if (saved.hasOffsetList) {
        modelRestoreOffsets(object, saved.offsets);
        result = true;
    }
    return result ? 1 : 0;
}

void MembersWorld::modelRestoreOffsets(ModelledAnalysis& object, const Records& saved)
{
    for (OffsetLoad load : saved) {
        load.site = object.of->siteOf(keyOf(load.site));
        if (!load.site)
            continue;
        load.mass = 0;
        if (load.load.kind == 2) {
            load.load.load = weightForce(object.gravity, load.load.grams);
            load.mass = load.load.grams;
        }
        load.record = object.real->getNthLoadWithOffset(static_cast<int>(object.records->size()));
        object.records->push_back(load);
    }
    modelSave(object);
}

// Sites that have no record any more keep what they had.
void MembersWorld::modelSave(ModelledAnalysis& object)
{
    object.of->hasOffsetList = true;
    object.of->offsets = *object.records;
    std::map<qcSite*, std::string> bySite;
    for (const OffsetLoad& load : *object.records)
        bySite[load.site] += spelledList(load.spelling());
    for (const auto& [site, text] : bySite)
        figureOf(site->getSegment()->getFigure())->siteOffsets[site] = spelledList(text);
}

// ---- What has to agree ----

void MembersWorld::compareAll() const
{
    for (const auto& figure : figures)
        compareFigure(*figure);
    for (const auto& object : objects)
        compareObject(*object);
}

void MembersWorld::compareFigure(const FigureModel& figure) const
{
    const qcFigure* real = figure.human->figure();
    std::string loads, torques, offsets;
    for (const auto& [key, load] : figure.loads)
        loads += spelledList(spelled(key.c_str()) + load.spelling());
    for (const auto& [name, torque] : figure.torques)
        torques += spelledList(spelled(name.c_str()) + spelled(torque));
    for (const OffsetLoad& load : figure.offsets)
        offsets += spelledList(spelled(keyOf(load.site).c_str()) + load.spelling());
    check(spelledProperty(real, "SSTR_LoadList") == (loads.empty() ? "" : spelledList(loads)), "the load list");
    check(spelledProperty(real, "SSTR_TorqueList") == (torques.empty() ? "" : spelledList(torques)), "the torque list");
    const std::string offsetList = !figure.hasOffsetList ? "" : offsets.empty() ? "e" : spelledList(offsets);
    check(spelledProperty(real, "SSTR_LoadWithOffsetList") == offsetList, "the list of loads with offsets");
    check(spelledProperty(real, "SSTR_Strategy") == (figure.strategy < 0 ? "" : spelled(kStrategies[figure.strategy])),
          "the stored strategy");
    for (qcSite* site : figure.human->sites()) {
        const auto load = figure.siteLoads.find(site);
        check(spelledProperty(site, "SSTR_Load")
                  == (load == figure.siteLoads.end() ? "" : spelledList(load->second.spelling())),
              "a site's load");
        const auto ofSite = figure.siteOffsets.find(site);
        check(spelledProperty(site, "SSTR_LoadsWithOffsets")
                  == (ofSite == figure.siteOffsets.end() ? "" : ofSite->second),
              "a site's loads with offsets");
    }
    for (qcJoint* joint : figure.human->joints()) {
        const auto torque = figure.jointTorques.find(joint);
        check(spelledProperty(joint, "SSTR_Torque")
                  == (torque == figure.jointTorques.end() ? "" : spelledList(spelled(torque->second))),
              "a joint's torque");
    }
}

void MembersWorld::compareObject(const ModelledAnalysis& object) const
{
    qmStaticStrength& real = *object.real;
    const FigureModel& figure = *object.of;
    check(real.getHuman() == figure.human->human(), "the human");
    check(real.getStrategy() == object.strategy, "the strategy");
    check(real.isActive() == (object.callback ? 1 : 0), "whether it is active");
    qVector read;
    real.getGravity(read);
    check(spelled(read) == spelled(object.gravity), "gravity");

    check(real.getNumLoads() == static_cast<int>(figure.loads.size()), "the number of loads");
    for (int n = 0; n <= real.getNumLoads(); ++n) {
        const bool inside = n < real.getNumLoads();
        check(real.getNthLoadSite(n) == (inside ? figure.siteOf(figure.loads[static_cast<Index>(n)].first) : nullptr),
              "the site of the n-th load");
    }
    check(real.getNthLoadSite(-3) == real.getNthLoadSite(0), "the site of a load before the first is the first's");
    for (qcSite* site : figure.human->sites()) {
        const auto load = figure.siteLoads.find(site);
        const bool readable = load != figure.siteLoads.end() && load->second.readable();
        check(real.getSiteLoad(site, read) == (readable ? 1 : 0), "whether a site has a load");
        const char* type = real.getLoadType(site);
        check((type != nullptr) == readable, "whether a load has a type");
        if (!readable)
            continue;
        const Load& meant = load->second;
        const float grams = meant.kind == 2 ? meant.grams : -1;
        check(spelled(read) == spelled(meant.load), "the load of a site");
        check(spelled(real.getSiteWeight(site)) == spelled(grams), "the weight on a site");
        check(std::strcmp(type, grams >= 0 ? "weight" : meant.kind == 1 ? "local" : "global") == 0, "a load's type");
    }

    check(real.getNumDefinedTorques() == static_cast<int>(figure.torques.size()), "the number of torques");
    for (int n = 0; n < real.getNumDefinedTorques(); ++n)
        check(real.getNthDefinedTorqueJoint(n) == figure.jointOf(figure.torques[static_cast<Index>(n)].first),
              "the joint of the n-th torque");
    check(!real.getNthDefinedTorqueJoint(real.getNumDefinedTorques()), "no torque after the last");
    check(real.getNthDefinedTorqueJoint(-1) == real.getNthDefinedTorqueJoint(0),
          "the joint of a torque before the first is the first's");
    for (qcJoint* joint : figure.human->joints()) {
        const auto torque = figure.jointTorques.find(joint);
        const bool has = torque != figure.jointTorques.end();
        check(real.getDefinedTorque(joint, read) == (has ? 1 : 0), "whether a joint has a torque");
        check(!has || spelled(read) == spelled(torque->second), "the torque of a joint");
    }

    const Records& records = *object.records;
    check(real.getNumLoadsWithOffset() == static_cast<int>(records.size()), "the number of records");
    check(!real.getNthLoadWithOffset(-1) && !real.getNthLoadWithOffset(real.getNumLoadsWithOffset()),
          "no record before the first or after the last");
    for (Index n = 0; n < records.size(); ++n) {
        const OffsetLoad& meant = records[n];
        const loadWithOffset* record = real.getNthLoadWithOffset(static_cast<int>(n));
        check(record == meant.record && record->site == meant.site, "the n-th record");
        check(spelled(record->offset) == spelled(meant.offset) && spelled(record->load) == spelled(meant.load.load),
              "a record's vectors");
        check(std::strcmp(record->type, meant.load.kindText()) == 0 && record->local == (meant.load.kind == 1)
                  && spelled(record->mass) == spelled(meant.mass),
              "a record's kind");
    }
}
