// Argument-check rules of the complex-number utilities.
#include "support/check_rules.h"
#include "vsp.h"

VSP_CHECK_RULES(kComplexRules)({
    // RealToCplx takes either source alone; pDst comes before the length.
    {"vspsRealToCplx_*",
     "",
     {{"pSrcRe=null", vspStatOk}, {"pSrcIm=null", vspStatOk}, {"pSrcRe=null len=0", vspStatBadSize},
      {"pSrcRe=null pSrcIm=null", vspStatNullPtr}}},
});
