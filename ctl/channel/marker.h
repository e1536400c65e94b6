// SPDX-License-Identifier: Apache-2.0
// The lines before and after a command by which its answer is found in the log. The process echoes them
// whatever the log level; they name no filter and change nothing.
#pragma once

#include <string>
#include <string_view>

namespace kest::ctl {

constexpr size_t kLongestLine = 127;
constexpr size_t kLongestWrite = 4096;  // what a pipe takes in one piece

class Marker {
 public:
  // Whether a line of the log is a part of any marker's echo.
  static bool IsEcho(std::string_view line);
  // A marker that no other run has used.
  static Marker Next();

  [[nodiscard]] std::string Begin() const { return Line(begin_); }
  [[nodiscard]] std::string End() const { return Line(end_); }
  // A question whether lines are still answered: its echo comes behind those of all lines before it.
  [[nodiscard]] std::string Probe() const { return Line(probe_); }
  // What every echo of the line contains.
  [[nodiscard]] const std::string &BeginTag() const { return begin_; }
  [[nodiscard]] const std::string &EndTag() const { return end_; }
  [[nodiscard]] const std::string &ProbeTag() const { return probe_; }
  // What the last line of its echo contains.
  [[nodiscard]] std::string EndOfEcho() const { return end_ + kEchoed; }
  [[nodiscard]] std::string ProbeEcho() const { return probe_ + kEchoed; }

 private:
  static constexpr const char *kName = "kestctl.";
  static constexpr const char *kEchoed = ": set parameter ";

  explicit Marker(const std::string &name) : begin_(name + ".b"), end_(name + ".e"), probe_(name + ".p") {}
  static std::string Line(const std::string &tag) { return "kest_debug_set_parameter=" + tag + ",,,0,4"; }

  std::string begin_;
  std::string end_;
  std::string probe_;
};

}  // namespace kest::ctl
