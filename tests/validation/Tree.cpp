// Tree.
#include "Tree.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <stdlib.h>   // mkdtemp

namespace {

constexpr const char* kAxes[] = {"1 0 0", "0 1 0", "0 0 1"};

// Lengths of some centimetres, which differ from body to body.
std::string centimetres(int number)
{
    return "0.0" + std::to_string(1 + number % 9);
}

// Body i hangs on number (i - 1) / 2.
std::string urdfText(int bodies)
{
    std::string text = "<robot name=\"tree\">\n";
    for (int i = 0; i < bodies; ++i)
        text += "<link name=\"s" + std::to_string(i) + "\"><inertial><origin xyz=\"" + centimetres(i) + " 0 0.04\"/>"
                + "<mass value=\"1\"/><inertia ixx=\"0.01\" ixy=\"0\" ixz=\"0\" iyy=\"0.01\" iyz=\"0\" izz=\"0.01\"/>"
                + "</inertial></link>\n";
    for (int i = 1; i < bodies; ++i)
        text += "<joint name=\"j" + std::to_string(i) + "\" type=\"continuous\"><parent link=\"s"
                + std::to_string((i - 1) / 2) + "\"/><child link=\"s" + std::to_string(i) + "\"/><origin xyz=\"0.01 "
                + (i % 2 == 0 ? "" : "-") + centimetres(i / 3) + " 0.08\"/><axis xyz=\"" + kAxes[i % 3]
                + "\"/></joint>\n";
    return text + "</robot>\n";
}

// Every role is played by the root and its first joint; only foot and ankle matter.
constexpr const char* kRoles = R"({
  "version": 1,
  "sites": {"s0.sole": {"offset_cm": [0, 0, 0]}, "s0.balance_point": {"offset_cm": [0, 0, 0]}},
  "left": {"foot_site": "s0.sole", "hand_site": "s0.sole", "knee": "j1", "ankle": "j1", "hip": "j1"},
  "right": {"foot_site": "s0.sole", "hand_site": "s0.sole", "knee": "j1", "ankle": "j1", "hip": "j1"},
  "pelvis_site": "s0.sole", "waist": "j1", "reference_site": "s0.balance_point"
})";

}   // namespace

Tree::Tree(int bodies)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "sstr-tree-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder can be made");
    folder = pattern;
    std::ofstream(urdfPath()) << urdfText(bodies);
    std::ofstream(rolesPath()) << kRoles;
}

Tree::~Tree()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}
