// Reference rows of the frame's element-wise families and the element-wise statistics, and the
// waivers of the families tested by programs of their own.
#include "support/refrows.h"
#include "vsp.h"

namespace vsptest {
namespace {

// The bytes of an element in reverse order.
W Swapped(const In& a) {
  const int b = a.src->PartBytes();
  const unsigned long long u = static_cast<unsigned long long>(static_cast<__int128>(a.x.re));
  unsigned long long r = 0;
  for (int k = 0; k < b; ++k) r |= ((u >> (8 * k)) & 0xFF) << (8 * (b - 1 - k));
  return W(static_cast<Q>(r));
}
W Normalized(const In& a) {
  const W s = a.Param("vSub");
  const Q d = a.P("vDiv");
  return W(a.R(a.R(a.x.re - s.re) / d), a.R(a.R(a.x.im - s.im) / d));
}

}  // namespace

VSP_REF_ROWS(kCoreRows)({
    {"vspsZero_*", [](const In&) { return W(); }},
    {"vspsSet_*", [](const In& a) { return a.c; }},
    {"vspsCopy_*", [](const In& a) { return a.x; }},
    {"vspsMove_*", [](const In& a) { return a.x; }},
    {"vspsFlip_*", [](const In& a) { return a.xr; }},
    {"vspsSwapBytes_*", Swapped},
    {"vspsSwapBytes_24u*", Swapped, 0, {""}, nullptr, 0, nullptr, false, "24u", "24u"},
});

VSP_REF_ROWS(kStatsRows)({
    {"vspsMaxEvery_*", [](const In& a) { return a.x.re > a.y.re ? a.x : a.y; }},
    {"vspsMinEvery_*", [](const In& a) { return a.x.re < a.y.re ? a.x : a.y; }},
    {"vspsReplaceNAN_*", [](const In& a) { return IsNan(a.x.re) ? a.Param("value") : a.x; }, 0, {"value=7", "value=-0.5"}},
    {"vspsNormalize_*", Normalized, 0, {"vSub=1.25 vDiv=-0.3", "vSub=1,-2 vDiv=3", "vSub=-0.5,0.25 vDiv=0.5"}},
    {"vspsNormalize_*_Sfs", Normalized, 0,
     {"vSub=17 vDiv=1", "vSub=-5,9 vDiv=-1", "vSub=3 vDiv=2", "vSub=0 vDiv=-7", "vSub=1 vDiv=1000", "vSub=2 vDiv=2147483647"}},
});

// Reductions whose integer results are exact, then scaled and rounded once.
using Ins = std::vector<In>;
W Total(const Ins& v, W (*term)(const In&)) {
  W t;
  for (const In& a : v) t = t + term(a);
  return t;
}
Q Mag(Q v) { return v < 0 ? -v : v; }
W Norm(const Ins& v, bool diff, int kind) {  // kind 0 Inf, 1 L1, 2 L2, 3 squared L2
  Q r = 0;
  for (const In& a : v) {
    const Q m = Mag(diff ? a.x.re - a.y.re : a.x.re);
    r = kind == 0 ? (m > r ? m : r) : kind == 1 ? r + m : r + m * m;
  }
  return W(kind == 2 ? Sqrt(r) : r);
}
template <bool kDiff, int kKind> W NormOf(const Ins& v) { return Norm(v, kDiff, kKind); }

VSP_REF_ROWS(kReductionRows)({
    {.pattern = "vspsSum_*_Sfs", .reduce = [](const Ins& v) { return Total(v, [](const In& a) { return a.x; }); }},
    {.pattern = "vspsDotProd_*", .reduce = [](const Ins& v) { return Total(v, [](const In& a) { return a.Mul(a.x, a.y); }); }},
    {.pattern = "vspsNorm_Inf_16s*", .reduce = NormOf<false, 0>},
    {.pattern = "vspsNorm_L1_16s*", .reduce = NormOf<false, 1>},
    {.pattern = "vspsNorm_L2_16s32f", .ulps = 1, .reduce = NormOf<false, 2>},
    {.pattern = "vspsNorm_L2Sqr_16s*", .reduce = NormOf<false, 3>},
    {.pattern = "vspsNormDiff_Inf_16s*", .reduce = NormOf<true, 0>},
    {.pattern = "vspsNormDiff_L1_16s*", .reduce = NormOf<true, 1>},
    {.pattern = "vspsNormDiff_L2_16s32f", .ulps = 1, .reduce = NormOf<true, 2>},
    {.pattern = "vspsNormDiff_L2Sqr_16s*", .reduce = NormOf<true, 3>},
});

// Families whose results are not element-wise, tested by their own programs.
VSP_WAIVERS(kCoreWaivers)({
    {"vspsMalloc_*", "Allocators.AlignedWritableBlocksOfEveryType"},
    {"vspsFree", "Allocators.AlignedWritableBlocksOfEveryType"},
    {"vspsGetLibVersion", "Version.FixedFieldsAndFormats"},
    {"vspsCopy?E_1u", "BitCopy.MatchesBitByBitReference"},
    {"vspsSum_??f*", "Sums.FloatSumsAndMeansRoundTheExactTotalOnce"},
    {"vspsMean_??f*", "Sums.FloatSumsAndMeansRoundTheExactTotalOnce"},
    {"vspsMean_*_Sfs", "Sums.IntegerMeansFollowTheirScalingRule"},
    {"vsps*StdDev_*", "Sums.DeviationsAgreeWithTwoPassReferences"},
    {"vspsNorm*_32f", "Norms.FloatNormsAgreeWithExtendedReferences"},
    {"vspsNorm*_64f", "Norms.FloatNormsAgreeWithExtendedReferences"},
    {"vspsNorm*_?4fc*", "Norms.FloatNormsAgreeWithExtendedReferences"},
    {"vspsNorm*_?2fc*", "Norms.FloatNormsAgreeWithExtendedReferences"},
    {"vspsNorm*_L2_16s32s_Sfs", "Norms.IntegerL2NormsRoundTheirRoot"},
    {"vspsDotProd_??f*", "DotProducts.FloatAndDoubleResultsAgreeWithExtendedReferences"},
    {"vspsMax_*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMin_*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMaxIndx_*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMinIndx_*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMaxAbs*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMinAbs*", "Extremes.ValuesAndFirstIndices"},
    {"vspsMinMax*", "Extremes.MinMaxAndTheirFirstIndices"},
    {"vspsMaxOrder_*", "Extremes.MaxOrder"},
    {"vspsSumWindow_*", "Extremes.SumWindowFollowsItsRecurrence"},
    {"vspsFindNearest*", "Search.FindNearestMatchesBruteForce"},
    {"vspsCountInRange_*", "Search.CountInRangeCountsTheClosedInterval"},
    {"vspsZeroCrossing_*", "Search.ZeroCrossingMeasures"},
    {"vspsSort*", "Sort.EveryShapeAndLengthUpTo100"},
    {"vspsSortRadix*", "SortRadix.MatchesAStableSortOfTheKeys"},
    {"vspsFFTGetSize_*", "FftInterface.GetSizeEveryOrderFlagAndKind"},
    {"vspsFFTInit_*", "FftInterface.InitCheckOrder"},
    {"vspsMulP*", "Packed.ProductsEveryLengthAndOffset"},
    {"vspsConj*", "Packed.ExpansionsEveryLengthInPlaceAndNot"},
});

}  // namespace vsptest
