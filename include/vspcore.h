/* vspcore: the core library under libvspsm7 — aligned memory and the thread count. */
#ifndef VSPCORE_H
#define VSPCORE_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define VSPCORE_API __attribute__((visibility("default")))
#else
#define VSPCORE_API
#endif

/* Allocates `bytes` bytes aligned to 64 bytes (VSP_MALLOC_ALIGNMENT).
   Returns NULL when bytes < 1 or the memory is not available.
   The block is released with vspFree. */
VSPCORE_API void* vspMalloc(int bytes);

/* The same with a 64-bit byte count; a negative count returns NULL. */
VSPCORE_API void* vspMalloc_L(long long bytes);

/* Releases a block from vspMalloc or vspMalloc_L; NULL is accepted and ignored. */
VSPCORE_API void vspFree(void* ptr);

/* Returns ptr rounded up to the next multiple of alignBytes (a power of two;
   any value below 2 returns ptr unchanged). */
VSPCORE_API void* vspAlignPtr(void* ptr, int alignBytes);

/* The number of threads the library may use (at least 1). It starts as the
   value of the environment variable VSP_NUM_THREADS when that holds a positive
   number, else as the number of online processors, and can be changed with
   vspSetNumThreads. */
VSPCORE_API int ownGetNumThreads(void);

/* Sets the thread count reported by ownGetNumThreads. Returns 0 on success,
   -6 (vspStatBadSize) when numThreads < 1 (the setting is then unchanged). */
VSPCORE_API int vspSetNumThreads(int numThreads);

/* Writes the current thread count to *pNumThreads. Returns 0, or -8
   (vspStatNullPtr) when pNumThreads is NULL. */
VSPCORE_API int vspGetNumThreads(int* pNumThreads);

#define VSP_MALLOC_ALIGNMENT 64

#ifdef __cplusplus
}
#endif

#endif /* VSPCORE_H */
