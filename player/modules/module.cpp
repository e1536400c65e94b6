// SPDX-License-Identifier: Apache-2.0
#include "player/modules/module.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include <dlfcn.h>
#include <sys/stat.h>

#include "player/base/text_list.h"
#include "player/modules/module_error.h"
#include "player/modules/record_check.h"

namespace kest::player {
namespace {

// A module that never answers NULL would keep the host asking.
constexpr uint32_t kMostKinds = 1024;

std::string RealPath(const std::string &path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
  if (real == nullptr) throw ModuleError(path, std::string("cannot be found: ") + std::strerror(errno));
  struct stat status {};
  if (stat(real.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    throw ModuleError(path, "is not a regular file; give the name of a shared object");
  }
  return real.get();
}

std::string LoaderText() {
  const char *text = dlerror();
  return text == nullptr ? "no reason given" : text;
}

}  // namespace

const Module &Module::Load(const std::string &path) {
  static std::map<std::string, std::unique_ptr<const Module>> loaded;
  const std::string real = RealPath(path);
  std::unique_ptr<const Module> &module = loaded[real];
  if (module == nullptr) module.reset(new Module(real));
  return *module;
}

Module::Module(std::string path) : path_(std::move(path)) {
  ReadKinds(FindEntry());
}

ZE_KEST_ModuleEntry Module::FindEntry() const {
  void *handle = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) throw ModuleError(path_, "cannot be loaded: " + LoaderText());
  void *symbol = dlsym(handle, ZE_KEST_MODULE_ENTRY);
  if (symbol == nullptr) {
    throw ModuleError(path_, "is no module: it exports no " ZE_KEST_MODULE_ENTRY ": " + LoaderText());
  }
  return reinterpret_cast<ZE_KEST_ModuleEntry>(symbol);
}

void Module::ReadKinds(ZE_KEST_ModuleEntry entry) {
  for (uint32_t i = 0; const ZE_KEST_ModuleFilter_s *own = entry(ZE_KEST_MODULE_ABI, i); ++i) {
    if (i == kMostKinds) throw ModuleError(path_, "its list of filters does not end");
    const ModuleKind kind{this, own, Known(*own)};
    if (const std::string fault = FaultOf(kind.record); !fault.empty()) {
      throw ModuleError(path_, "filter " + std::to_string(i) + ": " + fault);
    }
    const bool isThere = std::any_of(kinds_.begin(), kinds_.end(), [&](const ModuleKind &earlier) {
      return std::strcmp(earlier.record.pszName, kind.record.pszName) == 0;
    });
    if (isThere) throw ModuleError(path_, std::string("two filters are called ") + kind.record.pszName);
    kinds_.push_back(kind);
  }
  if (kinds_.empty()) {
    throw ModuleError(path_, "has no filter for version " + std::to_string(ZE_KEST_MODULE_ABI) +
                                 " of the interface, which this host has");
  }
}

const ModuleKind &Module::Kind(std::string_view name) const {
  if (name.empty() && kinds_.size() == 1) return kinds_.front();
  const auto kind = std::find_if(kinds_.begin(), kinds_.end(),
                                 [&](const ModuleKind &known) { return name == known.record.pszName; });
  if (kind != kinds_.end()) return *kind;
  const std::string names = ListNames(kinds_, [](const ModuleKind &known) { return known.record.pszName; });
  throw ModuleError(path_, (name.empty() ? std::string("say which of its filters is meant")
                                         : "has no filter \"" + std::string(name) + "\"") +
                               "; it has: " + names);
}

}  // namespace kest::player
