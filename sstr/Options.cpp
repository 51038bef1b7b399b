// Options: the commands, their options and their help.
#include "Options.h"

#include "Commands.h"
#include "Messages.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace {

constexpr const char* kAbout =
    "Static strength: the force and the moment that every joint of a human figure carries.\n"
    "\n"
    "Lengths in cm, weights in g, forces in kgf, moments in N·m, gravity in cm/s², angles in degrees.\n"
    "Axes: x to the figure's left, y up, z forward. Numbers are written with a decimal point.\n"
    "Exit status: 0 done, 1 the analysis could not be done, 2 wrong usage or input.";

constexpr const char* kComputeAbout = "Analyses a human of a scene in its present posture: what its joints carry.";

// Of every command that has the options that change a scene.
constexpr const char* kChangesMore =
    "Options change the scene in this order, whatever their order on the command line: human; sex, stature, mass;\n"
    "root, floor; angles; gravity; strategy; loads and torques. The scene's file stays as it is.\n"
    "SITE is a site's key \"segment.site\", JOINT a joint's name; sstr figure SCENE lists both.\n"
    "\n"
    "An OFFSETLOAD acts at a point ox,oy,oz cm (global axes) away from a site, beside other loads there:\n"
    "  SITE@ox,oy,oz=x,y,z         a force, kgf, global axes\n"
    "  local:SITE@ox,oy,oz=x,y,z   a force, kgf, the site's axes\n"
    "  SITE@ox,oy,oz=GRAMSg        a weight, with the letter g\n"
    "\n";

constexpr const char* kComputeMore =
    "With --save the changed scene is written to a file; it may be the scene that was opened.\n"
    "\n"
    "Example: the scene's human on its right foot, with 5 kg in the right hand and 2 kg at a tool 30 cm ahead of it\n"
    "  sstr compute examples/lift_box.json --strategy right-foot --clear-loads \\\n"
    "    --weight right_hand.right_palmcenter=5000 --offset-load right_hand.right_palmcenter@0,0,30=2000g";

constexpr const char* kExplainAbout =
    "Shows what makes up a joint's result: how much each weight, load and torque contributes.";

constexpr const char* kExplainMore =
    "The legs of two feet and of sitting are not such a sum: there the terms of their method are listed.\n"
    "\n"
    "Example: what bends the back of a person who lifts a box\n"
    "  sstr explain examples/lift_box.json l4_l5";

constexpr const char* kFigureAbout =
    "Shows a figure as a tree: masses, centres of mass, sites, joint angles with their limits.";

constexpr const char* kFigureMore =
    "FILE is a URDF (.urdf), a posed figure (.figure.json) or a scene (any other name).\n"
    "\n"
    "Example: the default human, and its present posture as a posed figure\n"
    "  sstr figure figures/human.urdf --posed human.figure.json";

constexpr const char* kLoadsAbout = "Shows what a scene asks of the analysis: gravity, strategy, loads and torques.";

constexpr const char* kLoadsMore = "Example:\n  sstr loads examples/lift_box.json --format json";

constexpr const char* kReportAbout =
    "Prints the analysis's own report: a scene's loads, strategy and gravity, a line each.";

constexpr const char* kReportMore = "Loads with offsets and torques are not in it; sstr loads shows them too.\n"
                                    "\n"
                                    "Example:\n  sstr report examples/lift_box.json";

constexpr const char* kNewSceneAbout = "Makes a scene with one human of a figure file, standing on the floor.";

constexpr const char* kNewSceneMore = "A posed figure stays as it is.\n"
                                      "\n"
                                      "Example:\n  sstr new-scene figures/human.urdf work.json --name worker";

// One of some words; they stand in the option's form already.
CLI::Validator oneOf(const std::vector<std::string>& words)
{
    CLI::IsMember member(words);
    member.description("");
    return member;
}

CLI::Validator formats()
{
    return oneOf({"table", "json", "csv"});
}

// An empty value is as good as a slip of the hand or of a script: it stands for nothing.
CLI::Validator notEmpty()
{
    return {[](const std::string& value) { return value.empty() ? std::string("expected a value, found \"\"") : ""; },
            ""};
}

// An option that may be given several times, each time with one value.
void addRepeated(CLI::App& app, const char* name, std::vector<std::string>& values, const char* form, const char* help)
{
    app.add_option(name, values, help)
        ->type_name(form)
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all()
        ->check(notEmpty());
}

CLI::Option* addText(CLI::App& app, const char* name, std::string& value, const char* form, const char* help)
{
    return app.add_option(name, value, help)->type_name(form)->check(notEmpty());
}

void addChanges(CLI::App& command, ChangeOptions& o)
{
    addText(command, "--human", o.human, "NAME", "the human to analyse; needed when the scene has several");
    addText(command, "--sex", o.sex, "male|female", "the human's sex")->check(oneOf({"male", "female"}));
    addText(command, "--stature", o.stature, "CM", "the human's stature");
    addText(command, "--mass", o.mass, "KG", "the human's body mass");
    addText(command, "--root", o.root, "x,y,z,rx,ry,rz",
            "the root segment's place, cm, and turns about the world's x, then y, then z, degrees");
    command.add_flag("--floor", o.floor, "stand on the floor: the lowest site of the feet at y = 0");
    addRepeated(command, "--angle", o.angles, "JOINT=deg[,deg...]",
                "a joint's angles, the first ones; those not given stay (repeatable)");
    addText(command, "--gravity", o.gravity, "x,y,z", "gravity, cm/s²");
    addText(command, "--strategy", o.strategy, "STRATEGY",
            "two-feet, right-foot, left-foot, walking, sitting, sitting-no-feet, hands-and-knees");
    command.add_flag("--clear-loads", o.clearLoads, "first remove all loads and torques that the scene has");
    addRepeated(command, "--load", o.loads, "SITE=x,y,z",
                "a force at a site, kgf, global axes, in place of any there (repeatable, as those below)");
    addRepeated(command, "--local-load", o.localLoads, "SITE=x,y,z", "the same, in the site's axes");
    addRepeated(command, "--weight", o.weights, "SITE=GRAMS", "a weight at a site, in place of any there");
    addRepeated(command, "--offset-load", o.offsetLoads, "OFFSETLOAD",
                "a load at a point displaced from a site, see below");
    addRepeated(command, "--torque", o.torques, "JOINT=x,y,z", "a moment at a joint, N·m, global axes");
}

