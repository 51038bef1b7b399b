// URDF figure: a figure from the text of a URDF file and of its roles file.
#pragma once

#include "qc/qcFigure.h"

#include <memory>
#include <string>

/// A text and what to call it in messages.
struct SourceText {
    std::string text;
    std::string source;
};

/// Reads a figure that moves.
/// @param roles        null: the figure is no human
/// @param defaultName  the figure's name when the model tells none
/// @throws InputError
std::unique_ptr<qcFigure> readUrdfFigure(const SourceText& urdf, const SourceText* roles,
                                         const std::string& defaultName);
