// Packed real spectra: the products in Pack and Perm layout and the expansions of Pack, Perm
// and CCS to full spectra, for odd and even lengths from 1, in place and out of place, at
// every start offset, against the layouts' definitions.
#include <gtest/gtest.h>

#include <vector>

#include "support/buffers.h"
#include "support/types.h"
#include "vsp.h"

namespace vsptest {
namespace {

template <class T> struct Packed;
#define VSP_PACKED(t)                                                  \
  template <> struct Packed<Vsp##t> {                                  \
    using Tc = Vsp##t##c;                                              \
    static constexpr auto MulPack = vspsMulPack_##t;                   \
    static constexpr auto MulPackI = vspsMulPack_##t##_I;              \
    static constexpr auto MulPerm = vspsMulPerm_##t;                   \
    static constexpr auto MulPermI = vspsMulPerm_##t##_I;              \
    static constexpr auto MulPackConjI = vspsMulPackConj_##t##_I;      \
    static constexpr VspStatus (*Conj[3])(const Vsp##t*, Tc*, int) = { \
        vspsConjPack_##t##c, vspsConjPerm_##t##c, vspsConjCcs_##t##c}; \
    static constexpr VspStatus (*ConjI[3])(Tc*, int) = {               \
        vspsConjPack_##t##c_I, vspsConjPerm_##t##c_I, vspsConjCcs_##t##c_I}; \
  };
VSP_PACKED(32f)
VSP_PACKED(64f)
#undef VSP_PACKED

using Precisions = TypeList<Vsp32f, Vsp64f>;

std::vector<int> Lengths() {
  std::vector<int> v;
  for (int n = 1; n <= 70; ++n) v.push_back(n);
  for (int n : {127, 128, 1000, 1001, 4096}) v.push_back(n);
  return v;
}

// Where bin k (1 <= k <= (N-1)/2) and the Nyquist value of a layout sit (lay 0 Pack, 1 Perm).
size_t PairAt(int lay, size_t n, size_t k) { return (lay == 1 && n % 2 == 0) ? 2 * k : 2 * k - 1; }
size_t NyqAt(int lay, size_t n) { return lay == 1 ? 1 : n - 1; }

// a x b (conj: a x conj b) by the definition, in the element type.
template <class T> std::vector<T> RefProduct(int lay, const T* a, const T* b, size_t n, bool conj) {
  std::vector<T> d(n);
  d[0] = a[0] * b[0];
  if (n % 2 == 0) d[NyqAt(lay, n)] = a[NyqAt(lay, n)] * b[NyqAt(lay, n)];
  for (size_t k = 1; 2 * k < n; ++k) {
    const size_t i = PairAt(lay, n, k);
    const T ar = a[i], ai = a[i + 1], br = b[i], bi = b[i + 1];
    d[i] = conj ? ar * br + ai * bi : ar * br - ai * bi;
    d[i + 1] = conj ? ai * br - ar * bi : ai * br + ar * bi;
  }
  return d;
}

TEST(Packed, ProductsEveryLengthAndOffset) {
  ForEachType(Precisions{}, []<class T>() {
    using P = Packed<T>;
    Rng rng(11);
    for (int n : Lengths())
      for (size_t off = 0; off < 16; off += sizeof(T)) {
        SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " offset " + std::to_string(off));
        GuardedVec<T> a(n, (off + sizeof(T)) % 16), b(n, off), d(n, off);
        for (int i = 0; i < n; ++i) a[i] = static_cast<T>(rng.Uniform(-2, 2)), b[i] = static_cast<T>(rng.Uniform(-2, 2));
        const std::vector<T> bv(b.data(), b.data() + n);
        for (int lay = 0; lay < 2; ++lay) {
          const std::vector<T> want = RefProduct(lay, a.data(), bv.data(), n, false);
          auto out = lay == 0 ? P::MulPack : P::MulPerm;
          auto in = lay == 0 ? P::MulPackI : P::MulPermI;
          auto same = [&](const T* got) {
            for (int i = 0; i < n; ++i)
              if (!SameBits(got[i], want[i])) return false;
            return true;
          };
          ASSERT_EQ(out(a.data(), b.data(), d.data(), n), vspStatOk);
          ASSERT_TRUE(same(d.data()));
          ASSERT_TRUE(d.OutsideIntact());
          std::copy(bv.begin(), bv.end(), b.data());
          ASSERT_EQ(in(a.data(), b.data(), n), vspStatOk);
          ASSERT_TRUE(same(b.data()));
          // Destination equal to either source: the in-place product (commutative).
          std::copy(bv.begin(), bv.end(), b.data());
          ASSERT_EQ(out(a.data(), b.data(), b.data(), n), vspStatOk);
          ASSERT_TRUE(same(b.data()));
          std::copy(bv.begin(), bv.end(), b.data());
          ASSERT_EQ(out(b.data(), a.data(), b.data(), n), vspStatOk);
          ASSERT_TRUE(same(b.data()));
          std::copy(bv.begin(), bv.end(), b.data());
        }
        const std::vector<T> want = RefProduct(0, a.data(), bv.data(), n, true);
        ASSERT_EQ(P::MulPackConjI(a.data(), b.data(), n), vspStatOk);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(b[i], want[i])) << "conj " << i;
        ASSERT_TRUE(b.OutsideIntact() && a.OutsideIntact());
      }
  });
}

// The full spectrum of a layout (lay 2: CCS) by the definition.
template <class T> std::vector<T> RefExpand(int lay, const T* x, size_t n) {
  std::vector<T> y(2 * n);
  const size_t h = (n - 1) / 2;
  if (lay == 2) {
    for (size_t i = 0; i < 2 * (n / 2) + 2; ++i) y[i] = x[i];
    if (n == 1) y[1] = x[1];
  } else {
    y[0] = x[0], y[1] = 0;
    for (size_t k = 1; k <= h; ++k) y[2 * k] = x[PairAt(lay, n, k)], y[2 * k + 1] = x[PairAt(lay, n, k) + 1];
    if (n % 2 == 0) y[n] = x[NyqAt(lay, n)], y[n + 1] = 0;
  }
  for (size_t k = 1; k <= h; ++k) y[2 * (n - k)] = y[2 * k], y[2 * (n - k) + 1] = -y[2 * k + 1];
  return y;
}

TEST(Packed, ExpansionsEveryLengthInPlaceAndNot) {
  ForEachType(Precisions{}, []<class T>() {
    using P = Packed<T>;
    using Tc = typename P::Tc;
    Rng rng(12);
    for (int n : Lengths())
      for (int lay = 0; lay < 3; ++lay) {
        SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " layout " + std::to_string(lay));
        const size_t values = lay == 2 ? 2 * (n / 2) + 2 : n;  // CCS: N + 2 (even) or N + 1 (odd)
        GuardedVec<T> x(values, 4 % sizeof(T) == 0 ? 4 : 0);
        for (size_t i = 0; i < values; ++i) x[i] = static_cast<T>(rng.Uniform(-3, 3));
        const std::vector<T> want = RefExpand(lay, x.data(), n);
        GuardedVec<Tc> y(n);
        ASSERT_EQ(P::Conj[lay](x.data(), y.data(), n), vspStatOk);
        const T* yr = reinterpret_cast<const T*>(y.data());
        for (int i = 0; i < 2 * n; ++i) ASSERT_TRUE(SameBits(yr[i], want[i])) << "value " << i;
        ASSERT_TRUE(y.OutsideIntact() && x.OutsideIntact());
        // In place: the packed values at the start of the complex array.
        GuardedVec<Tc> io(n);
        T* ir = reinterpret_cast<T*>(io.data());
        std::copy(x.data(), x.data() + values, ir);
        ASSERT_EQ(P::ConjI[lay](io.data(), n), vspStatOk);
        for (int i = 0; i < 2 * n; ++i) ASSERT_TRUE(SameBits(ir[i], want[i])) << "in place value " << i;
        ASSERT_TRUE(io.OutsideIntact());
        if (lay < 2) {  // the same address for source and destination selects the in-place form
          std::copy(x.data(), x.data() + values, ir);
          ASSERT_EQ(P::Conj[lay](ir, io.data(), n), vspStatOk);
          for (int i = 0; i < 2 * n; ++i) ASSERT_TRUE(SameBits(ir[i], want[i])) << "aliased value " << i;
        }
      }
  });
}

}  // namespace
}  // namespace vsptest
