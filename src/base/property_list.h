#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace plemora {

/// Why bytes are no property list that can be kept; what() is one line for people.
class PropertyListError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A property list: a tree of dictionaries and arrays with texts, bytes, numbers, dates and UIDs
/// in it. A value: copies are deep, and what is taken out or put in is a copy. Keeps everything
/// that it was parsed from, also what has no accessor here: the order of members, the kinds of
/// numbers, dates to the last bit. Any thread, one at a time.
class PropertyList {
 public:
  using Array = std::vector<PropertyList>;
  using Members = std::vector<std::pair<std::string, PropertyList>>;

  static constexpr std::size_t mostBytes = 16U << 20;  ///< no longer form is parsed
  static constexpr std::size_t mostValues = 1U << 20;  ///< nor one of more values
  static constexpr int deepestNesting = 512;           ///< nor one of more levels

  /// An empty dictionary.
  PropertyList();
  ~PropertyList();
  PropertyList(const PropertyList& other);
  PropertyList(PropertyList&& other) noexcept;
  PropertyList& operator=(const PropertyList& other);
  PropertyList& operator=(PropertyList&& other) noexcept;

  static PropertyList array(const Array& items = {});
  /// Text is UTF-8 without a zero in it; throws PropertyListError otherwise.
  static PropertyList string(const std::string& text);
  static PropertyList data(std::string_view bytes);
  static PropertyList boolean(bool value);
  static PropertyList integer(std::int64_t value);
  static PropertyList real(double value);
  static PropertyList uid(std::uint32_t value);

  /// From the binary or the XML form. Throws PropertyListError when the bytes are neither, go
  /// beyond the limits above, or hold what could not be written back.
  static PropertyList parse(std::string_view bytes);

  /// The binary form, version 1.0.
  std::string binary() const;
  /// The XML form. UIDs become dictionaries in it.
  std::string xml() const;

  bool isDictionary() const;
  bool isArray() const;

  /// The value; none when it is of another kind.
  std::optional<std::string> asString() const;
  std::optional<std::string> asData() const;
  std::optional<bool> asBoolean() const;
  std::optional<std::int64_t> asInteger() const;  ///< none too above the largest std::int64_t
  std::optional<double> asReal() const;
  std::optional<std::uint32_t> asUID() const;

  /// The items of an array, in order; none for anything else.
  std::optional<Array> items() const;

  /// The members of a dictionary, in order; empty for anything else.
  Members members() const;
  /// None when this is no dictionary or has no such member.
  std::optional<PropertyList> member(const std::string& key) const;
  /// Replaces the member in its place or adds it at the end. Only on a dictionary; the key is a
  /// text as above.
  void setMember(const std::string& key, const PropertyList& value);
  /// Only on a dictionary.
  void removeMember(const std::string& key);

  /// Whether both hold the same, members in the same order. Their binary forms may differ: now and
  /// then libplist stores equal bytes once.
  bool operator==(const PropertyList& other) const;

 private:
  struct Release {
    void operator()(void* node) const;
  };
  using Node = std::unique_ptr<void, Release>;

  explicit PropertyList(Node node);
  static PropertyList copyOf(void* node);

  Node node_;  ///< the root of a libplist tree that belongs to this object alone; never null
               ///< but in an object that was moved from
};

}  // namespace plemora
