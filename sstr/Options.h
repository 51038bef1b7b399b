// Options: what a command line asks for, texts as they were typed.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// Which human of a scene is analysed, and what is changed in the scene before.
struct ChangeOptions {
    std::string human;   // empty: the scene's only one
    std::string sex, stature, mass;
    std::string root;
    bool floor = false;
    std::vector<std::string> angles;
    std::string gravity;
    std::string strategy;
    bool clearLoads = false;
    std::vector<std::string> loads, localLoads, weights, offsetLoads, torques;
};

struct ComputeOptions {
    std::string scene;
    ChangeOptions changes;
    std::string format = "table";
    std::string save;   // empty: nothing is saved
    bool verbose = false;
};

struct ExplainOptions {
    std::string scene;
    std::string joint;
    ChangeOptions changes;
    std::string sort = "moment";
    std::string format = "table";
};

struct FigureOptions {
    std::string file;
    std::string roles;   // empty: the file beside the URDF
    std::string human;
    std::string posed;   // empty: none is written
    bool verbose = false;
};

struct LoadsOptions {
    std::string scene;
    std::string human;
    std::string format = "table";
};

struct ReportOptions {
    std::string scene;
    std::string human;
};

struct NewSceneOptions {
    std::string figure;
    std::string scene;
    std::string name;   // empty: the figure's own
    std::string roles;
    bool force = false;
};

struct CommandLine {
    enum Command { kCompute, kExplain, kFigure, kLoads, kReport, kNewScene } command = kCompute;
    ComputeOptions compute;
    ExplainOptions explain;
    FigureOptions figure;
    LoadsOptions loads;
    ReportOptions report;
    NewSceneOptions newScene;
};

/// Reads the command line.
/// @return the exit status when there is nothing left to do: help or version was printed, or the
///         usage is wrong, which was then reported
std::optional<int> readCommandLine(int argc, char** argv, CommandLine& out);
