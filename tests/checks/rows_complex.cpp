// Reference rows of the complex-number utilities: interleaved members read x as one complex
// element, split members read the real part from x (pSrcRe) and the imaginary part from y (pSrcIm).
#include <cmath>

#include "support/refrows.h"
#include "vsp.h"

namespace vsptest {
namespace {

bool IsInf(Q v) { return v == v && (v - v) != (v - v); }
// Magnitude: sqrt(re^2 + im^2), +Inf for an infinite part even beside a NaN.
W Magnitude(Q re, Q im) { return IsInf(re) || IsInf(im) ? W(Q(INFINITY)) : W(Sqrt(re * re + im * im)); }

// atan2 in long double (64 bits), enough for rows that allow a few ulp of double.
W Phase(Q im, Q re) { return W(static_cast<Q>(std::atan2(static_cast<long double>(im), static_cast<long double>(re)))); }

}  // namespace

VSP_REF_ROWS(kComplexRows)({
    {"vspsPhase_*c*", [](const In& a) { return Phase(a.x.im, a.x.re); }, 1},
    {"vspsPhase_64fc", [](const In& a) { return Phase(a.x.im, a.x.re); }, 4},
    {"vspsPhase_32f", [](const In& a) { return Phase(a.y.re, a.x.re); }, 1},
    {"vspsPhase_64f", [](const In& a) { return Phase(a.y.re, a.x.re); }, 4},
    {"vspsPhase_16s32f", [](const In& a) { return Phase(a.y.re, a.x.re); }, 1},
    {"vspsPhase_16s_Sfs", [](const In& a) { return Phase(a.y.re, a.x.re); }},
    {"vspsMagnitude_*c*", [](const In& a) { return Magnitude(a.x.re, a.x.im); }, 1},
    {"vspsMagnitude_??f", [](const In& a) { return Magnitude(a.x.re, a.y.re); }, 2},
    {"vspsMagnitude_16s32f", [](const In& a) { return Magnitude(a.x.re, a.y.re); }, 1},
    {"vspsMagnitude_16s_Sfs", [](const In& a) { return Magnitude(a.x.re, a.y.re); }},
    {"vspsMagnitude_64fc", [](const In& a) { return Magnitude(a.x.re, a.x.im); }, 2},
    {"vspsPowerSpectr_*c*", [](const In& a) { return W(a.x.re * a.x.re + a.x.im * a.x.im); }, 1},
    {"vspsPowerSpectr_32fc", [](const In& a) { return a.R(a.R(a.x.re * a.x.re) + a.R(a.x.im * a.x.im)); }},
    {"vspsPowerSpectr_32f", [](const In& a) { return a.R(a.R(a.x.re * a.x.re) + a.R(a.y.re * a.y.re)); }},
    {"vspsPowerSpectr_16s32f", [](const In& a) { return W(a.x.re * a.x.re + a.y.re * a.y.re); }, 1},
    {"vspsPowerSpectr_16s_Sfs", [](const In& a) { return W(a.x.re * a.x.re + a.y.re * a.y.re); }},
    {"vspsPowerSpectr_64fc", [](const In& a) { return a.R(a.R(a.x.re * a.x.re) + a.R(a.x.im * a.x.im)); }},
    {"vspsPowerSpectr_64f", [](const In& a) { return a.R(a.R(a.x.re * a.x.re) + a.R(a.y.re * a.y.re)); }},
    {"vspsConj_*", [](const In& a) { return W(a.x.re, -a.x.im); }},
    {"vspsConjFlip_*", [](const In& a) { return W(a.xr.re, -a.xr.im); }},
    {"vspsReal_*", [](const In& a) { return W(a.x.re); }},
    {"vspsImag_*", [](const In& a) { return W(a.x.im); }},
});

VSP_WAIVERS(kComplexWaivers)({
    {"vspsCplxToReal_*", "ComplexParts.SplitAndJoin"},
    {"vspsRealToCplx_*", "ComplexParts.SplitAndJoin"},
    {"vspsGoertz_*", "Goertzel.EveryMemberAgainstTheSum"},
    {"vspsCartToPolar_*", "ComplexParts.PolarForms"},
    {"vspsPolarToCart_*", "ComplexParts.PolarForms"},
});

}  // namespace vsptest
