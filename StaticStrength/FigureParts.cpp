// Figure parts.
#include "FigureParts.h"

namespace {

// "prefix.name" in one buffer that is kept, so that a repeated look-up costs no allocation.
const std::string& dotted(const char* prefix, const char* name)
{
    static std::string text;
    text.assign(prefix).append(".").append(name);
    return text;
}

}   // namespace

qcSiteImp* siteOfSegment(const qcSegmentImp* segment, const char* name)
{
    return segment->getFigure()->findSiteByFullName(dotted(segment->getFullName(), name).c_str());
}

qcSiteImp* findSiteByKey(const qcFigure* figure, const char* key)
{
    return figure->findSiteByFullName(dotted(figure->getName(), key).c_str());
}

std::string siteKey(const qcSiteImp* site)
{
    return dotted(site->getSegment()->getName(), site->getName());
}

qVector centerOfMassInWorld(qcSegmentImp* segment)
{
    qVector center = segment->getCenterOfMass();
    vecmult(&center[0], &center[0], segment->getGlobalTransform().m);
    return center;
}

void rotateToGlobal(qVector& vector, const qMatrix& frame)
{
    qMatrix rotation = frame;
    rotation.setTranslation(qVector(0, 0, 0));
    vecmult(&vector[0], &vector[0], rotation.m);
}
