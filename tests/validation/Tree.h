// Tree: synthetic figures of any size, as a model and a roles file, which exist as long as the object.
#pragma once

#include <string>

/// A balanced tree of `bodies` bodies of 1 kg, two on each, every one on a hinge that turns about x, y or z. It stands
/// on its root, so that the walk from the right foot meets every joint.
class Tree {
public:
    explicit Tree(int bodies);
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    std::string urdfPath() const { return folder + "/tree.urdf"; }
    std::string rolesPath() const { return folder + "/tree.roles.json"; }

private:
    std::string folder;
};
