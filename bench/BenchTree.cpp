// Bench tree.
#include "BenchTree.h"

#include <vector>

namespace {

std::string transformAt(int x, int y)
{
    return "[[1,0,0,0],[0,1,0,0],[0,0,1,0],[" + std::to_string(x) + "," + std::to_string(y) + ",0,1]]";
}

}   // namespace

// Segment i is "s<i>"; its only joint toward the root is "j<i>", between the parent's site "c<i>" and its own
// site "proximal".
std::string treeText(int segments, int branching)
{
    std::vector<std::vector<int>> children(static_cast<std::size_t>(segments));
    for (int i = 1; i < segments; ++i)
        children[static_cast<std::size_t>((i - 1) / branching)].push_back(i);

    std::string segmentTexts, siteTexts, jointTexts;
    const auto append = [](std::string& list, const std::string& item) { list += (list.empty() ? "" : ",\n") + item; };
    const auto site = [&](const std::string& segment, const std::string& name, const std::string& at,
                          const std::string& joints) {
        append(siteTexts, R"({"key":")" + segment + "." + name + R"(","segment":")" + segment + R"(","name":")" + name
                              + R"(","transform":)" + at + R"(,"joints":[)" + joints + "]}");
    };
    for (int i = 0; i < segments; ++i) {
        const std::string name = "s" + std::to_string(i);
        const std::string at = transformAt(i % 97, i % 89);
        std::string keys = "\"" + name + ".proximal\"";
        site(name, "proximal", at, i > 0 ? "\"j" + std::to_string(i) + "\"" : "");
        for (const int child : children[static_cast<std::size_t>(i)]) {
            const std::string joint = "j" + std::to_string(child);
            const std::string siteName = "c" + std::to_string(child);
            keys += ",\"" + name + "." + siteName + "\"";
            site(name, siteName, transformAt(child % 97, child % 89), "\"" + joint + "\"");
            append(jointTexts, R"({"name":")" + joint + R"(","full_name":"tree.)" + joint + R"(","sites":[")" + name
                                   + "." + siteName + R"(","s)" + std::to_string(child) + R"(.proximal"],"inboard":")"
                                   + name + "." + siteName + R"(","angles":[]})");
        }
        append(segmentTexts, R"({"name":")" + name + R"(","mass":1000,"com":[0,1,0],"transform":)" + at
                                 + R"(,"sites":[)" + keys + R"(],"attachment":")" + name + R"(.proximal"})");
    }
    return R"({"name":"tree","segments":[)" + segmentTexts + R"(],"sites":[)" + siteTexts + R"(],"joints":[)"
           + jointTexts + R"(],"right":{"foot_site":"s0.proximal","ankle":"j1"}})";
}
