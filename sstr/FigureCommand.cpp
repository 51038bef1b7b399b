// figure: shows a figure as a tree, and writes it as it stands.
#include "Commands.h"
#include "Messages.h"
#include "Names.h"
#include "NumberText.h"
#include "Setup.h"

#include "qc/qcFigureFile.h"

#include <algorithm>
#include <set>

namespace {

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

// "joint left_knee to left_lower_leg: flexion 12.0 [0.0 to 135.0]"
std::string jointText(const qcJoint& joint)
{
    std::string text;
    for (int i = 1; i <= joint.getNumAngles(); ++i) {
        const std::string name = joint.getAngleName(i);
        text += (i == 1 ? ": " : ", ") + (name.empty() ? "angle " + std::to_string(i) : name) + " "
                + fixed(joint.getAngleExactly(i) * kDegreesPerRadian, 1);
        double lower, upper;
        if (joint.getAngleLimits(i, lower, upper))
            text += " [" + fixed(lower * kDegreesPerRadian, 1) + " to " + fixed(upper * kDegreesPerRadian, 1) + "]";
    }
    return text.empty() ? ": no angles" : text + " deg";
}

/// Writes the tree, from the roots outward. Deep figures are walked without recursion, and indented
/// no further than a line can bear.
class TreeWriter {
public:
    explicit TreeWriter(const qcFigure& shown) : figure(shown) {}

    std::string text()
    {
        // roots first; then whatever hangs on nothing that was reached
        for (const bool rootsOnly : {true, false})
            forEach<qcSegment>(figure.getSegments(), [&](qcSegment* segment) {
                if (!rootsOnly || !segment->getAttachmentSite())
                    writeFrom(segment);
            });
        return output;
    }

private:
    struct Item {
        qcSegment* segment;
        const qcJoint* joint;   // by which it hangs; null for a root
        int depth;
    };

    void writeFrom(qcSegment* root)
    {
        std::vector<Item> open = {{root, nullptr, 0}};
        while (!open.empty()) {
            const Item item = open.back();
            open.pop_back();
            if (!written.insert(item.segment).second)
                continue;
            write(item);
            std::vector<Item> children;
            forEach<qcSite>(item.segment->getSites(), [&](qcSite* site) {
                forEach<qcJoint>(site->getJoints(), [&](const qcJoint* joint) {
                    const qcSite* other = joint->otherSite(site);
                    if (joint->getInboardSite() == site && other)
                        children.push_back({other->getSegment(), joint, item.depth + 1});
                });
            });
            open.insert(open.end(), children.rbegin(), children.rend());
        }
    }

    void write(const Item& item)
    {
        constexpr int kDeepest = 40;
        const std::string indentation(static_cast<std::size_t>(2 * std::min(item.depth, kDeepest)), ' ');
        if (item.joint)
            output += indentation + "joint " + escaped(jointName(&figure, item.joint) + jointText(*item.joint)) + "\n";
        output += indentation + "segment " + escaped(item.segment->getName()) + ": "
                  + fixed(double(item.segment->getMass()) * 0.001, 3) + " kg, centre of mass "
                  + vectorText(item.segment->getCenterOfMass(), 2) + " cm, at "
                  + vectorText(item.segment->getGlobalTransform().getTranslation(), 2) + " cm\n";
        forEach<qcSite>(item.segment->getSites(), [&](qcSite* site) {
            output += indentation + "  site " + escaped(siteKey(site)) + " at "
                      + vectorText(site->getGlobalTransform().getTranslation(), 2) + " cm\n";
        });
    }

    const qcFigure& figure;
    std::set<const qcSegment*> written;
    std::string output;
};

std::size_t countOf(qList* list)
{
    std::size_t count = 0;
    forEach<qcObject>(list, [&](const qcObject*) { ++count; });
    return count;
}

std::string headText(qcFigure& figure)
{
    const auto count = [](qList* list, const char* what) { return std::to_string(countOf(list)) + " " + what; };
    return "figure " + escaped(figure.getName()) + (figure.isPosed() ? " (posed)" : "") + ": "
           + count(figure.getSegments(), "segments, ") + count(figure.getJoints(), "joints, ")
           + count(figure.getSites(), "sites\n") + "total mass " + fixed(figure.getBodyMass() * 0.001, 3)
           + " kg, centre of mass " + vectorText(figure.getBodyCenterOfMass(), 2) + " cm\n"
           + "Positions (at) are the world's, x to the figure's left, y up, z forward; a segment's centre of mass is "
             "in its own frame.\n\n";
}

// The figure of the file, owned by one of the two.
struct Shown {
    std::unique_ptr<qcFigure> own;
    Opened opened;
    qcFigure* figure = nullptr;
};

bool readShown(const FigureOptions& options, Shown& shown)
{
    const bool urdf = endsWith(options.file, ".urdf");
    const bool scene = !urdf && !endsWith(options.file, ".figure.json");
    if (!urdf && !options.roles.empty())
        reportError("--roles: only a URDF has a roles file; " + quoted(options.file) + " is none by its name.");
    if (!scene && !options.human.empty())
        reportError("--human: only a scene has humans to choose from; " + quoted(options.file)
                    + " is a figure by its name.");
    if (!options.posed.empty() && !endsWith(options.posed, ".figure.json"))
        reportError("--posed: expected a name that ends in .figure.json, by which a posed figure is known, found "
                    + quoted(options.posed) + ".");
    if (errorCount() > 0)
        return false;
    if (scene) {
        if (openScene(options.file, options.human, shown.opened))
            shown.figure = shown.opened.human->getFigure();
    } else {
        shown.own.reset(
            qcFigureFile::read(options.file.c_str(), options.roles.empty() ? nullptr : options.roles.c_str()));
        shown.figure = shown.own.get();
    }
    return shown.figure && errorCount() == 0;
}

}   // namespace

int runFigure(const FigureOptions& options)
{
    Shown shown;
    if (!readShown(options, shown))
        return kWrongInput;
    std::string text = headText(*shown.figure) + TreeWriter(*shown.figure).text();
    if (options.verbose) {
        text += "\nnotes\n";
        for (const std::string& note : shown.figure->getNotes())
            text += "  " + escaped(note) + "\n";
        if (shown.figure->getNotes().empty())
            text += "  none\n";
    }
    if (!print(text))
        return kWrongInput;
    if (!options.posed.empty() && !qcFigureFile::writePosed(*shown.figure, options.posed.c_str()))
        return kWrongInput;
    return kDone;
}
