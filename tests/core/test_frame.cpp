// The version record, the typed allocators with real memory, and the core library's helpers.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>

#include "support/types.h"
#include "vsp.h"

namespace vsptest {
namespace {

TEST(Version, FixedFieldsAndFormats) {
  const VspVersionRecord* v = vspsGetLibVersion();
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v, vspsGetLibVersion()) << "the same record on every call";
  EXPECT_EQ(std::memcmp(v->cpuCode, "m7\0\0", 4), 0);
  EXPECT_STREQ(v->nameText, "vspSP SSE3 (m7 threaded)");
  EXPECT_GE(v->majorVersion, 2026);
  std::string expected = std::to_string(v->majorVersion) + "." + std::to_string(v->minorVersion) + "." +
                         std::to_string(v->updateNumber) + " (r" + std::to_string(v->buildNumber) + ")";
  EXPECT_EQ(std::string(v->versionText), expected);
  // "Mmm d yyyy": an English month abbreviation, the day without padding, four-digit year.
  std::istringstream date(v->buildDateText);
  std::string month, rest;
  int day = 0, year = 0;
  date >> month >> day >> year;
  EXPECT_NE(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(month), std::string::npos) << v->buildDateText;
  EXPECT_EQ(month.size(), 3u);
  EXPECT_TRUE(day >= 1 && day <= 31 && year >= 2026 && date.eof() && !date.fail()) << v->buildDateText;
  EXPECT_EQ(std::string(v->buildDateText), month + " " + std::to_string(day) + " " + std::to_string(year));
}

template <class T> using Alloc = T* (*)(int);
template <class T> using AllocL = T* (*)(long long);

TEST(Allocators, AlignedWritableBlocksOfEveryType) {
  auto check = [](auto alloc, auto allocL, size_t size, const char* name) {
    for (int len : {1, 3, 17, 1000, 65537}) {
      for (int form = 0; form < 2; ++form) {
        auto* p = form ? allocL(len) : alloc(len);
        ASSERT_NE(p, nullptr) << name << " len " << len;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u) << name;
        std::memset(static_cast<void*>(p), 0x5A, len * size);  // the whole block is ours
        vspsFree(p);
      }
    }
    EXPECT_EQ(alloc(0), nullptr) << name;
    EXPECT_EQ(alloc(-1), nullptr) << name;
    EXPECT_EQ(allocL(0), nullptr) << name;
    EXPECT_EQ(allocL(-1), nullptr) << name;
  };
#define VSP_CHECK_ALLOC(t) check(vspsMalloc_##t, vspsMalloc_##t##_L, sizeof(Vsp##t), #t)
  VSP_CHECK_ALLOC(8u); VSP_CHECK_ALLOC(8s); VSP_CHECK_ALLOC(8sc); VSP_CHECK_ALLOC(16u);
  VSP_CHECK_ALLOC(16s); VSP_CHECK_ALLOC(16sc); VSP_CHECK_ALLOC(32u); VSP_CHECK_ALLOC(32s);
  VSP_CHECK_ALLOC(32sc); VSP_CHECK_ALLOC(32f); VSP_CHECK_ALLOC(32fc); VSP_CHECK_ALLOC(64s);
  VSP_CHECK_ALLOC(64sc); VSP_CHECK_ALLOC(64f); VSP_CHECK_ALLOC(64fc);
#undef VSP_CHECK_ALLOC
  vspsFree(nullptr);  // harmless
}

TEST(CoreLibrary, MallocRefusesNonPositiveCounts) {
  EXPECT_EQ(vspMalloc(0), nullptr);
  EXPECT_EQ(vspMalloc(-1), nullptr);
  EXPECT_EQ(vspMalloc_L(0), nullptr);
  EXPECT_EQ(vspMalloc_L(-1), nullptr);
  EXPECT_EQ(vspMalloc_L(INT64_MIN), nullptr);
  void* p = vspMalloc_L(100);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % VSP_MALLOC_ALIGNMENT, 0u);
  vspFree(p);
  vspFree(nullptr);
}

TEST(CoreLibrary, AlignPtr) {
  alignas(64) unsigned char buf[256];
  for (int off = 0; off < 64; ++off) {
    for (int align : {1, 2, 16, 32, 64}) {
      auto* p = static_cast<unsigned char*>(vspAlignPtr(buf + off, align));
      EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % align, 0u);
      EXPECT_GE(p, buf + off);
      EXPECT_LT(p, buf + off + align);
    }
  }
  EXPECT_EQ(vspAlignPtr(buf + 3, 0), buf + 3);
}

TEST(CoreLibrary, ThreadCountCanBeSetAndRead) {
  int saved = 0;
  ASSERT_EQ(vspGetNumThreads(&saved), 0);
  EXPECT_EQ(saved, ownGetNumThreads());
  EXPECT_GE(saved, 1);
  EXPECT_EQ(vspSetNumThreads(5), 0);
  EXPECT_EQ(ownGetNumThreads(), 5);
  EXPECT_EQ(vspSetNumThreads(0), vspStatBadSize);
  EXPECT_EQ(vspSetNumThreads(-2), vspStatBadSize);
  EXPECT_EQ(ownGetNumThreads(), 5);
  EXPECT_EQ(vspGetNumThreads(nullptr), vspStatNullPtr);
  EXPECT_EQ(vspSetNumThreads(saved), 0);
}

}  // namespace
}  // namespace vsptest
