// The reference-row harness: calls assembled from the registry, sweeps, guarded buffers, and
// the comparison of every element with its row's reference.
#include "support/refrows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <cstdlib>
#include <sstream>

#include "support/budget.h"
#include "support/buffers.h"

namespace vsptest {

std::vector<RefRow>& AllRefRows() {
  static std::vector<RefRow> rows;
  return rows;
}
std::vector<Waiver>& AllWaivers() {
  static std::vector<Waiver> w;
  return w;
}

// ---- wide arithmetic ----------------------------------------------------------------------------

bool IsNan(Q v) { return v != v; }
Q Ldexp(Q v, long long e) {
  e = e < -40000 ? -40000 : e > 40000 ? 40000 : e;
  for (; e > 0; e -= std::min<long long>(e, 60)) v *= static_cast<Q>(1ULL << std::min<long long>(e, 60));
  for (; e < 0; e += std::min<long long>(-e, 60)) v /= static_cast<Q>(1ULL << std::min<long long>(-e, 60));
  return v;
}
Q Sqrt(Q v) {  // Newton from the long double root (whose exponent range is that of Q)
  if (!(v > 0)) return v == 0 ? v : Q(NAN);
  if (v != v || v - v != v - v) return v;  // +Inf
  Q r = std::sqrt(static_cast<long double>(v));
  for (int k = 0; k < 3; ++k) r = (r + v / r) / 2;
  return r;
}

// Rounds an integral-or-not value to an integer by mode (0 toward zero, 1 nearest even, other:
// half away from zero). Values from 2^112 up are integers already.
static Q RoundQ(Q v, int mode) {
  const Q big = Ldexp(1, 112);
  if (IsNan(v) || v >= big || v <= -big) return v;
  const __int128 t = static_cast<__int128>(v);
  const Q f = v - static_cast<Q>(t), a = f < 0 ? -f : f;
  const int dir = f < 0 ? -1 : 1;
  bool up = false;
  if (mode == 1) up = a > Q(0.5) || (a == Q(0.5) && (t & 1));
  else if (mode != 0) up = a >= Q(0.5);
  return static_cast<Q>(t + (up ? dir : 0));
}

W In::Param(const std::string& name) const {
  for (const auto& p : *params)
    if (p.first == name) return p.second;
  ADD_FAILURE() << "the row reads an argument '" << name << "' the export lacks";
  return {};
}
Q In::R(Q v) const {
  if (!src || !src->isFloat) return v;
  return src->PartBytes() == 4 ? static_cast<Q>(static_cast<float>(v)) : static_cast<Q>(static_cast<double>(v));
}
// (Integers have no negative zero: + 0 turns -0 into 0.)
W In::Mul(W a, W b) const {
  if (src->parts == 1) return {R(a.re * b.re) + (src->isFloat ? -Q(0) : Q(0))};
  return {R(R(a.re * b.re) - R(a.im * b.im)), R(R(a.re * b.im) + R(a.im * b.re))};
}
W In::Div(W a, W b) const {
  if (src->parts == 1) return {R(a.re / b.re)};
  const Q den = R(R(b.re * b.re) + R(b.im * b.im));
  return {R(R(R(a.re * b.re) + R(a.im * b.im)) / den), R(R(R(a.im * b.re) - R(a.re * b.im)) / den)};
}

// ---- element types ----------------------------------------------------------------------------

ElemType TypeOfCode(const std::string& code) {
  ElemType t;
  t.code = code;
  std::string base = code;
  if (!base.empty() && base.back() == 'c') t.parts = 2, base.pop_back();
  const char kind = base.empty() ? '?' : base.back();
  const int bits = std::atoi(base.c_str());
  t.isFloat = kind == 'f';
  t.isHalf = t.isFloat && bits == 16;
  t.isSigned = kind == 's' || kind == 'f';
  t.bytes = bits / 8 * t.parts;
  return t;
}

static std::string CodeOf(const std::string& type) {
  const size_t p = type.find("Vsp");
  if (p == std::string::npos) {
    if (type == "float") return "32f";
    if (type == "double") return "64f";
    if (type == "int") return "32s";
    return "";
  }
  size_t e = p + 3;
  while (e < type.size() && std::isalnum(static_cast<unsigned char>(type[e]))) ++e;
  return type.substr(p + 3, e - p - 3);
}

static Q ReadPart(const ElemType& t, const unsigned char* p) {
  const int b = t.PartBytes();
  if (t.isFloat) {
    if (b == 4) { float f; std::memcpy(&f, p, 4); return f; }
    double d; std::memcpy(&d, p, 8); return d;
  }
  unsigned long long u = 0;
  std::memcpy(&u, p, b);
  if (t.isSigned && b < 8 && (u >> (8 * b - 1)) & 1) u |= ~0ULL << (8 * b);
  return t.isSigned ? static_cast<Q>(static_cast<long long>(u)) : static_cast<Q>(u);
}
static W Read(const ElemType& t, const unsigned char* p) {
  W w(ReadPart(t, p));
  if (t.parts == 2) w.im = ReadPart(t, p + t.PartBytes());
  return w;
}

// The integer range of a part.
static void Range(const ElemType& t, Q& lo, Q& hi) {
  const int bits = 8 * t.PartBytes();
  if (t.isSigned) lo = -Ldexp(1, bits - 1), hi = Ldexp(1, bits - 1) - 1;
  else lo = 0, hi = Ldexp(1, bits) - 1;
}

// Writes the destination part of value v (float: rounded to nearest; integer: scaled by 2^-s,
// rounded by mode and saturated; NaN gives 0).
static void WritePart(const ElemType& t, unsigned char* p, Q v, long long s, int mode) {
  const int b = t.PartBytes();
  if (t.isFloat) {
    v = Ldexp(v, -s);
    if (b == 4) { const float f = static_cast<float>(v); std::memcpy(p, &f, 4); }
    else { const double d = static_cast<double>(v); std::memcpy(p, &d, 8); }
    return;
  }
  Q lo, hi;
  Range(t, lo, hi);
  v = IsNan(v) ? Q(0) : RoundQ(Ldexp(v, -s), mode);
  v = v < lo ? lo : v > hi ? hi : v;
  const long long i = static_cast<long long>(static_cast<__int128>(v));
  const unsigned long long u = t.isSigned ? static_cast<unsigned long long>(i) : static_cast<unsigned long long>(static_cast<__int128>(v));
  std::memcpy(p, &u, b);
}

// Random element bytes of type t: a special value one time in six, else random bits (integers)
// or a value of random magnitude (floats); `planted` values are drawn now and then.
static void RandomElem(const ElemType& t, unsigned char* p, Rng& rng, const std::vector<W>& planted) {
  if (!planted.empty() && rng.Int(0, 7) == 0) {
    const W w = planted[rng.Int(0, static_cast<long long>(planted.size()) - 1)];
    WritePart(t, p, rng.Int(0, 1) ? w.re : -w.re, 0, 1);
    if (t.parts == 2) WritePart(t, p + t.PartBytes(), w.im, 0, 1);
    return;
  }
  for (int k = 0; k < t.parts; ++k) {
    unsigned char* q = p + k * t.PartBytes();
    const int b = t.PartBytes();
    if (t.isFloat) {
      const bool single = b == 4;
      const double specials[] = {0.0, -0.0, INFINITY, -INFINITY, NAN, single ? 0x1p-149 : 0x1p-1074,
                                 single ? -0x1.8p-140 : -0x1.8p-1060, single ? 0x1.fffffep127 : 0x1.fffffffffffffp1023,
                                 single ? 0x1p-126 : 0x1p-1022, 1.0, -1.0, 0.5};
      double d = rng.Int(0, 5) == 0 ? specials[rng.Int(0, 11)]
                                    : std::ldexp(rng.Uniform(-2, 2), static_cast<int>(rng.Int(-40, 40)));
      if (single) { const float f = static_cast<float>(d); std::memcpy(q, &f, 4); }
      else std::memcpy(q, &d, 8);
    } else if (rng.Int(0, 5) == 0) {
      Q lo, hi;
      Range(t, lo, hi);
      const Q edges[] = {lo, hi, 0, 1, -1, lo + 1, hi - 1};
      WritePart(t, q, edges[rng.Int(0, 6)], 0, 1);
    } else {
      rng.FillBytes(q, b);
    }
  }
}

// ---- calls --------------------------------------------------------------------------------------

namespace {

enum class Role { Src1, Src2, SrcDst, Dst, Len, Scale, Val, Other };

struct Layout {
  std::vector<Role> roles;
  std::vector<ElemType> types;  // element type of each pointer or constant argument
  int x = -1, y = -1, d = -1, dst = -1, val = -1;
  bool scalar = false;  // the result is one element (a reduction)
};

Layout Analyse(const Export& e, const RefRow& row, std::string& error) {
  Layout l;
  bool hasSrc = false;
  for (const ArgInfo& a : e.args) hasSrc |= a.name == "pSrc" || a.name == "pSrc1";
  for (size_t i = 0; i < e.args.size(); ++i) {
    const ArgInfo& a = e.args[i];
    Role r = Role::Other;
    if (a.name == "pSrc" || a.name == "pSrc1" || a.name == "pSrcRe") r = Role::Src1, l.x = static_cast<int>(i);
    else if (a.name == "pSrc2" || a.name == "pSrcIm") r = Role::Src2, l.y = static_cast<int>(i);
    else if (a.name == "pSrcDst") r = Role::SrcDst, l.d = l.dst = static_cast<int>(i);
    else if (a.name == "pDst" || a.name == "pDstRe" || a.name == "pDstIm") r = Role::Dst, l.dst = static_cast<int>(i);
    else if (a.name == "len") r = Role::Len;
    else if (a.name == "scaleFactor") r = Role::Scale;
    else if (a.name == "val") r = Role::Val, l.val = static_cast<int>(i);
    else if (a.kind == ArgKind::Pointer && row.reduce && !a.isConst && l.dst < 0) r = Role::Dst, l.dst = static_cast<int>(i), l.scalar = true;
    else if (a.kind == ArgKind::Pointer) error = "no rule for the pointer '" + a.name + "'";
    l.roles.push_back(r);
    const char* over = (r == Role::Src1 || r == Role::Src2) ? row.srcType : (r == Role::Dst || r == Role::SrcDst) ? row.dstType : nullptr;
    l.types.push_back(TypeOfCode(over ? over : CodeOf(a.type)));
  }
  if (l.d >= 0 && hasSrc && l.y < 0) l.y = l.d;
  if (l.x < 0) l.x = l.d;
  if (l.dst < 0) error = "no destination";
  return l;
}

// Applies "name=value" words to numeric arguments; values of complex constants are "re,im".
bool ParseSettings(const std::string& s, std::vector<std::pair<std::string, W>>& out) {
  std::istringstream in(s);
  std::string word;
  while (in >> word) {
    const size_t eq = word.find('=');
    if (eq == std::string::npos) return false;
    const std::string v = word.substr(eq + 1);
    W w(static_cast<Q>(std::strtod(v.c_str(), nullptr)));
    if (const size_t c = v.find(','); c != std::string::npos) w.im = std::strtod(v.c_str() + c + 1, nullptr);
    out.emplace_back(word.substr(0, eq), w);
  }
  return true;
}

void SetScalar(const ArgInfo& a, const ElemType& t, ArgCell& cell, W v) {
  switch (a.kind) {
    case ArgKind::Int32: cell.Set<int>(static_cast<int>(v.re)); return;
    case ArgKind::UInt32: cell.Set<unsigned>(static_cast<unsigned>(v.re)); return;
    case ArgKind::Int64: cell.Set<long long>(static_cast<long long>(v.re)); return;
    case ArgKind::Float32: cell.Set<float>(static_cast<float>(v.re)); return;
    case ArgKind::Float64: cell.Set<double>(static_cast<double>(v.re)); return;
    default: break;
  }
  unsigned char b[16] = {};
  WritePart(t, b, v.re, 0, 1);
  if (t.parts == 2) WritePart(t, b + t.PartBytes(), v.im, 0, 1);
  std::memcpy(cell.bytes, b, 16);
}

W AsPassed(const ArgInfo& a, const ElemType& t, W v) {
  switch (a.kind) {
    case ArgKind::Int32: return W(static_cast<Q>(static_cast<int>(v.re)));
    case ArgKind::UInt32: return W(static_cast<Q>(static_cast<unsigned>(v.re)));
    case ArgKind::Int64: return W(static_cast<Q>(static_cast<long long>(v.re)));
    case ArgKind::Float32: return W(static_cast<Q>(static_cast<float>(v.re)));
    case ArgKind::Float64: return W(static_cast<Q>(static_cast<double>(v.re)));
    default: break;
  }
  unsigned char b[16] = {};
  WritePart(t, b, v.re, 0, 1);
  if (t.parts == 2) WritePart(t, b + t.PartBytes(), v.im, 0, 1);
  return Read(t, b);
}

struct Sweep {
  int n;
  size_t offset;
  int scale;
};

class Runner {
 public:
  Runner(const Export& e, const RefRow& row, const Layout& l, const std::vector<std::pair<std::string, W>>& settings)
      : e_(e), row_(row), l_(l), settings_(settings) {
    for (const auto& s : settings) planted_.push_back(s.second);
    // The references see each argument as the call receives it (1.5 passed as an int is 1).
    for (size_t i = 0; i < e.args.size(); ++i)
      if (l.roles[i] == Role::Other && e.args[i].kind != ArgKind::Pointer) {
        const W* v = Find(e.args[i].name);
        params_.emplace_back(e.args[i].name, AsPassed(e.args[i], l.types[i], v ? *v : W()));
      }
  }
  const W* Find(const std::string& name) const {
    for (const auto& s : settings_)
      if (s.first == name) return &s.second;
    return nullptr;
  }

