// Figure files: reading figures from URDF and posed-figure files, and writing posed ones.
#pragma once

#include "qc/qcExport.h"
#include "qc/qcFigure.h"

#include <string>

/// Reads and writes figures. What is wrong in a file is reported through error(), with the file, the
/// line or the JSON path, what was found and what was expected.
class QC_API qcFigureFile {
public:
    /// Reads a figure: a URDF file (.urdf) or a posed figure (.figure.json), told apart by the name.
    ///
    /// @param path       the file
    /// @param rolesPath  the roles file of a URDF figure; null: NAME.roles.json beside NAME.urdf, if
    ///                   there is one
    /// @return a new figure, which the caller deletes; null after an error message
    static qcFigure* read(const char* path, const char* rolesPath);

    /// Reads a posed figure from JSON text. @param source  what to call the text in messages
    static qcFigure* readPosedText(const char* json, const char* source);

    /// The figure as a host holds it at this moment, as posed-figure JSON, its properties included.
    static std::string posedText(qcFigure& figure);

    /// Writes posedText() to a file: the old file or the new one, whole, whatever happens.
    /// @return 1; 0 after an error message
    static int writePosed(qcFigure& figure, const char* path);
};
