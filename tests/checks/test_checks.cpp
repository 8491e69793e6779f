// The argument-check harness: every export that returns a status, called with valid arguments
// and then with one fault at a time, expecting the library-wide order (pointers, then lengths,
// then family parameters) and untouched buffers after every error. Departures are rows in the
// rule tables of this folder (rules_*.cpp).
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>

#include "support/check_rules.h"
#include "support/registry.h"

namespace vsptest {

std::vector<CheckRule>& AllCheckRules() {
  static std::vector<CheckRule> rules;
  return rules;
}

namespace {

constexpr size_t kGuard = 64;      // canary bytes in front of and behind every buffer
constexpr size_t kBufBytes = 8192;  // room for every vector-only call at the default length

// The element type behind a parameter's declared type ("const Vsp16sc*" -> "16sc").
std::string ElementCode(const std::string& type) {
  size_t p = type.find("Vsp");
  if (p == std::string::npos) return {};
  size_t e = p + 3;
  while (e < type.size() && std::isalnum(static_cast<unsigned char>(type[e]))) ++e;
  return type.substr(p + 3, e - p - 3);
}

// Writes small positive values of the element type into a source buffer.
void FillTyped(unsigned char* p, size_t bytes, const std::string& code) {
  auto put = [&](auto v, size_t count) {
    using V = decltype(v);
    for (size_t i = 0; i < count; ++i) {
      V x = static_cast<V>(i % 7 + 1);
      std::memcpy(p + i * sizeof(V), &x, sizeof(V));
    }
  };
  bool complex = !code.empty() && code.back() == 'c';
  std::string base = complex ? code.substr(0, code.size() - 1) : code;
  if (base == "8u") put(Vsp8u{}, bytes);
  else if (base == "8s") put(Vsp8s{}, bytes);
  else if (base == "16u" || base == "16f") put(Vsp16u{}, bytes / 2);
  else if (base == "16s") put(Vsp16s{}, bytes / 2);
  else if (base == "32u") put(Vsp32u{}, bytes / 4);
  else if (base == "32s") put(Vsp32s{}, bytes / 4);
  else if (base == "32f") put(Vsp32f{}, bytes / 4);
  else if (base == "64u") put(Vsp64u{}, bytes / 8);
  else if (base == "64s") put(Vsp64s{}, bytes / 8);
  else if (base == "64f") put(Vsp64f{}, bytes / 8);
  else for (size_t i = 0; i < bytes; ++i) p[i] = static_cast<unsigned char>(i % 7 + 1);
}

// One prepared call of an export: a buffer per pointer argument and a cell per argument.
class Call {
 public:
  explicit Call(const Export& e) : e_(e), bufs_(e.args.size()), cells_(e.args.size()) {
    for (size_t i = 0; i < e.args.size(); ++i) {
      const ArgInfo& a = e.args[i];
      switch (a.kind) {
        case ArgKind::Pointer: {
          auto& b = bufs_[i];
          b.assign(kBufBytes + 2 * kGuard + 16, 0);
          for (size_t k = 0; k < b.size(); ++k) b[k] = static_cast<unsigned char>(0xA5 ^ (k * 29) ^ (i * 71));
          bool source = a.isConst || a.name.find("Src") != std::string::npos;
          if (source) FillTyped(Data(i), kBufBytes, ElementCode(a.type));
          cells_[i].Set(static_cast<void*>(Data(i)));
          break;
        }
        case ArgKind::Int32: cells_[i].Set<int>(a.name == "len" ? 17 : 1); break;
        case ArgKind::UInt32: cells_[i].Set<unsigned>(a.name == "len" ? 17u : 1u); break;
        case ArgKind::Int64: cells_[i].Set<long long>(a.name == "len" ? 17 : 1); break;
        case ArgKind::Float32: cells_[i].Set<float>(1.0f); break;
        case ArgKind::Float64: cells_[i].Set<double>(1.0); break;
        case ArgKind::Value: SetValue(i, "1"); break;
      }
    }
  }

