// Posed figure reader.
#include "FigureBuilder.h"
#include "PartNames.h"
#include "PosedFigure.h"
#include "ValueJson.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace {

qMatrix transformFrom(const JsonAt& at)
{
    constexpr const char* kExpected = "a transform, an array of 4 rows of 4 numbers";
    if (!at.isArray() || at.size() != 4)
        at.failExpected(kExpected);
    qMatrix transform;
    for (std::size_t row = 0; row < 4; ++row) {
        const JsonAt numbers = at.item(row);
        if (!numbers.isArray() || numbers.size() != 4)
            numbers.failExpected("a row of 4 numbers");
        for (std::size_t column = 0; column < 4; ++column)
            transform.m[row][column] = numbers.item(column).real();
    }
    return transform;
}

// Reads one posed figure: first all parts, then what refers to them.
class Reader {
public:
    explicit Reader(const JsonAt& at) : file(at), builder(nameOf(at)) {}

    std::unique_ptr<qcFigure> read()
    {
        for (const JsonAt& at : file.member("segments").elements("an array of segments"))
            readSegment(at);
        for (const JsonAt& at : listOf("sites", "an array of sites"))
            readSite(at);
        for (const JsonAt& at : listOf("joints", "an array of joints"))
            readJoint(at);
        for (std::size_t i = 0; i < segments.size(); ++i)
            connectSegment(segments[i], file.member("segments").item(i));
        for (std::size_t i = 0; i < sites.size(); ++i)
            connectSite(sites[i], file.member("sites").item(i));
        readRoles();
        readScale();

        std::unique_ptr<qcFigure> figure = builder.finishPosed();
        for (const JsonAt& at : listOf("properties", "an array of [part, {key: value}]"))
            readProperties(at, *figure);
        return figure;
    }

private:
    static std::string nameOf(const JsonAt& at)
    {
        at.requireKeys({"name", "segments", "sites", "joints", "reference_site", "pelvis_site", "waist", "left",
                        "right", "anthro", "properties"});
        return at.member("name").text();
    }

    std::vector<JsonAt> listOf(const char* key, const char* expected) const
    {
        const auto list = file.find(key);
        return list ? list->elements(expected) : std::vector<JsonAt>();
    }

    void readSegment(const JsonAt& at)
    {
        at.requireKeys({"name", "mass", "com", "transform", "sites", "attachment"});
        const auto center = at.find("com");
        qcSegmentImp* segment = builder.addSegment(at.member("name").text(), at.member("mass").real(),
                                                   center ? center->vector() : qVector());
        FigureBuilder::setTransform(segment, transformFrom(at.member("transform")));
        if (!names.add(segment))
            at.member("name").fail("another segment has this name.");
        segments.push_back(segment);
        longestName = std::max(longestName, std::strlen(segment->getName()));
    }

    void readSite(const JsonAt& at)
    {
        at.requireKeys({"key", "segment", "name", "transform", "second_transform", "joints"});
        const auto [segment, name] = placeOfSite(at);
        qcSiteImp* site = builder.addSite(segment, name);
        const auto key = at.find("key");
        if (key && key->text() != PartNames::siteKey(*site))
            key->fail("expected \"" + PartNames::siteKey(*site) + "\", as \"segment\" and \"name\" have it, found \""
                      + key->text() + "\".");
        if (!names.add(site))
            (key ? *key : at.member("name")).fail("another site has this key: \"" + PartNames::siteKey(*site) + "\".");
        const qMatrix transform = transformFrom(at.member("transform"));
        const auto second = at.find("second_transform");
        FigureBuilder::setTransforms(site, transform, second ? transformFrom(*second) : transform);
        sites.push_back(site);
        sitesOf[segment].push_back(site);
    }

    // The segment and the name of a site: as told, else taken from its key. Names may have full stops in them,
    // so that a key may be cut at several places; the one where a segment's name ends counts.
    std::pair<qcSegmentImp*, std::string> placeOfSite(const JsonAt& at) const
    {
        if (!at.find("key") || (at.find("segment") && at.find("name")))
            return {names.segment(at.member("segment")), at.member("name").text()};
        const JsonAt keyAt = at.member("key");
        const std::string key = keyAt.text();
        const auto segmentAt = at.find("segment"), nameAt = at.find("name");
        std::vector<std::pair<qcSegmentImp*, std::string>> cuts;
        for (std::size_t stop = key.find('.'); stop < key.size() - 1; stop = key.find('.', stop + 1)) {
            if (stop > longestName)
                break;   // no segment's name is longer
            qcSegmentImp* segment = names.findSegment(key.substr(0, stop));
            const std::string name = key.substr(stop + 1);
            if (segment && (!segmentAt || segmentAt->text() == segment->getName())
                && (!nameAt || nameAt->text() == name))
                cuts.emplace_back(segment, name);
        }
        if (cuts.empty())
            keyAt.fail("expected \"segment.site\" with the name of a segment, found \"" + key + "\".");
        if (cuts.size() > 1)
            keyAt.fail("several segments' names begin \"" + key + "\"; give \"segment\" and \"name\" too.");
        return cuts.front();
    }

