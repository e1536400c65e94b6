// SPDX-License-Identifier: Apache-2.0
// The file: what it exports, what it says of itself, and what loading it leaves behind.
#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include "player/check/check_test.h"
#include "player/check/process_state.h"

namespace kest::player {
namespace {

using Bytes = std::vector<char>;

Bytes ReadWhole(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A record at an offset of the file; 0 where the file ends before it.
template <typename Record>
Record At(const Bytes &file, size_t offset) {
  Record record{};
  if (offset <= file.size() && sizeof(record) <= file.size() - offset) {
    std::memcpy(&record, file.data() + offset, sizeof(record));
  }
  return record;
}

std::string TextAt(const Bytes &file, size_t offset) {
  if (offset >= file.size()) return "";
  return {file.data() + offset, strnlen(file.data() + offset, file.size() - offset)};
}

bool IsExported(const ElfW(Sym) & symbol) {
  const auto binding = ELF64_ST_BIND(symbol.st_info);
  const auto visibility = ELF64_ST_VISIBILITY(symbol.st_other);
  return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL &&
         visibility != STV_HIDDEN && visibility != STV_INTERNAL;
}

// What every linker of old exports.
bool IsOfLinker(const std::string &name) {
  for (const char *known : {"_init", "_fini", "_edata", "_end", "__bss_start"}) {
    if (name == known) return true;
  }
  return false;
}

std::vector<std::string> OtherExports(const Bytes &file) {
  const auto header = At<ElfW(Ehdr)>(file, 0);
  std::vector<std::string> names;
  for (size_t i = 0; i < header.e_shnum; ++i) {
    const auto table = At<ElfW(Shdr)>(file, header.e_shoff + i * header.e_shentsize);
    if (table.sh_type != SHT_DYNSYM) continue;
    const auto texts = At<ElfW(Shdr)>(file, header.e_shoff + size_t{table.sh_link} * header.e_shentsize);
    for (size_t offset = 0; offset < table.sh_size; offset += sizeof(ElfW(Sym))) {
      const auto symbol = At<ElfW(Sym)>(file, table.sh_offset + offset);
      const std::string name = TextAt(file, texts.sh_offset + symbol.st_name);
      if (IsExported(symbol) && !IsOfLinker(name) && name != ZE_KEST_MODULE_ENTRY) names.push_back(name);
    }
  }
  return names;
}

Finding Exports(const Subject &subject) {
  const std::vector<std::string> names = OtherExports(ReadWhole(Module::Load(subject.file).Path()));
  if (names.empty()) return Success();
  constexpr size_t kShown = 5;
  std::string seen = "it also exports";
  for (size_t i = 0; i < names.size() && i < kShown; ++i) {
    seen += (i == 0 ? " " : ", ") + names[i];
  }
  if (names.size() > kShown) seen += " and " + std::to_string(names.size() - kShown) + " more";
  return Failed(seen);
}

Finding Stack(const Subject &subject) {
  const Bytes file = ReadWhole(Module::Load(subject.file).Path());
  const auto header = At<ElfW(Ehdr)>(file, 0);
  for (size_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = At<ElfW(Phdr)>(file, header.e_phoff + i * header.e_phentsize);
    if (segment.p_type != PT_GNU_STACK) continue;
    return (segment.p_flags & PF_X) == 0 ? Success() : Failed("it asks for an executable stack");
  }
  return Failed("it does not say that its stack need not be executable (no PT_GNU_STACK)");
}

Finding ScanTime(const Subject &subject) {
  constexpr auto kMost = std::chrono::milliseconds(100);
  const auto begin = std::chrono::steady_clock::now();
  static_cast<void>(Module::Load(subject.file));
  const auto taken = std::chrono::steady_clock::now() - begin;
  if (taken <= kMost) return Success();
  return Warning("it took " +
                 std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(taken).count()) +
                 " ms");
}

ZE_KEST_ModuleEntry EntryOf(const Module &module) {
  void *handle = dlopen(module.Path().c_str(), RTLD_NOW | RTLD_LOCAL);
  return reinterpret_cast<ZE_KEST_ModuleEntry>(dlsym(handle, ZE_KEST_MODULE_ENTRY));
}

Finding ForeignAbi(const Subject &subject) {
  const ZE_KEST_ModuleEntry entry = EntryOf(Module::Load(subject.file));
  for (const uint32_t abi : {0u, ZE_KEST_MODULE_ABI + 1, UINT32_MAX}) {
    if (entry(abi, 0) != nullptr) return Failed("it gives a record for version " + std::to_string(abi));
  }
  return Success();
}

Finding PastTheEnd(const Subject &subject) {
  const Module &module = Module::Load(subject.file);
  const ZE_KEST_ModuleEntry entry = EntryOf(module);
  const auto count = static_cast<uint32_t>(module.Kinds().size());
  for (const uint32_t index : {count, count + 1, count + 1000, UINT32_MAX}) {
    if (entry(ZE_KEST_MODULE_ABI, index) != nullptr) {
      return Failed("it has " + std::to_string(count) + " filters and gives a record for index " +
                    std::to_string(index));
    }
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (entry(ZE_KEST_MODULE_ABI, i) != module.Kinds()[i].own) {
      return Failed("index " + std::to_string(i) + " gives another record when asked again");
    }
  }
  return Success();
}

Finding LeavesProcess(const Subject &subject) {
  const ProcessState before = ProcessState::Now();
  static_cast<void>(Module::Load(subject.file));
  const std::string changed = before.ChangeSince();
  return changed.empty() ? Success() : Failed("loading it " + changed);
}

constexpr CheckTest kTests[] = {
    {"Load.Exports", "the file exports ze_kest_module and nothing else", Exports},
    {"Load.Stack", "the file needs no executable stack", Stack},
    {"Load.ScanTime", "loading and listing the kinds takes at most 100 ms", ScanTime},
    {"Load.ForeignAbi", "for versions of the interface that it was not built for, there is no record",
     ForeignAbi},
    {"Load.PastTheEnd", "past the last kind there is no record, and the same index gives the same record",
     PastTheEnd},
    {"Load.Process", "loading leaves the process as it was", LeavesProcess},
};

}  // namespace

const Table<CheckTest> kLoadTests = kTests;

}  // namespace kest::player