  // Applies "name=value ..." settings; returns an error text for an unknown name.
  std::string Apply(const std::string& settings) {
    std::istringstream in(settings);
    std::string word;
    while (in >> word) {
      size_t eq = word.find('=');
      if (eq == std::string::npos) return "bad setting '" + word + "'";
      std::string name = word.substr(0, eq), value = word.substr(eq + 1);
      int i = e_.IndexOf(name);
      if (i < 0) return "no parameter '" + name + "'";
      const ArgInfo& a = e_.args[i];
      if (a.kind == ArgKind::Pointer) {
        if (value == "null") {
          cells_[i].Set(static_cast<void*>(nullptr));
        } else if (value.rfind("alias:", 0) == 0) {
          int j = e_.IndexOf(value.substr(6));
          if (j < 0 || e_.args[j].kind != ArgKind::Pointer) return "bad alias in '" + word + "'";
          cells_[i] = cells_[j];
        } else {
          return "pointer setting must be null or alias: '" + word + "'";
        }
        continue;
      }
      switch (a.kind) {
        case ArgKind::Int32: cells_[i].Set<int>(static_cast<int>(std::strtoll(value.c_str(), nullptr, 0))); break;
        case ArgKind::UInt32: cells_[i].Set<unsigned>(static_cast<unsigned>(std::strtoull(value.c_str(), nullptr, 0))); break;
        case ArgKind::Int64: cells_[i].Set<long long>(std::strtoll(value.c_str(), nullptr, 0)); break;
        case ArgKind::Float32: cells_[i].Set<float>(std::strtof(value.c_str(), nullptr)); break;
        case ArgKind::Float64: cells_[i].Set<double>(std::strtod(value.c_str(), nullptr)); break;
        default: SetValue(i, value); break;
      }
    }
    return {};
  }

  // Points argument `name` at memory outside the harness's buffers (a fixture's block).
  void Point(const char* name, const void* p) { cells_[e_.IndexOf(name)].Set(const_cast<void*>(p)); }
  int Invoke() { return e_.invoke(e_.fn, cells_.data()); }
  std::vector<std::vector<unsigned char>> Snapshot() const { return bufs_; }
  // Names of the buffers that differ from a snapshot.
  std::string Changed(const std::vector<std::vector<unsigned char>>& before) const {
    std::string out;
    for (size_t i = 0; i < bufs_.size(); ++i)
      if (bufs_[i] != before[i]) out += e_.args[i].name + " ";
    return out;
  }

 private:
  unsigned char* Data(size_t i) {
    auto p = reinterpret_cast<uintptr_t>(bufs_[i].data()) + kGuard;
    return reinterpret_cast<unsigned char*>((p + 15) & ~uintptr_t{15});
  }
  // A by-value argument: an integer, a float or a complex pair "re,im" of the declared type.
  void SetValue(size_t i, const std::string& value) {
    std::string code = ElementCode(e_.args[i].type);
    double re = std::strtod(value.c_str(), nullptr), im = re;
    if (size_t c = value.find(','); c != std::string::npos) im = std::strtod(value.c_str() + c + 1, nullptr);
    auto pair = [&](auto r) {
      decltype(r) v[2] = {r, static_cast<decltype(r)>(im)};
      unsigned char b[16] = {};
      std::memcpy(b, v, sizeof(v));
      std::memcpy(cells_[i].bytes, b, 16);
    };
    if (code == "16sc") pair(static_cast<Vsp16s>(re));
    else if (code == "32sc") pair(static_cast<Vsp32s>(re));
    else if (code == "64sc") pair(static_cast<Vsp64s>(re));
    else if (code == "32fc") pair(static_cast<Vsp32f>(re));
    else if (code == "64fc") pair(static_cast<Vsp64f>(re));
    else if (code == "8u") cells_[i].Set(static_cast<Vsp8u>(re));
    else if (code == "8s") cells_[i].Set(static_cast<Vsp8s>(re));
    else if (code == "16u") cells_[i].Set(static_cast<Vsp16u>(re));
    else if (code == "16s") cells_[i].Set(static_cast<Vsp16s>(re));
    else cells_[i].Set(static_cast<long long>(re));
  }

