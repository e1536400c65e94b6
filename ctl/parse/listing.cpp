// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/listing.h"

#include <algorithm>
#include <numeric>

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kTitle = "[DebugInfoList]";
constexpr std::string_view kRule = "===============";
constexpr std::string_view kPipelineMark = "===== p:";
constexpr size_t kPipelineWidth = 22;
constexpr size_t kFilterWidth = 17;
constexpr size_t kStateWidth = 5;

// A field that was padded to a width: what follows the text are blanks.
std::string Unpadded(std::string_view field) {
  const size_t last = field.find_last_not_of(' ');
  return std::string(field.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

// Splits off what precedes the last occurrence of the mark; names may hold anything.
std::optional<std::string_view> BeforeLast(std::string_view &text, std::string_view mark) {
  const size_t at = text.rfind(mark);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view before = text.substr(0, at);
  text.remove_prefix(at + mark.size());
  return before;
}

class ListingParser {
 public:
  ParsedListing Parse(const std::vector<std::string> &lines) {
    for (const std::string &line : lines)
      TakeLine(line);
    parsed_.isWhole = hasTitle_ && hasEnd_ && IsSumRight();
    return std::move(parsed_);
  }

 private:
  using Step = bool (ListingParser::*)(std::string_view);

  void TakeLine(std::string_view line) {
    if (TakeFrame(line)) return;
    constexpr Step kSteps[] = {&ListingParser::TakePipeline,    &ListingParser::TakeFilter,
                               &ListingParser::TakeFedPipeline, &ListingParser::TakeConnection,
                               &ListingParser::TakePort,        &ListingParser::TakeSum};
    const bool isKnown =
        hasTitle_ && !hasEnd_ &&
        std::any_of(std::begin(kSteps), std::end(kSteps), [&](Step step) { return (this->*step)(line); });
    if (!isKnown && !IsOfInstrument(line)) parsed_.unknown.emplace_back(line);
  }

  bool TakeFrame(std::string_view line) {
    if (line == kTitle) return hasTitle_ = true;
    if (line == kRule) {
      hasEnd_ = hasEnd_ || hasSum_;
      return true;
    }
    return line == "kest_debug_node=print" || line.empty();
  }

  // "idx:0  ===== p:SpeakerOutput        ================= tid:26309 t:SpeakerOutput       ========
  // cb:0x(nil)"
  bool TakePipeline(std::string_view line) {
    Scanner scanner(line);
    Pipeline pipeline;
    int index = 0;
    if (!scanner.Text("idx:") || !scanner.Number(index)) return false;
    scanner.Blanks();
    if (!scanner.Text(kPipelineMark)) return false;
    std::string_view rest = scanner.Rest();
    const auto name = BeforeLast(rest, " ================= tid:");
    Scanner thread(rest);
    if (!name || !thread.Number(pipeline.tid)) return false;
    thread.Blanks();
    if (!thread.Text("t:")) return false;
    const auto threadName = thread.UpTo("================ cb:0x");
    if (!threadName) return false;
    pipeline.index = index;
    pipeline.name = Unpadded(*name);
    pipeline.thread = Unpadded(*threadName);
    parsed_.listing.pipelines.push_back(std::move(pipeline));
    return true;
  }

  // "idx:6  RUN   Decoder_13             Volume            tid:28333 t:Decoder_13          (ds:0,tgt:0    )
  // AutoConsume: 1, cb:0x0x..."
  bool TakeFilter(std::string_view line) {
    Scanner scanner(line);
    Filter filter;
    if (!scanner.Text("idx:") || !scanner.Number(filter.index)) return false;
    const std::string_view padded = scanner.Rest();
    // The number is padded to two digits and followed by a blank.
    const size_t stateAt = filter.index < 10 && BeginsWith(padded, "  ") ? 2 : 1;
    if (padded.size() < stateAt + kStateWidth + 1 || padded[stateAt + kStateWidth] != ' ') return false;
    filter.state = Unpadded(padded.substr(stateAt, kStateWidth));
    std::string_view rest = padded.substr(stateAt + kStateWidth + 1);
    const auto names = BeforeLast(rest, " tid:");
    if (!names || !TakeFilterTail(rest, filter)) return false;
    AddFilter(*names, std::move(filter));
    return true;
  }

  static bool TakeFilterTail(std::string_view rest, Filter &filter) {
    Scanner scanner(rest);
    if (!scanner.Number(filter.tid)) return false;
    scanner.Blanks();
    if (!scanner.Text("t:")) return false;
    rest = scanner.Rest();
    const auto thread = BeforeLast(rest, "(ds:");
    Scanner tail(rest);
    if (!thread || !tail.Number(filter.ds) || !tail.Text(",tgt:") || !tail.Number(filter.tgt)) return false;
    tail.Blanks();
    int autoConsume = 0;
    if (!tail.Text(") AutoConsume: ") || !tail.Number(autoConsume) || !tail.Text(", cb:0x")) return false;
    filter.thread = Unpadded(*thread);
    filter.autoConsume = autoConsume != 0;
    filter.takesCommands = tail.Rest() != "(nil)" && !tail.AtEnd();
    return true;
  }

  // Both names are padded, which tells them apart unless one is longer than its field.
  void AddFilter(std::string_view names, Filter filter) {
    std::string pipeline;
    if (names.size() == kPipelineWidth + 1 + kFilterWidth && names[kPipelineWidth] == ' ') {
      pipeline = Unpadded(names.substr(0, kPipelineWidth));
      filter.name = Unpadded(names.substr(kPipelineWidth + 1));
    } else {
      pipeline = PipelineAtStartOf(names);
      filter.name = std::string(Trim(names.substr(std::min(pipeline.size(), names.size()))));
    }
    PipelineNamed(pipeline).filters.push_back(std::move(filter));
  }

  // The longest registered name with which the text begins; else its first word.
  [[nodiscard]] std::string PipelineAtStartOf(std::string_view names) const {
    std::string longest;
    for (const Pipeline &pipeline : parsed_.listing.pipelines) {
      if (pipeline.name.size() > longest.size() && BeginsWith(names, pipeline.name + " "))
        longest = pipeline.name;
    }
    return longest.empty() ? std::string(names.substr(0, names.find(' '))) : longest;
  }

  // The one registered last under the name. Filters may be registered without their pipeline.
  Pipeline &PipelineNamed(const std::string &name) {
    auto &pipelines = parsed_.listing.pipelines;
    const auto found = std::find_if(pipelines.rbegin(), pipelines.rend(),
                                    [&](const Pipeline &pipeline) { return pipeline.name == name; });
    if (found != pipelines.rend()) return *found;
    Pipeline pipeline;
    pipeline.name = name;
    pipelines.push_back(std::move(pipeline));
    return pipelines.back();
  }

  // "idx:4  Decoder_13"
  bool TakeFedPipeline(std::string_view line) {
    Scanner scanner(line);
    int index = 0;
    if (!scanner.Text("idx:") || !scanner.Number(index)) return false;
    auto &pipelines = parsed_.listing.pipelines;
    const auto found = std::find_if(pipelines.begin(), pipelines.end(),
                                    [&](const Pipeline &pipeline) { return pipeline.index == index; });
    if (found == pipelines.end() || Trim(scanner.Rest()) != Trim(found->name)) return false;
    feeding_ = found - pipelines.begin();
    return true;
  }

  // "           -> (0)SpeakerOutput"
  bool TakeConnection(std::string_view line) {
    Scanner scanner(line);
    int slot = 0;
    scanner.Blanks();
    if (feeding_ < 0 || !scanner.Text("-> (") || !scanner.Number(slot) || !scanner.Text(")")) return false;
    parsed_.listing.pipelines[static_cast<size_t>(feeding_)].feeds.emplace_back(scanner.Rest());
    return true;
  }

  // "Decoder_13 Volume in 0 256/1024(4096 0 0) 32/192 0/0 (o)". Rows come in the order of the filters, so of
  // two filters of one name the second follows when a port number comes again.
  bool TakePort(std::string_view line) {
    for (Pipeline &pipeline : parsed_.listing.pipelines) {
      for (Filter &filter : pipeline.filters) {
        Scanner scanner(line);
        if (!scanner.Text(pipeline.name) || !scanner.Text(" ") || !scanner.Text(filter.name)) continue;
        Port port;
        if (!ParsePort(scanner, port) || HasPort(filter, port)) continue;
        sum_ +=
            port.groupBytes[0] + port.groupBytes[1] + port.groupBytes[2] + port.metadata.size + port.raw.size;
        filter.ports.push_back(port);
        return true;
      }
    }
    return false;
  }

  static bool HasPort(const Filter &filter, const Port &port) {
    return std::any_of(filter.ports.begin(), filter.ports.end(), [&](const Port &other) {
      return other.isInput == port.isInput && other.number == port.number;
    });
  }

  static bool ParseFill(Scanner &scanner, Fill &fill) {
    return scanner.Number(fill.level) && scanner.Text("/") && scanner.Number(fill.size);
  }

  static bool ParsePort(Scanner &scanner, Port &port) {
    port.isInput = scanner.Text(" in ");
    if (!port.isInput && !scanner.Text(" ou ")) return false;
    const bool isWhole = scanner.Number(port.number) && scanner.Text(" ") && ParseFill(scanner, port.pcm) &&
                         scanner.Text("(") && scanner.Number(port.groupBytes[0]) && scanner.Text(" ") &&
                         scanner.Number(port.groupBytes[1]) && scanner.Text(" ") &&
                         scanner.Number(port.groupBytes[2]) && scanner.Text(") ") &&
                         ParseFill(scanner, port.metadata) && scanner.Text(" ") &&
                         ParseFill(scanner, port.raw);
    if (!isWhole) return false;
    port.connected = scanner.Text(" (o)");
    return (port.connected || scanner.Text(" (x)")) && scanner.AtEnd();
  }

  bool TakeSum(std::string_view line) {
    Scanner scanner(line);
    uint64_t ioBytes = 0;
    if (!scanner.Text("u64TotalIoSize=") || !scanner.Number(ioBytes) || !scanner.AtEnd()) return false;
    parsed_.listing.ioBytes = ioBytes;
    return hasSum_ = true;
  }

  [[nodiscard]] bool IsSumRight() const { return sum_ == parsed_.listing.ioBytes; }

  ParsedListing parsed_;
  bool hasTitle_ = false;
  bool hasSum_ = false;
  bool hasEnd_ = false;
  ptrdiff_t feeding_ = -1;
  uint64_t sum_ = 0;
};

}  // namespace

ParsedListing ParseListing(const std::vector<std::string> &lines) {
  return ListingParser().Parse(lines);
}

}  // namespace kest::ctl
