// Argument-check rules of the conversion, logic and threshold families.
#include "support/check_rules.h"
#include "vsp.h"

namespace {

using vsptest::CheckCase;
using vsptest::kAnyOk;

// The 16-bit float members refuse rndMode 2 after the pointers and the length; other values pass.
const std::vector<CheckCase> kHalfModes = {{"rndMode=2", vspStatRoundModeErr},
                                           {"rndMode=2 len=0", vspStatBadSize},
                                           {"rndMode=2 pDst=null", vspStatNullPtr},
                                           {"rndMode=0", kAnyOk},
                                           {"rndMode=7", kAnyOk}};

// No rounding mode and no scale factor is an error in the rounding group.
const std::vector<CheckCase> kAnyModeAnyScale = {{"rndMode=0", kAnyOk},
                                                 {"rndMode=2", kAnyOk},
                                                 {"rndMode=-7", kAnyOk},
                                                 {"scaleFactor=2147483647", kAnyOk},
                                                 {"scaleFactor=-2147483648", kAnyOk}};
const std::vector<CheckCase> kAnyScale = {{"scaleFactor=2147483647", kAnyOk}, {"scaleFactor=-2147483648", kAnyOk}};

// Shift counts: negative after the pointers and the length; above the width settled through
// Zero (or the sign fill), whose statuses are those of the generic order.
const std::vector<CheckCase> kShiftCounts = {{"val=-1", vspStatShiftErr},
                                             {"val=-1 len=0", vspStatBadSize},
                                             {"val=40", kAnyOk},
                                             {"val=0", kAnyOk},
                                             {"val=40 len=0", vspStatBadSize},
                                             {"val=0 len=0", vspStatBadSize}};
const std::vector<CheckCase> kShiftCountsOut = {{"val=40 pDst=null", vspStatNullPtr},
                                                {"val=40 pSrc=null", vspStatNullPtr},
                                                {"val=0 pSrc=null", vspStatNullPtr},
                                                {"val=0 pDst=null", vspStatNullPtr}};

// Constants that settle the result (0) go through Zero or Copy.
const std::vector<CheckCase> kZeroConstantOut = {{"val=0", kAnyOk},
                                                 {"val=0 pSrc=null", vspStatNullPtr},
                                                 {"val=0 pDst=null", vspStatNullPtr},
                                                 {"val=0 len=0", vspStatBadSize}};
const std::vector<CheckCase> kZeroConstantIn = {{"val=0", kAnyOk}, {"val=0 pSrcDst=null", vspStatNullPtr},
                                                {"val=0 len=0", vspStatBadSize}};

const std::vector<CheckCase> kRelOp = {{"relOp=4", kAnyOk}, {"relOp=1", vspStatBadArg}, {"relOp=1 len=0", vspStatBadSize}};
const std::vector<CheckCase> kNegativeLevel = {{"level=-1", vspStatNegThreshold},
                                               {"level=-1 len=0", vspStatBadSize},
                                               {"level=0", kAnyOk}};

}  // namespace

VSP_CHECK_RULES(kConvertRules)({
    {"vspsConvert_16s16f", "", kHalfModes},
    {"vspsConvert_32f16f", "", kHalfModes},
    {"vspsConvert_16f16s_Sfs", "", kHalfModes},
    {"vspsConvert_16s8s_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_64s32s_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_32f8?_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_32f16?_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_32f32s_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_64f*_Sfs", "", kAnyModeAnyScale},
    {"vspsConvert_32f24?_Sfs", "", kAnyScale},
    {"vspsConvert_*s??f_Sfs", "", kAnyScale},
    {"vspsConvert_32?24?_Sfs", "", kAnyScale},
    {"vspsConvert_32s16s_Sfs", "", kAnyScale},
    {"vspsConvert_8u8s_Sfs", "", kAnyScale},
});

VSP_CHECK_RULES(kLogicRules)({
    {"vsps?ShiftC_*", "", kShiftCounts},
    {"vsps?ShiftC_??", "", kShiftCountsOut},
    {"vsps?ShiftC_???", "", kShiftCountsOut},
    {"vspsAndC_??", "", kZeroConstantOut},
    {"vspsAndC_???", "", kZeroConstantOut},
    {"vsps?orC_??", "", kZeroConstantOut},
    {"vsps?orC_???", "", kZeroConstantOut},
    {"vspsOrC_??", "", kZeroConstantOut},
    {"vspsOrC_???", "", kZeroConstantOut},
    {"vsps*C_*_I", "", kZeroConstantIn},
});

VSP_CHECK_RULES(kThresholdRules)({
    // The relation operator is tested after the vectors, before the level.
    {"vspsThreshold_???", "relOp=0", kRelOp},
    {"vspsThreshold_???_I", "relOp=0", kRelOp},
    {"vspsThreshold_????", "relOp=0", {{"relOp=1 level=-1", vspStatBadArg}}},
    {"vspsThreshold_????_I", "relOp=0", {{"relOp=1 level=-1", vspStatBadArg}}},
    {"vspsThreshold_????", "", kRelOp},
    {"vspsThreshold_????_I", "", kRelOp},
    // Levels compared with magnitudes may not be negative.
    {"vspsThreshold_*c", "", kNegativeLevel},
    {"vspsThreshold_*c_I", "", kNegativeLevel},
    {"vspsThreshold_?TAbs_*", "", kNegativeLevel},
    {"vspsThreshold_LTInv_*", "", kNegativeLevel},
    {"vspsThreshold_LTAbsVal_*", "", {{"level=-1", kAnyOk}}},
    {"vspsThreshold_LTValGTVal_*",
     "",
     {{"levelLT=2 levelGT=1", vspStatThreshLevelOrder},
      {"levelLT=2 levelGT=1 len=0", vspStatBadSize},
      {"levelLT=1 levelGT=2", kAnyOk}}},
});
