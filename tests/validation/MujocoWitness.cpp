// MuJoCo as a witness: kinematics, centres of mass, and inverse dynamics at rest.
#include "NumberText.h"
#include "Witness.h"

#include <mujoco/mujoco.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace {

// What the library needs to be positive, kg·m². Nothing turns faster, so no result depends on it.
constexpr double kAnyInertia = 0.01;

std::string number(double value)
{
    return numberText(value, 17);
}

std::string numbers(const Vec& v)
{
    return number(v.x) + " " + number(v.y) + " " + number(v.z);
}

// The model as MJCF: body by body, those of a subtree inside its root; number i is the library's i + 1.
class Text {
public:
    explicit Text(const Figure& drawn) : figure(drawn), children(drawn.bodies.size())
    {
        for (std::size_t i = 1; i < figure.bodies.size(); ++i)
            children[static_cast<std::size_t>(figure.bodies[i].parent)].push_back(i);
    }

    std::string whole()
    {
        add(0);
        return "<mujoco><compiler angle=\"radian\" inertiafromgeom=\"false\"/><worldbody>" + text
               + "</worldbody></mujoco>";
    }

private:
    void add(std::size_t index)
    {
        const Body& body = figure.bodies[index];
        const Turn& t = body.inParent.turn;
        text += "<body pos=\"" + numbers(body.inParent.origin) + "\" xyaxes=\"" + numbers(t.x) + " " + numbers(t.y)
                + "\"><inertial pos=\"" + numbers(body.center) + "\" mass=\"" + number(body.mass) + "\" diaginertia=\""
                + numbers({kAnyInertia, kAnyInertia, kAnyInertia}) + "\"/>";
        for (const Hinge& hinge : body.hinges)
            text += "<joint type=\"hinge\" axis=\"" + numbers(hinge.axis) + "\"/>";
        for (const std::size_t child : children[index])
            add(child);
        text += "</body>";
    }

    const Figure& figure;
    std::vector<std::vector<std::size_t>> children;
    std::string text;
};

struct FreeModel {
    void operator()(mjModel* model) const { mj_deleteModel(model); }
};
struct FreeData {
    void operator()(mjData* data) const { mj_deleteData(data); }
};
using Model = std::unique_ptr<mjModel, FreeModel>;
using Data = std::unique_ptr<mjData, FreeData>;

Model load(const Figure& figure)
{
    const std::string text = Text(figure).whole();
    const auto files = std::make_unique<mjVFS>();
    mj_defaultVFS(files.get());
    constexpr const char* kName = "figure.xml";
    if (mj_makeEmptyFileVFS(files.get(), kName, static_cast<int>(text.size())) != 0)
        throw std::runtime_error("MuJoCo takes no model");
    std::copy(text.begin(), text.end(), static_cast<char*>(files->filedata[0]));
    std::array<char, 1000> problem{};
    Model model(mj_loadXML(kName, files.get(), problem.data(), static_cast<int>(problem.size())));
    mj_deleteVFS(files.get());
    if (!model)
        throw std::runtime_error(std::string("MuJoCo refuses the figure: ") + problem.data());
    return model;
}

Vec vector(const mjtNum* from)
{
    return {from[0], from[1], from[2]};
}

void write(const Vec& v, mjtNum* to)
{
    to[0] = v.x;
    to[1] = v.y;
    to[2] = v.z;
}

class MujocoWitness : public Witness {
public:
    explicit MujocoWitness(const Figure& figure) : model(load(figure)), data(mj_makeData(model.get()))
    {
        if (model->nbody != static_cast<int>(figure.bodies.size()) + 1 || model->nq != figure.hinges)
            throw std::runtime_error("MuJoCo understands the figure differently");
        // velocities are zero and stay so: once is enough
        place();
        mj_comVel(model.get(), data.get());
    }

    const char* name() const override { return "MuJoCo"; }

    void setGravity(const Vec& gravity) override { write(gravity, model->opt.gravity); }

    // The root has no joint: it is held by the world, wherever that is.
    void setRoot(const Pose& root) override
    {
        const Turn& t = root.turn;
        const mjtNum rows[9] = {t.x.x, t.y.x, t.z.x, t.x.y, t.y.y, t.z.y, t.x.z, t.y.z, t.z.z};
        write(root.origin, model->body_pos + 3);
        mju_mat2Quat(model->body_quat + 4, rows);
        place();
    }

    void setAngles(const std::vector<double>& angles) override
    {
        std::copy(angles.begin(), angles.end(), data->qpos);
        place();
    }

    Pose pose(int body) const override
    {
        const mjtNum* m = data->xmat + 9 * id(body);   // rows
        return {{{m[0], m[3], m[6]}, {m[1], m[4], m[7]}, {m[2], m[5], m[8]}}, origin(body)};
    }

    // The library takes them about the body's centre of mass, force first.
    void setForces(const std::vector<Wrench>& onBodies) override
    {
        for (std::size_t i = 0; i < onBodies.size(); ++i) {
            const int body = static_cast<int>(i);
            const Wrench about = moved(onBodies[i], origin(body), vector(data->xipos + 3 * id(body)));
            write(about.force, data->xfrc_applied + 6 * id(body));
            write(about.moment, data->xfrc_applied + 6 * id(body) + 3);
        }
    }

    // Inverse dynamics for accelerations of zero.
    void solve() override { mj_rnePostConstraint(model.get(), data.get()); }

    // The library gives them about the whole figure's centre of mass, moment first.
    Wrench reaction(int body) const override
    {
        const mjtNum* r = data->cfrc_int + 6 * id(body);
        const mjtNum* center = data->subtree_com + 3 * std::ptrdiff_t{model->body_rootid[id(body)]};
        return moved({vector(r + 3), vector(r)}, vector(center), origin(body));
    }

private:
    static std::ptrdiff_t id(int body) { return body + 1; }   // 0 is the world
    Vec origin(int body) const { return vector(data->xpos + 3 * id(body)); }

    void place()
    {
        mj_kinematics(model.get(), data.get());
        mj_comPos(model.get(), data.get());
    }

    Model model;
    Data data;
};

}   // namespace

std::unique_ptr<Witness> makeMujocoWitness(const Figure& figure)
{
    return std::make_unique<MujocoWitness>(figure);
}
