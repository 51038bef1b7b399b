// URDF outline: every check that can name a line.
#include "UrdfOutline.h"

#include "Files.h"
#include "InputError.h"

#include "qc/qcMessages.h"

#include <tinyxml2.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>

using tinyxml2::XMLElement;

namespace {

constexpr double kLargestNumber = 1e9;   // of a mass in kg or a length in m: beyond it lies an error
constexpr double kShortestAxis = 1e-6;   // a shorter one tells no direction
constexpr std::size_t kNamesOfCycle = 6;

std::string inLine(int line)
{
    return " (line " + std::to_string(line) + ")";
}

class Reader {
public:
    Reader(const std::string& wholeText, const std::string& fileName) : text(wholeText), file(fileName) {}

    UrdfOutline read()
    {
        parse();
        for (const XMLElement* e = robot()->FirstChildElement("link"); e; e = e->NextSiblingElement("link"))
            readLink(*e);
        if (outline.links.empty())
            fail(robot()->GetLineNum(), "robot: there is no link in it. Expected at least one <link name=\"…\">.");
        for (const XMLElement* e = robot()->FirstChildElement("joint"); e; e = e->NextSiblingElement("joint"))
            readJoint(*e);
        findRoot();
        orderOutward();
        return std::move(outline);
    }

private:
    [[noreturn]] void fail(int line, const std::string& what) const
    {
        throw InputError(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + what);
    }

    void parse()
    {
        if (text.find_first_not_of(" \t\r\n") == std::string::npos)
            fail(0, "the file is empty. Expected a URDF model, <robot name=\"…\">…</robot>.");
        if (text.find('\0') != std::string::npos)
            fail(0, "found binary data. Expected a URDF model as XML text in UTF-8.");
        document.Parse(text.data(), text.size());
        if (document.Error())
            fail(document.ErrorLineNum(), "this is no well-formed XML" + xmlProblem()
                                              + ". Expected a whole URDF model, <robot name=\"…\">…</robot>.");
        if (!robot() || std::string(robot()->Name()) != "robot")
            fail(robot() ? robot()->GetLineNum() : 0,
                 "found " + (robot() ? "the element <" + std::string(robot()->Name()) + ">" : "no element")
                     + ". Expected a URDF model, whose outermost element is <robot>.");
        if (const XMLElement* second = robot()->NextSiblingElement())
            fail(second->GetLineNum(), "found a second outermost element, <" + std::string(second->Name())
                                           + ">. Expected one <robot> and nothing behind it.");
        if (const char* name = robot()->Attribute("name"))
            outline.name = name;
        if (!isPlainText(outline.name))
            fail(robot()->GetLineNum(),
                 "robot " + inQuotes(outline.name) + ": expected a name in UTF-8 without control characters.");
    }

    const XMLElement* robot() const { return document.RootElement(); }

    std::string xmlProblem() const
    {
        switch (document.ErrorID()) {
        case tinyxml2::XML_ERROR_MISMATCHED_ELEMENT:
            return ": an element is not closed, or closed by another name; the file may be cut short";
        case tinyxml2::XML_ELEMENT_DEPTH_EXCEEDED:
            return ": elements are nested too deep";
        case tinyxml2::XML_ERROR_EMPTY_DOCUMENT:
            return ": there is no element in it";
        case tinyxml2::XML_ERROR_PARSING_ATTRIBUTE:
            return ": an attribute is not of the form name=\"value\"";
        default:
            return "; the file may be cut short, or of another kind";
        }
    }

    // Elements.

    std::string nameOf(const XMLElement& element, std::unordered_map<std::string, int>& lines) const
    {
        const char* name = element.Attribute("name");
        if (!name || !*name)
            fail(element.GetLineNum(),
                 std::string(element.Name()) + ": it has no name. Expected <" + element.Name() + " name=\"…\">.");
        if (!isPlainText(name))
            fail(element.GetLineNum(), std::string(element.Name()) + " " + inQuotes(name)
                                           + ": expected a name in UTF-8 without control characters.");
        const auto [earlier, isNew] = lines.emplace(name, element.GetLineNum());
        if (!isNew)
            fail(element.GetLineNum(), std::string(element.Name()) + " " + inQuotes(name)
                                           + ": the name is used twice, first" + inLine(earlier->second)
                                           + ". Expected a name of its own.");
        return name;
    }