  const Export& e_;
  std::vector<std::vector<unsigned char>> bufs_;
  std::vector<ArgCell> cells_;
};

struct Plan {
  std::string defaults;
  std::vector<CheckCase> cases;  // in order: generic ones (possibly replaced), then added ones
  const char* coveredBy = nullptr;
  BlockFixture fixture;
};

Plan MakePlan(const Export& e) {
  Plan plan;
  std::vector<CheckCase> generic;
  std::string firstPtr;
  for (const ArgInfo& a : e.args) {
    if (a.kind != ArgKind::Pointer) continue;
    if (firstPtr.empty()) firstPtr = a.name;
    generic.push_back({a.name + "=null", vspStatNullPtr});
  }
  int len = e.IndexOf("len");
  if (len >= 0) {
    generic.push_back({"len=0", vspStatBadSize});
    if (e.args[len].kind != ArgKind::UInt32) generic.push_back({"len=-1", vspStatBadSize});
    if (!firstPtr.empty()) generic.push_back({firstPtr + "=null len=0", vspStatNullPtr});
  }
  // Every scale factor is accepted: the extremes must give a result, not an error (and, under the
  // sanitizers, no overflow on the way).
  if (e.IndexOf("scaleFactor") >= 0) {
    generic.push_back({"scaleFactor=-2147483648", kAnyOk});
    generic.push_back({"scaleFactor=2147483647", kAnyOk});
  }
  std::vector<CheckCase> added;
  for (const CheckRule& r : AllCheckRules()) {
    if (!GlobMatch(r.pattern, e.name)) continue;
    if (r.coveredBy) plan.coveredBy = r.coveredBy;
    if (r.fixture) plan.fixture = r.fixture;
    if (!r.defaults.empty()) plan.defaults += " " + r.defaults;
    for (const CheckCase& c : r.cases) {
      bool replaced = false;
      for (CheckCase& g : generic)
        if (g.settings == c.settings) g.expect = c.expect, replaced = true;
      for (CheckCase& g : added)
        if (g.settings == c.settings) g.expect = c.expect, replaced = true;
      if (!replaced) added.push_back(c);
    }
  }
  plan.cases = generic;
  plan.cases.insert(plan.cases.end(), added.begin(), added.end());
  return plan;
}

std::vector<std::string> StatusExportNames() {
  std::vector<std::string> names;
  for (const Export& e : Exports())
    if (e.ret == RetKind::Status) names.push_back(e.name);
  return names;
}

class ArgumentChecks : public ::testing::TestWithParam<std::string> {};

TEST_P(ArgumentChecks, OrderAndUntouchedOutputs) {
  const Export& e = *FindExport(GetParam());
  Plan plan = MakePlan(e);
  if (plan.coveredBy) GTEST_SKIP() << "checked by " << plan.coveredBy;

  {
    Call valid(e);
    if (plan.fixture) valid.Point(plan.fixture.arg, plan.fixture.make());
    std::string err = valid.Apply(plan.defaults);
    ASSERT_TRUE(err.empty()) << err;
    int st = valid.Invoke();
    EXPECT_GE(st, 0) << "the valid call (defaults '" << plan.defaults << "') failed";
  }
  for (const CheckCase& c : plan.cases) {
    Call call(e);
    if (plan.fixture) call.Point(plan.fixture.arg, plan.fixture.make());
    std::string err = call.Apply(plan.defaults);
    if (err.empty()) err = call.Apply(c.settings);
    ASSERT_TRUE(err.empty()) << err;
    auto before = call.Snapshot();
    int st = call.Invoke();
    if (c.expect == kAnyOk) {
      EXPECT_GE(st, 0) << "case '" << c.settings << "'";
    } else {
      EXPECT_EQ(st, c.expect) << "case '" << c.settings << "'";
    }
    if (st < 0) {
      EXPECT_EQ(call.Changed(before), "") << "written on error, case '" << c.settings << "'";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllExports, ArgumentChecks, ::testing::ValuesIn(StatusExportNames()),
                         [](const auto& info) { return info.param; });

// Every rule must match at least one export, so a renamed family cannot silently lose its rules.
TEST(ArgumentCheckRules, EveryRuleMatchesAnExport) {
  for (const CheckRule& r : AllCheckRules()) {
    bool any = false;
    for (const Export& e : Exports()) any = any || GlobMatch(r.pattern, e.name);
    EXPECT_TRUE(any) << "rule '" << r.pattern << "' matches no export";
  }
}

}  // namespace
}  // namespace vsptest
