// Reset: wiping what the figure's properties hold, and rebuilding it from its saved lists.
#include "FigureParts.h"
#include "ForceMoment.h"
#include "LoadValues.h"
#include "OffsetLoadKeys.h"
#include "SavedLists.h"
#include "StrategyNames.h"
#include "TorqueValues.h"
#include "qmStaticStrength.h"

#include "qc/qcMessages.h"

namespace {

void warnUnreadable(const qcValue& entry)
{
    warning("StaticStrength WARNING: cannot parse %s\n", entry.toText());
}

}   // namespace

void qmStaticStrength::clear()
{
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
    qcValue stored;
    char* name;
    const bool named = figure->getProperty(kStrategyKey, &stored) && stored.get(name);
    const Strategy restored = named ? static_cast<Strategy>(strategyIndex(name)) : TwoFeet;

    // the lists are copies: they outlive the clearing
    qcValue loads, torques, withOffsets;
    const bool hasLoads = figure->getProperty(kLoadListKey, &loads);
    const bool hasTorques = figure->getProperty(kTorqueListKey, &torques);
    const bool hasOffsets = figure->getProperty(kOffsetLoadListKey, &withOffsets);

    clear();
    setStrategy(restored);
    const int loadsRestored = hasLoads ? restoreLoads(loads) : 0;
    const int torquesRestored = hasTorques ? restoreTorques(torques) : 0;
    const int offsetsRestored = hasOffsets ? restoreOffsetLoads(withOffsets) : 0;
    return loadsRestored || torquesRestored || offsetsRestored ? 1 : 0;
}

int qmStaticStrength::restoreLoads(qcValue& list)
{
    int result = 1;
    RestoredList restored;
    for (qcValue* entry = list.firstElement(); entry; entry = entry->next) {
        char* key;
        qcValue* value = nullptr;
        const int parsed = parseLoadEntry(*entry, gravity, key, &value);
        qcSiteImp* site = parsed ? findSiteByKey(figure, key) : nullptr;
        if (site) {
            site->setProperty(kLoadKey, *value);
            restored.set(siteKey(site).c_str(), *value);
        } else {
            warnUnreadable(*entry);
            result = 0;
        }
        qcValue::destroy(value);
    }
    restored.storeOn(figure, kLoadListKey);
    return result;
}

int qmStaticStrength::restoreTorques(const qcValue& list)
{
    int result = 1;
    RestoredList restored;
    for (const qcValue* entry = list.firstElement(); entry; entry = entry->next) {
        char* name;
        qcValue* value = nullptr;
        const int parsed = parseTorqueEntry(*entry, name, &value);
        qcJointImp* joint = parsed ? figure->findJoint(name) : nullptr;
        if (joint) {
            joint->setProperty(kTorqueKey, *value);
            restored.set(joint->getName(), *value);
        } else {
            warnUnreadable(*entry);
            result = 0;
        }
        qcValue::destroy(value);
    }
    restored.storeOn(figure, kTorqueListKey);
    return result;
}

// Required: an entry that cannot be read is dropped without a warning, unlike those of the other lists.
int qmStaticStrength::restoreOffsetLoads(qcValue& list)
{
    dropOffsetLoads();
    for (qcValue* entry = list.firstElement(); entry; entry = entry->next)
        if (loadWithOffset* record = parseOffsetLoadEntry(*entry))
            offsetLoads->push_back(record);
    saveOffsetLoads();
    return 1;
}
