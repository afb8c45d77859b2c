// Load entry of the shared object.
//
// The library keeps no global state (the only shared data is the read-only default gamma table of
// the rasterizer, a constant), so loading it runs no code and the Java virtual machine binds the
// natives by their exported names: there is no JNI_OnLoad and no registration table.
#include "stdafx.h"
