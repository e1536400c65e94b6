// SPDX-License-Identifier: Apache-2.0
// What the words of the requests do with the rest of their line.
#pragma once

#include "debug/requests/request.h"

namespace kest {

// pipeline,PIPELINE and filter,PIPELINE:FILTER
uint32_t SelectPipeline(const Request &request, const char *pszWord, CommandLine &line);
uint32_t SelectFilter(const Request &request, const char *pszWord, CommandLine &line);

// PIPELINE,FILTER:INPUT_PORT
uint32_t RequestTestTone(const Request &request, const char *pszPipelineName, CommandLine &line);

// PIPELINE,FILTER,CYCLES
uint32_t RequestPcmLevel(const Request &request, const char *pszPipelineName, CommandLine &line);

// PIPELINE,FILTER:INPUT_PORT,OUTPUT_PORT
uint32_t RequestDataRate(const Request &request, const char *pszPipelineName, CommandLine &line);

}  // namespace kest
