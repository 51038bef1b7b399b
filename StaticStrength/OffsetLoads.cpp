// Offset loads: records that the analysis owns, written out to the figure and the sites after every change.
#include "FigureParts.h"
#include "LoadValues.h"
#include "OffsetLoadKeys.h"
#include "OffsetLoadLists.h"
#include "OutOfMemory.h"
#include "Units.h"
#include "qmStaticStrength.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
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

OffsetLoadLists::OffsetLoadLists(qcFigure* ofFigure, const std::vector<loadWithOffset*>& records) : figure(ofFigure)
{
    ListBuilder figureElements;
    for (const loadWithOffset* record : records) {
        ListBuilder figureEntry;
        figureEntry.append(siteKey(record->site).c_str());
        appendRecord(figureEntry, *record);
        figureElements.append(figureEntry.newList());

        const auto [list, isNew] = siteLists.try_emplace(record->site);
        if (isNew)
            sites.push_back(record->site);
        ListBuilder siteEntry;
        appendRecord(siteEntry, *record);
        list->second.append(siteEntry.newList());
    }
    if (!records.empty())
        figureElements.moveInto(figureList);

    room.take(figure, kOffsetLoadListKey);
    for (qcSite* site : sites)
        room.take(site, kSiteOffsetLoadsKey);
}

void OffsetLoadLists::store()
{
    room.keep();
    figure->setProperty(kOffsetLoadListKey, std::move(figureList));
    for (qcSite* site : sites) {
        qcValue siteValue;
        siteLists.find(site)->second.moveInto(siteValue);
        site->setProperty(kSiteOffsetLoadsKey, std::move(siteValue));
    }
}

loadWithOffset* qmStaticStrength::setLoadWithOffset(qcSite* site, const qVector& offset, const qVector& load, int local)
{
    if (isOrphaned("setLoadWithOffset"))
        return nullptr;
    if (!site)
        return nullptr;
    return resultOr<loadWithOffset*>(nullptr, "setLoadWithOffset", [&] {
        return addOffsetLoad({site, offset, local ? kLocalText : kGlobalText, load, -1.0f, local != 0});
    });
}

loadWithOffset* qmStaticStrength::setWeightLoadWithOffset(qcSite* site, const qVector& offset, float weight)
{
    if (isOrphaned("setWeightLoadWithOffset"))
        return nullptr;
    if (!site || site->getSegment()->getFigure() != figure)
        return nullptr;
    return resultOr<loadWithOffset*>(nullptr, "setWeightLoadWithOffset", [&] {
        return addOffsetLoad({site, offset, kWeightText, weightToLoad(gravity, weight), weight, false});
    });
}

int qmStaticStrength::removeLoadWithOffset(loadWithOffset* record)
{
    if (isOrphaned("removeLoadWithOffset"))
        return 0;
    if (std::find(offsetLoads->begin(), offsetLoads->end(), record) == offsetLoads->end())
        return 0;
    return hasMemoryFor("removeLoadWithOffset", [&] {
        std::vector<loadWithOffset*> others;
        std::remove_copy(offsetLoads->begin(), offsetLoads->end(), std::back_inserter(others), record);
        replaceOffsetLoads(others);
        delete record;
    });
}

loadWithOffset* qmStaticStrength::addOffsetLoad(const loadWithOffset& added)
{
    auto record = std::make_unique<loadWithOffset>(added);
    std::vector<loadWithOffset*> records = *offsetLoads;
    records.push_back(record.get());
    replaceOffsetLoads(records);
    return record.release();
}

// Takes a list of records over and writes it out; memory that runs out leaves records and properties as they were.
void qmStaticStrength::replaceOffsetLoads(std::vector<loadWithOffset*>& records)
{
    OffsetLoadLists lists(figure, records);
    offsetLoads->swap(records);
    lists.store();
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
