// SPDX-License-Identifier: Apache-2.0
#include "tests/support/report_capture.h"

#include <algorithm>
#include <mutex>

namespace kest::test {
namespace {

std::mutex g_mutex;
std::vector<Report> g_reports;

Report Parse(int s32Priority, const char *pszTag, const std::string &message) {
  const size_t labelEnd = message.find('>') + 1;
  const size_t functionEnd = message.find('[', labelEnd);
  const size_t textStart = message.find("]: ", functionEnd) + 3;
  if (functionEnd == std::string::npos) return {s32Priority, pszTag, "", "", message};
  return {s32Priority, pszTag, message.substr(0, labelEnd), message.substr(labelEnd, functionEnd - labelEnd),
          message.substr(textStart)};
}

void Collect(const __android_logger_data *pstData, const char *pszMessage) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_reports.push_back(Parse(pstData->priority, pstData->tag, pszMessage));
}

}  // namespace

// The first log line of a process takes the level over from the shared settings: it must not be one of the
// test's.
ReportCapture::ReportCapture(uint32_t u32Level) {
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", "");
  u32LevelBefore_ = u32KestDebugLevel;
  Clear();
  __android_log_set_logger(Collect);
  __atomic_store_n(&u32KestDebugLevel, u32Level, __ATOMIC_RELAXED);
}

ReportCapture::~ReportCapture() {
  __atomic_store_n(&u32KestDebugLevel, u32LevelBefore_, __ATOMIC_RELAXED);
  __android_log_set_logger(__android_log_stderr_logger);
}

std::vector<Report> ReportCapture::Reports() const {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return g_reports;
}

Texts ReportCapture::Lines() const {
  kest::test::Texts lines;
  for (const Report &report : Reports())
    lines.push_back(report.label + report.text);
  return lines;
}

Texts ReportCapture::Texts(const std::string &label) const {
  kest::test::Texts texts;
  for (const Report &report : Reports()) {
    if (report.label == label) texts.push_back(report.text);
  }
  return texts;
}

bool ReportCapture::Has(const std::string &label, const std::string &text) const {
  const kest::test::Texts texts = Texts(label);
  return std::any_of(texts.begin(), texts.end(),
                     [&text](const std::string &found) { return found.find(text) != std::string::npos; });
}

int64_t ReportCapture::Count(const std::string &label, const std::string &text) const {
  const kest::test::Texts lines = Lines();
  return std::count(lines.begin(), lines.end(), label + text);
}

void ReportCapture::Clear() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_reports.clear();
}

}  // namespace kest::test
