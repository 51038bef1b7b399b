// Subject: a figure with everything that speaks of it: the host, the analysis and the witnesses.
#pragma once

#include "Agreement.h"

#include <memory>
#include <string>
#include <vector>

struct Subject {
    Subject(const std::string& name, const std::string& urdfPath, const std::string& rolesPath);
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// Brings the host, the analysis and every witness into a case.
    void take(const Case& drawn);

    /// Computes the case taken last on a support, and compares with each witness.
    /// @param tallies  one for each witness, in their order
    void compareOn(Support support, const Case& drawn, const std::string& about, std::vector<Tally>& tallies);

    std::string name;
    Figure figure;
    HostFigure host;
    qmStaticStrength analysis;
    std::vector<std::unique_ptr<Witness>> witnesses;
};

std::unique_ptr<Subject> defaultHuman();

/// Null after a notice when the model, which is not part of this project, is absent.
std::unique_ptr<Subject> publicModel();
