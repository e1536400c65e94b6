// SPDX-License-Identifier: Apache-2.0
// LADSPA plug-ins: found, loaded, and run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ladspa.h>

namespace ladspa_host {

// The plug-in that a text FILE:LABEL means. Its library stays loaded for the rest of the process. Throws
// std::runtime_error with the reason.
const LADSPA_Descriptor &FindPlugin(const std::string &text, const std::string &directory);

struct AudioPorts {
  std::vector<unsigned long> inputs;
  std::vector<unsigned long> outputs;
};

AudioPorts AudioPortsOf(const LADSPA_Descriptor &plugin);

// One instance. The plug-in needs all its ports connected before it is activated.
class Instance {
 public:
  // Throws std::runtime_error when the plug-in refuses.
  Instance(const LADSPA_Descriptor &plugin, uint32_t sampleRate);
  ~Instance();
  Instance(const Instance &) = delete;
  Instance &operator=(const Instance &) = delete;

  void Connect(unsigned long port, LADSPA_Data *location) { plugin_.connect_port(handle_, port, location); }
  void Activate();
  void Run(uint32_t samples) { plugin_.run(handle_, samples); }

 private:
  const LADSPA_Descriptor &plugin_;
  LADSPA_Handle handle_;
  bool active_ = false;
};

// Lets the processor take denormal numbers for 0 while it exists.
class FlushDenormals {
 public:
  FlushDenormals();
  ~FlushDenormals();
  FlushDenormals(const FlushDenormals &) = delete;
  FlushDenormals &operator=(const FlushDenormals &) = delete;

 private:
  unsigned long saved_;
};

}  // namespace ladspa_host
