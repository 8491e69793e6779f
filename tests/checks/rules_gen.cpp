// Argument-check rules of the window functions and generators.
#include "support/check_rules.h"
#include "support/refrows.h"
#include "vsp.h"

VSP_CHECK_RULES(kWindowRules)({
    // Windows need three elements (BlackmanOpt four, tested before the pointers); Kaiser one,
    // then its parameter limit.
    {"vspsWinBartlett_*", "", {{"len=2", vspStatBadSize}}},
    {"vspsWinHann_*", "", {{"len=2", vspStatBadSize}}},
    {"vspsWinHamming_*", "", {{"len=2", vspStatBadSize}}},
    {"vspsWinBlackman_*", "", {{"len=2", vspStatBadSize}}},
    {"vspsWinBlackmanStd_*", "", {{"len=2", vspStatBadSize}}},
    {"vspsWinBlackmanOpt_*", "", {{"len=3", vspStatBadSize}}},
    {"vspsWinBlackmanOpt_???", "", {{"pSrc=null len=0", vspStatBadSize}}},
    {"vspsWinBlackmanOpt_????", "", {{"pSrc=null len=0", vspStatBadSize}}},
    {"vspsWinBlackmanOpt_*_I", "", {{"pSrcDst=null len=0", vspStatBadSize}}},
    {"vspsWinKaiser_*", "alpha=0.5", {{"len=1", vsptest::kAnyOk}, {"alpha=100", vspStatHugeWinErr}}},
    // Tone and Triangle read a phase from pPhase before the destination: their order is tested
    // with valid phases.
    {"vspsTone_*", "", {}, "Generators.CheckOrdersLeaveEverythingUntouched"},
    {"vspsTriangle_*", "", {}, "Generators.CheckOrdersLeaveEverythingUntouched"},
});

VSP_WAIVERS(kWindowWaivers)(std::vector<vsptest::Waiver>{
    {"vspsWin*", "Windows.EveryMemberAgainstItsFormula"},
    {"vspsTone_*", "Generators.ToneAndTriangleAgainstFormulasAndAcrossCalls"},
    {"vspsTriangle_*", "Generators.ToneAndTriangleAgainstFormulasAndAcrossCalls"},
    {"vspsVector*", "Generators.JaehneAndSlope"},
});
