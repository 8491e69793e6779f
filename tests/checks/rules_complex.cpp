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

// Goertzel: a relative frequency in [0, 1).
VSP_CHECK_RULES(kGoertzelRules)({
    {"vspsGoertz_*", "rFreq=0.25", {{"rFreq=1", vspStatRelFreqErr}, {"len=0 rFreq=1", vspStatBadSize}}},
});
