// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/interrupt.h"

#include <csignal>
#include <ctime>

#include "ctl/error.h"

namespace kest::ctl {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;
volatile std::sig_atomic_t g_toldToEnd = 0;
int g_holders = 0;

void NoteInterrupt(int signal) {
  g_interrupted = 1;
  if (signal != SIGINT) g_toldToEnd = 1;
}

}  // namespace

void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;  // without SA_RESTART, so that waits end
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    sigaction(signal, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

bool IsInterrupted() {
  return g_interrupted != 0;
}

bool IsToldToEnd() {
  return g_toldToEnd != 0;
}

void ForgetInterrupt() {
  g_interrupted = 0;
}

HoldingInterrupts::HoldingInterrupts() {
  ++g_holders;
}

HoldingInterrupts::~HoldingInterrupts() {
  --g_holders;
}

void ThrowIfInterrupted() {
  if (IsInterrupted() && g_holders == 0) throw CtlError(ExitCode::kInterrupted, "interrupted");
}

void Pause(std::chrono::microseconds duration) {
  ThrowIfInterrupted();
  const auto us = duration.count();
  const timespec time = {static_cast<time_t>(us / 1'000'000), static_cast<long>(us % 1'000'000 * 1000)};
  nanosleep(&time, nullptr);
  ThrowIfInterrupted();
}

}  // namespace kest::ctl
