// Argument-check rules of the FFT and packed-spectrum families.
#include "support/check_rules.h"
#include "vsp.h"

VSP_CHECK_RULES(kFftRules)({
    // Sizes and Init of order 1 need no init buffer; the order's range test comes first. The two
    // Init errors raised after the header is written (flag, missing init buffer from order 11)
    // are checked in FftInterface.InitCheckOrder.
    {"vspsFFTGetSize_*", "order=1 flag=2", {{"order=31 pSpecSize=null", vspStatFftOrderErr}, {"flag=3", vspStatFftFlagErr}}},
    {"vspsFFTInit_*",
     "order=1 flag=2",
     {{"pMemInit=null", vsptest::kAnyOk},
      {"order=31 pMemSpec=null", vspStatFftOrderErr}}},
    // Transforms need a spec laid out by Init: their check order (spec, identifier, data,
    // work buffer) is tested with real specs.
    {"vspsFFTFwd_*", "", {}, "FftInterface.TransformCheckOrder"},
    {"vspsFFTInv_*", "", {}, "FftInterface.TransformCheckOrder"},
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