  // One call: n elements, every vector `offset` bytes (rounded to its alignment) past a 16-byte
  // boundary, sources staggered; `fill` (if given) writes the source elements. Returns false on a
  // failure (already reported).
  bool Run(int n, size_t offset, int scale, Rng& rng, const std::function<void(int, std::vector<unsigned char*>&)>& fill = nullptr) {
    const size_t args = e_.args.size();
    std::vector<std::unique_ptr<GuardedVec<unsigned char>>> bufs(args);
    std::vector<unsigned char*> data(args, nullptr);
    std::vector<ArgCell> cells(args);
    std::vector<std::vector<unsigned char>> before(args);
    W c;
    for (size_t i = 0; i < args; ++i) {
      const ArgInfo& a = e_.args[i];
      const ElemType& t = l_.types[i];
      switch (l_.roles[i]) {
        case Role::Src1: case Role::Src2: case Role::SrcDst: case Role::Dst: {
          const size_t align = t.isFloat || t.bytes == 3 ? (t.bytes == 3 ? 1 : t.PartBytes()) : std::min(t.PartBytes(), 8);
          const size_t off = (offset + 4 * i) % 16 / align * align;
          const int count = l_.scalar && static_cast<int>(i) == l_.dst ? 1 : n;
          bufs[i] = std::make_unique<GuardedVec<unsigned char>>(static_cast<size_t>(count) * t.bytes, off);
          data[i] = bufs[i]->data();
          for (int k = 0; k < count; ++k) RandomElem(t, data[i] + static_cast<size_t>(k) * t.bytes, rng, planted_);
          cells[i].Set(static_cast<void*>(data[i]));
          break;
        }
        case Role::Len:
          if (a.kind == ArgKind::Int64) cells[i].Set<long long>(n);
          else cells[i].Set<int>(n);
          break;
        case Role::Scale: cells[i].Set<int>(scale); break;
        case Role::Val: {
          const W* v = Find("val");
          In probe;
          probe.c = edge_ < 0 ? W() : AsPassed(a, t, W(edge_ == 0 ? Q(0) : edge_ == 1 ? Q(1) : -Q(1)));
          if (v) c = AsPassed(a, t, *v);
          else if (edge_ >= 0 && (!row_.accept || row_.accept(probe))) c = probe.c;
          else {
            unsigned char b[16] = {};
            do {
              RandomElem(t, b, rng, planted_);
              c = Read(t, b);
              In probe;
              probe.c = c;
              if (!row_.accept || row_.accept(probe)) break;
            } while (true);
          }
          SetScalar(a, t, cells[i], c);
          break;
        }
        case Role::Other: {
          const W* v = Find(a.name);
          SetScalar(a, t, cells[i], v ? *v : W());
          break;
        }
      }
    }
    if (fill) fill(n, data);
    for (size_t i = 0; i < args; ++i)
      if (data[i]) before[i].assign(data[i], data[i] + bufs[i]->size());

    // Expected elements.
    const ElemType& dt = l_.types[l_.dst];
    const int mode = rndModeArg() >= 0 ? rndModeArg() : 1;
    const int outN = l_.scalar ? 1 : n;
    std::vector<unsigned char> want(static_cast<size_t>(outN) * dt.bytes);
    std::vector<In> all;
    bool warn = false;
    In in;
    in.scale = scale;
    in.src = &l_.types[l_.x >= 0 ? l_.x : l_.dst];
    in.params = &params_;
    in.c = c;
    for (int k = 0; k < n; ++k) {
      auto at = [&](int arg, int idx) { return Read(l_.types[arg], before[arg].data() + static_cast<size_t>(idx) * l_.types[arg].bytes); };
      in.x = l_.x >= 0 ? at(l_.x, k) : W();
      in.y = l_.y >= 0 ? at(l_.y, k) : W();
      in.d = l_.d >= 0 ? at(l_.d, k) : W();
      in.xr = l_.x >= 0 ? at(l_.x, n - 1 - k) : W();
      if (row_.warn && row_.warn(in)) warn = true;
      if (l_.scalar) {
        all.push_back(in);
        if (k + 1 < n) continue;
      }
      const W v = l_.scalar ? row_.reduce(all) : row_.ref(in);
      const size_t pos = l_.scalar ? 0 : static_cast<size_t>(k) * dt.bytes;
      const long long s = row_.ownScale ? 0 : scale;
      WritePart(dt, want.data() + pos, v.re, s, mode);
      if (dt.parts == 2) WritePart(dt, want.data() + pos + dt.PartBytes(), v.im, s, mode);
    }
    const int st = e_.invoke(e_.fn, cells.data());
    const std::string where = e_.name + " len " + std::to_string(n) + " offset " + std::to_string(offset) +
                              (l_.roles.end() != std::find(l_.roles.begin(), l_.roles.end(), Role::Scale) ? " scaleFactor " + std::to_string(scale) : "") +
                              (settingsText_.empty() ? "" : " [" + settingsText_ + "]");
    const int wantSt = warn ? row_.warnStatus : 0;
    if (st != wantSt) {
      ADD_FAILURE() << where << ": status " << st << ", want " << wantSt;
      return false;
    }
    for (int k = 0; k < outN; ++k) {
      const unsigned char* g = data[l_.dst] + static_cast<size_t>(k) * dt.bytes;
      const unsigned char* w = want.data() + static_cast<size_t>(k) * dt.bytes;
      if (!Same(dt, g, w)) {
        std::ostringstream msg;
        msg << where << " element " << k << ": got " << Show(dt, g) << " want " << Show(dt, w);
        if (l_.x >= 0 && !l_.scalar) msg << "; x " << Show(l_.types[l_.x], before[l_.x].data() + static_cast<size_t>(k) * l_.types[l_.x].bytes);
        if (l_.y >= 0 && !l_.scalar) msg << " y " << Show(l_.types[l_.y], before[l_.y].data() + static_cast<size_t>(k) * l_.types[l_.y].bytes);
        if (l_.val >= 0) msg << " val " << static_cast<double>(c.re) << "," << static_cast<double>(c.im);
        ADD_FAILURE() << msg.str();
        return false;
      }
    }
    for (size_t i = 0; i < args; ++i) {
      if (!bufs[i]) continue;
      if (!bufs[i]->OutsideIntact()) {
        ADD_FAILURE() << where << ": written outside " << e_.args[i].name;
        return false;
      }
      if (static_cast<int>(i) != l_.dst && std::memcmp(data[i], before[i].data(), before[i].size()) != 0) {
        ADD_FAILURE() << where << ": the source " << e_.args[i].name << " changed";
        return false;
      }
    }
    return true;
  }

