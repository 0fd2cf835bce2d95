/* Version of the quillheron library. The numbers here are the ones the build
 * declares (project() in the top-level CMakeLists.txt; the configure step
 * fails when the two disagree). quillheron_version() returns the string of
 * the library actually loaded, which may differ from the header a program
 * was compiled with. Plain C; usable from C and C++. */
#ifndef QUILLHERON_VERSION_H_
#define QUILLHERON_VERSION_H_

#include "quillheron_export.h"

#define QUILLHERON_VERSION_MAJOR 0
#define QUILLHERON_VERSION_MINOR 1
#define QUILLHERON_VERSION_PATCH 0
#define QUILLHERON_VERSION_STRING "0.1.0"

#ifdef __cplusplus
extern "C" {
#endif

/* "MAJOR.MINOR.PATCH" of the loaded library; a static string, never NULL.
 * Safe from any thread. */
QH_EXPORT const char* quillheron_version(void);

#ifdef __cplusplus
}  /* extern "C" */
#endif

#endif /* QUILLHERON_VERSION_H_ */
