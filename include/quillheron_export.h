// Symbol visibility for the quillheron shared library.
// The library is built with hidden visibility; only what is marked QH_EXPORT
// (the converter class, the listening-model functions, the designers and the
// C entry point) is reachable through the dynamic linker, and the linker
// version script cmake/quillheron.map keeps the dynamic symbol table to that
// surface plus the generated message classes.
#ifndef QUILLHERON_EXPORT_H_
#define QUILLHERON_EXPORT_H_

#if defined(__GNUC__) || defined(__clang__)
#define QH_EXPORT __attribute__((visibility("default")))
#else
#define QH_EXPORT
#endif

#endif  // QUILLHERON_EXPORT_H_
