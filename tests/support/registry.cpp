// Builds the registry by expanding the export list: one row per export, with its argument
// kinds deduced from the function type and its parameter names parsed from the row's text.
#include "support/registry.h"

#include <cctype>
#include <type_traits>
#include <utility>

namespace vsptest {
namespace {

template <class T, class = void> struct IsComplete : std::false_type {};
template <class T> struct IsComplete<T, std::void_t<decltype(sizeof(T))>> : std::true_type {};

template <class A>
ArgInfo Describe() {
  ArgInfo a{};
  if constexpr (std::is_pointer_v<A>) {
    using P = std::remove_pointer_t<A>;
    a.kind = ArgKind::Pointer;
    a.isConst = std::is_const_v<P>;
    if constexpr (std::is_void_v<P> || !IsComplete<P>::value) a.size = 1;
    else a.size = sizeof(P);
  } else if constexpr (std::is_enum_v<A> || std::is_same_v<A, int>) {
    a.kind = ArgKind::Int32, a.size = 4;
  } else if constexpr (std::is_same_v<A, unsigned>) {
    a.kind = ArgKind::UInt32, a.size = 4;
  } else if constexpr (std::is_same_v<A, long long>) {
    a.kind = ArgKind::Int64, a.size = 8;
  } else if constexpr (std::is_same_v<A, float>) {
    a.kind = ArgKind::Float32, a.size = 4;
  } else if constexpr (std::is_same_v<A, double>) {
    a.kind = ArgKind::Float64, a.size = 8;
  } else if constexpr (std::is_integral_v<A>) {  // 8- and 16-bit constants travel as values
    a.kind = ArgKind::Value, a.size = sizeof(A);
  } else {
    static_assert(std::is_trivially_copyable_v<A> && sizeof(A) <= 16, "argument kind not handled");
    a.kind = ArgKind::Value, a.size = sizeof(A);
  }
  return a;
}

template <class R, class... A, size_t... I>
int InvokeWith(void* fn, const ArgCell* cells, std::index_sequence<I...>) {
  auto f = reinterpret_cast<R (*)(A...)>(fn);
  if constexpr (std::is_same_v<R, VspStatus>) {
    return f(cells[I].template Get<A>()...);
  } else {
    f(cells[I].template Get<A>()...);
    return 0;
  }
}

template <class R, class... A>
int Invoke(void* fn, const ArgCell* cells) {
  return InvokeWith<R, A...>(fn, cells, std::index_sequence_for<A...>{});
}

// Splits "(const Vsp16s* pSrc, int len)" into its declarations.
std::vector<std::pair<std::string, std::string>> ParseParams(std::string_view params) {
  std::vector<std::pair<std::string, std::string>> out;
  std::string_view s = params.substr(1, params.size() - 2);
  while (!s.empty()) {
    size_t comma = s.find(',');
    std::string_view decl = s.substr(0, comma);
    while (!decl.empty() && decl.front() == ' ') decl.remove_prefix(1);
    while (!decl.empty() && decl.back() == ' ') decl.remove_suffix(1);
    if (decl != "void" && !decl.empty()) {
      size_t cut = decl.size();
      while (cut > 0 && (std::isalnum(static_cast<unsigned char>(decl[cut - 1])) || decl[cut - 1] == '_')) --cut;
      std::string_view type = decl.substr(0, cut);
      while (!type.empty() && type.back() == ' ') type.remove_suffix(1);
      out.emplace_back(std::string(type), std::string(decl.substr(cut)));
    }
    if (comma == std::string_view::npos) break;
    s.remove_prefix(comma + 1);
  }
  return out;
}

template <class R, class... A>
Export Make(const char* name, const char* params, int slot, R (*fn)(A...)) {
  Export e;
  e.name = name;
  e.slot = slot;
  e.fn = reinterpret_cast<void*>(fn);
  if constexpr (std::is_same_v<R, VspStatus>) e.ret = RetKind::Status;
  else if constexpr (std::is_void_v<R>) e.ret = RetKind::Void;
  else e.ret = RetKind::Pointer;
  e.args = {Describe<A>()...};
  auto decls = ParseParams(params);
  for (size_t i = 0; i < e.args.size() && i < decls.size(); ++i) {
    e.args[i].type = decls[i].first;
    e.args[i].name = decls[i].second;
  }
  e.invoke = &Invoke<R, A...>;
  return e;
}

std::vector<Export> Build() {
  std::vector<Export> all;
  int slot = 0;
#define VSP_FN(ret, name, params) all.push_back(Make(#name, #params, slot++, &name));
#include "vsp/exports.def"
#undef VSP_FN
  return all;
}

}  // namespace

int Export::IndexOf(std::string_view argName) const {
  for (size_t i = 0; i < args.size(); ++i)
    if (args[i].name == argName) return static_cast<int>(i);
  return -1;
}

const std::vector<Export>& Exports() {
  static const std::vector<Export> all = Build();
  return all;
}

const Export* FindExport(std::string_view name) {
  for (const Export& e : Exports())
    if (e.name == name) return &e;
  return nullptr;
}

bool GlobMatch(std::string_view p, std::string_view t) {
  if (p.empty()) return t.empty();
  if (p[0] == '*') return GlobMatch(p.substr(1), t) || (!t.empty() && GlobMatch(p, t.substr(1)));
  return !t.empty() && (p[0] == '?' || p[0] == t[0]) && GlobMatch(p.substr(1), t.substr(1));
}

}  // namespace vsptest
