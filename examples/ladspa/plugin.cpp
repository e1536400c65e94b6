// SPDX-License-Identifier: Apache-2.0
#include "plugin.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include <dlfcn.h>

namespace ladspa_host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kUsualPath = "/usr/lib/ladspa:/usr/local/lib/ladspa";

fs::path WithSuffix(const fs::path &file) {
  return file.extension() == ".so" ? file : fs::path(file.string() + ".so");
}

fs::path Locate(const std::string &file, const std::string &directory) {
  if (file.find('/') != std::string::npos) return WithSuffix(directory / fs::path(file));
  const char *set = std::getenv("LADSPA_PATH");
  const std::string path = set == nullptr ? kUsualPath : set;
  std::istringstream directories(path);
  for (std::string candidate; std::getline(directories, candidate, ':');) {
    fs::path found = WithSuffix(candidate / fs::path(file));
    if (fs::exists(found)) return found;
  }
  throw std::runtime_error("there is no " + WithSuffix(file).string() + " in " + path);
}

LADSPA_Descriptor_Function Load(const fs::path &file) {
  void *library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  void *symbol = dlsym(library, "ladspa_descriptor");
  if (symbol == nullptr) throw std::runtime_error(file.string() + " holds no LADSPA plug-ins");
  return reinterpret_cast<LADSPA_Descriptor_Function>(symbol);
}

}  // namespace

const LADSPA_Descriptor &FindPlugin(const std::string &text, const std::string &directory) {
  const size_t colon = text.rfind(':');
  if (colon == std::string::npos) {
    throw std::runtime_error("the configuration is FILE:LABEL, such as amp.so:amp_mono");
  }
  const fs::path file = Locate(text.substr(0, colon), directory);
  const std::string label = text.substr(colon + 1);
  const LADSPA_Descriptor_Function descriptors = Load(file);
  std::string labels;
  for (unsigned long i = 0; const LADSPA_Descriptor *plugin = descriptors(i); ++i) {
    if (label == plugin->Label) return *plugin;
    labels += (i == 0 ? "" : ", ") + std::string(plugin->Label);
  }
  throw std::runtime_error(file.string() + " has no plug-in \"" + label + "\"; it has: " + labels);
}

AudioPorts AudioPortsOf(const LADSPA_Descriptor &plugin) {
  AudioPorts ports;
  for (unsigned long port = 0; port < plugin.PortCount; ++port) {
    const LADSPA_PortDescriptor kind = plugin.PortDescriptors[port];
    if (!LADSPA_IS_PORT_AUDIO(kind)) continue;
    (LADSPA_IS_PORT_INPUT(kind) ? ports.inputs : ports.outputs).push_back(port);
  }
  return ports;
}

Instance::Instance(const LADSPA_Descriptor &plugin, uint32_t sampleRate)
    : plugin_(plugin), handle_(plugin.instantiate(&plugin, sampleRate)) {
  if (handle_ == nullptr) throw std::runtime_error(std::string(plugin.Label) + " cannot be instantiated");
}

Instance::~Instance() {
  if (active_ && plugin_.deactivate != nullptr) plugin_.deactivate(handle_);
  plugin_.cleanup(handle_);
}

void Instance::Activate() {
  if (plugin_.activate != nullptr) plugin_.activate(handle_);
  active_ = true;
}

// SSE's flush-to-zero and denormals-are-zero bits, the flush bit of ARM's unit; elsewhere nothing.
#if defined(__SSE__)
FlushDenormals::FlushDenormals() : saved_(__builtin_ia32_stmxcsr()) {
  __builtin_ia32_ldmxcsr(static_cast<unsigned>(saved_) | 0x8040u);
}
FlushDenormals::~FlushDenormals() {
  __builtin_ia32_ldmxcsr(static_cast<unsigned>(saved_));
}
#elif defined(__arm__) && defined(__VFP_FP__) && !defined(__SOFTFP__)
FlushDenormals::FlushDenormals() : saved_(0) {
  asm volatile("vmrs %0, fpscr" : "=r"(saved_));
  asm volatile("vmsr fpscr, %0" ::"r"(saved_ | (1ul << 24)));
}
FlushDenormals::~FlushDenormals() {
  asm volatile("vmsr fpscr, %0" ::"r"(saved_));
}
#else
FlushDenormals::FlushDenormals() : saved_(0) {}
FlushDenormals::~FlushDenormals() = default;
#endif

}  // namespace ladspa_host
