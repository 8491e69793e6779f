// The typed allocators' guards, observed from outside: this program defines its own vspMalloc,
// vspMalloc_L and vspFree, which take precedence over the core library's for libvspsm7, record
// each request and hand it on (large requests get a dummy block instead of real memory).
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "vsp.h"

namespace {

struct Request {
  int calls = 0;
  long long bytes = 0;
};
Request g_request32, g_request64;
void* g_freed = nullptr;
alignas(64) unsigned char g_dummy[64];
constexpr long long kRealLimit = 1 << 20;

template <class F>
F Next(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" void* vspMalloc(int bytes) {
  ++g_request32.calls, g_request32.bytes = bytes;
  if (bytes > kRealLimit) return g_dummy;
  return Next<void* (*)(int)>("vspMalloc")(bytes);
}

extern "C" void* vspMalloc_L(long long bytes) {
  ++g_request64.calls, g_request64.bytes = bytes;
  if (bytes > kRealLimit) return g_dummy;
  return Next<void* (*)(long long)>("vspMalloc_L")(bytes);
}

extern "C" void vspFree(void* ptr) {
  g_freed = ptr;
  if (ptr != g_dummy) Next<void (*)(void*)>("vspFree")(ptr);
}

namespace {

struct Case {
  const char* what;
  void* (*call)();
  bool reaches;         // the request reaches the core allocator
  long long bytes;      // the byte count it asks for
};

template <class F>
void* Wrap(F f) { return reinterpret_cast<void*>(f()); }

TEST(AllocatorRequests, GuardsAndByteCounts) {
  const Case cases[] = {
      {"32f(0)", [] { return Wrap([] { return vspsMalloc_32f(0); }); }, false, 0},
      {"32f(-5)", [] { return Wrap([] { return vspsMalloc_32f(-5); }); }, false, 0},
      {"32f(536870911)", [] { return Wrap([] { return vspsMalloc_32f(536870911); }); }, true, 2147483644LL},
      {"32f(536870912)", [] { return Wrap([] { return vspsMalloc_32f(536870912); }); }, false, 0},
      {"8u(2147483647)", [] { return Wrap([] { return vspsMalloc_8u(2147483647); }); }, true, 2147483647LL},
      {"8s(2147483647)", [] { return Wrap([] { return vspsMalloc_8s(2147483647); }); }, true, 2147483647LL},
      {"16s(1073741823)", [] { return Wrap([] { return vspsMalloc_16s(1073741823); }); }, true, 2147483646LL},
      {"16s(1073741824)", [] { return Wrap([] { return vspsMalloc_16s(1073741824); }); }, false, 0},
      {"8sc(1073741824)", [] { return Wrap([] { return vspsMalloc_8sc(1073741824); }); }, false, 0},
      {"64f(268435455)", [] { return Wrap([] { return vspsMalloc_64f(268435455); }); }, true, 2147483640LL},
      {"32fc(268435456)", [] { return Wrap([] { return vspsMalloc_32fc(268435456); }); }, false, 0},
      {"64fc(134217727)", [] { return Wrap([] { return vspsMalloc_64fc(134217727); }); }, true, 2147483632LL},
      {"64sc(134217728)", [] { return Wrap([] { return vspsMalloc_64sc(134217728); }); }, false, 0},
      {"16sc(7)", [] { return Wrap([] { return vspsMalloc_16sc(7); }); }, true, 28},
  };
  for (const Case& c : cases) {
    g_request32 = {};
    void* p = c.call();
    EXPECT_EQ(g_request32.calls, c.reaches ? 1 : 0) << c.what;
    if (c.reaches) {
      EXPECT_EQ(g_request32.bytes, c.bytes) << c.what;
    } else {
      EXPECT_EQ(p, nullptr) << c.what;
    }
    if (p) vspsFree(p);
  }
}

TEST(AllocatorRequests, SixtyFourBitLengthsGuardOnlyTheUnsignedWrap) {
  struct Case64 {
    const char* what;
    void* (*call)(long long);
    long long len;
    bool reaches;
    unsigned long long bytes;
  };
  const Case64 cases[] = {
      {"64fc_L(2^60)", [](long long n) -> void* { return vspsMalloc_64fc_L(n); }, 1LL << 60, false, 0},
      {"64fc_L(2^59)", [](long long n) -> void* { return vspsMalloc_64fc_L(n); }, 1LL << 59, true, 1ULL << 63},
      {"32f_L(2^62)", [](long long n) -> void* { return vspsMalloc_32f_L(n); }, 1LL << 62, false, 0},
      {"32f_L(2^61)", [](long long n) -> void* { return vspsMalloc_32f_L(n); }, 1LL << 61, true, 1ULL << 63},
      {"64f_L(2^61)", [](long long n) -> void* { return vspsMalloc_64f_L(n); }, 1LL << 61, false, 0},
      {"16s_L(2^62)", [](long long n) -> void* { return vspsMalloc_16s_L(n); }, 1LL << 62, true, 1ULL << 63},
      {"8u_L(2^63-1)", [](long long n) -> void* { return vspsMalloc_8u_L(n); }, 0x7FFFFFFFFFFFFFFFLL, true, 0x7FFFFFFFFFFFFFFFULL},
      {"8u_L(0)", [](long long n) -> void* { return vspsMalloc_8u_L(n); }, 0, false, 0},
      {"8u_L(-1)", [](long long n) -> void* { return vspsMalloc_8u_L(n); }, -1, false, 0},
      {"32sc_L(3)", [](long long n) -> void* { return vspsMalloc_32sc_L(n); }, 3, true, 24},
  };
  for (const Case64& c : cases) {
    g_request64 = {};
    void* p = c.call(c.len);
    EXPECT_EQ(g_request64.calls, c.reaches ? 1 : 0) << c.what;
    if (c.reaches) {
      EXPECT_EQ(static_cast<unsigned long long>(g_request64.bytes), c.bytes) << c.what;
    }
    // A byte count of 2^63 or more arrives negative, and the core allocator refuses it.
    if (!c.reaches || c.bytes >= (1ULL << 63)) {
      EXPECT_EQ(p, nullptr) << c.what;
    }
    if (p) vspsFree(p);
  }
}

TEST(AllocatorRequests, FreePassesThePointerUnchanged) {
  g_freed = &g_freed;
  vspsFree(nullptr);
  EXPECT_EQ(g_freed, nullptr);
  void* p = vspsMalloc_32f(10);
  ASSERT_NE(p, nullptr);
  vspsFree(p);
  EXPECT_EQ(g_freed, p);
}

}  // namespace
