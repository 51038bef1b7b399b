// Analysed human: a human for fuzzers of the analysis, wiped between two inputs.
#pragma once

#include "qc/qcFigure.h"
#include "qc/qcHuman.h"

#include <memory>
#include <string>
#include <vector>

/// A human of a posed figure, with its parts at hand by number.
class AnalysedHuman {
public:
    explicit AnalysedHuman(const std::string& posedFigure);

    qcHuman* human() const { return owner.get(); }
    qcFigure* figure() const { return body.get(); }
    const std::vector<qcSite*>& sites() const { return allSites; }
    const std::vector<qcJoint*>& joints() const { return allJoints; }

    /// Removes every property of the figure, its sites and its joints.
    void wipe();

private:
    std::unique_ptr<qcFigure> body;
    std::unique_ptr<qcHuman> owner;   // goes before the figure
    std::vector<qcSite*> allSites;
    std::vector<qcJoint*> allJoints;
};

/// The key of a site in the saved lists, "segment.site".
std::string keyOf(const qcSite* site);

/// Whether an object has a property.
bool hasProperty(const qcObject* object, const char* key);
