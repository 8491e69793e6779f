// Argument-check rules of the arithmetic families: the short-cuts through other exports and the
// families' own parameters.
#include <string>
#include <vector>

#include "support/check_rules.h"
#include "vsp.h"

namespace vsptest {
namespace {

std::vector<CheckRule> ArithRules() {
  std::vector<CheckRule> rules;
  // Far outside the zero and saturation limits the checks still come first (the zero-fill
  // short-cut through vspsZero_<T> keeps the order).
  for (const char* fam : {"vspsAdd_*Sfs", "vspsSub_*Sfs", "vspsMul_*Sfs", "vspsDiv_*Sfs", "vspsAddC_*Sfs", "vspsSubC_*Sfs",
                          "vspsSubCRev_*Sfs", "vspsMulC_*Sfs", "vspsDivC_*Sfs", "vspsAddProduct_*Sfs"}) {
    for (const char* s : {"200", "-200", "1000000", "-1000000"})
      rules.push_back({fam, "", {{std::string("scaleFactor=") + s, kAnyOk}, {std::string("len=0 scaleFactor=") + s, vspStatBadSize}}});
  }
  return rules;
}
VSP_CHECK_RULES(kArithScaleRules)(ArithRules());

VSP_CHECK_RULES(kArithRules)({
    // Complex integer sums and differences test the length first, then run the real member on
    // twice the length.
    {"vspsAdd_??sc_Sfs", "", {{"pSrc1=null len=0", vspStatBadSize}, {"pDst=null len=0", vspStatBadSize}}},
    {"vspsSub_??sc_Sfs", "", {{"pSrc1=null len=0", vspStatBadSize}, {"pDst=null len=0", vspStatBadSize}}},
    {"vspsAdd_??sc_ISfs", "", {{"pSrc=null len=0", vspStatBadSize}, {"pSrcDst=null len=-1", vspStatBadSize}}},
    {"vspsSub_??sc_ISfs", "", {{"pSrc=null len=0", vspStatBadSize}, {"pSrcDst=null len=-1", vspStatBadSize}}},
    // Sums of 16u elements above scale 17: the sources, then vspsZero_16s.
    {"vspsAdd_16u_Sfs",
     "",
     {{"scaleFactor=18", vspStatOk},
      {"pSrc2=null scaleFactor=18", vspStatNullPtr},
      {"pDst=null scaleFactor=18", vspStatNullPtr},
      {"pSrc1=null len=0 scaleFactor=18", vspStatNullPtr}}},
    // Adding 0 unscaled is vspsCopy_16s.
    {"vspsAddC_16s_*Sfs", "", {{"val=0 scaleFactor=0", vspStatOk}, {"len=0 val=0 scaleFactor=0", vspStatBadSize}}},
    {"vspsAddC_16s_Sfs", "", {{"pDst=null val=0 scaleFactor=0", vspStatNullPtr}}},
    // The destination equal to a source becomes the in-place form before any test.
    {"vspsMul_16sc_Sfs",
     "",
     {{"pDst=alias:pSrc1", vspStatOk},
      {"pDst=alias:pSrc2", vspStatOk},
      {"pDst=alias:pSrc2 len=0", vspStatBadSize},
      {"pSrc1=null pDst=alias:pSrc1", vspStatNullPtr}}},
    // Multiplying 32s in place by 0 is vspsZero_32s; by 1 unscaled, nothing.
    {"vspsMulC_32s_ISfs",
     "",
     {{"val=0", vspStatOk}, {"val=0 len=0", vspStatBadSize}, {"pSrcDst=null val=0", vspStatNullPtr}, {"val=1 scaleFactor=0", vspStatOk}}},
    // Quotients of 16s above scale 15 take the inline path, with the same checks.
    {"vspsDiv_16s_*Sfs", "", {{"scaleFactor=16", vspStatOk}, {"len=0 scaleFactor=16", vspStatBadSize}}},
    // A zero constant divisor is refused after the vectors...
    {"vspsDivC_*", "", {{"val=0", vspStatDivByZeroErr}, {"len=0 val=0", vspStatBadSize}}},
    {"vspsDivC_*c*", "", {{"val=0,1", kAnyOk}, {"val=1,0", kAnyOk}}},
    {"vspsDivC_*_I*", "", {{"pSrcDst=null val=0", vspStatNullPtr}}},
    // ... except by vspsDivC_32f, which tests val first and then is vspsMulC_32f.
    {"vspsDivC_32f",
     "",
     {{"len=0 val=0", vspStatDivByZeroErr}, {"pSrc=null val=0", vspStatDivByZeroErr}, {"pDst=null val=nan", vspStatNullPtr}}},
    {"vspsDivCRev_*", "", {{"val=0", kAnyOk}, {"len=0 val=0", vspStatBadSize}}},
    // The rounding mode, after the pointers and the length.
    {"vspsDiv_Round_*",
     "",
     {{"rndMode=0", kAnyOk},
      {"rndMode=2", kAnyOk},
      {"rndMode=3", vspStatRoundModeErr},
      {"rndMode=-1", vspStatRoundModeErr},
      {"len=0 rndMode=3", vspStatBadSize}}},
    {"vspsDiv_Round_*_Sfs", "", {{"pSrc2=null rndMode=3", vspStatNullPtr}}},
});

}  // namespace
}  // namespace vsptest
