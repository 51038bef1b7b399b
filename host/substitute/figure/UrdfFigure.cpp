// URDF figure: the planned figure is built.
#include "UrdfFigure.h"

#include "FigureBuilder.h"
#include "MessageNumber.h"
#include "Roles.h"
#include "UrdfModel.h"
#include "UrdfPlan.h"

namespace {

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

class Build {
public:
    explicit Build(const UrdfPlan& planned) : plan(planned), builder(planned.name) {}

    std::unique_ptr<qcFigure> run()
    {
        for (const PlannedSegment& segment : plan.segments)
            segments.push_back(
                builder.addSegment(segment.name, static_cast<float>(segment.mass),
                                   {static_cast<float>(segment.center[0]), static_cast<float>(segment.center[1]),
                                    static_cast<float>(segment.center[2])}));
        addSites();
        addJoints();
        place();
        assignRoles();
        builder.base() = plan.base;
        for (const std::string& note : plan.notes)
            builder.addNote(note);
        return builder.finishMoving();
    }

private:
    void addSites()
    {
        sites.resize(plan.sites.size(), nullptr);
        for (std::size_t s = 0; s < plan.segments.size(); ++s)
            for (const int index : plan.segments[s].sites) {
                sites[at(index)] = builder.addSite(segments[s], plan.sites[at(index)].name);
                FigureBuilder::listSite(segments[s], sites[at(index)]);
            }
    }

    void addJoints()
    {
        for (const PlannedJoint& planned : plan.joints) {
            qcSiteImp* inboard = sites[at(planned.parentSite)];
            qcSiteImp* outboard = sites[at(planned.childSite)];
            qcJointImp* joint = builder.addJoint(planned.name, "", inboard, outboard, inboard);
            for (const PlannedAngle& angle : planned.angles)
                addAngle(joint, planned.name, angle);
            FigureBuilder::listJoint(inboard, joint);
            FigureBuilder::listJoint(outboard, joint);
            FigureBuilder::setAttachment(outboard->getSegment(), outboard);
            joints.push_back(joint);
        }
    }

    // At zero, or at the limit nearest to it.
    void addAngle(qcJointImp* joint, const std::string& jointName, const PlannedAngle& angle)
    {
        if (!angle.limited) {
            FigureBuilder::addAngle(joint, angle.name, 0);
            return;
        }
        const double start = angle.lower > 0 ? angle.lower : angle.upper < 0 ? angle.upper : 0;
        FigureBuilder::addAngle(joint, angle.name, start, angle.lower, angle.upper);
        if (start == 0)
            return;
        builder.addNote("joint \"" + jointName + "\": zero is outside the limits of its angle"
                        + (angle.name.empty() ? "" : " " + angle.name) + "; it starts at its limit, "
                        + messageNumber(start * kDegreesPerRadian) + " degrees.");
    }

    void place()
    {
        for (const int s : plan.outward) {
            const PlannedSegment& segment = plan.segments[at(s)];
            if (segment.parent < 0)
                builder.place(segments[at(s)], nullptr, nullptr, {});
            else
                builder.place(segments[at(s)], segments[at(segment.parent)], joints[at(segment.joint)],
                              plan.joints[at(segment.joint)].steps);
        }
        for (const PlannedSegment& segment : plan.segments)
            for (const int index : segment.sites)
                builder.place(sites[at(index)], plan.sites[at(index)].placement);
    }

    qcSiteImp* site(int index) const { return index < 0 ? nullptr : sites[at(index)]; }
    qcJointImp* joint(int index) const { return index < 0 ? nullptr : joints[at(index)]; }

    void assignRoles()
    {
        qcRoles& roles = builder.roles();
        for (const qcSide side : {qcRight, qcLeft}) {
            roles.foot[side] = site(plan.roles.foot[side]);
            roles.hand[side] = site(plan.roles.hand[side]);
            roles.knee[side] = joint(plan.roles.knee[side]);
            roles.ankle[side] = joint(plan.roles.ankle[side]);
            roles.hip[side] = joint(plan.roles.hip[side]);
        }
        roles.pelvis = site(plan.roles.pelvis);
        roles.waist = joint(plan.roles.waist);
        builder.setReferenceSite(site(plan.roles.reference));
        for (const std::string& role : plan.roles.missing)
            builder.addMissingRole(role);
    }

    const UrdfPlan& plan;
    FigureBuilder builder;
    std::vector<qcSegmentImp*> segments;   // as the plan counts them; so the next two
    std::vector<qcSiteImp*> sites;
    std::vector<qcJointImp*> joints;
};

}   // namespace

std::unique_ptr<qcFigure> readUrdfFigure(const SourceText& urdf, const SourceText* roles,
                                         const std::string& defaultName)
{
    UrdfPlan plan = planFigure(readUrdfModel(urdf.text, urdf.source));
    if (plan.name.empty())
        plan.name = defaultName;
    checkNames(plan, urdf.source);
    if (roles)
        applyRoles(plan, roles->text, roles->source);
    else
        applyNoRoles(plan);
    return Build(plan).run();
}
