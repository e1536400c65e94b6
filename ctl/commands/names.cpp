// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/names.h"

#include <algorithm>
#include <cctype>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/error.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return text;
}

// How many characters must be added, removed or replaced to make of the typed text a name, or its beginning.
size_t Distance(const std::string &from, const std::string &to) {
  std::vector<size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < from.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < to.size(); ++j) {
      const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return *std::min_element(row.begin() + static_cast<ptrdiff_t>(std::min(from.size() - 1, to.size())),
                           row.end());
}

template <typename Item>
std::vector<std::string> NamesOf(const std::vector<Item> &items) {
  std::vector<std::string> names;
  names.reserve(items.size());
  for (const Item &item : items)
    names.push_back(item.name);
  return names;
}

std::string Listed(const std::vector<std::string> &names) {
  return names.empty() ? "nothing" : fmt::format("{}", fmt::join(names, ", "));
}

std::vector<std::string> BeginningWith(const std::vector<std::string> &names, const std::string &beginning) {
  std::vector<std::string> fitting;
  std::copy_if(names.begin(), names.end(), std::back_inserter(fitting),
               [&](const std::string &name) { return BeginsWith(name, beginning); });
  return fitting;
}

std::string DidYouMean(const std::vector<std::string> &names, const std::string &typed) {
  const std::string nearest = Nearest(names, typed);
  return nearest.empty() ? "" : fmt::format("did you mean {}?", nearest);
}

enum class Fit { kNone, kOne, kSeveral };

// The item with the name, else the only one whose name begins so.
template <typename Item>
Fit Find(const std::vector<Item> &items, const std::string &typed, const Item *&found) {
  size_t fits = 0;
  for (const Item &item : items) {
    if (item.name == typed) {
      found = &item;
      return Fit::kOne;
    }
    if (!BeginsWith(item.name, typed)) continue;
    found = &item;
    ++fits;
  }
  return fits == 0 ? Fit::kNone : fits == 1 ? Fit::kOne : Fit::kSeveral;
}

template <typename Item>
const Item &FindOrThrow(const std::vector<Item> &items, const std::string &typed, const std::string &where,
                        const std::string &what) {
  const Item *found = nullptr;
  const Fit fit = Find(items, typed, found);
  if (fit == Fit::kOne) return *found;
  const std::vector<std::string> names = NamesOf(items);
  if (fit == Fit::kSeveral) {
    throw CtlError(ExitCode::kNotFound,
                   fmt::format("\"{}\" may be more than one {} of {}: {}", typed, what, where,
                               Listed(BeginningWith(names, typed))),
                   "type more of the name");
  }
  throw CtlError(ExitCode::kNotFound, fmt::format("{} has no \"{}\"; it has {}", where, typed, Listed(names)),
                 DidYouMean(names, typed));
}

// A filter named without its pipeline, which must be the only one with the name, or whose name begins so.
Target FindLoneFilter(const Listing &listing, const std::string &typed) {
  std::vector<Target> named;
  std::vector<Target> fitting;
  for (const Pipeline &pipeline : listing.pipelines) {
    for (const Filter &filter : pipeline.filters) {
      if (filter.name == typed) named.push_back({&pipeline, &filter});
      if (BeginsWith(filter.name, typed)) fitting.push_back({&pipeline, &filter});
    }
  }
  const std::vector<Target> &found = named.empty() ? fitting : named;
  return found.size() == 1 ? found[0] : Target{};
}

const Pipeline &FindPipeline(const Listing &listing, const std::string &typed) {
  return FindOrThrow(listing.pipelines, typed, "the process", "pipeline");
}

}  // namespace

std::string FullName(const Target &target) {
  if (target.filter == nullptr) return target.pipeline->name;
  return fmt::format("{}/{}", target.pipeline->name, target.filter->name);
}

void RefuseCommas(const Target &target) {
  const std::string name = FullName(target);
  if (Contains(name, ","))
    throw CtlError(ExitCode::kNotFound, fmt::format("{} cannot be named: a name ends at a comma", name));
}

std::string Nearest(const std::vector<std::string> &names, const std::string &typed) {
  std::string nearest;
  size_t least = std::max<size_t>(typed.size() / 2, 2);
  for (const std::string &name : names) {
    if (typed.empty()) break;
    const size_t distance = Distance(Lower(typed), Lower(name));
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

Target FindTarget(const Listing &listing, const std::string &text) {
  const size_t slash = text.find('/');
  if (slash == std::string::npos) {
    const Target lone = FindLoneFilter(listing, text);
    const bool isPipeline =
        std::any_of(listing.pipelines.begin(), listing.pipelines.end(),
                    [&](const Pipeline &pipeline) { return BeginsWith(pipeline.name, text); });
    if (lone.filter != nullptr && !isPipeline) return lone;
    return {&FindPipeline(listing, text), nullptr};
  }
  const Pipeline &pipeline = FindPipeline(listing, text.substr(0, slash));
  return {&pipeline, &FindOrThrow(pipeline.filters, text.substr(slash + 1), pipeline.name, "filter")};
}

Target FindFilter(const Listing &listing, const std::string &text) {
  const Target lone = FindLoneFilter(listing, text);
  if (lone.filter != nullptr && lone.filter->name == text) return lone;
  const Target target = FindTarget(listing, text);
  if (target.filter != nullptr) return target;
  throw CtlError(ExitCode::kNotFound,
                 fmt::format("{} is a pipeline; which of its filters?", target.pipeline->name),
                 fmt::format("it has {}; type {}/FILTER", Listed(NamesOf(target.pipeline->filters)),
                             target.pipeline->name));
}

std::vector<const Parameter *> ParametersOf(const std::vector<Parameter> &parameters,
                                            const std::string &filter) {
  std::vector<const Parameter *> own;
  for (const Parameter &parameter : parameters) {
    if (parameter.filter.empty() || parameter.filter == filter) own.push_back(&parameter);
  }
  return own;
}

const Parameter &FindParameter(const std::vector<Parameter> &parameters, const std::string &filter,
                               const std::string &name) {
  std::vector<Parameter> own;
  for (const Parameter *parameter : ParametersOf(parameters, filter))
    own.push_back(*parameter);
  const Parameter &found = FindOrThrow(own, name, filter, "parameter");
  return *std::find_if(parameters.begin(), parameters.end(), [&](const Parameter &parameter) {
    return parameter.name == found.name && parameter.filter == found.filter;
  });
}

}  // namespace kest::ctl
