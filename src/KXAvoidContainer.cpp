// Main source file of libKXAvoidContainer: the library's version, for native users and loaders.
#include "KXAvoidContainer.h"

extern "C" KXAC_API const char* KXAvoidContainerVersion() { return KXAC_VERSION_STRING; }
