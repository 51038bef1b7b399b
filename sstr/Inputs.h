// Inputs: what an analysis was told, gathered for output.
#pragma once

#include "qmStaticStrength.h"

#include <string>
#include <vector>

/// A load on a site, at the site itself or displaced from it.
struct LoadInput {
    std::string site;   // "segment.site"
    std::string type;   // "global", "local" or "weight"
    bool hasOffset;
    qVector offset;   // cm, global axes
    qVector force;    // kgf, global axes; in the site's for "local"
    float weight;     // g; of a weight
};

/// A moment defined at a joint.
struct TorqueInput {
    std::string joint;
    qVector moment;   // N·m, global axes
};

/// A hand load that another tool of the host left on the figure, as its text.
struct HandLoadInput {
    std::string key;
    std::string text;
};

struct Inputs {
    std::string human;
    std::string figure;
    qVector gravity;                // cm/s²
    std::string strategy;           // as asked for
    std::vector<LoadInput> loads;   // at sites, then with offsets
    std::vector<TorqueInput> torques;
    std::vector<HandLoadInput> handLoads;
};

Inputs gatherInputs(qmStaticStrength& analysis);

/// Warns of what the user would not expect: loads with offsets at a palm centre that do not count.
void warnAboutPalms(const Inputs& inputs);
