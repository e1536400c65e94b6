// SPDX-License-Identifier: Apache-2.0
#include "player/config/json_value.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "player/base/player_error.h"

namespace kest::player {
namespace {

constexpr size_t kMaxShown = 64;

bool IsObjectOrArray(const JsonValue::Token &token) {
  return token.type == ZE_KEST_JSMN_OBJECT || token.type == ZE_KEST_JSMN_ARRAY;
}

// The library's reader tolerates missing commas and colons: a key may have no value or several.
bool HasOneValue(const JsonValue::Token &key) {
  if (key.size != 1) return false;
  const JsonValue::Token &value = (&key)[1];
  return IsObjectOrArray(value) || value.size == 0;
}

}  // namespace

JsonValue::JsonValue(const ZE_KEST_Jsmn_s &index, const Token &token, std::string name, std::string place)
    : index_(&index), token_(&token), name_(std::move(name)), place_(std::move(place)) {}

std::vector<JsonValue> JsonValue::Members() const {
  if (token_->type != ZE_KEST_JSMN_OBJECT) Refuse("an object is needed");
  std::vector<JsonValue> members;
  const Token *key = NextString(*token_);
  for (; key != nullptr && key->start < token_->end; key = NextKey(*key)) {
    JsonValue member = Member(*key);
    const bool isThere = std::any_of(members.begin(), members.end(), [&](const JsonValue &earlier) {
      return earlier.Name() == member.Name();
    });
    if (isThere) Fail("\"" + member.Name() + "\" is there twice; a name may be used once");
    members.push_back(std::move(member));
  }
  if (members.size() != static_cast<size_t>(token_->size)) Fail("every value needs a name in quotes");
  return members;
}

int JsonValue::WholeNumber(int min, int max) const {
  const std::string_view text = Raw(*token_);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber =
      token_->type == ZE_KEST_JSMN_PRIMITIVE && error == std::errc() && end == text.data() + text.size();
  if (!isNumber || number < min || number > max) {
    Refuse("a whole number from " + std::to_string(min) + " to " + std::to_string(max) + " is needed");
  }
  return number;
}

std::string JsonValue::NonEmptyText(const std::string &needed) const {
  if (token_->type != ZE_KEST_JSMN_STRING || Raw(*token_).empty()) {
    Refuse(needed + ", in quotes, is needed");
  }
  return Decoded(*token_);
}

std::string JsonValue::Text() const {
  if (token_->type != ZE_KEST_JSMN_STRING) Refuse("a text, in quotes, is needed");
  return Decoded(*token_);
}

std::string JsonValue::Number() const {
  const std::string_view text = Raw(*token_);
  const bool isNumber = token_->type == ZE_KEST_JSMN_PRIMITIVE &&
                        text.find_first_not_of("+-.0123456789eE") == std::string_view::npos;
  if (!isNumber) Refuse("a number is needed");
  return std::string(text);
}

void JsonValue::Fail(const std::string &reason) const {
  throw PlayerError(place_ + ": " + reason);
}

void JsonValue::Refuse(const std::string &needed) const {
  throw PlayerError(place_ + " is " + Shown() + "; " + needed);
}

// The next string in the text, key or value, at any depth; nullptr at the end.
const JsonValue::Token *JsonValue::NextString(const Token &token) const {
  const Token &last = index_->pstTokenInfo[index_->u32TotalTokenCounter - 1];
  return &token == &last ? nullptr : ze_kest_Utility_Jsmn_GetNextTokenInfo(index_, &token);
}

// The first string after the key's value.
const JsonValue::Token *JsonValue::NextKey(const Token &key) const {
  const Token &value = (&key)[1];
  const Token *next = NextString(value);
  while (next != nullptr && next->start <= value.end) {
    next = NextString(*next);
  }
  return next;
}

JsonValue JsonValue::Member(const Token &key) const {
  std::string name = Decoded(key);
  if (!HasOneValue(key)) Fail("\"" + name + "\" must be followed by a colon and one value");
  std::string place = place_ + ": " + name;
  return {*index_, (&key)[1], std::move(name), std::move(place)};
}

std::string_view JsonValue::Raw(const Token &token) const {
  return {index_->pszStringData + token.start, static_cast<size_t>(token.end - token.start)};
}

// No bounds check after a backslash: the reader guarantees that a character follows it.
std::string JsonValue::Decoded(const Token &string) const {
  const std::string_view raw = Raw(string);
  std::string decoded;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] == '\\' && std::string_view("\"\\/").find(raw[++i]) == std::string_view::npos) {
      Fail("\"" + std::string(raw) + "\" has an escape other than \\\" \\\\ \\/; write the character itself");
    }
    if (static_cast<unsigned char>(raw[i]) < ' ')
      Fail("a string or name holds a line end or other control character");
    decoded += raw[i];
  }
  return decoded;
}

std::string JsonValue::Shown() const {
  if (token_->type == ZE_KEST_JSMN_OBJECT) return "an object";
  if (token_->type == ZE_KEST_JSMN_ARRAY) return "an array";
  std::string text(Raw(*token_).substr(0, kMaxShown));
  if (text.size() < Raw(*token_).size()) text += "...";
  return token_->type == ZE_KEST_JSMN_STRING ? "\"" + text + "\"" : text;
}

}  // namespace kest::player
