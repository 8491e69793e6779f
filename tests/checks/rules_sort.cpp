// Argument-check rules of the sorting families.
#include <vector>

#include "support/check_rules.h"
#include "vsp.h"

namespace {

// Work buffers of 32- and 64-bit keys exceed the harness's buffers: one of 1 MiB serves them all.
const void* BigBuffer() {
  static std::vector<Vsp8u> buf(1 << 20);
  return buf.data();
}
const vsptest::BlockFixture kBuffer{"pBuffer", BigBuffer};
using Cases = std::vector<vsptest::CheckCase>;
// A stride below the key size (or 0, or negative and below it) is a size error after the length.
Cases Strides(int keyBytes) {
  return {{"srcStrideBytes=" + std::to_string(keyBytes - 1), vspStatBadSize},
          {"srcStrideBytes=" + std::to_string(1 - keyBytes), vspStatBadSize},
          {"srcStrideBytes=0", vspStatBadSize}};
}

}  // namespace

VSP_CHECK_RULES(kSortRules)({
    // The stride is tested after the length: below the key size it is a size error.
    {"vspsSortRadixIndex*end_*", "srcStrideBytes=8", {{"pSrc=null srcStrideBytes=1", vspStatNullPtr}}},
    {"vspsSortRadixIndex*_16?", "", {{"srcStrideBytes=1", vspStatBadSize}, {"srcStrideBytes=-1", vspStatBadSize}}},
    {"vspsSortRadixIndex*_32?", "", Strides(4), nullptr, kBuffer},
    {"vspsSortRadixIndex*_64?_L", "", Strides(8), nullptr, kBuffer},
    // The 64-bit size queries serve no 8-bit type: a valid call names one of theirs.
    {"vspsSortRadixGetBufferSize_L", "dataType=13"},
    {"vspsSortRadixIndexGetBufferSize_L", "dataType=17"},
    {"vspsSortRadix*_32?_I*", "", {}, nullptr, kBuffer},
    {"vspsSortRadix*_64?_I*", "", {}, nullptr, kBuffer},
});
