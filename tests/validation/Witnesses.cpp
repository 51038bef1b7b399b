// The witnesses that this program was built with.
#include "Witness.h"

std::vector<std::unique_ptr<Witness>> makeWitnesses(const Figure& figure)
{
    std::vector<std::unique_ptr<Witness>> witnesses;
#ifdef SSTR_HAS_MUJOCO
    witnesses.push_back(makeMujocoWitness(figure));
#endif
#ifdef SSTR_HAS_SIMBODY
    witnesses.push_back(makeSimbodyWitness(figure));
#endif
    return witnesses;
}
