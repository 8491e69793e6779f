// The census of the entry layer: every row of the export list is exported by the built library,
// nothing else is, and each export is one jump through its own slot of the entry table to its
// own implementation (m7_<name>).
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "support/registry.h"

namespace vsptest {
namespace {

// The symbols of one ELF symbol table of the library file.
struct ElfSymbols {
  std::map<std::string, Elf64_Addr> defined;  // name -> value, defined symbols only
  std::set<std::string> globalFunctions;      // defined global functions
};

ElfSymbols ReadSymbols(const std::string& path, Elf64_Word tableType) {
  std::ifstream in(path, std::ios::binary);
  std::vector<char> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ElfSymbols out;
  if (file.size() < sizeof(Elf64_Ehdr)) return out;
  Elf64_Ehdr eh;
  std::memcpy(&eh, file.data(), sizeof(eh));
  auto section = [&](size_t i) {
    Elf64_Shdr sh;
    std::memcpy(&sh, file.data() + eh.e_shoff + i * eh.e_shentsize, sizeof(sh));
    return sh;
  };
  for (size_t s = 0; s < eh.e_shnum; ++s) {
    Elf64_Shdr sh = section(s);
    if (sh.sh_type != tableType) continue;
    Elf64_Shdr strtab = section(sh.sh_link);
    for (size_t k = 0; k < sh.sh_size / sizeof(Elf64_Sym); ++k) {
      Elf64_Sym sym;
      std::memcpy(&sym, file.data() + sh.sh_offset + k * sizeof(Elf64_Sym), sizeof(sym));
      if (sym.st_shndx == SHN_UNDEF) continue;
      std::string name = file.data() + strtab.sh_offset + sym.st_name;
      out.defined[name] = sym.st_value;
      if (ELF64_ST_BIND(sym.st_info) == STB_GLOBAL && ELF64_ST_TYPE(sym.st_info) == STT_FUNC)
        out.globalFunctions.insert(name);
    }
  }
  return out;
}

// The slot that an entry jumps through: the entry is `jmp *rel32(%rip)` (ff 25), optionally
// behind an endbr64.
const void* SlotOf(const void* entry) {
  const auto* p = static_cast<const unsigned char*>(entry);
  static const unsigned char kEndbr[] = {0xf3, 0x0f, 0x1e, 0xfa};
  if (std::memcmp(p, kEndbr, 4) == 0) p += 4;
  if (p[0] != 0xff || p[1] != 0x25) return nullptr;
  int32_t rel;
  std::memcpy(&rel, p + 2, 4);
  return p + 6 + rel;
}

class Census : public ::testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(VSP_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (!handle_) handle_ = dlopen(VSP_LIBRARY_PATH, RTLD_NOW);
    ASSERT_NE(handle_, nullptr) << dlerror();
  }
  void TearDown() override {
    if (handle_) dlclose(handle_);
  }
  void* handle_ = nullptr;
};

TEST_F(Census, EveryListedExportIsFoundByName) {
  for (const Export& e : Exports()) {
    void* sym = dlsym(handle_, e.name.c_str());
    EXPECT_NE(sym, nullptr) << e.name;
    EXPECT_EQ(sym, e.fn) << e.name << ": the linked and the looked-up entry differ";
  }
}

TEST_F(Census, ExactlyTheListedFunctionsAreExported) {
  ElfSymbols dyn = ReadSymbols(VSP_LIBRARY_PATH, SHT_DYNSYM);
  std::set<std::string> listed;
  for (const Export& e : Exports()) listed.insert(e.name);
  EXPECT_EQ(listed.size(), Exports().size()) << "a name appears twice in the export list";
  for (const std::string& name : dyn.globalFunctions) EXPECT_TRUE(listed.count(name)) << "exported but not listed: " << name;
  for (const std::string& name : listed) EXPECT_TRUE(dyn.globalFunctions.count(name)) << "listed but not exported: " << name;
}

TEST_F(Census, EachEntryJumpsThroughItsOwnSlotToItsOwnImplementation) {
  ElfSymbols all = ReadSymbols(VSP_LIBRARY_PATH, SHT_SYMTAB);
  ASSERT_FALSE(all.defined.empty()) << "the library has no symbol table (stripped?)";
  Dl_info info{};
  ASSERT_NE(dladdr(Exports().front().fn, &info), 0);
  const auto base = reinterpret_cast<uintptr_t>(info.dli_fbase);

  const void* first = SlotOf(Exports().front().fn);
  ASSERT_NE(first, nullptr);
  std::set<const void*> slots;
  for (const Export& e : Exports()) {
    const void* slot = SlotOf(e.fn);
    ASSERT_NE(slot, nullptr) << e.name << " is not a single indirect jump";
    EXPECT_TRUE(slots.insert(slot).second) << e.name << " shares a slot";
    // Slots follow the order of the list, 8 bytes each.
    EXPECT_EQ(static_cast<const char*>(slot) - static_cast<const char*>(first), 8 * e.slot) << e.name;
    auto impl = all.defined.find("m7_" + e.name);
    ASSERT_NE(impl, all.defined.end()) << "no implementation m7_" << e.name;
    uintptr_t target;
    std::memcpy(&target, slot, sizeof(target));
    EXPECT_EQ(target, base + impl->second) << e.name << " does not reach m7_" << e.name;
  }
}

}  // namespace
}  // namespace vsptest
