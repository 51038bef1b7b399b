// Posed figure: a figure exactly as a host had it at one moment, as JSON.
#pragma once

#include "JsonReader.h"

#include "qc/qcFigure.h"

#include <memory>
#include <string>

/// Reads a posed figure. @param source  what to call the text in messages: the file's path
/// @throws InputError
std::unique_ptr<qcFigure> readPosedFigure(const std::string& jsonText, const std::string& source);
std::unique_ptr<qcFigure> readPosedFigure(const JsonAt& at);

/// The figure as it is now.
/// @throws InputError when it holds what no file can: a number that is not finite, a name that is no
///         UTF-8, two parts that no name tells apart
Json posedFigureJson(qcFigure& figure, bool withProperties);

// The anthropometric scale, as the key "anthro" tells it.
constexpr const char* kScaleAtHand = "present";
constexpr const char* kScaleCanBeMade = "init";
constexpr const char* kNoScale = "none";
