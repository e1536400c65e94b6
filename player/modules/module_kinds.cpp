// SPDX-License-Identifier: Apache-2.0
#include "player/modules/module_kinds.h"

#include <map>

#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"
#include "player/modules/module_error.h"
#include "player/modules/module_filter.h"

namespace kest::player {
namespace {

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  const auto &kind = static_cast<const ModuleFilterKind &>(*layout.kind);
  return std::make_unique<ModuleFilter>(kind, layout, material.format);
}

// The debug layer tells filters apart by their names, so a status would be taken for that of the other kind.
void CheckNames(const FilterKinds &kinds, const Module &module) {
  for (const ModuleKind &kind : module.Kinds()) {
    if (FindKind(kinds, kind.record.pszName) == nullptr) continue;
    throw ModuleError(module.Path(), std::string("its filter ") + kind.record.pszName +
                                         " has the name of a built-in one; rename it");
  }
}

}  // namespace

const ModuleFilterKind &LoadKind(const FilterKinds &kinds, const std::string &path, std::string_view name) {
  static std::map<const ModuleKind *, ModuleFilterKind> known;
  const Module &module = Module::Load(path);
  CheckNames(kinds, module);
  const ModuleKind &kind = module.Kind(name);
  const FilterKind row = {kind.record.pszName, FilterPlace::kBetween, Make, {}, {}, {}};
  return known.try_emplace(&kind, ModuleFilterKind{row, &kind}).first->second;
}

}  // namespace kest::player
