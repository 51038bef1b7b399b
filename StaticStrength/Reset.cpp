// Reset: wiping what the figure's properties hold, and rebuilding it from its saved lists.
#include "FigureParts.h"
#include "ForceMoment.h"
#include "LoadValues.h"
#include "OffsetLoadKeys.h"
#include "OffsetLoadLists.h"
#include "OutOfMemory.h"
#include "PropertyRoom.h"
#include "SavedLists.h"
#include "StrategyNames.h"
#include "TorqueValues.h"
#include "qmStaticStrength.h"

#include "qc/qcMessages.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

/// What a saved list of loads or torques will restore. It is made whole while everything is still as it was; carrying
/// it out needs no memory.
class Restoration {
public:
    Restoration(const char* propertyOfParts, const char* listOfFigure)
        : property(propertyOfParts), listName(listOfFigure)
    {}

    /// Takes an entry that gives a part its value, under the part's present key.
    void take(qcObject* part, const char* key, OwnedValue value)
    {
        room.take(part, property);
        list.set(key, *value);
        steps.push_back({part, std::move(*value), {}});
    }

    /// Takes an entry that cannot be read.
    void drop(const qcValue& entry)
    {
        steps.push_back({nullptr, {}, entry.toText()});
        result = 0;
    }

    /// Gives the parts their values and warns of what is dropped, in the list's order; then stores the list.
    void carryOut(qcFigure* figure)
    {
        room.keep();
        for (Step& step : steps)
            if (step.part)
                step.part->setProperty(property, std::move(step.value));
            else
                warning("StaticStrength WARNING: cannot parse %s\n", step.dropped.c_str());
        list.storeOn(figure, listName);
    }

    /// 1 when every entry is restored, else 0.
    int getResult() const { return result; }

private:
    struct Step {
        qcObject* part;   // null: warns
        qcValue value;
        std::string dropped;   // the entry's text
    };

    const char* property;
    const char* listName;
    std::vector<Step> steps;
    RestoredList list;
    PropertyRoom room;
    int result = 1;
};

void readLoads(Restoration& loads, qcValue& list, const qcFigure* figure, const qVector& gravity)
{
    for (qcValue* entry = list.firstElement(); entry; entry = entry->next) {
        char* key;
        qcValue* made = nullptr;
        const int parsed = parseLoadEntry(*entry, gravity, key, &made);
        OwnedValue value(made);
        if (qcSiteImp* site = parsed ? findSiteByKey(figure, key) : nullptr)
            loads.take(site, siteKey(site).c_str(), std::move(value));
        else
            loads.drop(*entry);
    }
}

void readTorques(Restoration& torques, const qcValue& list, const qcFigure* figure)
{
    for (const qcValue* entry = list.firstElement(); entry; entry = entry->next) {
        char* name;
        qcValue* made = nullptr;
        const int parsed = parseTorqueEntry(*entry, name, &made);
        OwnedValue value(made);
        if (qcJointImp* joint = parsed ? figure->findJoint(name) : nullptr)
            torques.take(joint, joint->getName(), std::move(value));
        else
            torques.drop(*entry);
    }
}

/// Records on their way to an analysis, freed with this.
struct NewRecords {
    NewRecords() = default;
    ~NewRecords()
    {
        for (loadWithOffset* record : records)
            delete record;
    }
    NewRecords(const NewRecords&) = delete;
    NewRecords& operator=(const NewRecords&) = delete;

    std::vector<loadWithOffset*> records;
};

}   // namespace

void qmStaticStrength::clear()
{
    if (isOrphaned("clear"))
        return;
    forEach<qcSiteImp>(figure->getSites(), [](qcSiteImp* site) {
        site->removeProperty(kLoadKey);
        site->removeProperty(kSiteOffsetLoadsKey);
    });
    forEach<qcJointImp>(figure->getJoints(), [](qcJointImp* joint) {
        joint->removeProperty(kForceMomentKey);
        joint->removeProperty(kTorqueKey);
    });
    figure->removeProperty(kLoadListKey);
    figure->removeProperty(kTorqueListKey);
    figure->removeProperty(kOffsetLoadListKey);
    dropOffsetLoads();
    figure->removeProperty(kStrategyKey);
}

int qmStaticStrength::reset()
{
    if (isOrphaned("reset"))
        return 0;
    return resultOr(0, "reset", [this] { return rebuild(); });
}

int qmStaticStrength::rebuild()
{
    qcValue stored;
    char* name;
    const bool named = figure->getProperty(kStrategyKey, &stored) && stored.get(name);
    const Strategy restored = named ? static_cast<Strategy>(strategyIndex(name)) : TwoFeet;

    // all that may lack memory: the lists are read while everything is as it was
    qcValue loadList, torqueList, offsetLoadList;
    const bool hasLoads = figure->getProperty(kLoadListKey, &loadList);
    const bool hasTorques = figure->getProperty(kTorqueListKey, &torqueList);
    const bool hasOffsets = figure->getProperty(kOffsetLoadListKey, &offsetLoadList);
    Restoration loads(kLoadKey, kLoadListKey), torques(kTorqueKey, kTorqueListKey);
    readLoads(loads, loadList, figure, gravity);
    readTorques(torques, torqueList, figure);
    NewRecords withOffsets;
    std::optional<OffsetLoadLists> offsetLists;
    if (hasOffsets) {
        readOffsetLoads(offsetLoadList, withOffsets.records);
        offsetLists.emplace(figure, withOffsets.records);
    }
    qcValue strategyText = textOf(restored);
    PropertyRoom room;
    room.take(figure, kStrategyKey);

    // from here on nothing needs memory
    room.keep();
    clear();
    takeStrategy(restored, std::move(strategyText));
    if (hasLoads)
        loads.carryOut(figure);
    if (hasTorques)
        torques.carryOut(figure);
    if (hasOffsets) {
        dropOffsetLoads();
        offsetLoads->swap(withOffsets.records);
        offsetLists->store();
    }
    return (hasLoads && loads.getResult()) || (hasTorques && torques.getResult()) || hasOffsets ? 1 : 0;
}

// Required: an entry that cannot be read is dropped without a warning, unlike those of the other lists.
void qmStaticStrength::readOffsetLoads(qcValue& list, std::vector<loadWithOffset*>& records) const
{
    for (qcValue* entry = list.firstElement(); entry; entry = entry->next) {
        records.push_back(nullptr);   // first: a record is then owned as soon as it is made
        records.back() = parseOffsetLoadEntry(*entry);
        if (!records.back())
            records.pop_back();
    }
}
