// Case: one posture with its gravity, loads and torques, drawn by chance, as the host and the analysis are told it.
#pragma once

#include "HostFigure.h"

#include "qmStaticStrength.h"

#include <map>
#include <optional>
#include <vector>

/// A load: a force in global axes or in the site's, or a weight.
struct Load {
    enum Kind { kGlobal, kLocal, kWeight };
    Kind kind;
    qVector force;   // kgf; for a weight nothing
    float grams;     // for a weight
};

struct OffsetLoad {
    std::size_t site;   // by HostFigure::sites(), as all sites here
    qVector offset;     // cm, global axes
    Load load;
};

struct Case {
    Vec rootCm, rootDegrees;             // as qcFigure::setRoot() takes them
    std::vector<double> angles;          // rad, by hinge
    qVector gravity;                     // cm/s²
    bool gravityLast;                    // told after the loads, so that the analysis converts weights anew
    std::map<std::size_t, Load> loads;   // by site
    std::vector<OffsetLoad> offsetLoads;
    std::map<int, qVector> torques;     // N·m, by the body that the joint carries
    std::optional<Load> handLoads[2];   // by qcSide; global or local
};

/// The case of a number: the same on every machine.
///
/// Any turn of the root, up to 2 m from the origin; any angle within nine tenths of its limits; standard gravity in
/// every fourth case, then standard gravity tilted, any up to twice as much in each component, and weak or none; up to
/// eight loads and eight with offsets, of 1 gf to some 30 kgf; up to four torques; each hand's load
/// in about one case of four.
Case drawCase(unsigned number, const Figure& figure, const HostFigure& host);

/// Brings the host's figure into the case's posture and tells the analysis the rest; what it was told before goes.
void tell(const Case& drawn, HostFigure& host, qmStaticStrength& analysis);
