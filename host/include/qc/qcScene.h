// Scene: humans with their figures, postures, properties and the world's gravity, kept in one file.
#pragma once

#include "qc/qList.h"
#include "qc/qVector.h"
#include "qc/qcExport.h"
#include "qc/qcHuman.h"
#include "qc/qcObject.h"

#include <memory>
#include <string>
#include <vector>

/// A scene. It owns its humans and their figures. Members that fail say why through error().
class QC_API qcScene : public qcObject {
public:
    qcScene();
    ~qcScene() override;
    qcScene(const qcScene&) = delete;
    qcScene& operator=(const qcScene&) = delete;

    /// Opens a scene file. @return a new scene, which the caller deletes; null after an error message
    static qcScene* open(const char* path);

    /// Saves the scene: the old file or the new one, whole, whatever happens. Figures are named by
    /// their path relative to the scene file. @return 1; 0 after an error message
    int save(const char* path);

    /// Adds a human whose figure stands in a file (.urdf or .figure.json).
    /// @param name       names the human and its figure; null or empty: the figure's own name
    /// @param rolesPath  as in qcFigureFile::read()
    /// @return the human, owned by the scene; null after an error message, the scene unchanged
    qcHuman* addHuman(const char* figurePath, const char* name, const char* rolesPath = nullptr);

    /// Adds a human whose figure is given as posed-figure JSON text.
    qcHuman* addPosedHuman(const char* json);

    /// The humans (qcHuman*), in the order in which they were added.
    qList* getHumans() const { return humanList; }

    /// Finds a human by name; null when there is none.
    qcHuman* findHuman(const char* name) const;

    /// The world's gravity, cm/s²; (0, -980.665, 0) in a new scene.
    const qVector& getGravity() const { return gravity; }
    void setGravity(const qVector& newGravity) { gravity = newGravity; }

    /// A strategy that the scene file asks for and that no property can hold ("hands-and-knees");
    /// empty: the properties tell. Kept by the scene and saved with it.
    const std::string& getUnstoredStrategy(const qcHuman* human) const;
    void setUnstoredStrategy(const qcHuman* human, const std::string& strategy);

private:
    struct Member;
    friend class SceneReader;
    friend class SceneWriter;

    Member* memberOf(const qcHuman* human) const;

    std::vector<std::unique_ptr<Member>> members;
    qList* humanList = nullptr;
    qVector gravity{0.0f, -980.665f, 0.0f};
};
