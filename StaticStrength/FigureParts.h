// Figure parts: looking up parts of a figure, where any of them may be missing.
#pragma once

#include "qc/qcFigure.h"

#include <string>

/// Visits the parts of a host list, in its order.
template <class Part, class Visit> void forEach(const qList* list, Visit visit)
{
    for (const qList* node = list; node; node = qList::iterator(list, const_cast<qList*>(node)))
        visit(static_cast<Part*>(node->getData()));
}

/// A site's position in the world, cm.
inline qVector positionOf(qcSiteImp* site)
{
    return site->getGlobalTransform().getTranslation();
}

/// The segment of a site; null for a null site.
inline qcSegmentImp* segmentOf(const qcSiteImp* site)
{
    return site ? site->getSegment() : nullptr;
}

/// A joint's site on a segment; null when there is none, or either is null.
inline qcSiteImp* siteOnSegment(const qcJointImp* joint, const qcSegmentImp* segment)
{
    return joint ? joint->siteOnSegment(segment) : nullptr;
}

/// The other site of a joint; null when either is null.
inline qcSiteImp* otherSite(const qcJointImp* joint, const qcSiteImp* site)
{
    return joint && site ? joint->otherSite(site) : nullptr;
}

/// A segment's site by its own name; null when there is none.
qcSiteImp* siteOfSegment(const qcSegmentImp* segment, const char* name);

/// The site of a key, "segment.site"; null when there is none.
qcSiteImp* findSiteByKey(const qcFigure* figure, const char* key);

/// The key of a site, "segment.site".
std::string siteKey(const qcSiteImp* site);

/// A segment's centre of mass in the world, cm.
qVector centerOfMassInWorld(qcSegmentImp* segment);

/// Turns a vector from a frame's axes into global ones; the frame's position does not matter.
void rotateToGlobal(qVector& vector, const qMatrix& frame);
