// Global variables: the object by which a module shows C variables as attributes. This module has none.
#pragma once

/// Makes the module's one object of its kind, which nothing shows. @return false with an exception set
bool makeGlobalVariables();
