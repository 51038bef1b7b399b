// Result lines.
#include "ResultLines.h"

#include "NumberText.h"
#include "Support.h"

#include <cmath>
#include <initializer_list>
#include <map>
#include <sstream>

namespace {

std::string words(const qVector& v)
{
    return " " + hexadecimal(v[0]) + " " + hexadecimal(v[1]) + " " + hexadecimal(v[2]);
}

std::string keyOf(const qcSite* site)
{
    return std::string(site->getSegment()->getName()) + "." + site->getName();
}

// A line's first two words, and the rest.
std::pair<std::string, std::string> keyAndNumbers(const std::string& line)
{
    const std::size_t end = line.find(' ', line.find(' ') + 1);
    return {line.substr(0, end), end == std::string::npos ? "" : line.substr(end + 1)};
}

using Table = std::map<std::string, std::string>;

Table tableOf(const ResultLines& lines, const std::string& whose, std::vector<std::string>& found)
{
    Table table;
    for (const std::string& line : lines)
        if (!table.insert(keyAndNumbers(line)).second)
            found.push_back(keyAndNumbers(line).first + ": " + whose + " twice");
    return table;
}

}   // namespace

std::string hexadecimal(float number)
{
    if (std::isnan(number))
        return "nan";   // sign and payload are the machine's affair
    return hexadecimalText(double(number));
}

ResultLines inputLines(qmStaticStrength& analysis)
{
    ResultLines lines;
    qVector vector;
    const float size = analysis.getGravity(vector);
    lines.push_back("world gravity" + words(vector) + " " + hexadecimal(size));
    for (int i = 0; i < analysis.getNumLoads(); ++i) {
        qcSite* site = analysis.getNthLoadSite(i);
        EXPECT_EQ(analysis.getSiteLoad(site, vector), 1);
        lines.push_back("load " + keyOf(site) + " " + analysis.getLoadType(site) + words(vector) + " "
                        + hexadecimal(analysis.getSiteWeight(site)));
    }
    for (int i = 0; i < analysis.getNumLoadsWithOffset(); ++i) {
        const loadWithOffset& record = *analysis.getNthLoadWithOffset(i);
        lines.push_back("offset-load " + std::to_string(i) + " " + keyOf(record.site) + " " + record.type
                        + words(record.offset) + words(record.load) + " " + hexadecimal(record.mass));
    }
    for (int i = 0; i < analysis.getNumDefinedTorques(); ++i) {
        qcJoint* joint = analysis.getNthDefinedTorqueJoint(i);
        EXPECT_EQ(analysis.getDefinedTorque(joint, vector), 1);
        lines.push_back(std::string("torque ") + joint->getName() + words(vector));
    }
    return lines;
}

ResultLines resultLines(const std::string& run, qmStaticStrength& analysis)
{
    qcHuman& human = *analysis.getHuman();
    std::string shares = run + " shares";
    for (const qcSide side : {qcLeft, qcRight})
        shares += " " + hexadecimal(analysis.getSplitFactor(human.getHipJoint(side), 1, "waist"));
    for (const char* clavicle : {"left_clavicle_joint", "right_clavicle_joint"})
        shares += " " + hexadecimal(analysis.getSplitFactor(human.getFigure()->findJoint(clavicle), 1, "solar_plexus"));

    ResultLines lines = {shares};
    qList* joints = human.getFigure()->getJoints();
    for (qList* node = joints; node; node = qList::iterator(joints, node)) {
        auto* joint = static_cast<qcJoint*>(node->getData());
        qVector force, moment;
        const bool has = analysis.getJointForces(joint, force, moment) != 0;
        lines.push_back(run + " " + joint->getName() + (has ? words(force) + words(moment) : " none"));
    }
    return lines;
}

std::vector<std::string> differences(const ResultLines& committed, const ResultLines& computed)
{
    std::vector<std::string> found;
    const Table expected = tableOf(committed, "committed", found), got = tableOf(computed, "computed", found);
    for (const auto& [key, numbers] : expected) {
        const auto same = got.find(key);
        if (same == got.end())
            found.push_back(key + ": committed " + numbers + ", not computed");
        else if (same->second != numbers)
            found.push_back(key + ": committed " + numbers + ", computed " + same->second);
    }
    for (const auto& [key, numbers] : got)
        if (!expected.count(key))
            found.push_back(key + ": not committed, computed " + numbers);
    return found;
}

ResultLines readLines(const std::string& path)
{
    ResultLines lines;
    std::istringstream content(contentOf(path));
    for (std::string line; std::getline(content, line);)
        if (!line.empty() && line[0] != '#')
            lines.push_back(line);
    return lines;
}

std::uint64_t hashOf(const ResultLines& lines, std::uint64_t start)
{
    constexpr std::uint64_t kPrime = 0x100000001b3;
    std::uint64_t hash = start;
    for (const std::string& line : lines)
        for (const char byte : line + "\n")
            hash = (hash ^ static_cast<unsigned char>(byte)) * kPrime;
    return hash;
}
