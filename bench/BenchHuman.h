// Bench human: the default human, standing, carrying any number of loads.
#pragma once

#include "qmStaticStrength.h"

#include "qc/qcScene.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

/// The default human with its analysis. It stands on the floor, bent a little at every joint, so that
/// no angle is zero and every joint carries something.
class BenchHuman {
public:
    BenchHuman();
    BenchHuman(const BenchHuman&) = delete;
    BenchHuman& operator=(const BenchHuman&) = delete;

    qmStaticStrength& analysis() { return *owned; }
    qcFigure& figure() { return *human->getFigure(); }

    /// Puts forces on the sites in turn: plain ones first, one a site, then loads with offsets.
    void addLoads(int count);

    /// Sets every angle of every joint, within its limits; `variant` chooses among postures.
    void setPosture(int variant);

    /// Whether the last computation left a result on that joint.
    bool hasResult(const std::string& joint);

private:
    static constexpr int kPostures = 16;

    std::unique_ptr<qcScene> scene;
    qcHuman* human;
    std::vector<qcJoint*> joints;
    std::vector<std::vector<double>> postures;   // rad: all angles of all joints, a row a posture
    std::unique_ptr<qmStaticStrength> owned;
};