    void readJoint(const JsonAt& at)
    {
        at.requireKeys({"name", "full_name", "sites", "inboard", "angles"});
        const JsonAt pair = at.member("sites");
        if (!pair.isArray() || pair.size() != 2)
            pair.failExpected("an array of 2 site keys");
        qcSiteImp* first = names.site(pair.item(0));
        qcSiteImp* second = names.site(pair.item(1));
        const auto inboard = at.find("inboard");
        const auto fullName = at.find("full_name");
        if (fullName && fullName->text().empty())
            fullName->fail("expected a full name, found an empty text.");
        qcJointImp* joint = builder.addJoint(at.member("name").text(), fullName ? fullName->text() : "", first, second,
                                             inboard ? names.site(*inboard) : first);
        if (const auto angles = at.find("angles"))
            for (const JsonAt& angle : angles->elements("an array of angles in radians")) {
                angle.real("an angle in radians");   // hosts keep angles in single precision
                FigureBuilder::addAngle(joint, "", angle.number());
            }
        if (!names.add(joint))
            (fullName ? *fullName : at.member("name"))
                .fail("another joint has this full name: \"" + std::string(joint->getFullName()) + "\".");
        jointsAt[first].push_back(joint);
        if (second != first)
            jointsAt[second].push_back(joint);
    }

    // A list that is left out holds all that belongs there, in the file's order.
    void connectSegment(qcSegmentImp* segment, const JsonAt& at)
    {
        if (const auto list = at.find("sites")) {
            for (const JsonAt& site : list->elements("an array of site keys"))
                FigureBuilder::listSite(segment, names.site(site));
        } else {
            for (qcSiteImp* site : sitesOf[segment])
                FigureBuilder::listSite(segment, site);
        }
        FigureBuilder::setAttachment(segment, siteOrNull(at.find("attachment")));
    }

    void connectSite(qcSiteImp* site, const JsonAt& at)
    {
        if (const auto list = at.find("joints")) {
            for (const JsonAt& joint : list->elements("an array of joint names"))
                FigureBuilder::listJoint(site, names.joint(joint));
        } else {
            for (qcJointImp* joint : jointsAt[site])
                FigureBuilder::listJoint(site, joint);
        }
    }

    void readRoles()
    {
        builder.setReferenceSite(siteOrNull(file.find("reference_site")));
        qcRoles& roles = builder.roles();
        roles.pelvis = siteOrNull(file.find("pelvis_site"));
        roles.waist = jointOrNull(file.find("waist"));
        for (const qcSide side : {qcRight, qcLeft}) {
            const auto at = file.find(side == qcRight ? "right" : "left");
            if (!at || at->isNull())
                continue;
            at->requireKeys({"foot_site", "hand_site", "knee", "ankle", "hip"});
            roles.foot[side] = siteOrNull(at->find("foot_site"));
            roles.hand[side] = siteOrNull(at->find("hand_site"));
            roles.knee[side] = jointOrNull(at->find("knee"));
            roles.ankle[side] = jointOrNull(at->find("ankle"));
            roles.hip[side] = jointOrNull(at->find("hip"));
        }
    }

    void readScale()
    {
        const auto at = file.find("anthro");
        const std::string scale = at ? at->text() : kScaleAtHand;
        if (scale != kScaleAtHand && scale != kScaleCanBeMade && scale != kNoScale)
            at->failExpected("\"present\", \"init\" or \"none\"");
        builder.setScaling(scale == kScaleAtHand, scale != kNoScale);
    }

    void readProperties(const JsonAt& at, qcFigure& figure)
    {
        if (!at.isArray() || at.size() != 2)
            at.failExpected("[part, {key: value}]");
        setPropertiesFrom(at.item(1), part(at.item(0), figure), false);
    }

    qcObject& part(const JsonAt& at, qcFigure& figure)
    {
        constexpr const char* kExpected =
            "a part: [\"figure\"], [\"segment\", name], [\"site\", key] or [\"joint\", name]";
        if (!at.isArray() || at.size() == 0 || at.size() > 2 || !at.item(0).isText())
            at.failExpected(kExpected);
        const std::string kind = at.item(0).text();
        if (kind == "figure" && at.size() == 1)
            return figure;
        if (kind == "segment" && at.size() == 2)
            return *names.segment(at.item(1));
        if (kind == "site" && at.size() == 2)
            return *names.site(at.item(1));
        if (kind == "joint" && at.size() == 2)
            return *names.joint(at.item(1));
        at.failExpected(kExpected);
    }

    qcSiteImp* siteOrNull(const std::optional<JsonAt>& at) const
    {
        return at && !at->isNull() ? names.site(*at) : nullptr;
    }
    qcJointImp* jointOrNull(const std::optional<JsonAt>& at) const
    {
        return at && !at->isNull() ? names.joint(*at) : nullptr;
    }

    const JsonAt& file;
    FigureBuilder builder;
    PartNames names;
    std::vector<qcSegmentImp*> segments;
    std::vector<qcSiteImp*> sites;
    std::size_t longestName = 0;                                                // of a segment, bytes
    std::unordered_map<const qcSegmentImp*, std::vector<qcSiteImp*>> sitesOf;   // in the file's order
    std::unordered_map<const qcSiteImp*, std::vector<qcJointImp*>> jointsAt;
};

}   // namespace

std::unique_ptr<qcFigure> readPosedFigure(const JsonAt& at)
{
    return Reader(at).read();
}

std::unique_ptr<qcFigure> readPosedFigure(const std::string& text, const std::string& source)
{
    const Json json = parseJson(text, source);
    return readPosedFigure(JsonAt(json, source));
}
