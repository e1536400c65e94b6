// SPDX-License-Identifier: Apache-2.0
#include "player/requests/data_rate.h"

#include <string>

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/requests/request_names.h"

namespace kest::player {
namespace {

constexpr std::chrono::seconds kPeriod{1};

bool IsRequested(const ZE_KEST_Filter_s &filter) {
  return LoadRelaxed(u32KestCalculateDataRate) == ZE_KEST_REQUEST_MADE &&
         IsNamed(szKestCalculateDataRateName1, szKestCalculateDataRateName2, filter);
}

// nullptr when the filter has no such port.
const ZE_KEST_Port_s *PortAt(ZE_KEST_Port_s *const *ports, uint32_t count, uint32_t number) {
  return number < count && number < ZE_KEST_MAX_PORTS ? ports[number] : nullptr;
}

const ZE_KEST_Port_s *InputAt(const ZE_KEST_Filter_s &filter, uint32_t number) {
  return PortAt(filter.apstInPort, filter.u32InPortCount, number);
}

const ZE_KEST_Port_s *OutputAt(const ZE_KEST_Filter_s &filter, uint32_t number) {
  return PortAt(filter.apstOutPort, filter.u32OutPortCount, number);
}

template <typename Flow>
void Add(Flow &flow, const ZE_KEST_PcmBuffer_s &pcm, uint32_t samples, uint32_t metadataBytes) {
  flow.samples += samples;
  flow.pcmBytes += uint64_t{samples} * pcm.stPcmInfo.u32TotalChannels * (pcm.stPcmInfo.u32BitWidth / 8);
  flow.metadataBytes += metadataBytes;
}

std::string PerSecond(uint64_t count, std::chrono::microseconds elapsed) {
  const auto us = static_cast<uint64_t>(elapsed.count());
  return std::to_string((count * 1000000 + us / 2) / us);
}

// "in0 48000 samples/s, 192000 bytes/s, 6000 bytes/s of metadata"
template <typename Flow>
std::string Text(const char *side, uint32_t number, const ZE_KEST_Port_s *port, const Flow &flow,
                 std::chrono::microseconds elapsed) {
  const std::string name = side + std::to_string(number);
  if (port == nullptr) return "no " + name;
  return name + " " + PerSecond(flow.samples, elapsed) + " samples/s, " + PerSecond(flow.pcmBytes, elapsed) +
         " bytes/s, " + PerSecond(flow.metadataBytes, elapsed) + " bytes/s of metadata";
}

}  // namespace

void DataRate::Count(const ZE_KEST_Filter_s &filter, Clock::time_point now) {
  if (!IsRequested(filter)) {
    running_ = false;
    return;
  }
  const Ports ports = {LoadRelaxed(u32KestCalculateDataRateInputPort),
                       LoadRelaxed(u32KestCalculateDataRateOutputPort)};
  // What this turn has moved came before the measurement begins.
  if (!running_ || ports_ != ports) return Begin(ports, now);
  if (const ZE_KEST_Port_s *port = InputAt(filter, ports.input))
    Add(in_, port->stPcm, port->stPcm.sztPcmReadSize, port->stMeta.sztReadSize);
  if (const ZE_KEST_Port_s *port = OutputAt(filter, ports.output))
    Add(out_, port->stPcm, port->stPcm.sztPcmWriteSize, port->stMeta.sztWriteSize);
  if (now - start_ < kPeriod) return;
  Report(filter, std::chrono::duration_cast<std::chrono::microseconds>(now - start_));
  Begin(ports, now);
}

void DataRate::Begin(const Ports &ports, Clock::time_point now) {
  *this = DataRate();
  running_ = true;
  ports_ = ports;
  start_ = now;
}

void DataRate::Report(const ZE_KEST_Filter_s &filter, std::chrono::microseconds elapsed) const {
  const std::string in = Text("in", ports_.input, InputAt(filter, ports_.input), in_, elapsed);
  const std::string out = Text("out", ports_.output, OutputAt(filter, ports_.output), out_, elapsed);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[CAL_DATA_RATE]%s:%s %s; %s\n", filter.pstParentPipeline->szName,
                    filter.szName, in.c_str(), out.c_str());
}

}  // namespace kest::player