    // The one child of that kind; null when there is none.
    const XMLElement* only(const XMLElement& parent, const char* kind, const std::string& who) const
    {
        const XMLElement* first = parent.FirstChildElement(kind);
        if (const XMLElement* second = first ? first->NextSiblingElement(kind) : nullptr)
            fail(second->GetLineNum(), who + ": found a second <" + kind + ">, after the one"
                                           + inLine(first->GetLineNum()) + ". Expected one.");
        return first;
    }

    // Misspelt elements would be lost without a word: one that is near a known name is warned about.
    void noteUnknown(const XMLElement& element, const std::string& who, const std::vector<std::string>& known)
    {
        for (const XMLElement* e = element.FirstChildElement(); e; e = e->NextSiblingElement()) {
            if (std::find(known.begin(), known.end(), e->Name()) != known.end())
                continue;
            const std::string close = closeNames(e->Name(), known);
            const std::string line = inLine(e->GetLineNum());
            const std::string note =
                who + ": the element <" + e->Name() + ">" + line + " is not known and was passed over.";
            outline.notes.push_back(note + close);
            if (!close.empty())
                warning("%s: %s%s", file.c_str(), note.c_str(), close.c_str());
        }
    }

    // A misspelt attribute would leave its default in force.
    void checkAttributes(const XMLElement& element, const std::string& who, const std::vector<std::string>& known) const
    {
        for (const tinyxml2::XMLAttribute* a = element.FirstAttribute(); a; a = a->Next()) {
            const std::string name = a->Name();
            const bool foreign = name.find(':') != std::string::npos;
            if (foreign || std::find(known.begin(), known.end(), name) != known.end())
                continue;
            std::string expected;
            for (const std::string& k : known)
                expected += (expected.empty() ? "" : ", ") + k;
            fail(element.GetLineNum(), who + ": <" + element.Name() + "> has no attribute " + inQuotes(name)
                                           + ". Expected " + expected + ".");
        }
    }

