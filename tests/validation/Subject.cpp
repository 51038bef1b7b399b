// Subject.
#include "Subject.h"

#include <cstdio>
#include <fstream>

namespace {

const std::string kHuman = SSTR_SOURCE_DIR "/figures/human.urdf";
const std::string kHumanRoles = SSTR_SOURCE_DIR "/figures/human.roles.json";
const std::string kModel = SSTR_SHARED_FIGURES "/humanSubject01_66dof.urdf";
const std::string kModelRoles = SSTR_SOURCE_DIR "/tests/data/humanSubject01_66dof.roles.json";

}   // namespace

Subject::Subject(const std::string& called, const std::string& urdfPath, const std::string& rolesPath)
    : name(called), figure(readFigure(urdfPath, rolesPath)), host(figure, urdfPath, rolesPath), analysis(&host.human()),
      witnesses(makeWitnesses(figure))
{}

void Subject::take(const Case& drawn)
{
    tell(drawn, host, analysis);
    for (const auto& witness : witnesses) {
        witness->setGravity(fromHost(drawn.gravity, kMetresPerCm));   // from cm/s² to m/s²
        witness->setRoot(rootPose(drawn.rootCm, drawn.rootDegrees));
        witness->setAngles(drawn.angles);
    }
}

void Subject::compareOn(Support support, const Case& drawn, const std::string& about, std::vector<Tally>& tallies)
{
    const std::vector<WalkStep> steps = stepsOf(support, figure, host);
    analysis.setStrategy(strategyOf(support));
    analysis.compute();
    for (std::size_t i = 0; i < witnesses.size(); ++i) {
        const Loading loading = loadingOf(drawn, figure, host, *witnesses[i]);
        const Testimony testimony = testify(*witnesses[i], steps, footOf(support, host), loading);
        compare(steps, testimony, loading, host, analysis, about, tallies[i]);
    }
}

std::unique_ptr<Subject> defaultHuman()
{
    return std::make_unique<Subject>("default human", kHuman, kHumanRoles);
}

std::unique_ptr<Subject> publicModel()
{
    if (std::ifstream(kModel).good())
        return std::make_unique<Subject>("public model", kModel, kModelRoles);
    std::printf("DID NOT RUN: the public model %s is absent. Nothing was compared on it.\n", kModel.c_str());
    return nullptr;
}
