// SPDX-License-Identifier: Apache-2.0
// Keeps a pipeline, its filters and its connections in the library's registry for as long as it exists.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ze_kest/model.h"

#include "player/framework/filter.h"

namespace kest::player {

class Registration {
 public:
  // Call it on the thread that runs the pipeline, with no lock held: it may deliver a preset command. From
  // then on the command thread calls the filters.
  Registration(const ZE_KEST_Pipeline_s &pipeline, const std::vector<std::unique_ptr<Filter>> &filters,
               const std::vector<std::string> &fedPipelines);
  // Returns once no call to a filter is in progress any more.
  ~Registration();
  Registration(const Registration &) = delete;
  Registration &operator=(const Registration &) = delete;

 private:
  const char *name_;
};

}  // namespace kest::player
