// Figure builder.
#include "FigureBuilder.h"

#include <algorithm>

FigureBuilder::FigureBuilder(const std::string& figureName) : figure(new qcFigure)
{
    figure->qcObject::setName(figureName.c_str());
    figure->setWholeFullName(figureName.c_str());
}

FigureBuilder::~FigureBuilder() = default;

qcSegmentImp* FigureBuilder::addSegment(const std::string& name, float grams, const qVector& centerOfMass)
{
    std::unique_ptr<qcSegmentImp> segment(new qcSegmentImp);
    segment->figure = figure.get();
    segment->mass = grams;
    segment->centerOfMass = centerOfMass;
    segment->qcObject::setName(name.c_str());
    segment->setFullName(figure->getName(), name.c_str());
    qList::append(&figure->segmentList, segment.get());
    figure->segments.push_back(std::move(segment));
    return figure->segments.back().get();
}

qcSiteImp* FigureBuilder::addSite(qcSegmentImp* segment, const std::string& name)
{
    std::unique_ptr<qcSiteImp> site(new qcSiteImp);
    site->segment = segment;
    site->staleMask = qcFigure::kTransforms;
    site->qcObject::setName(name.c_str());
    site->setFullName(segment->getFullName(), name.c_str());
    qList::append(&figure->siteList, site.get());
    figure->sites.push_back(std::move(site));
    return figure->sites.back().get();
}

qcJointImp* FigureBuilder::addJoint(const std::string& name, const std::string& fullName, qcSiteImp* first,
                                    qcSiteImp* second, qcSiteImp* inboard)
{
    std::unique_ptr<qcJointImp> joint(new qcJointImp);
    joint->figure = figure.get();
    joint->sites[0] = first;
    joint->sites[1] = second;
    joint->inboard = inboard;
    joint->qcObject::setName(name.c_str());
    if (fullName.empty())
        joint->setFullName(figure->getName(), name.c_str());
    else
        joint->setWholeFullName(fullName.c_str());
    qList::append(&figure->jointList, joint.get());
    figure->joints.push_back(std::move(joint));
    return figure->joints.back().get();
}

void FigureBuilder::addAngle(qcJointImp* joint, const std::string& name, double radians)
{
    qcJointImp::Angle angle;
    angle.value = radians;
    angle.name = name;
    joint->angles.push_back(angle);
}

void FigureBuilder::addAngle(qcJointImp* joint, const std::string& name, double radians, double lower, double upper)
{
    addAngle(joint, name, radians);
    qcJointImp::Angle& angle = joint->angles.back();
    angle.lower = lower;
    angle.upper = upper;
    angle.limited = true;
}

void FigureBuilder::listSite(qcSegmentImp* segment, qcSiteImp* site)
{
    qList::append(&segment->sites, site);
}

void FigureBuilder::listJoint(qcSiteImp* site, qcJointImp* joint)
{
    qList::append(&site->joints, joint);
}

void FigureBuilder::setAttachment(qcSegmentImp* segment, qcSiteImp* site)
{
    segment->attachment = site;
}

void FigureBuilder::place(qcSegmentImp* segment, qcSegmentImp* parent, const qcJointImp* joint,
                          const std::vector<Step>& steps)
{
    figure->posture->addLink(segment, parent, joint, steps);
}

void FigureBuilder::place(qcSiteImp* site, const Placement& placement)
{
    figure->posture->addPlace(site, placement);
}

void FigureBuilder::setTransform(qcSegmentImp* segment, const qMatrix& transform)
{
    segment->globalTransform = transform;
}

void FigureBuilder::setTransforms(qcSiteImp* site, const qMatrix& transform, const qMatrix& second)
{
    site->globalTransform = transform;
    site->secondTransform = std::make_unique<qMatrix>(second);
}

void FigureBuilder::setReferenceSite(qcSiteImp* site)
{
    figure->referenceSite = site;
}

qcRoles& FigureBuilder::roles()
{
    return figure->roles;
}

void FigureBuilder::addMissingRole(const std::string& what)
{
    figure->missingRoles.push_back(what);
}

void FigureBuilder::setScaling(bool scaleAtHand, bool scaleCanBeMade)
{
    figure->scaleAtHand = scaleAtHand;
    figure->scaleCanBeMade = scaleCanBeMade;
}

bool FigureBuilder::scaleIsAtHand(const qcFigure& built)
{
    return built.scaleAtHand;
}

bool FigureBuilder::scaleCanBeMade(const qcFigure& built)
{
    return built.scaleCanBeMade;
}

BodyBase& FigureBuilder::base()
{
    return figure->posture->base;
}

void FigureBuilder::addNote(const std::string& line)
{
    figure->notes.push_back(line);
}

std::unique_ptr<qcFigure> FigureBuilder::finishMoving()
{
    figure->posture->keepBase();
    if (figure->referenceSite)
        figure->referenceSite->staleMask = qcFigure::kTransforms | qcFigure::kBalancePoint;
    return finish();
}

// A posed figure has links too, so that its masses can be scaled; its transforms are what they are.
std::unique_ptr<qcFigure> FigureBuilder::finishPosed()
{
    for (const auto& segment : figure->segments)
        figure->posture->addLink(segment.get(), nullptr, nullptr, {});
    figure->posture->setFixed();
    figure->posture->keepBase();
    return finish();
}

std::unique_ptr<qcFigure> FigureBuilder::finish()
{
    figure->partRenamed();
    return std::move(figure);
}
