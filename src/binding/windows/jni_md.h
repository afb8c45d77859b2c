// The machine-dependent JNI types of Windows, for building the natives without a Windows JDK. JNI
// fixes them: jint is a 32-bit long, jlong a 64-bit integer, jbyte a signed char, and the natives
// are exported from the DLL. x64 has one calling convention, so __stdcall changes nothing there.
#ifndef _JAVASOFT_JNI_MD_H_
#define _JAVASOFT_JNI_MD_H_

#define JNIEXPORT __declspec(dllexport)
#define JNIIMPORT __declspec(dllimport)
#define JNICALL __stdcall

typedef long jint;
typedef long long jlong;
typedef signed char jbyte;

#endif
