// Figure: from urdfdom's links to bodies, hinges and sites.
#include "Figure.h"

#include <nlohmann/json.hpp>
#include <urdf_parser/urdf_parser.h>

#include <fstream>
#include <functional>
#include <stdexcept>

namespace {

constexpr double kMassless = 1e-5;   // kg: at most this is a filler that published models write
constexpr double kPi = 3.14159265358979323846;
constexpr double kMetresPerCentimetre = 0.01;

Vec vector(const urdf::Vector3& v)
{
    return {v.x, v.y, v.z};
}

// The quaternion's turn: R v = v + 2 w (q × v) + 2 q × (q × v), for each axis v.
Turn turnOf(const urdf::Rotation& r)
{
    const Vec q{r.x, r.y, r.z};
    const auto turned = [&](const Vec& v) {
        const Vec t = cross(q, v) * 2;
        return v + t * r.w + cross(q, t);
    };
    return {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1})};
}

Pose poseOf(const urdf::Pose& pose)
{
    return {turnOf(pose.rotation), vector(pose.position)};
}

class Reading {
public:
    Reading(const std::string& urdfPath, const std::string& rolesPath)
        : path(urdfPath), model(urdf::parseURDFFile(urdfPath))
    {
        if (!model)
            fail("it is no URDF model");
        roles = nlohmann::json::parse(std::ifstream(rolesPath));
    }

    Figure run()
    {
        const urdf::Link& root = *model->getRoot();
        figure.bodies.push_back(bodyOf(root));
        addMass(root, 0, {});
        readChildren(root, 0, {});
        nameSites();
        return std::move(figure);
    }

private:
    [[noreturn]] void fail(const std::string& what) const { throw std::runtime_error(path + ": " + what); }

    static double massOf(const urdf::Link& link) { return link.inertial ? link.inertial->mass : 0; }

    std::string renamed(const char* section, const std::string& name) const
    {
        return roles.contains(section) ? roles[section].value(name, name) : name;
    }

    Body bodyOf(const urdf::Link& link) const
    {
        Body body;
        body.link = link.name;
        body.name = renamed("rename_links", link.name);
        return body;
    }

    //   center := (mass · center + m · c) / (mass + m)        mass := mass + m
    void addMass(const urdf::Link& link, int body, const Pose& inBody)
    {
        const double m = massOf(link);
        if (!(m > 0))
            return;
        Body& into = figure.bodies[static_cast<std::size_t>(body)];
        const Vec c = inBody * vector(link.inertial->origin.position);
        into.center = into.mass == 0 ? c : (into.center * into.mass + c * m) * (1 / (into.mass + m));
        into.mass += m;
    }

    // All that hangs on a link that is the body, or a point of it.
    void readChildren(const urdf::Link& link, int body, const Pose& inBody)
    {
        for (const urdf::JointSharedPtr& joint : link.child_joints) {
            const urdf::Link& child = *model->links_.at(joint->child_link_name);
            const Pose place = inBody * poseOf(joint->parent_to_joint_origin_transform);
            if (joint->type == urdf::Joint::FIXED && massOf(child) <= kMassless) {
                figure.sites[pointName(child.name, body)] = {body, place};
                addMass(child, body, place);
                readChildren(child, body, place);
            } else {
                readChain(*joint, body, place);
            }
        }
    }

    std::string pointName(const std::string& link, int body) const
    {
        const std::string prefix = figure.bodies[static_cast<std::size_t>(body)].link + ".";
        return link.compare(0, prefix.size(), prefix) == 0 ? link : prefix + link;
    }

    // From a joint through massless links to the next body.
    void readChain(const urdf::Joint& first, int parent, const Pose& place)
    {
        Body body;
        std::vector<Pose> steps = {place};   // of each joint in the one before
        for (const urdf::Joint* joint = &first;;) {
            const urdf::Link& child = *model->links_.at(joint->child_link_name);
            if (joint->type == urdf::Joint::REVOLUTE || joint->type == urdf::Joint::CONTINUOUS)
                body.hinges.push_back(hingeOf(*joint));
            else if (joint->type != urdf::Joint::FIXED || joint != &first)
                fail("joint " + joint->name + " is neither a hinge nor fixed to a body");
            if (massOf(child) > kMassless) {
                finishChain(std::move(body), child, parent, steps);
                return;
            }
            if (child.child_joints.size() != 1)
                fail("link " + child.name + " has no mass and does not carry one more joint");
            addMass(child, parent, product(steps));
            joint = child.child_joints.front().get();
            steps.push_back(poseOf(joint->parent_to_joint_origin_transform));
            if (length(steps.back().origin) != 0)
                fail("joint " + joint->name + " does not meet the one before it in a point");
        }
    }

    Hinge hingeOf(const urdf::Joint& joint) const
    {
        const Vec axis = vector(joint.axis);
        const bool limited = joint.type == urdf::Joint::REVOLUTE && joint.limits;
        return {joint.name, axis * (1 / length(axis)), limited ? joint.limits->lower : -kPi,
                limited ? joint.limits->upper : kPi};
    }

    static Pose product(const std::vector<Pose>& steps)
    {
        Pose whole;
        for (const Pose& step : steps)
            whole = whole * step;
        return whole;
    }

    void finishChain(Body body, const urdf::Link& link, int parent, const std::vector<Pose>& steps)
    {
        const Body named = bodyOf(link);
        body.link = named.link;
        body.name = named.name;
        body.parent = parent;
        body.jointInParent = steps.front();
        body.inParent = product(steps);
        // a hinge's axis, told in its own frame, in the frame of the last
        Turn later;
        for (std::size_t i = body.hinges.size(); i-- > 0;) {
            body.hinges[i].axis = turnedBack(later, body.hinges[i].axis);
            later = steps[i].turn * later;
        }
        body.firstHinge = figure.hinges;
        figure.hinges += static_cast<int>(body.hinges.size());
        const int index = static_cast<int>(figure.bodies.size());
        figure.bodies.push_back(std::move(body));
        addMass(link, index, {});
        readChildren(link, index, {});
    }

    // From the model's names to those of the roles file, and the sites that it adds (cm; left, up, forward).
    void nameSites()
    {
        std::map<std::string, Place> named;
        for (const auto& [key, place] : figure.sites) {
            const Body& body = figure.bodies[static_cast<std::size_t>(place.body)];
            const std::string own = key.substr(body.link.size() + 1);
            const bool moved = roles.contains("rename_sites") && roles["rename_sites"].contains(key);
            named[body.name + "." + (moved ? roles["rename_sites"][key].get<std::string>() : own)] = place;
        }
        if (roles.contains("sites"))
            for (const auto& [key, site] : roles["sites"].items()) {
                const auto offset = site["offset_cm"].get<std::vector<double>>();
                const int body = figure.findBody(key.substr(0, key.rfind('.')));
                const Vec metres = Vec{offset.at(2), offset.at(0), offset.at(1)} * kMetresPerCentimetre;
                named[key] = {body, {Turn(), metres}};
            }
        figure.sites = std::move(named);
    }

    std::string path;
    urdf::ModelInterfaceSharedPtr model;
    nlohmann::json roles;
    Figure figure;
};

}   // namespace

int Figure::findBody(const std::string& name) const
{
    for (std::size_t i = 0; i < bodies.size(); ++i)
        if (bodies[i].name == name)
            return static_cast<int>(i);
    return -1;
}

Figure readFigure(const std::string& urdfPath, const std::string& rolesPath)
{
    return Reading(urdfPath, rolesPath).run();
}
