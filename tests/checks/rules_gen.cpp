// Argument-check rules of the window functions and generators.
#include <vector>

#include "support/check_rules.h"
#include "support/refrows.h"
#include "vsp.h"

namespace {

// A state of each random generator, laid once.
template <class S, auto GetSize, auto Init, class V> const void* RandState() {
  static std::vector<Vsp8u> mem;
  static const void* st = [] {
    int size = 0;
    GetSize(&size);
    mem.resize(size);
    Init(reinterpret_cast<S*>(mem.data()), V(0), V(2), 1u);
    return static_cast<const void*>(mem.data());
  }();
  return st;
}
#define VSP_RAND_STATE(Kind, State, t) \
  vsptest::BlockFixture{"pRandState", RandState<Vsp##State##_##t, vspsRand##Kind##GetSize_##t, vspsRand##Kind##Init_##t, Vsp##t>}

}  // namespace

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
    // Random generators: a valid range, and real states for the processing functions.
    {"vspsRandUniformInit_*", "low=0 high=2", {{"low=2 high=2", vspStatBadArg}}},
    {"vspsRandGaussInit_*", "", {{"stdDev=-1", vspStatBadArg}}},
    {"vspsRandUniform_16s", "", {}, nullptr, VSP_RAND_STATE(Uniform, RandUniState, 16s)},
    {"vspsRandUniform_32f", "", {}, nullptr, VSP_RAND_STATE(Uniform, RandUniState, 32f)},
    {"vspsRandUniform_64f", "", {}, nullptr, VSP_RAND_STATE(Uniform, RandUniState, 64f)},
    {"vspsRandGauss_16s", "", {}, nullptr, VSP_RAND_STATE(Gauss, RandGaussState, 16s)},
    {"vspsRandGauss_32f", "", {}, nullptr, VSP_RAND_STATE(Gauss, RandGaussState, 32f)},
    {"vspsRandGauss_64f", "", {}, nullptr, VSP_RAND_STATE(Gauss, RandGaussState, 64f)},
});

VSP_WAIVERS(kWindowWaivers)(std::vector<vsptest::Waiver>{
    {"vspsWin*", "Windows.EveryMemberAgainstItsFormula"},
    {"vspsTone_*", "Generators.ToneAndTriangleAgainstFormulasAndAcrossCalls"},
    {"vspsTriangle_*", "Generators.ToneAndTriangleAgainstFormulasAndAcrossCalls"},
    {"vspsVector*", "Generators.JaehneAndSlope"},
    {"vspsRand*", "Random.SameSeedSameSequenceAcrossCalls"},
});
