// Scene member: a human of a scene with its figure, and what saving must know of them.
#pragma once

#include "InputError.h"
#include "JsonTree.h"

#include "qc/qcScene.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// A figure as it was when it came into the scene: a scene file tells only what differs from it.
struct AsLoaded {
    AsLoaded() = default;
    explicit AsLoaded(const qcFigure& figure);

    std::vector<std::string> names;                                 // segments, sites, joints, in the figure's order
    std::vector<std::vector<double>> angles;                        // rad, by joint
    std::set<std::pair<const qcObject*, std::string>> properties;   // keys that the figure's file brings
};

/// The name that a new human should bear is taken.
class DuplicateName : public InputError {
public:
    using InputError::InputError;
};

struct qcScene::Member {
    std::unique_ptr<qcFigure> figure;
    std::unique_ptr<qcHuman> human;   // goes before its figure
    std::string figurePath;           // absolute; empty: posed
    std::string rolesPath;            // absolute; empty: the sidecar
    Json posed;                       // of a figure given as text: as loaded, without properties
    std::string unstoredStrategy;
    AsLoaded loaded;

    /// Each makes a human of a figure and puts it into the scene.
    /// @param name   names both; empty: the figure's own name
    /// @param path   of a figure file. @param roles  its roles file; empty: the sidecar
    /// @return the new member; null after an error message by whoever reads figures or makes humans
    /// @throws DuplicateName when the scene has that name already. A failure leaves the scene unchanged.
    static Member* add(qcScene& scene, std::unique_ptr<qcFigure> figure, const std::string& name);
    static Member* addFromFile(qcScene& scene, const std::string& path, const std::string& roles,
                               const std::string& name);
    static Member* addPosed(qcScene& scene, std::unique_ptr<qcFigure> figure, const std::string& name);
};

/// The strategy that no property can hold.
constexpr const char* kUnstoredStrategy = "hands-and-knees";

/// Degrees to radians: radians = degrees · kRadiansPerDegree, rounded once, here and wherever scenes are read.
constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;
constexpr double kGramsPerKilogram = 1000;

/// What a scene file says that it is, and the newest version that this program knows.
constexpr const char* kSceneFormat = "sstr-scene";
constexpr int kSceneVersion = 1;
