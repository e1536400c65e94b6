// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/xrun_text.h"

#include <fmt/format.h>

#include "ctl/model/port_name.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

double Milliseconds(uint64_t us) {
  return static_cast<double>(us) / 1000.0;
}

std::string Show(const Neighbour &neighbour) {
  std::string text = fmt::format(" {}/{}", neighbour.pipeline, neighbour.filter);
  for (const PortState &port : neighbour.ports)
    text += fmt::format(" {} {}/{}", PortName(port), port.level, port.size);
  return text + fmt::format(" {:.1f} ms ago", Milliseconds(neighbour.agoUs));
}

std::string Show(const char *title, const std::vector<Neighbour> &neighbours) {
  std::string text;
  for (const Neighbour &neighbour : neighbours)
    text += (text.empty() ? "" : ";") + Show(neighbour);
  return fmt::format("  {}:{}", title, text.empty() ? " nothing" : text);
}

Json PortJson(const PortState &port) {
  return {{"side", port.isInput ? "in" : "out"},
          {"number", port.number},
          {"level", port.level},
          {"size", port.size},
          {"xruns", port.xruns}};
}

Json NeighboursJson(const std::vector<Neighbour> &neighbours) {
  Json array = Json::array();
  for (const Neighbour &neighbour : neighbours) {
    Json json = {{"pipeline", ToJson(neighbour.pipeline)},
                 {"filter", ToJson(neighbour.filter)},
                 {"ago_us", neighbour.agoUs},
                 {"ports", Json::array()}};
    for (const PortState &port : neighbour.ports)
      json["ports"].push_back(PortJson(port));
    array.push_back(std::move(json));
  }
  return array;
}

}  // namespace

std::string ShowXrun(const Xrun &xrun) {
  std::string text = fmt::format("{} {}/{} {} +{} = {}  {}/{}", xrun.port.isInput ? "underrun" : "overrun",
                                 xrun.pipeline, xrun.filter, PortName(xrun.port), xrun.added, xrun.port.xruns,
                                 xrun.port.level, xrun.port.size);
  text += Show("before", xrun.before) + Show("behind", xrun.behind);
  if (xrun.blame) {
    text += fmt::format("  longest turn: {}/{} {:.1f} ms", xrun.blame->pipeline, xrun.blame->filter,
                        Milliseconds(xrun.blame->turnUs));
  }
  return Escape(text);
}

Json ToJson(const Xrun &xrun) {
  Json blame;
  if (xrun.blame) {
    blame = {{"pipeline", ToJson(xrun.blame->pipeline)},
             {"filter", ToJson(xrun.blame->filter)},
             {"turn_us", xrun.blame->turnUs}};
  }
  return {{"event", xrun.port.isInput ? "underrun" : "overrun"},
          {"time_us", xrun.timeUs},
          {"pipeline", ToJson(xrun.pipeline)},
          {"filter", ToJson(xrun.filter)},
          {"port", PortJson(xrun.port)},
          {"added", xrun.added},
          {"before", NeighboursJson(xrun.before)},
          {"behind", NeighboursJson(xrun.behind)},
          {"blame", blame}};
}

}  // namespace kest::ctl
