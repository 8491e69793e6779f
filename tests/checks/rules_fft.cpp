// Argument-check rules of the FFT and packed-spectrum families.
#include <vector>

#include "support/check_rules.h"
#include "vsp.h"

namespace {

// A spec of order 7 (it needs a work buffer, and its vectors fit the harness's buffers), built once.
template <class Spec, auto GetSize, auto Init>
const void* Spec7() {
  static std::vector<Vsp8u> mem, init;
  static const Spec* spec = [] {
    int s[3] = {};
    Spec* p = nullptr;
    if (GetSize(7, 2, vspAlgHintNone, &s[0], &s[1], &s[2]) != vspStatOk) return p;
    mem.resize(s[0]), init.resize(s[1] + 1);
    Init(&p, 7, 2, vspAlgHintNone, mem.data(), init.data());
    return p;
  }();
  return spec;
}
#define VSP_SPEC(k, t) vsptest::BlockFixture{"pFFTSpec", Spec7<VspFFTSpec_##k##_##t, vspsFFTGetSize_##k##_##t, vspsFFTInit_##k##_##t>}

}  // namespace

VSP_CHECK_RULES(kFftRules)({
    // Sizes and Init of order 1 need no init buffer; the order's range test comes first. The two
    // Init errors raised after the header is written (flag, missing init buffer from order 11)
    // are checked in FftInterface.InitCheckOrder.
    {"vspsFFTGetSize_*", "order=1 flag=2", {{"order=31 pSpecSize=null", vspStatFftOrderErr}, {"flag=3", vspStatFftFlagErr}}},
    {"vspsFFTInit_*",
     "order=1 flag=2",
     {{"pMemInit=null", vsptest::kAnyOk},
      {"order=31 pMemSpec=null", vspStatFftOrderErr}}},
    // Transforms on real specs; foreign identifiers are FftInterface.TransformCheckOrder's.
    {"vspsFFT???_CToC_32fc*", "", {}, nullptr, VSP_SPEC(C, 32fc)},
    {"vspsFFT???_CToC_64fc*", "", {}, nullptr, VSP_SPEC(C, 64fc)},
    {"vspsFFT???_CToC_32f", "", {}, nullptr, VSP_SPEC(C, 32f)},
    {"vspsFFT???_CToC_32f_I", "", {}, nullptr, VSP_SPEC(C, 32f)},
    {"vspsFFT???_CToC_64f", "", {}, nullptr, VSP_SPEC(C, 64f)},
    {"vspsFFT???_CToC_64f_I", "", {}, nullptr, VSP_SPEC(C, 64f)},
    {"vspsFFTFwd_RTo*_32f*", "", {}, nullptr, VSP_SPEC(R, 32f)},
    {"vspsFFTInv_*ToR_32f*", "", {}, nullptr, VSP_SPEC(R, 32f)},
    {"vspsFFTFwd_RTo*_64f*", "", {}, nullptr, VSP_SPEC(R, 64f)},
    {"vspsFFTInv_*ToR_64f*", "", {}, nullptr, VSP_SPEC(R, 64f)},
    // The out-of-place product with its destination equal to a source is the in-place product.
    {"vspsMulP???_??f",
     "",
     {{"pDst=alias:pSrc2", vsptest::kAnyOk},
      {"pDst=alias:pSrc1", vsptest::kAnyOk},
      {"pDst=alias:pSrc2 len=0", vspStatBadSize},
      {"pDst=alias:pSrc1 pSrc2=null", vspStatNullPtr}}},
    {"vspsConjPack_??fc", "", {{"pDst=alias:pSrc", vsptest::kAnyOk}, {"pDst=alias:pSrc len=0", vspStatBadSize}}},
    {"vspsConjPerm_??fc", "", {{"pDst=alias:pSrc", vsptest::kAnyOk}, {"pDst=alias:pSrc len=0", vspStatBadSize}}},
});
