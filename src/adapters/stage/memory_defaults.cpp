#include "adapters/stage/memory_defaults.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace plemora {

namespace {

bool isKey(const std::string& argument) {
  return argument.size() > 1 && argument[0] == '-' && argument[1] != '-';
}

}  // namespace

std::optional<bool> booleanWord(std::string_view text) {
  const std::string word = lowercased(text);
  for (const std::string_view yes : {"yes", "y", "true", "t", "1"}) {
    if (word == yes) {
      return true;
    }
  }
  for (const std::string_view no : {"no", "n", "false", "f", "0"}) {
    if (word == no) {
      return false;
    }
  }
  return std::nullopt;
}

MemoryDefaults::MemoryDefaults(const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    if (isKey(arguments[i]) && !arguments[i + 1].starts_with('-')) {
      arguments_[arguments[i].substr(1)] = arguments[i + 1];
      ++i;
    }
  }
}

const MemoryDefaults::Value* MemoryDefaults::find(const std::string& key) const {
  for (const auto* domain : {&arguments_, &stored_}) {
    if (const auto found = domain->find(key); found != domain->end()) {
      return &found->second;
    }
  }
  return nullptr;
}

std::optional<bool> MemoryDefaults::boolean(const std::string& key) {
  const Value* value = find(key);
  if (!value) {
    return std::nullopt;
  }
  if (const auto* flag = std::get_if<bool>(value)) {
    return *flag;
  }
  const auto* text = std::get_if<std::string>(value);
  return text ? booleanWord(*text) : std::nullopt;
}

std::optional<std::string> MemoryDefaults::string(const std::string& key) {
  const Value* value = find(key);
  const auto* text = value ? std::get_if<std::string>(value) : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> MemoryDefaults::data(const std::string& key) {
  const Value* value = find(key);
  const auto* data = value ? std::get_if<Data>(value) : nullptr;
  return data ? std::optional(data->bytes) : std::nullopt;
}

void MemoryDefaults::store(const std::string& key, Value value) {
  stored_[key] = std::move(value);
  ++writes_;
}

void MemoryDefaults::setBoolean(const std::string& key, bool value) {
  store(key, value);
}

void MemoryDefaults::setString(const std::string& key, const std::string& value) {
  store(key, value);
}

void MemoryDefaults::setData(const std::string& key, const std::string& bytes) {
  store(key, Data{bytes});
}

void MemoryDefaults::remove(const std::string& key) {
  stored_.erase(key);
  ++writes_;
}

}  // namespace plemora
