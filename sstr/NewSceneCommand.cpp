// new-scene: makes a scene of a figure file.
#include "Commands.h"
#include "Messages.h"
#include "Setup.h"

#include <filesystem>

int runNewScene(const NewSceneOptions& options)
{
    if (!mayHoldScene("OUT", options.scene))
        return kWrongInput;
    std::error_code ignored;
    if (!options.force && std::filesystem::exists(std::filesystem::symlink_status(options.scene, ignored))) {
        reportError("OUT: " + quoted(options.scene) + " exists; it is replaced only with --force.");
        return kWrongInput;
    }
    qcScene scene;
    const char* roles = options.roles.empty() ? nullptr : options.roles.c_str();
    qcHuman* human = scene.addHuman(options.figure.c_str(), options.name.c_str(), roles);
    if (!human)
        return kWrongInput;
    if (!human->getFigure()->isPosed())
        human->getFigure()->standOnFloor();
    return scene.save(options.scene.c_str()) ? kDone : kWrongInput;
}
