// URDF model: urdfdom reads the numbers of a file that the outline has checked.
#include "UrdfModel.h"

#include "InputError.h"
#include "UrdfOutline.h"

#include <console_bridge/console.h>
#include <urdf_parser/urdf_parser.h>

#include <cmath>

namespace {

constexpr double kCentimetresPerMetre = 100;
constexpr double kGramsPerKilogram = 1000;

// urdfdom speaks through a log; while this lives, the log comes here.
class CapturedLog : public console_bridge::OutputHandler {
public:
    CapturedLog() { console_bridge::useOutputHandler(this); }
    ~CapturedLog() override { console_bridge::restorePreviousOutputHandler(); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    void log(const std::string& text, console_bridge::LogLevel level, const char*, int) override
    {
        if (level >= console_bridge::CONSOLE_BRIDGE_LOG_ERROR)
            errors += " " + text;
    }

    std::string errors;
};

// urdfdom's links own their children: let go of them one by one, or a long chain would be freed
// link within link, deeper than the stack.
struct OwnedModel {
    urdf::ModelInterfaceSharedPtr model;
    ~OwnedModel()
    {
        if (model)
            for (const auto& link : model->links_)
                link.second->child_links.clear();
    }
};

// Names of our own, so that no character of the file's needs care.
std::string linkKey(std::size_t index)
{
    return "L" + std::to_string(index);
}

std::string jointKey(std::size_t index)
{
    return "J" + std::to_string(index);
}

std::string attribute(const char* name, const std::vector<NumberText>& words)
{
    std::string text;
    for (const NumberText& word : words)
        text += (text.empty() ? "" : " ") + word;
    return words.empty() ? "" : std::string(" ") + name + "=\"" + text + "\"";
}

std::string originElement(const UrdfPoseText& pose)
{
    return "<origin" + attribute("xyz", pose.xyz) + attribute("rpy", pose.rpy) + "/>";
}

// The outline as a URDF text of its own: what statics needs, and the defaults that urdfdom insists on.
std::string plainText(const UrdfOutline& outline)
{
    std::string text = "<robot name=\"R\">";
    for (std::size_t i = 0; i < outline.links.size(); ++i) {
        const UrdfLinkText& link = outline.links[i];
        text += "<link name=\"" + linkKey(i) + "\">";
        if (link.hasInertial)
            text += "<inertial>" + originElement(link.center) + "<mass value=\"" + link.mass
                    + "\"/><inertia ixx=\"0\" ixy=\"0\" ixz=\"0\" iyy=\"0\" iyz=\"0\" izz=\"0\"/></inertial>";
        text += "</link>";
    }
    for (std::size_t i = 0; i < outline.joints.size(); ++i) {
        const UrdfJointText& joint = outline.joints[i];
        text += "<joint name=\"" + jointKey(i) + "\" type=\"" + joint.type + "\"><parent link=\""
                + linkKey(static_cast<std::size_t>(joint.parent)) + "\"/><child link=\""
                + linkKey(static_cast<std::size_t>(joint.child)) + "\"/>" + originElement(joint.origin);
        if (!joint.axis.empty())
            text += "<axis" + attribute("xyz", joint.axis) + "/>";
        if (joint.type == "revolute")
            text += "<limit lower=\"" + joint.lower + "\" upper=\"" + joint.upper + "\" effort=\"0\" velocity=\"0\"/>";
        text += "</joint>";
    }
    return text + "</robot>";
}

// host (x, y, z) = file (y, z, x): y up and z forward for z up and x forward
Point toHostAxes(const urdf::Vector3& v)
{
    return {v.y, v.z, v.x};
}

// The host's order of the axes is the file's moved on by one, so axis i of the host is this of the file.
urdf::Vector3 hostAxisInFile(std::size_t i)
{
    return {i == 2 ? 1.0 : 0.0, i == 0 ? 1.0 : 0.0, i == 1 ? 1.0 : 0.0};
}

Point centimetres(const urdf::Vector3& metres)
{
    Point point = toHostAxes(metres);
    for (double& coordinate : point)
        coordinate *= kCentimetresPerMetre;
    return point;
}

Placement placement(const urdf::Pose& pose)
{
    Placement result;
    result.offset = centimetres(pose.position);
    const urdf::Rotation& q = pose.rotation;
    if (q.x == 0 && q.y == 0 && q.z == 0)
        return result;
    // row i is the image of axis i
    for (std::size_t i = 0; i < 3; ++i) {
        const Point image = toHostAxes(q * hostAxisInFile(i));
        for (std::size_t j = 0; j < 3; ++j)
            result.rotation[3 * i + j] = image[j];
    }
    return result;
}

Point unitVector(const Point& v)
{
    const double length = std::hypot(v[0], v[1], v[2]);
    return {v[0] / length, v[1] / length, v[2] / length};
}

UrdfLink linkFrom(const UrdfLinkText& text, const urdf::Link& parsed)
{
    UrdfLink link;
    link.name = text.name;
    link.line = text.line;
    if (parsed.inertial) {
        link.mass = parsed.inertial->mass * kGramsPerKilogram;
        link.center = centimetres(parsed.inertial->origin.position);
    }
    return link;
}

UrdfJoint jointFrom(const UrdfJointText& text, const urdf::Joint& parsed)
{
    UrdfJoint joint;
    joint.name = text.name;
    joint.line = text.line;
    joint.parent = text.parent;
    joint.child = text.child;
    joint.origin = placement(parsed.parent_to_joint_origin_transform);
    joint.moves = parsed.type != urdf::Joint::FIXED;
    if (joint.moves)
        joint.axis = unitVector(toHostAxes(parsed.axis));
    if (parsed.type == urdf::Joint::REVOLUTE) {
        joint.limited = true;
        joint.lower = parsed.limits->lower;
        joint.upper = parsed.limits->upper;
    }
    return joint;
}

}   // namespace

UrdfModel readUrdfModel(const std::string& text, const std::string& file)
{
    const UrdfOutline outline = outlineUrdf(text, file);
    OwnedModel parsed;
    {
        const CapturedLog log;
        parsed.model = urdf::parseURDF(plainText(outline));
        if (!parsed.model)
            throw InputError(file + ": the URDF reader refuses it:" + log.errors);
    }

    UrdfModel model;
    model.name = outline.name;
    model.root = outline.root;
    model.outward = outline.outward;
    model.notes = outline.notes;
    for (std::size_t i = 0; i < outline.links.size(); ++i)
        model.links.push_back(linkFrom(outline.links[i], *parsed.model->links_.at(linkKey(i))));
    for (std::size_t i = 0; i < outline.joints.size(); ++i) {
        const UrdfJoint joint = jointFrom(outline.joints[i], *parsed.model->joints_.at(jointKey(i)));
        model.links[static_cast<std::size_t>(joint.child)].parentJoint = static_cast<int>(i);
        model.links[static_cast<std::size_t>(joint.parent)].children.push_back(static_cast<int>(i));
        model.joints.push_back(joint);
    }
    return model;
}
