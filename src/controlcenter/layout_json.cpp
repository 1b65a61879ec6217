#include "controlcenter/layout_json.h"

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>

namespace plemora {

namespace {

constexpr std::uint64_t numberAsText = 1;  // subtype of the binary values that hold numbers

LayoutJson textOfNumber(const std::string& digits) {
  return LayoutJson::binary({digits.begin(), digits.end()}, numberAsText);
}

/// Takes what nlohmann's parser reads and builds the tree.
class Builder {
 public:
  explicit Builder(LayoutJson& root) : root_(root) {}

  bool null() { return add(nullptr); }
  bool boolean(bool value) { return add(value); }
  bool number_unsigned(std::uint64_t value) { return add(value); }
  bool number_integer(std::int64_t value) {
    return add(value == 0 ? textOfNumber("-0") : LayoutJson(value));
  }
  bool number_float(double value, const std::string& digits) {
    LayoutJson number = value;
    return add(number.dump() == digits ? std::move(number) : textOfNumber(digits));
  }
  bool string(std::string& value) { return add(std::move(value)); }
  bool binary(LayoutJson::binary_t&) { return false; }  // JSON text has none
  bool start_object(std::size_t) { return open(LayoutJson::object()); }
  bool end_object() { return close(); }
  bool start_array(std::size_t) { return open(LayoutJson::array()); }
  bool end_array() { return close(); }
  bool key(std::string& name) {
    key_ = std::move(name);
    return true;
  }
  template <class Error>
  bool parse_error(std::size_t, const std::string&, const Error& error) {
    throw error;
  }

 private:
  LayoutJson* place(LayoutJson value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    LayoutJson& container = *open_.back();
    if (container.is_array()) {
      container.push_back(std::move(value));
      return &container.back();
    }
    return &(container[key_] = std::move(value));
  }

  bool add(LayoutJson value) {
    place(std::move(value));
    return true;
  }

  bool open(LayoutJson container) {
    if (open_.size() == deepestLayoutNesting) {
      throw std::length_error("the JSON is nested deeper than " +
                              std::to_string(deepestLayoutNesting) + " levels");
    }
    open_.push_back(place(std::move(container)));
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  LayoutJson& root_;
  std::vector<LayoutJson*> open_;  ///< containers around the next value; stay where they are
                                   ///< because only the innermost one grows
  std::string key_;
};

void append(std::string& text, const LayoutJson& value) {
  char separator = '\0';
  const auto separate = [&] {
    if (separator) {
      text += separator;
    }
    separator = ',';
  };
  if (value.is_object()) {
    text += '{';
    for (const auto& [name, member] : value.items()) {
      separate();
      text += LayoutJson(name).dump() + ':';
      append(text, member);
    }
    text += '}';
  } else if (value.is_array()) {
    text += '[';
    for (const LayoutJson& item : value) {
      separate();
      append(text, item);
    }
    text += ']';
  } else if (value.is_binary()) {
    text.append(value.get_binary().begin(), value.get_binary().end());
  } else {
    text += value.dump();
  }
}

}  // namespace

LayoutJson parseLayoutJson(std::string_view text) {
  LayoutJson root;
  Builder builder(root);
  LayoutJson::sax_parse(text, &builder);
  return root;
}

std::string layoutJsonText(const LayoutJson& value) {
  std::string text;
  append(text, value);
  return text;
}

const LayoutJson* layoutMember(const LayoutJson& value, const char* key) {
  const auto found = value.is_object() ? value.find(key) : value.end();
  return found == value.end() ? nullptr : &*found;
}

std::optional<std::int64_t> layoutInteger(const LayoutJson* value) {
  constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (!value || !value->is_number_integer() ||
      (value->is_number_unsigned() && value->get<std::uint64_t>() > most)) {
    return std::nullopt;
  }
  return value->get<std::int64_t>();
}

}  // namespace plemora
