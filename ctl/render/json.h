// SPDX-License-Identifier: Apache-2.0
// What was parsed, as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "ctl/channel/surroundings.h"
#include "ctl/model/listing.h"
#include "ctl/model/log_line.h"
#include "ctl/model/metric.h"
#include "ctl/model/parameter.h"
#include "ctl/model/process.h"
#include "ctl/model/status.h"

namespace kest::ctl {

using Json = nlohmann::ordered_json;

Json ToJson(const std::string &text);  // as UTF-8
Json ToJson(const std::vector<std::string> &texts);
Json ToJson(const Port &port);
Json ToJson(const Filter &filter);
Json ToJson(const Pipeline &pipeline);
Json ToJson(const Listing &listing);
Json ToJson(const Parameter &parameter);
Json ToJson(const Process &process);
Json ToJson(const FilterStatus &filter);
Json ToJson(const StatusReport &report);
Json ToJson(const LogLine &line);
Json ToJson(const Finding &finding);
Json ToJson(const MetricFamily &family);

// On one line, without an end; never fails on odd bytes.
std::string Dump(const Json &json);

}  // namespace kest::ctl
