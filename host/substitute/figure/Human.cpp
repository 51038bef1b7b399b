// Human: made of a figure whose roles are known.
#include "qc/qcHuman.h"

#include "qc/qcMessages.h"

#include <cstring>

qcHuman::qcHuman(qcFigure* ownFigure) : figure(ownFigure)
{
    setName(figure->getName());
    setFullName("human", figure->getName());
    if (figure->scaleAtHand)
        scale = std::make_unique<qcAnthroScale>(figure);
}

qcHuman::~qcHuman() = default;

qcHuman* qcHuman::create(qcFigure* ownFigure)
{
    if (!ownFigure->missingRoles.empty()) {
        std::string missing;
        for (const std::string& role : ownFigure->missingRoles)
            missing += (missing.empty() ? "" : ", ") + role;
        error("figure %s is no human: no part is known for these roles: %s. Name them in its roles file.",
              ownFigure->getName(), missing.c_str());
        return nullptr;
    }
    return new qcHuman(ownFigure);
}

qcAnthroScale* qcHuman::initAnthroscale(const char* name)
{
    if (scale)
        return scale.get();
    const bool female = name && std::strcmp(name, "female") == 0;
    const bool known = !name || female || std::strcmp(name, "male") == 0;
    if (!figure->scaleCanBeMade || !known)
        return nullptr;
    scale = std::make_unique<qcAnthroScale>(figure);
    if (name && !scale->setSex(female ? qcFemale : qcMale))
        scale.reset();
    return scale.get();
}
