// Argument-check rules of the reductions, norms, dot products and search families.
#include "support/check_rules.h"
#include "vsp.h"

VSP_CHECK_RULES(kStatsRules)({
    // A null index makes the call the plain extreme: success, and the length still counts.
    {"vspsMaxIndx_*", "", {{"pIndx=null", vspStatOk}, {"pIndx=null len=0", vspStatBadSize}}},
    {"vspsMinIndx_*", "", {{"pIndx=null", vspStatOk}, {"pIndx=null len=0", vspStatBadSize}}},
    {"vspsMaxAbsIndx_*", "", {{"pIndx=null", vspStatOk}, {"pIndx=null len=0", vspStatBadSize}}},
    {"vspsMinAbsIndx_*", "", {{"pIndx=null", vspStatOk}, {"pIndx=null len=0", vspStatBadSize}}},
    // MaxOrder tests the length before the pointers.
    {"vspsMaxOrder_*", "", {{"pSrc=null len=0", vspStatBadSize}, {"pOrder=null len=-1", vspStatBadSize}}},
    // Deviations need two elements.
    {"vspsStdDev_*", "", {{"len=1", vspStatBadSize}, {"pSrc=null len=1", vspStatNullPtr}}},
    {"vspsMeanStdDev_*", "", {{"len=1", vspStatBadSize}, {"pStdDev=null len=1", vspStatNullPtr}}},
    {"vspsSumWindow_*",
     "maskSize=3",
     {{"maskSize=0", vspStatMaskSizeErr},
      {"maskSize=-1", vspStatMaskSizeErr},
      {"pDst=null maskSize=0", vspStatNullPtr},
      {"len=0 maskSize=0", vspStatBadSize}}},
    {"vspsFindNearest_16u",
     "tblLen=5",
     {{"tblLen=0", vspStatBadSize}, {"pTable=null tblLen=0", vspStatNullPtr}, {"len=0 tblLen=0", vspStatBadSize}}},
    {"vspsFindNearestOne_16u", "tblLen=5", {{"tblLen=0", vspStatBadSize}, {"pOutVal=null tblLen=0", vspStatNullPtr}}},
    {"vspsCountInRange_32s",
     "lowerBound=2 upperBound=5",
     {{"lowerBound=6 upperBound=5", vspStatBadArg},
      {"lowerBound=5 upperBound=5", vspStatOk},
      {"len=0 lowerBound=6 upperBound=5", vspStatBadSize}}},
    {"vspsZeroCrossing_*",
     "zcType=0",
     {{"zcType=3", vspStatBadArg}, {"zcType=-1", vspStatBadArg}, {"zcType=2", vspStatOk}, {"len=0 zcType=3", vspStatBadSize}}},
    {"vspsNormalize_*",
     "",
     {{"vDiv=0", vspStatDivByZeroErr}, {"len=0 vDiv=0", vspStatBadSize}, {"pDst=null vDiv=0", vspStatNullPtr}}},
});
