// SPDX-License-Identifier: Apache-2.0
// A filter whose work a module does.
#pragma once

#include <string>
#include <vector>

#include "player/framework/filter.h"
#include "player/framework/filter_layout.h"
#include "player/modules/module_instance.h"
#include "player/modules/module_kinds.h"

namespace kest::player {

class ModuleFilter : public Filter {
 public:
  // Throws ModuleError when the module refuses, and PlayerError for a wrong parameter of the layout.
  ModuleFilter(const ModuleFilterKind &kind, const FilterLayout &layout, const PcmFormat &format);

  [[nodiscard]] Table<Parameter> Parameters() const override { return rows_; }
  bool RunCommand(const char *text) override { return instance_.Command(text) == ZE_KEST_OK; }

 protected:
  void Process() override;
  [[nodiscard]] bool IsComplete() const override;

 private:
  void DescribeParameters();
  void SetGiven(const GivenParameter &given);
  void KeepWithinRings();
  void KeepWithin(uint32_t &moved, uint32_t limit, const char *what);
  void KeepWholeBlocks();
  [[nodiscard]] bool WroteWholeBlocks() const;
  void Complain(const std::string &fault);
  void CheckThatItMoves();

  std::string config_;
  ModuleInstance instance_;
  std::vector<Parameter> rows_;
  uint32_t pending_ = 0;  // samples that it still holds after the end
  uint32_t idleTurns_ = 0;
  bool hasComplained_ = false;
};

}  // namespace kest::player
