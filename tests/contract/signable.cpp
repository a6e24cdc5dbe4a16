// The library that is signed in every way.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) {
  return TRUE;
}
