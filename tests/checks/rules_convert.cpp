// Argument-check rules of the conversion, logic and threshold families.
#include "support/check_rules.h"
#include "vsp.h"

namespace {

using vsptest::CheckCase;
using vsptest::kAnyOk;
using Cases = std::vector<CheckCase>;

// The 16-bit float members refuse rndMode 2 after the pointers and the length; other values pass.
const Cases kHalfModes = {{"rndMode=2", vspStatRoundModeErr}, {"rndMode=2 len=0", vspStatBadSize},
                          {"rndMode=2 pDst=null", vspStatNullPtr}, {"rndMode=7", kAnyOk}};
// No scale factor is an error; in the rounding group no rounding mode either.
const Cases kAnyScale = {{"scaleFactor=2147483647", kAnyOk}, {"scaleFactor=-2147483648", kAnyOk}};
const Cases kAnyMode = {{"rndMode=2", kAnyOk}, {"rndMode=-7", kAnyOk}};
// Shift counts: negative after the pointers and the length; 0 and counts above the width settled
// through Copy and Zero (or the sign fill), whose tests keep the generic order.
const Cases kShiftCounts = {{"val=-1", vspStatShiftErr}, {"val=-1 len=0", vspStatBadSize}, {"val=40", kAnyOk},
                            {"val=40 len=0", vspStatBadSize}, {"val=0 len=0", vspStatBadSize}};
const Cases kShiftCountsOut = {{"val=40 pDst=null", vspStatNullPtr}, {"val=40 pSrc=null", vspStatNullPtr},
                               {"val=0 pSrc=null", vspStatNullPtr}, {"val=0 pDst=null", vspStatNullPtr}};
// A zero constant goes through Zero or Copy.
const Cases kZeroConstantOut = {{"val=0 pSrc=null", vspStatNullPtr}, {"val=0 pDst=null", vspStatNullPtr},
                                {"val=0 len=0", vspStatBadSize}};
const Cases kZeroConstantIn = {{"val=0 pSrcDst=null", vspStatNullPtr}, {"val=0 len=0", vspStatBadSize}};
// The relation operator is tested after the vectors and before the level.
const Cases kRelOp = {{"relOp=4", kAnyOk}, {"relOp=1", vspStatBadArg}, {"relOp=1 len=0", vspStatBadSize}};
const Cases kNegativeLevel = {{"level=-1", vspStatNegThreshold}, {"level=-1 len=0", vspStatBadSize}, {"level=0", kAnyOk}};

}  // namespace

VSP_CHECK_RULES(kConvertRules)({
    {"vspsConvert_16s16f", "", kHalfModes},
    {"vspsConvert_32f16f", "", kHalfModes},
    {"vspsConvert_16f16s_Sfs", "", kHalfModes},
    {"vspsConvert_*_Sfs", "", kAnyScale},
    {"vspsConvert_16s8s_Sfs", "", kAnyMode},
    {"vspsConvert_64*_Sfs", "", kAnyMode},
    {"vspsConvert_32f??_Sfs", "", kAnyMode},
    {"vspsConvert_32f16?_Sfs", "", kAnyMode},
    {"vspsConvert_32f32s_Sfs", "", kAnyMode},
});

VSP_CHECK_RULES(kLogicRules)({
    {"vsps?ShiftC_*", "", kShiftCounts},
    {"vsps?ShiftC_??", "", kShiftCountsOut},
    {"vsps?ShiftC_???", "", kShiftCountsOut},
    {"vsps*C_?u", "", kZeroConstantOut},
    {"vsps*C_??u", "", kZeroConstantOut},
    {"vsps*C_?u_I", "", kZeroConstantIn},
    {"vsps*C_??u_I", "", kZeroConstantIn},
    {"vsps?ShiftC_*_I", "", kZeroConstantIn},
});

VSP_CHECK_RULES(kThresholdRules)({
    {"vspsThreshold_???", "relOp=0", kRelOp},
    {"vspsThreshold_???_I", "relOp=0", kRelOp},
    {"vspsThreshold_????", "relOp=0", {{"relOp=1 level=-1", vspStatBadArg}}},
    {"vspsThreshold_????_I", "relOp=0", {{"relOp=1 level=-1", vspStatBadArg}}},
    {"vspsThreshold_????", "", kRelOp},
    {"vspsThreshold_????_I", "", kRelOp},
    // Levels compared with magnitudes may not be negative; LTAbsVal does not test its level.
    {"vspsThreshold_*c", "", kNegativeLevel},
    {"vspsThreshold_*c_I", "", kNegativeLevel},
    {"vspsThreshold_?TAbs_*", "", kNegativeLevel},
    {"vspsThreshold_LTInv_*", "", kNegativeLevel},
    {"vspsThreshold_LTAbsVal_*", "", {{"level=-1", kAnyOk}}},
    {"vspsThreshold_LTValGTVal_*", "",
     {{"levelLT=2 levelGT=1", vspStatThreshLevelOrder}, {"levelLT=2 levelGT=1 len=0", vspStatBadSize}}},
});
