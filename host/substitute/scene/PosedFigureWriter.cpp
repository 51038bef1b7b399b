// Posed figure writer.
#include "FigureBuilder.h"
#include "InputError.h"
#include "PartNames.h"
#include "PosedFigure.h"
#include "ValueJson.h"

namespace {

Json rowJson(const float* numbers, std::size_t count)
{
    Json row = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        row.add(Json::ofNumber(double(numbers[i])));
    return row;
}

Json transformJson(const qMatrix& transform)
{
    Json rows = Json::array();
    for (const auto& row : transform.m)
        rows.add(rowJson(row, 4));
    return rows;
}

// Writes one figure, every key.
class Writer {
public:
    explicit Writer(qcFigure& written) : figure(written), names(written) {}

    Json write(bool withProperties)
    {
        Json json = Json::object();
        json.add("name", Json::ofText(figure.getName()));
        json.add("segments", listJson<qcSegmentImp>(figure.getSegments(), [&](auto& s) { return segmentJson(s); }));
        json.add("sites", listJson<qcSiteImp>(figure.getSites(), [&](auto& s) { return siteJson(s); }));
        json.add("joints", listJson<qcJointImp>(figure.getJoints(), [&](auto& j) { return jointJson(j); }));
        const qcRoles& roles = figure.getRoles();
        json.add("reference_site", nameJson(figure.getReferenceSite()));
        json.add("pelvis_site", nameJson(roles.pelvis));
        json.add("waist", nameJson(roles.waist));
        for (const qcSide side : {qcLeft, qcRight}) {
            Json parts = Json::object();
            parts.add("foot_site", nameJson(roles.foot[side]));
            parts.add("hand_site", nameJson(roles.hand[side]));
            parts.add("knee", nameJson(roles.knee[side]));
            parts.add("ankle", nameJson(roles.ankle[side]));
            parts.add("hip", nameJson(roles.hip[side]));
            json.add(side == qcLeft ? "left" : "right", std::move(parts));
        }
        json.add("anthro", Json::ofText(FigureBuilder::scaleIsAtHand(figure)    ? kScaleAtHand
                                        : FigureBuilder::scaleCanBeMade(figure) ? kScaleCanBeMade
                                                                                : kNoScale));
        json.add("properties", withProperties ? allPropertiesJson() : Json::array());
        return json;
    }

private:
    template <class Part> Json nameJson(const Part* part) const
    {
        return part ? Json::ofText(names.of(*part)) : Json();
    }

    template <class Part, class Function> Json listJson(const qList* list, Function function) const
    {
        Json elements = Json::array();
        forEachIn<Part>(list, [&](Part& part) {
            try {
                Json json = function(part);
                requireWritable(json);   // numbers and texts that no file can hold show here, where the part is known
                elements.add(std::move(json));
            } catch (const InputError& problem) {
                throw InputError(std::string(part.getFullName()) + ": " + problem.what());
            }
        });
        return elements;
    }

    Json segmentJson(qcSegmentImp& segment) const
    {
        Json json = Json::object();
        json.add("name", Json::ofText(names.of(segment)));
        json.add("mass", Json::ofNumber(double(segment.getMass())));
        const qVector& center = segment.getCenterOfMass();
        const float com[3] = {center[0], center[1], center[2]};
        json.add("com", rowJson(com, 3));
        json.add("transform", transformJson(segment.getGlobalTransform()));
        json.add("sites", listJson<qcSiteImp>(segment.getSites(), [&](auto& site) { return nameJson(&site); }));
        json.add("attachment", nameJson(segment.getAttachmentSite()));
        return json;
    }

    Json siteJson(qcSiteImp& site) const
    {
        Json json = Json::object();
        json.add("key", Json::ofText(names.of(site)));
        json.add("segment", nameJson(site.getSegment()));
        json.add("name", Json::ofText(site.getName()));
        json.add("transform", transformJson(site.getGlobalTransform()));
        json.add("second_transform", transformJson(site.getSecondTransform()));
        json.add("joints", listJson<qcJointImp>(site.getJoints(), [&](auto& joint) { return nameJson(&joint); }));
        return json;
    }

    Json jointJson(qcJointImp& joint) const
    {
        names.of(joint);   // refuses a joint that no name tells
        Json json = Json::object();
        json.add("name", Json::ofText(joint.getName()));
        json.add("full_name", Json::ofText(joint.getFullName()));
        json.add("sites", Json::array({nameJson(joint.getSite(0)), nameJson(joint.getSite(1))}));
        json.add("inboard", nameJson(joint.getInboardSite()));
        Json angles = Json::array();
        for (int i = 1; i <= joint.getNumAngles(); ++i) {
            if (!fitsReal(joint.getAngleExactly(i)))
                throw InputError("angle " + std::to_string(i) + " is beyond single precision.");
            angles.add(Json::ofNumber(joint.getAngleExactly(i)));
        }
        json.add("angles", std::move(angles));
        return json;
    }

    Json allPropertiesJson() const
    {
        Json entries = Json::array();
        const auto add = [&](const qcObject& object, Json address) {
            if (object.getNumProperties() == 0)
                return;
            entries.add(Json::array({std::move(address), propertiesJson(object, object.getFullName())}));
        };
        add(figure, Json::array({Json::ofText("figure")}));
        forEachIn<qcSegmentImp>(figure.getSegments(), [&](auto& segment) {
            add(segment, Json::array({Json::ofText("segment"), nameJson(&segment)}));
        });
        forEachIn<qcSiteImp>(figure.getSites(), [&](auto& site) {
            add(site, Json::array({Json::ofText("site"), nameJson(&site)}));
        });
        forEachIn<qcJointImp>(figure.getJoints(), [&](auto& joint) {
            add(joint, Json::array({Json::ofText("joint"), nameJson(&joint)}));
        });
        return entries;
    }

    qcFigure& figure;
    PartNames names;
};

}   // namespace

Json posedFigureJson(qcFigure& figure, bool withProperties)
{
    return Writer(figure).write(withProperties);
}