  void SetSettingsText(std::string s) { settingsText_ = std::move(s); }
  // Constants 0, 1 and -1 (the short-cut values) instead of random ones while k >= 0.
  void SetEdgeConstant(int k) { edge_ = k; }

 private:
  int rndModeArg() const {
    for (const auto& p : params_)
      if (p.first == "rndMode") return p.second.re == 0 ? 0 : p.second.re == 1 ? 1 : 2;
    return -1;
  }
  bool Same(const ElemType& t, const unsigned char* g, const unsigned char* w) const {
    for (int k = 0; k < t.parts; ++k) {
      const unsigned char* a = g + k * t.PartBytes();
      const unsigned char* b = w + k * t.PartBytes();
      if (std::memcmp(a, b, t.PartBytes()) == 0) continue;
      if (!t.isFloat) return false;
      const Q x = ReadPart(t, a), y = ReadPart(t, b);
      if (IsNan(x) && IsNan(y)) continue;
      if (row_.ulps == 0 || IsNan(x) || IsNan(y)) return false;
      if (x == y) continue;  // signed zeros differ only under a tolerance
      // ulp of the wanted value in the destination's precision.
      const int p = t.PartBytes() == 4 ? 24 : 53, emin = t.PartBytes() == 4 ? -126 : -1022;
      const double yd = static_cast<double>(y);
      if (std::isinf(yd)) return false;
      const int ex = yd == 0 ? emin : std::max(std::ilogb(yd), emin);
      const Q ulp = Ldexp(1, ex - p + 1);
      const Q diff = x > y ? x - y : y - x;
      if (diff > ulp * static_cast<Q>(row_.ulps)) return false;
    }
    return true;
  }
  static std::string Show(const ElemType& t, const unsigned char* p) {
    const W w = Read(t, p);
    std::ostringstream o;
    o.precision(17);
    o << static_cast<double>(w.re);
    if (t.parts == 2) o << "," << static_cast<double>(w.im);
    return o.str();
  }

