// Scene reader: a scene from its file.
#pragma once

#include "JsonReader.h"
#include "PartNames.h"

#include "qc/qcScene.h"

#include <memory>
#include <string>

class SceneReader {
public:
    /// @throws InputError; nothing of the scene is then left
    static std::unique_ptr<qcScene> read(const std::string& path);

private:
    SceneReader(qcScene& filled, const std::string& figureFolder) : scene(filled), folder(figureFolder) {}

    void readScene(const JsonAt& at);
    void readHuman(const JsonAt& at);
    qcScene::Member& addMember(const JsonAt& at);
    std::string fileOf(const JsonAt& at) const;
    static void readScale(const JsonAt& at, qcHuman& human);
    static void readMasses(const JsonAt& at, const PartNames& names);
    static void readPosture(const JsonAt& at, const PartNames& names, double unit);
    static void readRoot(const JsonAt& at, qcFigure& figure);
    static void readProperties(const JsonAt& at, const PartNames& names, qcHuman& human);
    static void readStrategy(const JsonAt& at, qcScene::Member& member);

    qcScene& scene;
    std::string folder;   // of the scene file: figures are named relative to it
};
