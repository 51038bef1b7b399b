// URDF texts: small models for the tests, written as short as they can be read.
#pragma once

#include "Support.h"

#include "qc/qcFigure.h"
#include "qc/qcFigureFile.h"

#include <memory>
#include <string>
#include <vector>

namespace urdf {

inline std::string robot(const std::string& elements)
{
    return "<robot name=\"r\">\n" + elements + "</robot>\n";
}

/// A link without mass.
inline std::string link(const std::string& name)
{
    return "<link name=\"" + name + "\"/>\n";
}

/// A link with mass, kg, and centre of mass, m.
inline std::string body(const std::string& name, const std::string& mass, const std::string& center = "0 0 0")
{
    return "<link name=\"" + name + "\"><inertial><origin xyz=\"" + center + "\"/><mass value=\"" + mass
           + "\"/></inertial></link>\n";
}

/// A joint; `more` holds further elements. @param origin  m
inline std::string joint(const std::string& name, const std::string& type, const std::string& parent,
                         const std::string& child, const std::string& origin = "0 0 0", const std::string& more = "")
{
    return "<joint name=\"" + name + "\" type=\"" + type + "\"><parent link=\"" + parent + "\"/><child link=\"" + child
           + "\"/><origin xyz=\"" + origin + "\"/>" + more + "</joint>\n";
}

/// A joint that turns without limits about an axis.
inline std::string hinge(const std::string& name, const std::string& parent, const std::string& child,
                         const std::string& origin = "0 0 0", const std::string& axis = "0 1 0")
{
    return joint(name, "continuous", parent, child, origin, "<axis xyz=\"" + axis + "\"/>");
}

inline std::string fixed(const std::string& name, const std::string& parent, const std::string& child,
                         const std::string& origin = "0 0 0")
{
    return joint(name, "fixed", parent, child, origin);
}

}   // namespace urdf

/// Reads small models from a folder of its own.
class UrdfTest : public MessageTest {
protected:
    /// Reads a model and, unless empty, its roles file. Null after an error message.
    std::unique_ptr<qcFigure> read(const std::string& text, const std::string& roles = "")
    {
        const std::string path = folder.write("model.urdf", text);
        const std::string rolesPath = roles.empty() ? "" : folder.write("given.json", roles);
        return std::unique_ptr<qcFigure>(qcFigureFile::read(path.c_str(), roles.empty() ? nullptr : rolesPath.c_str()));
    }

    /// The message with which a model is refused, without the folder's path.
    std::string problem(const std::string& text, const std::string& roles = "")
    {
        return refusal(read(text, roles).get());
    }

    std::string refusal(const qcFigure* figure)
    {
        EXPECT_EQ(figure, nullptr);
        const std::vector<std::string> texts = log.takeTexts();
        EXPECT_EQ(texts.size(), 1u);
        return texts.empty() ? "" : withoutFolder(texts[0]);
    }

    std::string withoutFolder(std::string text) const
    {
        for (std::size_t i; (i = text.find(folder.path() + "/")) != std::string::npos;)
            text.erase(i, folder.path().size() + 1);
        return text;
    }

    TemporaryFolder folder;
};

/// The names of a list of parts, in its order.
template <class Part> std::vector<std::string> names(qList* list)
{
    std::vector<std::string> result;
    for (qList* node = nullptr; (node = qList::iterator(list, node));)
        result.push_back(static_cast<Part*>(node->getData())->getName());
    return result;
}

/// A position in the world, cm.
template <class Part> std::array<float, 3> position(Part* part)
{
    return components(part->getGlobalTransform().getTranslation());
}

/// Axis i of a frame in the world.
template <class Part> std::array<float, 3> axis(Part* part, int i)
{
    return components(part->getGlobalTransform().getAxis(i));
}

/// All that was noted, line by line.
inline std::string notes(const qcFigure& figure)
{
    std::string all;
    for (const std::string& line : figure.getNotes())
        all += line + "\n";
    return all;
}
