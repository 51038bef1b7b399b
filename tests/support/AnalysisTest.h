// Analysis test: a fixture with a scene, a human and its analysis, that collects the host's messages.
#pragma once

#include "SmallFigure.h"
#include "Support.h"

#include "qmStaticStrength.h"

#include "qc/qcScene.h"

#include <memory>
#include <string>

/// A message that a test has not taken fails it.
class AnalysisTest : public MessageTest {
protected:
    /// Puts a figure into the scene and makes its analysis. May be called again for further humans;
    /// `human`, `figure` and `analysis` are then the last one's.
    void load(const SmallFigure& small) { use(scene->addPosedHuman(small.text().c_str())); }

    /// The default human, standing on the floor in its zero posture.
    void loadDefaultHuman()
    {
        use(scene->addHuman(SSTR_SOURCE_DIR "/figures/human.urdf", nullptr));
        figure->standOnFloor();
    }

    void TearDown() override
    {
        analyses.clear();   // before the humans go
        scene.reset();
        MessageTest::TearDown();
    }

    qcSite* site(const std::string& key) const
    {
        return figure->findSiteByFullName((std::string(figure->getName()) + "." + key).c_str());
    }
    qcJoint* joint(const std::string& name) const { return figure->findJoint(name.c_str()); }
    qcSegment* segment(const std::string& name) const { return figure->findSegment(name.c_str()); }

    struct Result {
        int status;
        qVector force;    // kgf
        qVector moment;   // N·m
    };
    Result resultOf(const std::string& jointName) const
    {
        Result result{0, {}, {}};
        result.status = analysis->getJointForces(joint(jointName), result.force, result.moment);
        return result;
    }

    /// Deletes the analysis at hand; the human stays.
    void dropAnalysis()
    {
        analyses.pop_back();
        analysis = nullptr;
    }
    /// Another analysis object for the human at hand.
    void makeAnalysis()
    {
        analyses.push_back(std::make_unique<qmStaticStrength>(human));
        analysis = analyses.back().get();
    }

    std::unique_ptr<qcScene> scene = std::make_unique<qcScene>();
    qcHuman* human = nullptr;
    qcFigure* figure = nullptr;
    qmStaticStrength* analysis = nullptr;
    std::vector<std::unique_ptr<qmStaticStrength>> analyses;

private:
    void use(qcHuman* added)
    {
        ASSERT_NE(added, nullptr);
        human = added;
        figure = added->getFigure();
        makeAnalysis();
    }
};