    double number(const NumberText& word, int line, const std::string& what) const
    {
        double value = 0;
        const auto [end, problem] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (problem != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
            fail(line, what + ": expected a finite number, found " + inQuotes(word) + ".");
        return value;
    }

    // The words of an attribute, each a finite number, without a leading plus.
    std::vector<NumberText> numbers(const XMLElement& element, const char* attribute, std::size_t count,
                                    const std::string& who, double largest) const
    {
        const std::string whole = element.Attribute(attribute);
        const std::string what = who + ": <" + element.Name() + " " + attribute + ">";
        std::vector<NumberText> words;
        constexpr const char* kBlanks = " \t\r\n";
        for (std::size_t i = whole.find_first_not_of(kBlanks); i != std::string::npos;) {
            const std::size_t end = whole.find_first_of(kBlanks, i);
            std::string word = whole.substr(i, end == std::string::npos ? end : end - i);
            if (word.size() > 1 && word[0] == '+' && word[1] != '-')
                word.erase(0, 1);
            if (std::fabs(number(word, element.GetLineNum(), what)) > largest)
                fail(element.GetLineNum(), what + ": found " + inQuotes(word) + ", which is too large. Expected "
                                               + "metres and kilograms, below 1e9.");
            words.push_back(word);
            i = end == std::string::npos ? end : whole.find_first_not_of(kBlanks, end);
        }
        if (words.size() != count)
            fail(element.GetLineNum(), what + ": expected " + (count == 1 ? "one number" : "three finite numbers")
                                           + ", found " + inQuotes(whole) + ".");
        return words;
    }

    UrdfPoseText pose(const XMLElement* origin, const std::string& who) const
    {
        UrdfPoseText result;
        if (origin)
            checkAttributes(*origin, who, {"xyz", "rpy"});
        if (origin && origin->Attribute("xyz"))
            result.xyz = numbers(*origin, "xyz", 3, who, kLargestNumber);
        if (origin && origin->Attribute("rpy"))
            result.rpy = numbers(*origin, "rpy", 3, who, kLargestNumber);
        return result;
    }

    void readLink(const XMLElement& element)
    {
        UrdfLinkText link;
        link.line = element.GetLineNum();
        link.name = nameOf(element, linkLines);
        const std::string who = "link " + inQuotes(link.name);
        static const std::vector<std::string> known = {"inertial", "visual", "collision"};
        noteUnknown(element, who, known);
        if (const XMLElement* inertial = only(element, "inertial", who)) {
            const XMLElement* mass = only(*inertial, "mass", who);
            if (!mass || !mass->Attribute("value"))
                fail(
                    mass ? mass->GetLineNum() : inertial->GetLineNum(),
                    who + ": its <inertial> tells no mass. Expected <mass value=\"…\"/> in kilograms, or no <inertial> "
                        + "for a link without mass.");
            checkAttributes(*mass, who, {"value"});
            link.hasInertial = true;
            link.mass = numbers(*mass, "value", 1, who, kLargestNumber)[0];
            if (number(link.mass, mass->GetLineNum(), who) < 0)
                fail(mass->GetLineNum(),
                     who + ": <mass value>: expected a mass of 0 kg or more, found " + inQuotes(link.mass) + ".");
            link.center = pose(only(*inertial, "origin", who), who);
        }
        linkIndex.emplace(link.name, static_cast<int>(outline.links.size()));
        outline.links.push_back(std::move(link));
        parentJoint.push_back(-1);
    }

    // The link that a joint names as its parent or child.
    int linkOfJoint(const XMLElement& joint, const char* kind, const std::string& who) const
    {
        const XMLElement* element = only(joint, kind, who);
        if (!element || !element->Attribute("link"))
            fail(element ? element->GetLineNum() : joint.GetLineNum(),
                 who + ": it tells no " + kind + ". Expected <" + kind + " link=\"…\"/>.");
        const std::string name = element->Attribute("link");
        const auto found = linkIndex.find(name);
        if (found != linkIndex.end())
            return found->second;
        std::vector<std::string> names;
        for (const UrdfLinkText& link : outline.links)
            names.push_back(link.name);
        const std::string close = closeNames(name, names);
        fail(element->GetLineNum(), who + ": there is no link " + inQuotes(name) + " to be its " + kind + "."
                                        + (close.empty() ? " Expected the name of a link in this file." : close));
    }

    void readJoint(const XMLElement& element)
    {
        UrdfJointText joint;
        joint.line = element.GetLineNum();
        joint.name = nameOf(element, jointLines);
        const std::string who = "joint " + inQuotes(joint.name);
        static const std::vector<std::string> known = {
            "origin", "parent", "child", "axis", "limit", "dynamics", "calibration", "mimic", "safety_controller"};
        noteUnknown(element, who, known);
        readType(element, who, joint);
        joint.parent = linkOfJoint(element, "parent", who);
        joint.child = linkOfJoint(element, "child", who);
        joint.origin = pose(only(element, "origin", who), who);
        if (joint.type != "fixed")
            readMotion(element, who, joint);

        const std::string& child = outline.links[static_cast<std::size_t>(joint.child)].name;
        if (joint.parent == joint.child)
            fail(joint.line, who + ": it connects the link " + inQuotes(child) + " with itself. Expected two links.");
        int& other = parentJoint[static_cast<std::size_t>(joint.child)];
        if (other >= 0) {
            const UrdfJointText& first = outline.joints[static_cast<std::size_t>(other)];
            fail(joint.line, who + ": its child " + inQuotes(child) + " hangs on two joints, this one and "
                                 + inQuotes(first.name) + inLine(first.line)
                                 + ". Expected one: a body is a tree, closed loops are not supported.");
        }
        other = static_cast<int>(outline.joints.size());
        outline.joints.push_back(std::move(joint));
    }

    void readType(const XMLElement& element, const std::string& who, UrdfJointText& joint) const
    {
        static const std::vector<std::string> supported = {"revolute", "continuous", "fixed"};
        const char* type = element.Attribute("type");
        if (!type)
            fail(joint.line, who + ": it has no type. Expected type=\"revolute\", \"continuous\" or \"fixed\".");
        joint.type = type;
        if (std::find(supported.begin(), supported.end(), joint.type) != supported.end())
            return;
        const bool slides = joint.type == "prismatic" || joint.type == "floating" || joint.type == "planar";
        fail(joint.line, who + ": found the type " + inQuotes(joint.type)
                             + (slides ? ", which lets the child shift; the joints of a body turn" : "")
                             + ". Expected \"revolute\", \"continuous\" or \"fixed\"."
                             + closeNames(joint.type, supported));
    }

    void readMotion(const XMLElement& element, const std::string& who, UrdfJointText& joint)
    {
        if (const XMLElement* axis = only(element, "axis", who)) {
            if (!axis->Attribute("xyz"))
                fail(axis->GetLineNum(), who + ": its <axis> tells no direction. Expected <axis xyz=\"x y z\"/>.");
            checkAttributes(*axis, who, {"xyz"});
            joint.axis = numbers(*axis, "xyz", 3, who, kLargestNumber);
            double square = 0;
            for (const NumberText& word : joint.axis)
                square += std::pow(number(word, axis->GetLineNum(), who), 2);
            if (std::sqrt(square) < kShortestAxis)
                fail(axis->GetLineNum(), who + ": its axis is zero, found " + inQuotes(axis->Attribute("xyz"))
                                             + ". Expected a direction to turn about, such as \"0 1 0\".");
        }
        if (element.FirstChildElement("mimic"))
            outline.notes.push_back(who + ": it follows another joint in the file (<mimic>); here it turns by itself.");
        const XMLElement* limit = only(element, "limit", who);
        if (joint.type == "continuous")
            return;
        if (!limit)
            fail(joint.line, who + ": it is revolute and has no limits. Expected <limit lower=\"…\" upper=\"…\"/> in "
                                 + "radians, or type=\"continuous\".");
        checkAttributes(*limit, who, {"lower", "upper", "effort", "velocity", "acceleration", "jerk"});
        const double anything = HUGE_VAL;   // huge limits stand for none in published models
        joint.lower = limit->Attribute("lower") ? numbers(*limit, "lower", 1, who, anything)[0] : "0";
        joint.upper = limit->Attribute("upper") ? numbers(*limit, "upper", 1, who, anything)[0] : "0";
        if (number(joint.lower, limit->GetLineNum(), who) > number(joint.upper, limit->GetLineNum(), who))
            fail(limit->GetLineNum(), who + ": its lower limit " + joint.lower + " is above its upper limit "
                                          + joint.upper + ". Expected lower ≤ upper, in radians.");
    }

    // The tree.

    int parentOf(int link) const
    {
        const int joint = parentJoint[static_cast<std::size_t>(link)];
        return joint < 0 ? -1 : outline.joints[static_cast<std::size_t>(joint)].parent;
    }

    const UrdfLinkText& linkAt(int index) const { return outline.links[static_cast<std::size_t>(index)]; }

    void findRoot()
    {
        std::vector<int> roots;
        for (std::size_t i = 0; i < outline.links.size(); ++i)
            if (parentJoint[i] < 0)
                roots.push_back(static_cast<int>(i));
        if (roots.empty())
            failCycle(0);
        if (roots.size() > 1) {
            const UrdfLinkText& first = linkAt(roots[0]);
            const UrdfLinkText& second = linkAt(roots[1]);
            fail(second.line,
                 std::to_string(roots.size()) + " links have no parent, among them " + inQuotes(first.name)
                     + inLine(first.line) + " and " + inQuotes(second.name) + inLine(second.line)
                     + ". Expected one root: connect the others to it by joints (type=\"fixed\" if nothing "
                     + "moves between).");
        }
        outline.root = roots[0];
    }

    void orderOutward()
    {
        std::vector<std::vector<int>> children(outline.links.size());
        for (const UrdfJointText& joint : outline.joints)
            children[static_cast<std::size_t>(joint.parent)].push_back(joint.child);
        std::vector<bool> reached(outline.links.size(), false);
        std::vector<int> waiting = {outline.root};
        while (!waiting.empty()) {
            const int link = waiting.back();
            waiting.pop_back();
            reached[static_cast<std::size_t>(link)] = true;
            outline.outward.push_back(link);
            const std::vector<int>& next = children[static_cast<std::size_t>(link)];
            waiting.insert(waiting.end(), next.rbegin(), next.rend());
        }
        for (std::size_t i = 0; i < reached.size(); ++i)
            if (!reached[i])
                failCycle(static_cast<int>(i));
    }

    // Inward from a link that no root leads to, one comes round in a circle.
    [[noreturn]] void failCycle(int link) const
    {
        std::vector<bool> seen(outline.links.size(), false);
        while (!seen[static_cast<std::size_t>(link)]) {
            seen[static_cast<std::size_t>(link)] = true;
            link = parentOf(link);
        }
        std::string names = inQuotes(linkAt(link).name);
        std::size_t count = 1;
        for (int at = parentOf(link); at != link; at = parentOf(at), ++count)
            if (count < kNamesOfCycle)
                names += ", " + inQuotes(linkAt(at).name);
        fail(linkAt(link).line, std::to_string(count) + " links hang on each other in a circle: " + names
                                    + (count > kNamesOfCycle ? ", …" : "")
                                    + ". Expected a tree: each link hangs on one nearer the root.");
    }

    const std::string& text;
    const std::string& file;
    tinyxml2::XMLDocument document;
    UrdfOutline outline;
    std::unordered_map<std::string, int> linkLines, jointLines;   // by name
    std::unordered_map<std::string, int> linkIndex;
    std::vector<int> parentJoint;   // by link; -1: none
};

}   // namespace

UrdfOutline outlineUrdf(const std::string& text, const std::string& file)
{
    return Reader(text, file).read();
}
