// Offset load lists: what the records of loads with offsets leave in properties of the figure and of sites.
#pragma once

#include "PropertyRoom.h"
#include "SavedLists.h"
#include "qmStaticStrength.h"

#include <unordered_map>
#include <vector>

/// The lists of all records, made whole first; storing them then needs no memory.
class OffsetLoadLists {
public:
    /// @throws std::bad_alloc, nothing is changed then
    OffsetLoadLists(qcFigure* figure, const std::vector<loadWithOffset*>& records);

    /// Stores them, the figure's first. Required: a site without a record any more keeps its property
    /// as it was, until clear().
    void store();

private:
    qcFigure* figure;
    qcValue figureList;           // empty without records
    std::vector<qcSite*> sites;   // in the order of their first record
    std::unordered_map<qcSite*, ListBuilder> siteLists;
    PropertyRoom room;
};
