// Reference rows of conversions and real thresholds. A conversion is the value itself: the
// harness scales it by 2^-scaleFactor, rounds it by the rndMode argument (or to nearest even)
// and saturates it into the destination, NaN giving 0.
#include <cmath>

#include "support/refrows.h"
#include "vsp.h"

namespace vsptest {
namespace {

W Same(const In& a) { return a.x; }
// The scale factor limited to [lo, hi] (members that document such a clamp).
RefFn Clamped(int lo, int hi) { return [=](const In& a) { return W(Ldexp(a.x.re, -std::clamp(a.scale, lo, hi))); }; }
const std::vector<std::string> kModes = {"rndMode=0", "rndMode=1", "rndMode=2", "rndMode=7"};

Q Abs(Q v) { return v < 0 ? -v : v; }
Q CopySign(Q mag, Q sign) { return std::signbit(static_cast<double>(sign)) ? -mag : mag; }
bool Float(const In& a) { return a.src->isFloat; }

const std::vector<std::string> kLevels = {"level=3 value=-7", "level=0 value=5", "level=-4 value=5", "level=1.5 value=-0.25"};
const std::vector<std::string> kAbsLevels = {"level=3 value=-7", "level=0 value=5", "level=2.5 value=8"};

}  // namespace

VSP_REF_ROWS(kConvertRows)({
    {"vspsConvert_*", Same, 0, kModes},
    {"vspsConvert_24s*", Same, 0, {""}, nullptr, 0, nullptr, false, "24s"},
    {"vspsConvert_24u*", Same, 0, {""}, nullptr, 0, nullptr, false, "24u"},
    {"vspsConvert_32f24s_Sfs", Same, 0, {""}, nullptr, 0, nullptr, false, nullptr, "24s"},
    {"vspsConvert_32f24u_Sfs", Same, 0, {""}, nullptr, 0, nullptr, false, nullptr, "24u"},
    {"vspsConvert_32s16s_Sfs", Clamped(-15, 31), 0, {""}, nullptr, 0, nullptr, true},
    {"vspsConvert_32s24s_Sfs", Clamped(-31, 31), 0, {""}, nullptr, 0, nullptr, true, nullptr, "24s"},
    {"vspsConvert_32u24u_Sfs", Clamped(-31, 31), 0, {""}, nullptr, 0, nullptr, true, nullptr, "24u"},
});

VSP_REF_ROWS(kThresholdRows)({
    {"vspsThreshold_LT_???*", [](const In& a) { return a.x.re < a.P("level") ? W(a.P("level")) : a.x; }, 0, kLevels},
    {"vspsThreshold_GT_???*", [](const In& a) { return a.x.re > a.P("level") ? W(a.P("level")) : a.x; }, 0, kLevels},
    {"vspsThreshold_???", [](const In& a) {
       const bool less = a.P("relOp") == 0;
       return (less ? a.x.re < a.P("level") : a.x.re > a.P("level")) ? W(a.P("level")) : a.x;
     }, 0, {"level=3 relOp=0", "level=-2.5 relOp=4", "level=0 relOp=4"}},
    {"vspsThreshold_???_I", [](const In& a) {
       const bool less = a.P("relOp") == 0;
       return (less ? a.x.re < a.P("level") : a.x.re > a.P("level")) ? W(a.P("level")) : a.x;
     }, 0, {"level=3 relOp=4", "level=-2.5 relOp=0"}},
    {"vspsThreshold_LTVal_???*", [](const In& a) { return a.P("level") <= a.x.re ? a.x : a.Param("value"); }, 0, kLevels},
    {"vspsThreshold_GTVal_???*", [](const In& a) { return a.x.re > a.P("level") ? a.Param("value") : a.x; }, 0, kLevels},
    {"vspsThreshold_LTAbsVal_*", [](const In& a) { return Abs(a.x.re) < a.P("level") ? a.Param("value") : a.x; }, 0, kLevels},
    {"vspsThreshold_LTValGTVal_*", [](const In& a) {
       if (IsNan(a.x.re)) return a.Param("valueLT");
       return a.x.re < a.P("levelLT") ? a.Param("valueLT") : a.x.re > a.P("levelGT") ? a.Param("valueGT") : a.x;
     }, 0, {"levelLT=3 valueLT=-7 levelGT=9 valueGT=7", "levelLT=-4 valueLT=5 levelGT=4 valueGT=-5", "levelLT=2.5 valueLT=8 levelGT=2.5 valueGT=-8"}},
    // Floats: NaN becomes the level with its sign, +-0 becomes +-level.
    {"vspsThreshold_LTAbs_*", [](const In& a) {
       const Q l = a.P("level");
       if (Float(a)) return W(IsNan(a.x.re) || Abs(a.x.re) < l ? CopySign(l, a.x.re) : a.x.re);
       return Abs(a.x.re) < l ? W(a.x.re < 0 ? -l : l) : a.x;
     }, 0, kAbsLevels},
    // Floats: with level 0 every element becomes -0.0; NaN becomes the level.
    {"vspsThreshold_GTAbs_*", [](const In& a) {
       const Q l = a.P("level");
       if (Float(a) && l == 0) return W(-Q(0));
       if (Float(a) && IsNan(a.x.re)) return W(l);
       return a.x.re > l ? W(l) : a.x.re < -l ? W(-l) : a.x;
     }, 0, kAbsLevels},
    {"vspsThreshold_LTInv_???*", [](const In& a) {
       const Q l = a.P("level");
       return W(a.R(1 / (Abs(a.x.re) < l ? CopySign(l, a.x.re) : a.x.re)));
     }, 0, {"level=0.5", "level=0", "level=3"}, [](const In& a) { return a.P("level") == 0 && a.x.re == 0; }, vspStatInvZeroWarn},
});

VSP_WAIVERS(kConvertWaivers)({
    {"vspsConvert_16f*", "Half.EveryPatternToFloatAndBack"},
    {"vspsConvert_*16f", "Half.MidpointsAndTheirNeighbours"},
    {"vspsThreshold_*c", "ThresholdComplex.EveryMemberAgainstMagnitudesAndDirections"},
    {"vspsThreshold_*c_I", "ThresholdComplex.EveryMemberAgainstMagnitudesAndDirections"},
});

}  // namespace vsptest
