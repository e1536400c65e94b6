// SPDX-License-Identifier: Apache-2.0
// A shared object with filters. See ze_kest/module.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ze_kest/module.h"

namespace kest::player {

class Module;

// A kind of filter in a module, as its record says and checked.
struct ModuleKind {
  const Module *module;
  const ZE_KEST_ModuleFilter_s *own;  // the module's record, which its entries get
  ZE_KEST_ModuleFilter_s record;      // what this host knows of it; fields that the module lacks are 0
};

class Module {
 public:
  // The same object for the same file, for the rest of the process: a module is never unloaded, since its
  // threads and exit handlers may outlive its filters. For one thread. Throws ModuleError.
  static const Module &Load(const std::string &path);

  Module(const Module &) = delete;
  Module &operator=(const Module &) = delete;

  [[nodiscard]] const std::string &Path() const { return path_; }
  // At least one.
  [[nodiscard]] const std::vector<ModuleKind> &Kinds() const { return kinds_; }
  // The kind of the name, or the only one for "". Throws ModuleError, which lists the kinds there are.
  [[nodiscard]] const ModuleKind &Kind(std::string_view name) const;

 private:
  // path: absolute, of a regular file.
  explicit Module(std::string path);
  [[nodiscard]] ZE_KEST_ModuleEntry FindEntry() const;
  void ReadKinds(ZE_KEST_ModuleEntry entry);

  std::string path_;
  std::vector<ModuleKind> kinds_;
};

}  // namespace kest::player
