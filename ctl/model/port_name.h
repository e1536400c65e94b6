// SPDX-License-Identifier: Apache-2.0
// What a port is called: "in0", "out1".
#pragma once

#include <string>

namespace kest::ctl {

template <typename AnyPort>
std::string PortName(const AnyPort &port) {
  return (port.isInput ? "in" : "out") + std::to_string(port.number);
}

}  // namespace kest::ctl
