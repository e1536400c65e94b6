// SPDX-License-Identifier: Apache-2.0
// A line typed at a terminal, with editing, history and completion.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <histedit.h>

namespace kest::ctl {

// What the completion key does.
struct Completion {
  std::string replaced;  // the end of the line before the cursor
  std::string replacement;
  std::string listing;  // shown below the line; empty when there is nothing to choose from
};

class LineEditor {
 public:
  using Completing = std::function<Completion(const std::string &beforeCursor)>;

  // historyPath: where lines are kept between shells; nothing is kept when it is empty or cannot be written.
  LineEditor(const std::string &historyPath, Completing complete);

  // Empty at the end of the input. An interrupt gives an empty line.
  std::optional<std::string> Read(const std::string &prompt);

 private:
  static char *Prompt(EditLine *editor);
  static int ReadCharacter(EditLine *editor, wchar_t *character);
  static unsigned char OnCompletionKey(EditLine *editor, int key);

  void LoadHistory();
  void Remember(const std::string &line);
  unsigned char Apply(const Completion &completion);

  struct EndEditor {
    void operator()(EditLine *editor) const { el_end(editor); }
  };
  struct EndHistory {
    void operator()(History *history) const { history_end(history); }
  };

  std::string historyPath_;
  Completing complete_;
  std::unique_ptr<History, EndHistory> history_;
  std::unique_ptr<EditLine, EndEditor> editor_;
  std::string prompt_;
};

}  // namespace kest::ctl
