// Part names: how files name a figure's parts, and which part a name means.
//
//   segment  its name
//   site     its key, "segment.site"
//   joint    its name where no other joint has it, else its full name
#pragma once

#include "JsonReader.h"

#include "qc/qcFigure.h"

#include <string>
#include <unordered_map>
#include <vector>

class PartNames {
public:
    PartNames() = default;
    explicit PartNames(const qcFigure& figure);

    /// Each takes a part in. @return false when the file name of a part already there is the same
    bool add(qcSegmentImp* segment);
    bool add(qcSiteImp* site);
    bool add(qcJointImp* joint);

    /// The part that the text at a place names. @throws InputError when there is none, with near names
    qcSegmentImp* segment(const JsonAt& at) const { return segment(at, at.text("the name of a segment")); }
    qcSiteImp* site(const JsonAt& at) const { return site(at, at.text("the key of a site, \"segment.site\"")); }
    qcJointImp* joint(const JsonAt& at) const { return joint(at, at.text("the name of a joint")); }

    /// The same for a name that is a key of the file. @param at  the place that a message tells
    qcSegmentImp* segment(const JsonAt& at, const std::string& name) const;
    qcSiteImp* site(const JsonAt& at, const std::string& key) const;
    qcJointImp* joint(const JsonAt& at, const std::string& name) const;

    /// The segment of a name; null when there is none.
    qcSegmentImp* findSegment(const std::string& name) const;

    /// The names that files use. @throws InputError when no name tells the part from another one
    std::string of(const qcSegmentImp& segment) const;
    std::string of(const qcSiteImp& site) const;
    std::string of(const qcJointImp& joint) const;

    static std::string siteKey(const qcSiteImp& site);

private:
    template <class Part> using Map = std::unordered_map<std::string, Part*>;
    std::vector<std::string> jointNames() const;

    Map<qcSegmentImp> segments;
    Map<qcSiteImp> sites;
    Map<qcJointImp> jointsByFullName;
    Map<qcJointImp> jointsByName;   // null: several have it
    std::vector<std::string> segmentNames, siteKeys;
    std::vector<const qcJointImp*> joints;
};

/// Calls a function with each part of a qList, as what it is.
template <class Part, class Function> void forEachIn(const qList* list, Function function)
{
    for (qList* node = qList::iterator(list, nullptr); node; node = qList::iterator(list, node))
        function(*static_cast<Part*>(node->getData()));
}
