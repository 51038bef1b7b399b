// Support of the scene tests: a posed figure with round numbers, and short ways to read and to open.
#pragma once

#include "Support.h"

#include "qc/qcFigureFile.h"
#include "qc/qcScene.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

/// A torso and an arm that one joint with two angles connects. Every frame is parallel to the world's.
inline nlohmann::json twoSegments()
{
    return nlohmann::json::parse(R"({
      "name": "pair",
      "segments": [
        {"name": "torso", "mass": 20000, "com": [0, 10, 0], "sites": ["torso.shoulder", "torso.base"], "attachment": null,
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 100, 0, 1]]},
        {"name": "arm", "mass": 3000, "com": [0, -15, 0], "sites": ["arm.proximal", "arm.grip"],
         "attachment": "arm.proximal",
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [20, 140, 0, 1]]}],
      "sites": [
        {"key": "torso.base", "segment": "torso", "name": "base", "joints": [],
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 100, 0, 1]]},
        {"key": "torso.shoulder", "segment": "torso", "name": "shoulder", "joints": ["right_shoulder"],
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [20, 140, 0, 1]]},
        {"key": "arm.proximal", "segment": "arm", "name": "proximal", "joints": ["right_shoulder"],
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [20, 140, 0, 1]]},
        {"key": "arm.grip", "segment": "arm", "name": "grip", "joints": [],
         "transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [20, 80, 0, 1]],
         "second_transform": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [20, 81, 0, 1]]}],
      "joints": [
        {"name": "right_shoulder", "sites": ["torso.shoulder", "arm.proximal"], "angles": [0.5, -0.25]}],
      "reference_site": "torso.base", "pelvis_site": "torso.base", "waist": null,
      "left": {"foot_site": null},
      "right": {"hand_site": "arm.grip", "knee": "right_shoulder"}
    })");
}

inline std::unique_ptr<qcFigure> readPosed(const nlohmann::json& json)
{
    return std::unique_ptr<qcFigure>(qcFigureFile::readPosedText(json.dump().c_str(), "pair.figure.json"));
}

inline std::unique_ptr<qcScene> openScene(const std::string& path)
{
    return std::unique_ptr<qcScene>(qcScene::open(path.c_str()));
}

/// The default human's figure file.
inline std::string humanPath()
{
    return SSTR_SOURCE_DIR "/figures/human.urdf";
}

template <class Part = qcObject> std::vector<std::string> namesIn(const qList* list)
{
    std::vector<std::string> names;
    for (qList* node = qList::iterator(list, nullptr); node; node = qList::iterator(list, node))
        names.emplace_back(static_cast<Part*>(node->getData())->getName());
    return names;
}
