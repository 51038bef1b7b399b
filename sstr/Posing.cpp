// Posing: body measures, root placement and joint angles from the command line.
#include "Messages.h"
#include "Names.h"
#include "Parse.h"
#include "Setup.h"

#include <set>

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;
constexpr double kGramsPerKilogram = 1000.0;

// Applies "JOINT=deg,deg,…": all angles or none.
void applyAngles(const std::string& text, qcFigure& figure, std::set<const qcJoint*>& done)
{
    const std::optional<Assignment> parts = parseAssignment("--angle", text, "JOINT=deg[,deg...]");
    if (!parts)
        return;
    const std::string where = "--angle " + parts->name;
    qcJoint* joint = findJoint(&figure, parts->name, "--angle");
    const std::optional<std::vector<double>> degrees = parseNumbers(where, parts->value);
    if (!joint || !degrees)
        return;
    if (!done.insert(joint).second) {
        reportError(where + ": the joint's angles are given twice.");
        return;
    }
    const int count = static_cast<int>(degrees->size());
    if (count > joint->getNumAngles()) {
        reportError(where + ": the joint has " + std::to_string(joint->getNumAngles())
                    + (joint->getNumAngles() == 1 ? " angle, found " : " angles, found ") + std::to_string(count)
                    + ".");
        return;
    }
    bool allowed = true;
    const auto radians = [&](int i) { return (*degrees)[static_cast<std::size_t>(i - 1)] * kRadiansPerDegree; };
    for (int i = 1; i <= count; ++i) {
        const std::string problem = joint->angleProblem(i, radians(i));
        if (!problem.empty())
            reportError(where + ": " + problem + ".");
        allowed = allowed && problem.empty();
    }
    for (int i = 1; allowed && i <= count; ++i)
        joint->setAngle(i, radians(i));
}

}   // namespace

void applyBody(const ChangeOptions& options, Opened& opened)
{
    if (options.sex.empty() && options.stature.empty() && options.mass.empty())
        return;
    qcAnthroScale* scale = opened.human->initAnthroscale(nullptr);
    if (!scale) {
        reportError(std::string("--sex, --stature, --mass: the human ") + opened.human->getName()
                    + " cannot have an anthropometric scale.");
        return;
    }
    if (!options.sex.empty())
        scale->setSex(options.sex == "female" ? qcFemale : qcMale);
    if (!options.stature.empty())
        if (const std::optional<double> stature = parseNumber("--stature", options.stature))
            scale->setStature(*stature);
    if (!options.mass.empty())
        if (const std::optional<double> mass = parseNumber("--mass", options.mass))
            scale->setMass(*mass * kGramsPerKilogram);
}

void applyPosture(const ChangeOptions& options, Opened& opened)
{
    qcFigure& figure = *opened.human->getFigure();
    if (figure.isPosed()) {
        if (!options.root.empty() || options.floor)
            reportError(std::string("--root, --floor: the figure ") + figure.getName()
                        + " is a posed one; it cannot be moved.");
        if (!options.angles.empty())
            reportWarning(std::string("--angle: the figure ") + figure.getName()
                          + " is a posed one; its angles are kept and move nothing.");
    }
    if (!options.root.empty() && !figure.isPosed())
        if (const auto root = parseNumbers("--root", options.root)) {
            if (root->size() == 6)
                figure.setRoot((*root)[0], (*root)[1], (*root)[2], (*root)[3], (*root)[4], (*root)[5]);
            else
                reportError("--root: expected six numbers x,y,z,rx,ry,rz (cm, degrees), found " + quoted(options.root)
                            + ".");
        }
    if (options.floor && !figure.isPosed())
        figure.standOnFloor();

    std::set<const qcJoint*> done;
    for (const std::string& text : options.angles)
        applyAngles(text, figure, done);
}
