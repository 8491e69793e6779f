// The export registry of the tests: every row of the export list with its parameter names,
// the kinds of its arguments (deduced from the declaration) and a way to call it with
// arguments assembled at run time.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "vsp.h"

namespace vsptest {

enum class ArgKind { Pointer, Int32, UInt32, Int64, Float32, Float64, Value };
enum class RetKind { Status, Pointer, Void };

struct ArgInfo {
  ArgKind kind;
  size_t size;       // bytes of the pointee (1 for void and opaque types) or of the value
  bool isConst;      // pointer to const
  std::string type;  // the declared type as written, e.g. "const Vsp16s*"
  std::string name;  // the parameter name, e.g. "pSrc1"
};

// One argument value as raw bytes; pointers, integers, floats and small structs all fit.
struct ArgCell {
  alignas(16) unsigned char bytes[16];
  template <class T> void Set(const T& v) {
    static_assert(sizeof(T) <= sizeof(bytes));
    std::memset(bytes, 0, sizeof(bytes));
    std::memcpy(bytes, &v, sizeof(T));
  }
  template <class T> T Get() const {
    T v;
    std::memcpy(&v, bytes, sizeof(T));
    return v;
  }
};

struct Export {
  std::string name;
  int slot;  // position in the export list = entry-table slot
  void* fn;  // the exported entry
  RetKind ret;
  std::vector<ArgInfo> args;
  // Calls fn with one cell per argument; returns the status (0 for non-status exports).
  int (*invoke)(void* fn, const ArgCell* cells);

  int IndexOf(std::string_view argName) const;  // -1 when absent
};

// All exports, in list order.
const std::vector<Export>& Exports();
const Export* FindExport(std::string_view name);

// Glob match with '*' and '?', as used by the rule tables.
bool GlobMatch(std::string_view pattern, std::string_view text);

}  // namespace vsptest
