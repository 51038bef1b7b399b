// Figure files: what kind a file is, and its reader.
#include "qc/qcFigureFile.h"

#include "Files.h"
#include "InputError.h"
#include "UrdfFigure.h"
#include "scene/PosedFigure.h"

#include "qc/qcMessages.h"

namespace {

constexpr const char* kUrdfEnding = ".urdf";
constexpr const char* kPosedEnding = ".figure.json";
constexpr const char* kRolesEnding = ".roles.json";

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

std::unique_ptr<qcFigure> readUrdf(const std::string& path, const char* rolesPath)
{
    const SourceText urdf{readWholeFile(path), path};
    const std::string stem = path.substr(0, path.size() - std::string(kUrdfEnding).size());
    const std::string defaultName = stem.substr(stem.find_last_of('/') + 1);
    const std::string beside = stem + kRolesEnding;
    if (!rolesPath && !fileExists(beside))
        return readUrdfFigure(urdf, nullptr, defaultName);
    const std::string rolesFile = rolesPath ? rolesPath : beside;
    const SourceText roles{readWholeFile(rolesFile), rolesFile};
    return readUrdfFigure(urdf, &roles, defaultName);
}

std::unique_ptr<qcFigure> readAny(const std::string& path, const char* rolesPath)
{
    if (endsWith(path, kUrdfEnding))
        return readUrdf(path, rolesPath);
    if (!endsWith(path, kPosedEnding))
        throw InputError(path + ": expected the name of a figure file, NAME.urdf or NAME.figure.json.");
    if (rolesPath)
        throw InputError(path + ": a posed figure carries its own roles; expected no roles file, found "
                         + inQuotes(rolesPath) + ".");
    return readPosedFigure(readWholeFile(path), path);
}

}   // namespace

qcFigure* qcFigureFile::read(const char* path, const char* rolesPath)
{
    try {
        return readAny(path ? path : "", rolesPath).release();
    } catch (const std::exception& problem) {
        reportProblem(problem, path);
    }
    return nullptr;
}
