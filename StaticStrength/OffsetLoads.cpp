// Offset loads: records that the analysis owns, written out to the figure and the sites after every change.
#include "FigureParts.h"
#include "LoadValues.h"
#include "OffsetLoadKeys.h"
#include "SavedLists.h"
#include "Units.h"
#include "qmStaticStrength.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace {

// What the figure's and the site's entry of a record share: offset, load, type, and a weight's grams.
void appendRecord(ListBuilder& entry, const loadWithOffset& record)
{
    entry.append(record.offset);
    entry.append(record.load);
    entry.append(record.type);
    if (std::strcmp(record.type, kWeightText) == 0)
        entry.append(record.mass);
}

}   // namespace

loadWithOffset* qmStaticStrength::setLoadWithOffset(qcSite* site, const qVector& offset, const qVector& load, int local)
{
    if (!site)
        return nullptr;
    offsetLoads->push_back(new loadWithOffset{site, offset, local ? kLocalText : kGlobalText, load, -1.0f, local != 0});
    saveOffsetLoads();
    return offsetLoads->back();
}

loadWithOffset* qmStaticStrength::setWeightLoadWithOffset(qcSite* site, const qVector& offset, float weight)
{
    if (!site || site->getSegment()->getFigure() != figure)
        return nullptr;
    offsetLoads->push_back(new loadWithOffset{site, offset, kWeightText, weightToLoad(gravity, weight), weight, false});
    saveOffsetLoads();
    return offsetLoads->back();
}

int qmStaticStrength::removeLoadWithOffset(loadWithOffset* record)
{
    const auto end = std::remove(offsetLoads->begin(), offsetLoads->end(), record);
    if (!record || end == offsetLoads->end())
        return 0;
    offsetLoads->erase(end, offsetLoads->end());
    delete record;
    saveOffsetLoads();
    return 1;
}

loadWithOffset* qmStaticStrength::getNthLoadWithOffset(int n) const
{
    const std::size_t index = static_cast<unsigned>(n);
    return index < offsetLoads->size() ? (*offsetLoads)[index] : nullptr;
}

int qmStaticStrength::getNumLoadsWithOffset() const
{
    return static_cast<int>(offsetLoads->size());
}

void qmStaticStrength::dropOffsetLoads()
{
    for (loadWithOffset* record : *offsetLoads)
        delete record;
    offsetLoads->clear();
}

// Required: a site that has no record any more keeps its property as it was, until clear().
void qmStaticStrength::saveOffsetLoads()
{
    ListBuilder figureList;
    std::vector<qcSite*> sites;   // in the order of their first record
    std::unordered_map<qcSite*, ListBuilder> siteLists;
    for (const loadWithOffset* record : *offsetLoads) {
        ListBuilder figureEntry;
        figureEntry.append(siteKey(record->site).c_str());
        appendRecord(figureEntry, *record);
        figureList.append(figureEntry.newList());

        const auto [list, isNew] = siteLists.try_emplace(record->site);
        if (isNew)
            sites.push_back(record->site);
        ListBuilder siteEntry;
        appendRecord(siteEntry, *record);
        list->second.append(siteEntry.newList());
    }

    qcValue value;
    if (!offsetLoads->empty())
        figureList.moveInto(value);
    figure->setProperty(kOffsetLoadListKey, std::move(value));
    for (qcSite* site : sites) {
        qcValue siteValue;
        siteLists[site].moveInto(siteValue);
        site->setProperty(kSiteOffsetLoadsKey, std::move(siteValue));
    }
}

loadWithOffset* qmStaticStrength::parseOffsetLoadEntry(qcValue& entry) const
{
    const qcValue* element = entry.firstElement();
    char* key;
    if (!element || !element->get(key))
        return nullptr;
    qcSite* site = findSiteByKey(figure, key);
    if (!site)
        return nullptr;

    qVector offset, load;
    element = element->next;
    if (!readVector(element, offset))
        return nullptr;
    qcValue* loadElement = element->next;
    if (!readVector(loadElement, load))
        return nullptr;

    char* type;
    element = loadElement->next;
    if (!element || !element->get(type))
        return nullptr;
    if (std::strcmp(type, kLocalText) == 0)
        return new loadWithOffset{site, offset, kLocalText, load, 0.0f, true};
    if (std::strcmp(type, kGlobalText) == 0)
        return new loadWithOffset{site, offset, kGlobalText, load, 0.0f, false};
    float weight;
    if (std::strcmp(type, kWeightText) != 0 || !element->next || !element->next->get(weight))
        return nullptr;
    load = weightToLoad(gravity, weight);
    loadElement->set(&load);
    return new loadWithOffset{site, offset, kWeightText, load, weight, false};
}
