// Figure model: plainly, what loads and torques a figure and its parts keep, for comparison with their properties.
#pragma once

#include "AnalysedHuman.h"
#include "SpelledValues.h"

#include "qmStaticStrength.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// The strategies as a figure keeps them, by their numbers.
inline constexpr const char* kStrategies[qmStaticStrength::N_STRS] = {"Two Feet", "Right Foot", "Left Foot",
                                                                      "Walking",  "Sitting",    "Sitting, No Feet"};

/// A force or a weight.
struct Load {
    int kind;       // 0 global, 1 local, 2 weight, else unreadable
    qVector load;   // kgf
    float grams;

    const char* kindText() const { return kind == 0 ? "global" : kind == 1 ? "local" : "weight"; }
    bool readable() const { return kind >= 0 && kind <= 2; }
    std::string spelling() const
    {
        return spelled(load) + (readable() ? spelled(kindText()) : "") + (kind == 2 ? spelled(grams) : "");
    }
};

struct OffsetLoad {
    qcSite* site;
    qVector offset;
    Load load;
    float mass;
    const loadWithOffset* record;

    std::string spelling() const
    {
        return spelled(offset) + spelled(load.load) + spelled(load.kindText())
               + (load.kind == 2 ? spelled(load.grams) : "");
    }
};

using Records = std::vector<OffsetLoad>;

template <class Value> using Entries = std::vector<std::pair<std::string, Value>>;

template <class Value> void setEntry(Entries<Value>& entries, const std::string& key, const Value& value)
{
    const auto same = [&](const auto& entry) { return entry.first == key; };
    const auto place = std::find_if(entries.begin(), entries.end(), same);
    if (place == entries.end())
        entries.push_back({key, value});
    else
        place->second = value;
}

template <class Value> void removeEntry(Entries<Value>& entries, const std::string& key)
{
    const auto same = [&](const auto& entry) { return entry.first == key; };
    entries.erase(std::remove_if(entries.begin(), entries.end(), same), entries.end());
}

/// What a figure and its parts keep.
struct FigureModel {
    AnalysedHuman* human;
    Entries<Load> loads;   // in the order of the list
    Entries<qVector> torques;
    bool hasOffsetList = false;
    Records offsets;
    int strategy = -1;   // without one
    std::map<qcSite*, Load> siteLoads;
    std::map<qcSite*, std::string> siteOffsets;
    std::map<qcJoint*, qVector> jointTorques;

    qcSite* siteOf(const std::string& key) const
    {
        for (qcSite* site : human->sites())
            if (keyOf(site) == key)
                return site;
        return nullptr;
    }
    qcJoint* jointOf(const std::string& name) const
    {
        for (qcJoint* joint : human->joints())
            if (joint->getName() == name)
                return joint;
        return nullptr;
    }
};
