// Reference rows of arithmetic and logic: one formula per operation serves every type, the
// _I, _Sfs and _ISfs forms and the mixed-type members (the harness scales, rounds and saturates
// into the destination; float formulas round per operation in the element's precision).
#include "support/refrows.h"
#include "vsp.h"

namespace vsptest {
namespace {

bool Zero(const W& v) { return v.re == 0 && v.im == 0; }
bool NonZeroC(const In& a) { return !Zero(a.c); }
bool ZeroX(const In& a) { return Zero(a.x); }

// Bits of an integer element, and an integer of the destination's width from bits.
unsigned long long U(Q v) { return static_cast<unsigned long long>(static_cast<__int128>(v)); }
Q Wrap(const In& a, unsigned long long u) {
  const int bits = 8 * a.src->PartBytes();
  if (bits < 64) u &= (1ULL << bits) - 1;
  if (a.src->isSigned && bits < 64 && (u >> (bits - 1)) & 1) return static_cast<Q>(static_cast<long long>(u | (~0ULL << bits)));
  return a.src->isSigned ? static_cast<Q>(static_cast<long long>(u)) : static_cast<Q>(u);
}
int Width(const In& a) { return 8 * a.src->PartBytes(); }

std::vector<std::string> Counts(const char* name, int hi) {
  std::vector<std::string> v;
  for (int k = 0; k <= hi; ++k) v.push_back(std::string(name) + "=" + std::to_string(k));
  return v;
}

}  // namespace

VSP_REF_ROWS(kArithRows)({
    {"vspsAdd_*", [](const In& a) { return a.x + a.y; }},
    {"vspsSub_*", [](const In& a) { return a.y - a.x; }},
    {"vspsMul_*", [](const In& a) { return a.Mul(a.x, a.y); }},
    {"vspsMul_32f32fc*", [](const In& a) { return W(a.R(a.x.re * a.y.re), a.R(a.x.re * a.y.im)); }},
    {"vspsAddC_*", [](const In& a) { return a.x + a.c; }},
    {"vspsSubC_*", [](const In& a) { return a.x - a.c; }},
    {"vspsSubCRev_*", [](const In& a) { return a.c - a.x; }},
    {"vspsMulC_*", [](const In& a) { return a.Mul(a.x, a.c); }},
    {"vspsMulC_64f64s_ISfs", [](const In& a) { return W(static_cast<double>(static_cast<double>(a.x.re) * static_cast<double>(a.c.re))); }},
    {"vspsAddProduct_*", [](const In& a) { return a.R(a.d + a.Mul(a.x, a.y)); }},
    {"vspsAddProductC_*", [](const In& a) { return a.R(a.d + a.Mul(a.x, a.c)); }},
    // IEEE quotients; a zero divisor element warns after the whole vector is written.
    {"vspsDiv_*", [](const In& a) { return a.Div(a.y, a.x); }, 0, {""}, ZeroX, vspStatDivByZeroWarn},
    {"vspsDivC_*", [](const In& a) { return a.Div(a.x, a.c); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivC_32f", [](const In& a) { return W(a.R(a.x.re * a.R(1 / a.c.re))); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivC_32f_I", [](const In& a) { return W(a.R(a.x.re * a.R(1 / a.c.re))); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivCRev_32f*", [](const In& a) { return a.Div(a.c, a.x); }, 0, {""}, ZeroX, vspStatDivByZeroWarn},
    // Bitwise logic and shifts by every count from 0 to the width + 2.
    {"vspsAnd_*", [](const In& a) { return W(Wrap(a, U(a.x.re) & U(a.y.re))); }},
    {"vspsOr_*", [](const In& a) { return W(Wrap(a, U(a.x.re) | U(a.y.re))); }},
    {"vspsXor_*", [](const In& a) { return W(Wrap(a, U(a.x.re) ^ U(a.y.re))); }},
    {"vspsAndC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) & U(a.c.re))); }},
    {"vspsOrC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) | U(a.c.re))); }},
    {"vspsXorC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) ^ U(a.c.re))); }},
    {"vspsNot_*", [](const In& a) { return W(Wrap(a, ~U(a.x.re))); }},
    {"vspsLShiftC_*", [](const In& a) {
       const int k = static_cast<int>(a.c.re);
       return W(k >= Width(a) ? Q(0) : Wrap(a, U(a.x.re) << k));
     }, 0, Counts("val", 34)},
    {"vspsRShiftC_*", [](const In& a) {
       const int k = static_cast<int>(a.c.re), w = Width(a);
       if (a.src->isSigned) return W(static_cast<Q>(static_cast<long long>(a.x.re) >> std::min(k, w - 1)));
       return W(k >= w ? Q(0) : static_cast<Q>(U(a.x.re) >> k));
     }, 0, Counts("val", 34)},
});

// Members with references of their own (exact rational quotients, the refined reciprocal).
VSP_WAIVERS(kArithWaivers)({
    {"vspsDiv_*Sfs", "IntDiv.RandomAndExtremeOperandsAtEveryScale"},
    {"vspsDivC_*Sfs", "IntDiv.RandomAndExtremeOperandsAtEveryScale"},
    {"vspsDivCRev_16u*", "IntDiv.EveryLengthAndOffset"},
    {"vspsDiv_32f", "FloatArith.Div32fRefinedReciprocal"},
    {"vspsDiv_32f_I", "FloatArith.Div32fRefinedReciprocal"},
});

}  // namespace vsptest