CLI::App& addCompute(CLI::App& app, ComputeOptions& o)
{
    CLI::App& command = *app.add_subcommand("compute", kComputeAbout);
    command.footer(std::string(kChangesMore) + kComputeMore);
    addText(command, "scene", o.scene, "SCENE", "the scene file")->required();
    addChanges(command, o.changes);
    addText(command, "--format", o.format, "table|json|csv", "how to show the results (table)")->check(formats());
    addText(command, "--save", o.save, "SCENE", "then save the changed scene with its results, as this file");
    command.add_flag("--verbose", o.verbose, "say on standard error what was read and done");
    return command;
}

CLI::App& addExplain(CLI::App& app, ExplainOptions& o)
{
    CLI::App& command = *app.add_subcommand("explain", kExplainAbout);
    command.footer(std::string(kChangesMore) + kExplainMore);
    addText(command, "scene", o.scene, "SCENE", "the scene file")->required();
    addText(command, "joint", o.joint, "JOINT", "the joint's name")->required();
    addChanges(command, o.changes);
    addText(command, "--sort", o.sort, "moment|force", "by which share the contributions are sorted (moment)")
        ->check(oneOf({"moment", "force"}));
    addText(command, "--format", o.format, "table|json", "how to show the contributions (table)")
        ->check(oneOf({"table", "json"}));
    return command;
}

CLI::App& addFigure(CLI::App& app, FigureOptions& o)
{
    CLI::App& command = *app.add_subcommand("figure", kFigureAbout);
    command.footer(kFigureMore);
    addText(command, "file", o.file, "FILE", "a figure or scene file")->required();
    addText(command, "--roles", o.roles, "FILE", "the roles file of a URDF (NAME.roles.json beside NAME.urdf)");
    addText(command, "--human", o.human, "NAME", "which human of a scene; needed when it has several");
    addText(command, "--posed", o.posed, "OUT", "write the figure as it stands, as this .figure.json file");
    command.add_flag("--verbose", o.verbose, "also tell what was joined, merged or dropped on reading");
    return command;
}

CLI::App& addLoads(CLI::App& app, LoadsOptions& o)
{
    CLI::App& command = *app.add_subcommand("loads", kLoadsAbout);
    command.footer(kLoadsMore);
    addText(command, "scene", o.scene, "SCENE", "the scene file")->required();
    addText(command, "--human", o.human, "NAME", "which human; needed when the scene has several");
    addText(command, "--format", o.format, "table|json|csv", "how to show them (table)")->check(formats());
    return command;
}

CLI::App& addReport(CLI::App& app, ReportOptions& o)
{
    CLI::App& command = *app.add_subcommand("report", kReportAbout);
    command.footer(kReportMore);
    addText(command, "scene", o.scene, "SCENE", "the scene file")->required();
    addText(command, "--human", o.human, "NAME", "which human; needed when the scene has several");
    return command;
}

CLI::App& addNewScene(CLI::App& app, NewSceneOptions& o)
{
    CLI::App& command = *app.add_subcommand("new-scene", kNewSceneAbout);
    command.footer(kNewSceneMore);
    addText(command, "figure", o.figure, "FIGURE", "a figure file, .urdf or .figure.json")->required();
    addText(command, "scene", o.scene, "OUT", "the scene file to write")->required();
    addText(command, "--name", o.name, "NAME", "the human's name (the figure's own)");
    addText(command, "--roles", o.roles, "FILE", "the roles file of a URDF (NAME.roles.json beside NAME.urdf)");
    command.add_flag("--force", o.force, "replace the scene file if there is one");
    return command;
}

}   // namespace

std::optional<int> readCommandLine(int argc, char** argv, CommandLine& out)
{
    CLI::App app(kAbout, "sstr");
    app.set_version_flag("--version", "sstr " SSTR_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(36);
    const CLI::App& compute = addCompute(app, out.compute);
    const CLI::App& explain = addExplain(app, out.explain);
    const CLI::App& figure = addFigure(app, out.figure);
    const CLI::App& loads = addLoads(app, out.loads);
    const CLI::App& report = addReport(app, out.report);
    addNewScene(app, out.newScene);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& problem) {
        if (problem.get_exit_code() == 0) {   // help or version
            std::ostringstream text;
            app.exit(problem, text);
            return print(text.str()) ? kDone : kWrongInput;
        }
        reportError(std::string(problem.what()) + " (sstr --help and sstr COMMAND --help tell the usage.)");
        return kWrongInput;
    }
    out.command = compute.parsed()   ? CommandLine::kCompute
                  : explain.parsed() ? CommandLine::kExplain
                  : figure.parsed()  ? CommandLine::kFigure
                  : loads.parsed()   ? CommandLine::kLoads
                  : report.parsed()  ? CommandLine::kReport
                                     : CommandLine::kNewScene;
    return std::nullopt;
}
