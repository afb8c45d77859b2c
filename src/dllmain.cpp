// Load entry of the shared object, built with the Java binding.
//
// The library keeps no global state (the only shared data is the read-only default gamma table of
// the rasterizer, a constant), so loading it registers nothing: the virtual machine binds the
// natives by their exported names. What the entry does is name the JNI version the natives are
// written against, which a library without it would leave at 1.1: they call ExceptionCheck, a
// 1.2 function. A virtual machine that cannot give an environment of that version refuses the
// library at load time rather than at the first call.
#include <jni.h>

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void* /*reserved*/) {
    void* env = nullptr;
    if (vm == nullptr || vm->GetEnv(&env, JNI_VERSION_1_2) != JNI_OK || env == nullptr) {
        return JNI_ERR;
    }
    return JNI_VERSION_1_2;
}
