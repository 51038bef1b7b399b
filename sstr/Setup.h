// Setup: a scene opened for analysis, and what the options change in it before the computation.
#pragma once

#include "Options.h"

#include "qc/qcScene.h"
#include "qmStaticStrength.h"

#include <memory>
#include <string>

/// A scene, the human chosen, and its analysis with the scene's gravity and strategy in force.
struct Opened {
    std::unique_ptr<qcScene> scene;
    qcHuman* human = nullptr;
    std::unique_ptr<qmStaticStrength> analysis;   // goes before the scene
};

/// Opens a scene and chooses a human, without an analysis. @return false after an error
bool openScene(const std::string& path, const std::string& humanName, Opened& opened);

/// Makes the analysis: the scene's gravity, then its strategy. All results of earlier computations
/// that the scene holds are removed, so that what is shown later is of one computation.
void makeAnalysis(Opened& opened);

/// Makes the analysis of an opened scene and applies the options that change it: body, posture, gravity,
/// strategy, loads. What is wrong is reported; the caller looks at errorCount() after all.
void applyChanges(const ChangeOptions& options, Opened& opened);

/// The parts of applyChanges() that measure and pose the body.
void applyBody(const ChangeOptions& options, Opened& opened);
void applyPosture(const ChangeOptions& options, Opened& opened);

/// Whether a load on a site, kgf, is found again when a scene that was saved with it is opened: not one of less than
/// 0.00001 kgf.
bool isFoundAgain(const qVector& load);

/// Whether a scene may be written to this path: not onto what is a figure's or a roles file by its
/// name. @return false after an error that names the option
bool mayHoldScene(const std::string& option, const std::string& path);
