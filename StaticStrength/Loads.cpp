// Loads: forces and weights on sites, kept on the site and in the figure's list.
#include "FigureParts.h"
#include "LoadValues.h"
#include "OutOfMemory.h"
#include "SavedLists.h"
#include "Units.h"
#include "qmStaticStrength.h"

#include "qc/qcMessages.h"

#include <cstring>
#include <utility>

char kGlobalText[] = "global";
char kLocalText[] = "local";
char kWeightText[] = "weight";

namespace {

constexpr double kSmallestLoad = 1e-5;   // kgf: below this a saved load is not restored

// Puts a load value on a site and into the figure's list; null takes it off.
void storeLoad(qcSite* site, qcFigure* figure, OwnedValue value)
{
    storeWithEntry(site, kLoadKey, figure, kLoadListKey, siteKey(site).c_str(), std::move(value));
}

}   // namespace

qcValue* makeLoadValue(const qVector& load, int kind, float weight)
{
    ListBuilder list;
    list.append(load);
    if (kind == kGlobalLoad) {
        list.append(kGlobalText);
    } else if (kind == kLocalLoad) {
        list.append(kLocalText);
    } else if (kind == kWeightLoad) {
        list.append(kWeightText);
        list.append(weight);
    }
    return list.newList();
}

int decodeLoadValue(const qcValue& value, qVector& load, int& local, float* weight)
{
    const qcValue* element = value.firstElement();
    if (!readVector(element, load))
        return 0;
    element = element->next;
    char* kind;
    if (!element || !element->get(kind))
        return 0;

    if (weight)
        *weight = -1.0f;
    local = std::strcmp(kind, kLocalText) == 0 ? 1 : 0;
    if (local || std::strcmp(kind, kGlobalText) == 0)
        return 1;
    if (std::strcmp(kind, kWeightText) != 0)
        return 0;
    return weight ? element->next && element->next->get(*weight) : 1;
}

int parseLoadEntry(qcValue& entry, const qVector& gravity, char*& key, qcValue** newValue)
{
    qcValue* element = entry.firstElement();
    if (!element || !element->get(key))
        return 0;

    qcValue* loadElement = element->next;
    qVector load;
    if (!readVector(loadElement, load) || double(load.mag()) < kSmallestLoad)
        return 0;

    const qcValue* kindElement = loadElement->next;
    char* kindText;
    if (!kindElement || !kindElement->get(kindText))
        return 0;
    LoadKind kind;
    float weight = 0.0f;
    if (std::strcmp(kindText, kLocalText) == 0) {
        kind = kLocalLoad;
    } else if (std::strcmp(kindText, kGlobalText) == 0) {
        kind = kGlobalLoad;
    } else if (std::strcmp(kindText, kWeightText) == 0) {
        kind = kWeightLoad;
        if (!kindElement->next || !kindElement->next->get(weight))
            return 0;
        load = weightToLoad(gravity, weight);
        loadElement->set(&load);
    } else {
        return 0;
    }
    if (newValue)
        *newValue = makeLoadValue(load, kind, weight);
    return 1;
}

int globalSiteLoad(qcSiteImp* site, qVector& load, qVector& point)
{
    qcValue value;
    if (!site->getProperty(kLoadKey, &value))
        return 0;
    int local;
    if (!decodeLoadValue(value, load, local, nullptr)) {
        error("StaticStrength ERROR: illegal load at site %s", site->getName());
        return 0;
    }
    if (local)
        rotateToGlobal(load, site->getSegment()->getGlobalTransform());
    point = positionOf(site);
    return 1;
}

int readSiteLoad(const qcSite* site, qVector& out)
{
    qcValue value;
    qVector load;
    int local;
    if (!site || !site->getProperty(kLoadKey, &value) || !decodeLoadValue(value, load, local, nullptr))
        return 0;
    out = load;
    return 1;
}

int qmStaticStrength::setLoad(qcSite* site, const qVector& load, int kind)
{
    if (isOrphaned("setLoad"))
        return 0;
    if (!site)
        return 0;
    // Required: a site of another figure is taken, unlike by setWeightLoad().
    return hasMemoryFor("setLoad", [&] { storeLoad(site, figure, OwnedValue(makeLoadValue(load, kind, 0.0f))); });
}

int qmStaticStrength::setWeightLoad(qcSite* site, float weight)
{
    if (isOrphaned("setWeightLoad"))
        return 0;
    if (!site || site->getSegment()->getFigure() != figure)
        return 0;
    return hasMemoryFor("setWeightLoad", [&] {
        storeLoad(site, figure, OwnedValue(makeLoadValue(weightToLoad(gravity, weight), kWeightLoad, weight)));
    });
}

int qmStaticStrength::removeLoad(qcSite* site)
{
    if (isOrphaned("removeLoad"))
        return 0;
    return resultOr(0, "removeLoad", [&] {
        qcValue value;
        if (!site || !site->getProperty(kLoadKey, &value))
            return 0;
        storeLoad(site, figure, nullptr);
        return 1;
    });
}

int qmStaticStrength::getNumLoads()
{
    if (isOrphaned("getNumLoads"))
        return 0;
    return resultOr(0, "getNumLoads", [&] { return countSavedEntries(figure, kLoadListKey); });
}

qcSite* qmStaticStrength::getNthLoadSite(int n)
{
    if (isOrphaned("getNthLoadSite"))
        return nullptr;
    return resultOr<qcSite*>(nullptr, "getNthLoadSite", [&] {
        const qcValue key = nthSavedKey(figure, kLoadListKey, n);
        char* text;
        return key.get(text) ? findSiteByKey(figure, text) : nullptr;
    });
}

char* qmStaticStrength::getLoadType(qcSite* site)
{
    if (isOrphaned("getLoadType"))
        return nullptr;
    return resultOr<char*>(nullptr, "getLoadType", [&]() -> char* {
        qcValue value;
        qVector load;
        int local;
        float weight;
        if (!site || !site->getProperty(kLoadKey, &value) || !decodeLoadValue(value, load, local, &weight))
            return nullptr;
        return weight >= 0.0f ? kWeightText : local ? kLocalText : kGlobalText;
    });
}

float qmStaticStrength::getSiteWeight(qcSite* site)
{
    if (isOrphaned("getSiteWeight"))
        return -1.0f;
    return resultOr(-1.0f, "getSiteWeight", [&] {
        qcValue value;
        qVector load;
        int local;
        float weight;
        if (!site || !site->getProperty(kLoadKey, &value) || !decodeLoadValue(value, load, local, &weight))
            return -1.0f;
        return weight;
    });
}

int qmStaticStrength::getSiteLoad(qcSite* site, qVector& out)
{
    if (isOrphaned("getSiteLoad"))
        return 0;
    return resultOr(0, "getSiteLoad", [&] { return readSiteLoad(site, out); });
}
