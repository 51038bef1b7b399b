// CSV output: one header line, columns with their units, a field that is not known or not finite is empty.
#include "NumberText.h"
#include "Report.h"

#include <cmath>

namespace {

// Quotes a field where its content would break the line (RFC 4180).
std::string field(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string result = "\"";
    for (const char c : text)
        result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + "\"";
}

std::string number(float value)
{
    return std::isfinite(value) ? shortest(value) : "";
}

std::string numbers(const qVector& vector)
{
    return number(vector[0]) + "," + number(vector[1]) + "," + number(vector[2]);
}

}   // namespace

std::string csvOf(const Report& report)
{
    const char* sides[] = {"centre", "right", "left"};
    std::string text = "joint,side,twin,status,force_x_kgf,force_y_kgf,force_z_kgf,force_kgf,force_n,"
                       "moment_x_nm,moment_y_nm,moment_z_nm,moment_nm\n";
    for (const JointResult& joint : report.joints) {
        text += field(joint.joint) + "," + sides[joint.sides.side] + "," + field(joint.sides.twin) + ",";
        if (!joint.has) {
            text += "none,,,,,,,,,\n";
            continue;
        }
        text += joint.finite ? "result," : "not-finite,";
        text += numbers(joint.force) + "," + number(joint.forceKgf()) + "," + number(joint.forceN()) + ",";
        text += numbers(joint.moment) + "," + number(joint.momentNm()) + "\n";
    }
    return text;
}

std::string csvOf(const Inputs& inputs)
{
    std::string text = "kind,place,type,offset_x_cm,offset_y_cm,offset_z_cm,force_x_kgf,force_y_kgf,force_z_kgf,"
                       "weight_g,moment_x_nm,moment_y_nm,moment_z_nm,text\n";
    for (const LoadInput& load : inputs.loads) {
        text += (load.hasOffset ? "offset_load," : "load,") + field(load.site) + "," + load.type + ",";
        text += (load.hasOffset ? numbers(load.offset) : ",,") + "," + numbers(load.force) + ",";
        text += (load.type == "weight" ? number(load.weight) : "") + ",,,,\n";
    }
    for (const TorqueInput& torque : inputs.torques)
        text += "torque," + field(torque.joint) + ",,,,,,,,," + numbers(torque.moment) + ",\n";
    for (const HandLoadInput& load : inputs.handLoads)
        text += "hand_load," + field(load.key) + ",,,,,,,,,,,," + field(load.text) + "\n";
    text += "gravity,,,,,,,,,,,,," + shortest(inputs.gravity[0]) + " " + shortest(inputs.gravity[1]) + " "
            + shortest(inputs.gravity[2]) + " cm/s2\n";
    text += "strategy,,,,,,,,,,,,," + inputs.strategy + "\n";
    return text;
}
