// Counting allocator hooks. The executable defines malloc and its siblings,
// which the dynamic linker then binds for every shared object of the process
// (libprotobuf, libstdc++), and forwards them to glibc's own entry points.
// operator new goes straight to glibc too, so one allocation counts once.
#include "alloc_count.h"

#include <atomic>
#include <cstddef>
#include <new>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* ptr, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* ptr);
}

namespace {

std::atomic<std::uint64_t> g_allocations{0};

inline void Count() { g_allocations.fetch_add(1, std::memory_order_relaxed); }

void* NewOrThrow(std::size_t size) {
  Count();
  void* p = __libc_malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

void* AlignedNewOrThrow(std::size_t size, std::align_val_t alignment) {
  Count();
  void* p = __libc_memalign(static_cast<std::size_t>(alignment), size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

}  // namespace

namespace qhbench {
std::uint64_t AllocationCount() { return g_allocations.load(std::memory_order_relaxed); }
}  // namespace qhbench

extern "C" {

void* malloc(std::size_t size) {
  Count();
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  Count();
  return __libc_calloc(count, size);
}

void* realloc(void* ptr, std::size_t size) {
  Count();
  return __libc_realloc(ptr, size);
}

void free(void* ptr) { __libc_free(ptr); }

void* memalign(std::size_t alignment, std::size_t size) {
  Count();
  return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  Count();
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  Count();
  if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) return 22;  // EINVAL
  void* p = __libc_memalign(alignment, size);
  if (p == nullptr) return 12;  // ENOMEM
  *out = p;
  return 0;
}

}  // extern "C"

void* operator new(std::size_t size) { return NewOrThrow(size); }
void* operator new[](std::size_t size) { return NewOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  Count();
  return __libc_malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  Count();
  return __libc_malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size, std::align_val_t alignment) { return AlignedNewOrThrow(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return AlignedNewOrThrow(size, alignment); }

void operator delete(void* p) noexcept { __libc_free(p); }
void operator delete[](void* p) noexcept { __libc_free(p); }
void operator delete(void* p, std::size_t) noexcept { __libc_free(p); }
void operator delete[](void* p, std::size_t) noexcept { __libc_free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { __libc_free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { __libc_free(p); }
void operator delete(void* p, std::align_val_t) noexcept { __libc_free(p); }
void operator delete[](void* p, std::align_val_t) noexcept { __libc_free(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { __libc_free(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { __libc_free(p); }
