// SPDX-License-Identifier: Apache-2.0
// Compares the JSON reader with the bare tokenizer, which gets a large enough array at once.
#include "ze_kest/json.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bench/rows.h"
#include "bench/table.h"
#include "bench/tokenizer_alone.h"

namespace kest::bench {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;
constexpr uint32_t kTokens = 1u << 18;

// A flat object of as many named parameters as fit.
std::string Parameters(size_t sztBytes) {
  std::string text = "{\n";
  for (int i = 0; text.size() < sztBytes - 64; ++i) {
    const std::string number = std::to_string(i);
    text += "  \"Parameter" + number + "\": " + number + ",\n  \"Name" + number + "\": \"Value\",\n";
  }
  return text + "  \"Last\": 1\n}\n";
}

// Pipelines of filters that have parameters.
std::string Pipelines(size_t sztBytes) {
  std::string text = "{ \"Pipelines\": [\n";
  while (text.size() < sztBytes - 64) {
    text += "  { \"Name\": \"SpeakerOutput\", \"Filters\": [\n";
    for (int i = 0; i < 8; ++i)
      text += "    { \"Name\": \"Mixer\", \"Gain\": [ -6, 0, 4 ], \"Enabled\": true, \"Rate\": 48000 },\n";
    text += "    { \"Name\": \"Delay\", \"Ms\": 50 } ] },\n";
  }
  return text + "  { \"Last\": 1 } ] }\n";
}

void Fill(ZE_KEST_Jsmn_s *pstJsmn, const std::string &text) {
  ze_kest_Utility_Jsmn_Create(pstJsmn);
  pstJsmn->pszStringData = text.c_str();
  pstJsmn->sztStringDataSize = text.size();
  if (ze_kest_Utility_Jsmn_FillUpTokenInfo(pstJsmn) != ZE_KEST_OK) ReportFault("JSON was refused");
}

void AddReader(const std::string &operation, const std::string &text) {
  const auto shared = std::make_shared<std::string>(text);
  Row(operation + " (limit: the tokenizer alone)")
      .Add("", Who::kLibrary,
           [shared] {
             ZE_KEST_Jsmn_s stJsmn;
             Fill(&stJsmn, *shared);
             ze_kest_Utility_Jsmn_Destroy(&stJsmn);
           })
      .Add("", Who::kLimit, [shared, tokens = std::make_shared<std::vector<char>>(kTokens * kTokenBytes)] {
        if (TokenizeAlone(shared->data(), shared->size(), tokens->data(), kTokens) <= 0) {
          ReportFault("JSON was refused by the tokenizer");
        }
      });
}

class Index {
 public:
  explicit Index(size_t sztBytes) : text_(Parameters(sztBytes)) { Fill(&stJsmn_, text_); }
  ~Index() { ze_kest_Utility_Jsmn_Destroy(&stJsmn_); }
  Index(const Index &) = delete;
  Index &operator=(const Index &) = delete;

  void FindLast() const {
    if (ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&stJsmn_, nullptr, "Last") == nullptr) {
      ReportFault("a name is missing");
    }
  }

 private:
  std::string text_;
  ZE_KEST_Jsmn_s stJsmn_ = {};
};

}  // namespace

void AddJsonRows() {
  AddReader("JSON, 1 MB of parameters", Parameters(kMegabyte));
  AddReader("JSON, 1 MB of pipelines", Pipelines(kMegabyte));
  const auto whole = std::make_shared<Index>(kMegabyte);
  const auto half = std::make_shared<Index>(kMegabyte / 2);
  Row("JSON, the last name of 1 MB (limit: of 0.5 MB, 2 is linear)")
      .Add("", Who::kLibrary, [whole] { whole->FindLast(); })
      .Add("", Who::kLimit, [half] { half->FindLast(); });
}

}  // namespace kest::bench
