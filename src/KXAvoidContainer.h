// Top-level header of libKXAvoidContainer.
#pragma once

#include "stdafx.h"

// The library's version, "major.minor.patch".
extern "C" KXAC_API const char* KXAvoidContainerVersion();
