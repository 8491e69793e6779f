// Rule tables of the argument-check harness (tests/checks). The harness calls every export
// that returns a status with valid arguments, then with each pointer null (-8), with a length
// of 0 and -1 (-6), and with the first pointer null and a length of 0 (-8: pointers first),
// and checks that no buffer changed after an error. Members with a scaleFactor are also called
// with INT_MIN and INT_MAX, which must succeed. A family whose valid call needs more than
// the defaults, or whose checks depart from that order, says so in a rule:
//
//   VSP_CHECK_RULES(kThresholdRules)({
//     {"vspsThreshold_??f", "relOp=0", {{"relOp=3", vspStatBadArg}}},
//   });
//
// Settings are "name=value" words: a number, "null" for a pointer, "alias:<other>" for a
// pointer that must be the same buffer as another argument. A case whose settings are written
// exactly like a generic case replaces that case's expectation. Defaults of the valid call:
// len = 17, other integers 1, floats 1.0, complex values (1, 1); sources hold small positive
// values, outputs a canary. Functions on spec or state blocks name a fixture (see BlockFixture)
// that builds a valid block, or a test of their own in `coveredBy`.
#pragma once

#include <string>
#include <vector>

namespace vsptest {

// Expectation meaning "any status >= 0" (success or warning).
constexpr int kAnyOk = 1000;

struct CheckCase {
  std::string settings;
  int expect;
};

// A block fixture: the argument `arg` of the matching exports is a valid block made once by
// make() (and kept for the program's life), so that the generic cases reach the data pointers,
// lengths and parameters behind the block test. "arg=null" stays a generic case.
struct BlockFixture {
  const char* arg = nullptr;
  const void* (*make)() = nullptr;
  explicit operator bool() const { return make != nullptr; }
};

struct CheckRule {
  const char* pattern;                // glob over export names
  std::string defaults = {};          // settings of the valid call
  std::vector<CheckCase> cases = {};  // replacing or added cases
  const char* coveredBy = nullptr;    // non-null: skipped here; that test checks the order
  BlockFixture fixture = {};          // a valid block for the block argument
};

std::vector<CheckRule>& AllCheckRules();

struct CheckRuleTable {
  explicit CheckRuleTable(std::vector<CheckRule> rules) {
    for (auto& r : rules) AllCheckRules().push_back(std::move(r));
  }
};

}  // namespace vsptest

#define VSP_CHECK_RULES(id) static const ::vsptest::CheckRuleTable id
