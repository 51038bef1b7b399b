// Scene: its humans, and the public way in and out of scene files.
#include "SceneMember.h"

#include "AtomicFile.h"
#include "Files.h"
#include "PartNames.h"
#include "PosedFigure.h"
#include "SceneReader.h"
#include "SceneWriter.h"

#include "qc/qcFigureFile.h"
#include "qc/qcMessages.h"

#include <filesystem>

namespace {

std::string absolutePath(const std::string& path)
{
    std::error_code problem;
    const std::filesystem::path whole = std::filesystem::absolute(path, problem);
    return problem ? path : whole.string();
}

}   // namespace

AsLoaded::AsLoaded(const qcFigure& figure)
{
    const auto take = [this](const qcObject& object) {
        for (int i = 0; i < object.getNumProperties(); ++i)
            properties.emplace(&object, object.getPropertyKey(i));
    };
    const auto takePart = [&](const qcObject& part) {
        names.emplace_back(part.getName());
        take(part);
    };
    take(figure);
    forEachIn<qcSegmentImp>(figure.getSegments(), takePart);
    forEachIn<qcSiteImp>(figure.getSites(), takePart);
    forEachIn<qcJointImp>(figure.getJoints(), [&](const qcJointImp& joint) {
        takePart(joint);
        std::vector<double> values;
        for (int i = 1; i <= joint.getNumAngles(); ++i)
            values.push_back(joint.getAngleExactly(i));
        angles.push_back(std::move(values));
    });
}

qcScene::Member* qcScene::Member::add(qcScene& scene, std::unique_ptr<qcFigure> figure, const std::string& name)
{
    const std::string wanted = name.empty() ? figure->getName() : name;
    for (const auto& other : scene.members)
        if (other->human->getName() == wanted || other->figure->getName() == wanted)
            throw DuplicateName("the scene has a human named " + inQuotes(wanted)
                                + " already; give this one another name.");
    if (!name.empty())
        figure->setName(name.c_str());

    auto member = std::make_unique<Member>();
    member->figure = std::move(figure);
    member->human.reset(qcHuman::create(member->figure.get()));
    if (!member->human)
        return nullptr;
    member->loaded = AsLoaded(*member->figure);
    scene.members.reserve(scene.members.size() + 1);   // then only the list's node may lack memory
    qList::append(&scene.humanList, member->human.get());
    scene.members.push_back(std::move(member));
    return scene.members.back().get();
}

qcScene::Member* qcScene::Member::addFromFile(qcScene& scene, const std::string& path, const std::string& roles,
                                              const std::string& name)
{
    std::string wholePath = absolutePath(path);
    std::string wholeRoles = roles.empty() ? "" : absolutePath(roles);
    std::unique_ptr<qcFigure> figure(qcFigureFile::read(path.c_str(), roles.empty() ? nullptr : roles.c_str()));
    Member* member = figure ? add(scene, std::move(figure), name) : nullptr;
    if (member) {
        member->figurePath = std::move(wholePath);
        member->rolesPath = std::move(wholeRoles);
    }
    return member;
}

qcScene::Member* qcScene::Member::addPosed(qcScene& scene, std::unique_ptr<qcFigure> figure, const std::string& name)
{
    Json posed = posedFigureJson(*figure, false);
    Member* member = add(scene, std::move(figure), name);
    if (member) {
        member->posed = std::move(posed);
        member->loaded.properties.clear();   // the scene file alone will tell them
    }
    return member;
}

qcScene::qcScene() = default;

// Observers of a figure are told while all of it stands; those of a human, while its figure does.
qcScene::~qcScene()
{
    notifyDestroyed();
    for (const auto& member : members)
        member->human.reset();
    while (humanList)
        qList::deleteNode(&humanList, humanList, nullptr);
}

qcScene* qcScene::open(const char* path)
{
    try {
        return SceneReader::read(path ? path : "").release();
    } catch (const std::exception& problem) {
        reportProblem(problem, path);
        return nullptr;
    }
}

int qcScene::save(const char* path)
{
    try {
        const std::string target = path ? path : "";
        replaceFile(target, SceneWriter::text(*this, target));
        return 1;
    } catch (const std::exception& problem) {
        return reportProblem(problem, path);
    }
}

qcHuman* qcScene::addHuman(const char* figurePath, const char* name, const char* rolesPath)
{
    try {
        const std::string path = figurePath ? figurePath : "";
        const std::string roles = rolesPath ? rolesPath : "";
        const Member* member = Member::addFromFile(*this, path, roles, name ? name : "");
        return member ? member->human.get() : nullptr;
    } catch (const std::exception& problem) {
        reportProblem(problem, figurePath);
        return nullptr;
    }
}

qcHuman* qcScene::addPosedHuman(const char* json)
{
    try {
        const Member* member = Member::addPosed(*this, readPosedFigure(json ? json : "", "posed figure"), "");
        return member ? member->human.get() : nullptr;
    } catch (const std::exception& problem) {
        reportProblem(problem, "posed figure");
        return nullptr;
    }
}

qcHuman* qcScene::findHuman(const char* name) const
{
    for (const auto& member : members)
        if (name && std::string(member->human->getName()) == name)
            return member->human.get();
    return nullptr;
}

qcScene::Member* qcScene::memberOf(const qcHuman* human) const
{
    for (const auto& member : members)
        if (member->human.get() == human)
            return member.get();
    return nullptr;
}

const std::string& qcScene::getUnstoredStrategy(const qcHuman* human) const
{
    static const std::string none;
    const Member* member = memberOf(human);
    return member ? member->unstoredStrategy : none;
}

void qcScene::setUnstoredStrategy(const qcHuman* human, const std::string& strategy)
{
    if (!strategy.empty() && strategy != kUnstoredStrategy) {
        error("expected the strategy \"%s\" or an empty text, found %s.", kUnstoredStrategy,
              inQuotes(strategy).c_str());
        return;
    }
    if (Member* member = memberOf(human))
        member->unstoredStrategy = strategy;
}
