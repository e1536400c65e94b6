// SPDX-License-Identifier: Apache-2.0
// A pipeline, its filters and whom it feeds in the library's registry, while this lives.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ze_kest/model.h"

#include "player/framework/filter.h"

namespace kest::player {

class Registration {
 public:
  // On the thread that runs the pipeline, with no lock held: a preset command is delivered from here. From
  // now on the command thread calls the filters.
  Registration(const ZE_KEST_Pipeline_s &pipeline, const std::vector<std::unique_ptr<Filter>> &filters,
               const std::vector<std::string> &fedPipelines);
  // Returns when no call to a filter is under way any more.
  ~Registration();
  Registration(const Registration &) = delete;
  Registration &operator=(const Registration &) = delete;

 private:
  const char *name_;
};

}  // namespace kest::player
