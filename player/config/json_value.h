// SPDX-License-Identifier: Apache-2.0
// A value of a JSON document. An error in it is thrown as a PlayerError that names its place.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ze_kest/utility.h"

namespace kest::player {

class JsonValue {
 public:
  using Token = ZE_KEST_JsmnTokenInfo_s;

  // place: the file and the names that lead to the value, for error messages.
  JsonValue(const ZE_KEST_Jsmn_s &index, const Token &token, std::string name, std::string place);

  // Its name within the object that it is a member of.
  [[nodiscard]] const std::string &Name() const { return name_; }
  // For error messages.
  [[nodiscard]] const std::string &Place() const { return place_; }

  // The members of an object in the order of the text. Throws PlayerError when a name occurs twice.
  [[nodiscard]] std::vector<JsonValue> Members() const;
  [[nodiscard]] int WholeNumber(int min, int max) const;
  // Non-empty strings. needed: what it says, for the error message.
  [[nodiscard]] std::string FileName() const { return NonEmptyText("the name of a file"); }
  [[nodiscard]] std::string NonEmptyText(const std::string &needed) const;
  [[nodiscard]] std::string Text() const;
  // As it is written.
  [[nodiscard]] std::string Number() const;

  // "PLACE: reason"
  [[noreturn]] void Fail(const std::string &reason) const;
  // "PLACE is VALUE; needed"
  [[noreturn]] void Refuse(const std::string &needed) const;

 private:
  [[nodiscard]] const Token *NextString(const Token &token) const;
  [[nodiscard]] const Token *NextKey(const Token &key) const;
  [[nodiscard]] JsonValue Member(const Token &key) const;
  [[nodiscard]] std::string_view Raw(const Token &token) const;
  [[nodiscard]] std::string Decoded(const Token &string) const;
  [[nodiscard]] std::string Shown() const;

  const ZE_KEST_Jsmn_s *index_;
  const Token *token_;
  std::string name_;
  std::string place_;
};

}  // namespace kest::player
