// Symbol visibility for the quillheron shared library.
// The library is built with hidden visibility; only what is marked QH_EXPORT
// (the converter class, the listening-model functions and the designers)
// is reachable through the dynamic linker.
#ifndef QUILLHERON_EXPORT_H_
#define QUILLHERON_EXPORT_H_

#if defined(__GNUC__) || defined(__clang__)
#define QH_EXPORT __attribute__((visibility("default")))
#else
#define QH_EXPORT
#endif

#endif  // QUILLHERON_EXPORT_H_
