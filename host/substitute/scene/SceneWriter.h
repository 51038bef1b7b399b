// Scene writer: a scene as the text of its file. It tells what differs from the figures as loaded.
#pragma once

#include "JsonTree.h"
#include "PartNames.h"

#include "qc/qcScene.h"

#include <string>

class SceneWriter {
public:
    /// The text of the scene file. @param path  where it will be: figures are named relative to it
    /// @throws InputError, naming what no file can hold
    static std::string text(qcScene& scene, const std::string& path);

private:
    static Json humanJson(qcScene::Member& member, const std::string& folder);
    static void addFigure(Json& json, const qcScene::Member& member, const std::string& folder);
    static void addScale(Json& json, qcHuman& human);
    static void addMasses(Json& json, const qcFigure& figure, const PartNames& names);
    static void addPosture(Json& json, const qcScene::Member& member, const PartNames& names);
    static void addRoot(Json& json, const qcFigure& figure);
    static void addProperties(Json& json, const qcScene::Member& member, const PartNames& names);
    static void requireLoadedNames(const qcScene::Member& member);
};