  const Export& e_;
  const RefRow& row_;
  const Layout& l_;
  std::vector<std::pair<std::string, W>> settings_;
  std::vector<W> planted_;
  std::vector<std::pair<std::string, W>> params_;
  std::string settingsText_;
  int edge_ = -1;
};

// Scale factors at the boundaries of every scaling path, and a few of each path for the long sweeps.
const std::vector<int>& BoundaryScales() {
  static const std::vector<int> s = [] {
    std::vector<int> v;
    for (int k = -70; k <= 70; ++k) v.push_back(k);
    for (int k : {126, 127, 128, 200, -200, 100000, -100000, INT_MAX, INT_MIN}) v.push_back(k);
    return v;
  }();
  return s;
}
const std::vector<int> kPathScales = {0, 1, 3, -3, 17, -40};

}  // namespace

void CheckAgainstRow(const Export& e, const RefRow& row) {
  std::string error;
  const Layout l = Analyse(e, row, error);
  ASSERT_TRUE(error.empty()) << e.name << ": " << error;
  bool scaled = false;
  int narrowest = 16;
  size_t srcDomain = 1;
  int vectorSources = 0;
  for (size_t i = 0; i < e.args.size(); ++i) {
    scaled |= l.roles[i] == Role::Scale;
    if (l.roles[i] == Role::Src1 || l.roles[i] == Role::Src2 || l.roles[i] == Role::SrcDst || l.roles[i] == Role::Dst)
      narrowest = std::min(narrowest, std::max(l.types[i].bytes, 1));
    if (static_cast<int>(i) == l.x || static_cast<int>(i) == l.y) {
      ++vectorSources;
      const bool small = l.types[i].bytes <= 2 && !l.types[i].isFloat && l.types[i].parts == 1;
      srcDomain = small && srcDomain <= 65536 ? srcDomain << (8 * l.types[i].bytes) : size_t{1} << 40;
    }
  }
  // Words naming arguments the export lacks are dropped (a family row may sweep an argument
  // that only some members have); runs that become equal are made once.
  std::vector<std::string> runs;
  for (const std::string& text : row.settings) {
    std::istringstream in(text);
    std::string word, kept;
    while (in >> word)
      if (e.IndexOf(word.substr(0, word.find('='))) >= 0) kept += (kept.empty() ? "" : " ") + word;
    if (std::find(runs.begin(), runs.end(), kept) == runs.end()) runs.push_back(kept);
  }
  for (const std::string& s : runs) {
    std::vector<std::pair<std::string, W>> settings;
    ASSERT_TRUE(ParseSettings(s, settings)) << "bad settings '" << s << "'";
    Runner run(e, row, l, settings);
    run.SetSettingsText(s);
    Rng rng(std::hash<std::string>{}(e.name + s));
    const int maxLen = std::max(4 * 16 / narrowest - 1, 9);
    std::vector<Sweep> sweeps;
    // Every length up to four vectors, each at another offset; every offset at the longest of them.
    for (int n = 1; n <= maxLen; ++n)
      for (int sc : scaled ? std::vector<int>{kPathScales[n % kPathScales.size()]} : std::vector<int>{0})
        sweeps.push_back({n, static_cast<size_t>(n * 5) % 16, sc});
    for (size_t off = 0; off < 16; off += Thin(3)) sweeps.push_back({maxLen, off, scaled ? 3 : 0});
    for (int n : {257, 1031}) sweeps.push_back({n, static_cast<size_t>(n) % 16, scaled ? 1 : 0});
    if (scaled)
      for (size_t k = 0; k < BoundaryScales().size(); k += Thin(3)) sweeps.push_back({23, 6, BoundaryScales()[k]});
    for (const Sweep& sw : sweeps)
      if (!run.Run(sw.n, sw.offset, sw.scale, rng)) return;
    // Integer sources all at their lowest, then all at their highest value (sums that wrap).
    for (int edge = 0; edge < 2; ++edge) {
      if (l.x < 0 || l.types[l.x].isFloat) break;
      const bool ok = run.Run(1031, 8, scaled ? 1 : 0, rng, [&](int n, std::vector<unsigned char*>& data) {
        for (int arg : {l.x, l.y}) {
          if (arg < 0) continue;
          const ElemType& t = l.types[arg];
          Q lo, hi;
          Range(t, lo, hi);
          for (int i = 0; i < n * t.parts; ++i) WritePart(t, data[arg] + static_cast<size_t>(i) * t.PartBytes(), edge ? hi : lo, 0, 1);
        }
      });
      if (!ok) return;
    }
    if (l.val >= 0)
      for (int k = 0; k < 3; ++k) {
        run.SetEdgeConstant(k);
        for (int sc : scaled ? std::vector<int>{0, 5} : std::vector<int>{0})
          if (!run.Run(1000, 4, sc, rng)) return;
        run.SetEdgeConstant(-1);
      }
    // Small domains: every source value (and pair of values) in one call, in the first run.
    if (vectorSources >= 1 && srcDomain <= 65536 && s == runs.front()) {
      const std::vector<int> scales = scaled ? std::vector<int>{0, 1, 8, 9, -1, -9} : std::vector<int>{0};
      for (size_t k = 0; k < scales.size(); k += Thin(4)) {
        const bool ok = run.Run(static_cast<int>(srcDomain), 0, scales[k], rng, [&](int n, std::vector<unsigned char*>& data) {
          const int bx = l.types[l.x].bytes;
          for (int i = 0; i < n; ++i) {
            std::memcpy(data[l.x] + static_cast<size_t>(i) * bx, &i, bx);
            if (l.y >= 0 && l.y != l.x) {
              const int hi = i >> (8 * bx);
              std::memcpy(data[l.y] + static_cast<size_t>(i) * l.types[l.y].bytes, &hi, l.types[l.y].bytes);
            }
          }
        });
        if (!ok) return;
      }
    }
  }
}

}  // namespace vsptest
