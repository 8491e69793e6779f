// Reference rows: element-wise exports checked against one row each, {export glob, reference}.
// The harness (refrows.cpp) builds every call from the registry's parameter names:
//   pSrc / pSrc1 / pSrcRe -> x, pSrc2 / pSrcIm -> y, val -> c, pSrcDst -> d (its value before
//   the call; it is also y when the export has a pSrc, so Sub_I and Sub share the formula
//   y - x), pDst, pDstRe, pDstIm or pSrcDst -> the result; len; scaleFactor.
// It sweeps lengths 1 .. four vectors and a few long ones, start offsets below the vector width,
// random elements mixed with the type's special values (floats: +-0, +-Inf, NaN, subnormals,
// extremes; integers: min, max, 0, +-1), scale factors around every boundary, and runs every
// vector in guarded memory (a fault past the end; canaries around; sources unchanged).
//
// The reference computes one element in __float128 (113 bits: every 64-bit integer, every
// product of two doubles and every single IEEE operation on floats and doubles are exact or
// rounded once without double-rounding error). The harness then rounds the value into the
// destination element:
//   float destination:   round to nearest, compare bit for bit (any NaN matches any NaN), or
//                        within `ulps` units in the last place where the row allows it;
//   integer destination: saturate(round(v * 2^-scaleFactor)) (floats: v * 2^-scaleFactor
//                        rounded), NaN giving 0, rounding by the export's rndMode
//                        argument when it has one (0 toward zero, 1 to nearest even, other
//                        values half away from zero), else to nearest even.
// A row may fix or sweep further arguments ("settings" in the words of the check rules, e.g.
// "rndMode=1"), and say which status a call gives (warnings of zero divisors and the like).
//
// Adding a family: rows in tests/checks/rows_<family>.cpp,
//   VSP_REF_ROWS(kMyRows)({
//     {"vspsAdd_32f*", [](const In& a) { return a.x + a.y; }},
//   });
// and exports that rows cannot describe get a waiver naming their test (refrows_waivers.cpp).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/registry.h"

namespace vsptest {

using Q = __float128;

// A real or complex value of the reference.
struct W {
  Q re = 0, im = 0;
  W() = default;
  W(Q r, Q i = 0) : re(r), im(i) {}
  W(int r) : re(r) {}
  W(double r) : re(r) {}
};
inline W operator+(W a, W b) { return {a.re + b.re, a.im + b.im}; }
inline W operator-(W a, W b) { return {a.re - b.re, a.im - b.im}; }
inline W operator-(W a) { return {-a.re, -a.im}; }

// The element types the harness reads and writes.
struct ElemType {
  std::string code;  // "16s", "32fc", "24u", ...
  int bytes = 0;     // of one element (3 for packed 24-bit samples)
  int parts = 1;     // 2 for complex
  bool isFloat = false, isSigned = false, isHalf = false;
  int PartBytes() const { return bytes / parts; }
};
ElemType TypeOfCode(const std::string& code);

// One element's inputs and the call's parameters, as the reference sees them.
struct In {
  W x, y, c, d;
  W xr;                          // the source element at the mirrored index n - 1 - i
  int scale = 0;                 // scaleFactor (0 when the export has none)
  const ElemType* src = nullptr;  // type of x
  const std::vector<std::pair<std::string, W>>* params = nullptr;  // the other numeric arguments
  W Param(const std::string& name) const;
  Q P(const std::string& name) const { return Param(name).re; }
  // Rounds v to the precision of the source's parts (identity for integers): the formula
  // evaluated in the element's own arithmetic, one rounding per operation.
  Q R(Q v) const;
  W R(W v) const { return {R(v.re), R(v.im)}; }
  // Products and quotients, each operation rounded as above (exact for integers).
  W Mul(W a, W b) const;
  W Div(W a, W b) const;  // complex quotient by the textbook formula
};

using RefFn = std::function<W(const In&)>;

struct RefRow {
  const char* pattern;   // glob over export names
  RefFn ref = nullptr;
  double ulps = 0;       // allowed distance of float results, in units of the result's last place
  std::vector<std::string> settings = {""};  // each is one run of the sweep
  // The status a call gives: warn(in) true for one element makes the call return warnStatus.
  std::function<bool(const In&)> warn = nullptr;
  int warnStatus = 0;
  // Optional: restricts inputs (e.g. a constant that must not be zero); return false to redraw.
  std::function<bool(const In&)> accept = nullptr;
  bool ownScale = false;  // the reference applies scaleFactor itself
  const char* srcType = nullptr;  // element code of the sources where the declaration says Vsp8u ("24s")
  const char* dstType = nullptr;  // likewise of the destination
  // Reductions: the one result from every element's inputs (the export's one non-const pointer
  // besides the sources receives it); `ref` is unused then.
  std::function<W(const std::vector<In>&)> reduce = nullptr;
};

std::vector<RefRow>& AllRefRows();
struct RefRowTable {
  explicit RefRowTable(std::vector<RefRow> rows) {
    for (auto& r : rows) AllRefRows().push_back(std::move(r));
  }
};

// Runs every sweep of one export against its row; failures are reported through gtest.
void CheckAgainstRow(const Export& e, const RefRow& row);

// Waivers: exports covered by a named test instead of a row or a block fixture.
struct Waiver {
  const char* pattern;
  const char* test;  // "Suite.Test" that covers them
};
std::vector<Waiver>& AllWaivers();
struct WaiverTable {
  explicit WaiverTable(std::vector<Waiver> w) {
    for (auto& x : w) AllWaivers().push_back(x);
  }
};

// Helpers for references.
Q Ldexp(Q v, long long e);
bool IsNan(Q v);
Q Sqrt(Q v);

}  // namespace vsptest

#define VSP_REF_ROWS(id) static const ::vsptest::RefRowTable id
#define VSP_WAIVERS(id) static const ::vsptest::WaiverTable id
