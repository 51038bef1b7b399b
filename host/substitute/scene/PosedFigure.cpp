// Posed figure: the public way in and out of its files.
#include "PosedFigure.h"

#include "AtomicFile.h"
#include "InputError.h"

#include "qc/qcFigureFile.h"
#include "qc/qcMessages.h"

namespace {

std::string textOf(qcFigure& figure)
{
    try {
        return jsonText(posedFigureJson(figure, true));
    } catch (const InputError& problem) {
        throw InputError("figure " + std::string(figure.getName()) + " cannot be written: " + problem.what());
    }
}

}   // namespace

qcFigure* qcFigureFile::readPosedText(const char* json, const char* source)
{
    try {
        return readPosedFigure(json ? json : "", source ? source : "posed figure").release();
    } catch (const std::exception& problem) {
        reportProblem(problem, source ? source : "posed figure");
        return nullptr;
    }
}

std::string qcFigureFile::posedText(qcFigure& figure)
{
    try {
        return textOf(figure);
    } catch (const std::exception& problem) {
        reportProblem(problem, figure.getName());
        return "";
    }
}

int qcFigureFile::writePosed(qcFigure& figure, const char* path)
{
    try {
        replaceFile(path ? path : "", textOf(figure));
        return 1;
    } catch (const std::exception& problem) {
        return reportProblem(problem, path);
    }
}
