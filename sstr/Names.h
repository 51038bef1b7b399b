// Names: how parts of a figure are called on the command line and in output, and how they are found.
#pragma once

#include "FigureParts.h"

#include "qc/qcFigure.h"
#include "qc/qcScene.h"

#include <string>
#include <vector>

/// The joint's name; its full name when the figure has another joint of that name before it.
std::string jointName(const qcFigure* figure, const qcJoint* joint);

/// The names nearest to a wrong one, as the end of a message: " Did you mean a, b or c?"; empty when
/// none is near.
std::string didYouMean(const std::string& wrong, const std::vector<std::string>& names);

/// Each finds a part by its name. @return null after an error that begins with `where` and offers near names
/// A joint is found by its name or by its full name; a name that both are is the former's.
qcSite* findSite(const qcFigure* figure, const std::string& key, const std::string& where);
qcJoint* findJoint(const qcFigure* figure, const std::string& name, const std::string& where);

/// The scene's human of that name; with an empty name its only human. @return null after an error
qcHuman* findHuman(const qcScene& scene, const std::string& name);

/// Which side a name speaks of, and the name of its twin on the other side.
///
/// "right…" and "left…" anywhere in the name, or the endings "_r" and "_l".
struct SidedName {
    enum Side { kCentre, kRight, kLeft } side = kCentre;
    std::string twin;     // the other side's name; empty on the centre line
    std::string common;   // the name without its side
};
SidedName sidedName(const std::string& name);
