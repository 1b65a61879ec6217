#include "base/property_list.h"

#include <plist/plist.h>

#include <cassert>
#include <limits>
#include <new>

#include "base/property_list_check.h"

namespace plemora {

namespace {

constexpr std::string_view binaryHeader = "bplist00";

void requireText(const std::string& text) {
  if (!isPropertyListText(text)) {
    throw PropertyListError("a text for a property list is not UTF-8, or has a zero in it");
  }
}

struct FreeMemory {
  void operator()(void* memory) const { plist_to_bin_free(static_cast<char*>(memory)); }
};

using Encoder = void (*)(plist_t, char**, std::uint32_t*);

std::string encode(plist_t node, Encoder encoder) {
  char* bytes = nullptr;
  std::uint32_t length = 0;
  encoder(node, &bytes, &length);
  const std::unique_ptr<char, FreeMemory> memory(bytes);
  if (!bytes) {
    throw PropertyListError("the property list cannot be encoded");
  }
  return {bytes, length};
}

}  // namespace

void PropertyList::Release::operator()(void* node) const {
  plist_free(node);
}

PropertyList::PropertyList(Node node) : node_(std::move(node)) {
  if (!node_) {
    throw std::bad_alloc();
  }
}

PropertyList PropertyList::copyOf(void* node) {
  return PropertyList(Node(plist_copy(node)));
}

PropertyList::PropertyList() : PropertyList(Node(plist_new_dict())) {}
PropertyList::~PropertyList() = default;
PropertyList::PropertyList(const PropertyList& other) : PropertyList(copyOf(other.node_.get())) {}
PropertyList::PropertyList(PropertyList&& other) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept = default;

PropertyList& PropertyList::operator=(const PropertyList& other) {
  return *this = PropertyList(other);
}

PropertyList PropertyList::array(const Array& items) {
  PropertyList list{Node(plist_new_array())};
  for (const PropertyList& item : items) {
    plist_array_append_item(list.node_.get(), copyOf(item.node_.get()).node_.release());
  }
  return list;
}

PropertyList PropertyList::string(const std::string& text) {
  requireText(text);
  return PropertyList(Node(plist_new_string(text.c_str())));
}

PropertyList PropertyList::data(std::string_view bytes) {
  return PropertyList(Node(plist_new_data(bytes.data(), bytes.size())));
}

PropertyList PropertyList::boolean(bool value) {
  return PropertyList(Node(plist_new_bool(value)));
}

PropertyList PropertyList::integer(std::int64_t value) {
  return PropertyList(Node(plist_new_uint(static_cast<std::uint64_t>(value))));
}

PropertyList PropertyList::real(double value) {
  return PropertyList(Node(plist_new_real(value)));
}

PropertyList PropertyList::uid(std::uint32_t value) {
  return PropertyList(Node(plist_new_uid(value)));
}

PropertyList PropertyList::parse(std::string_view bytes) {
  if (bytes.size() > mostBytes) {
    throw PropertyListError("the property list is larger than " + std::to_string(mostBytes >> 20) +
                            " MB");
  }
  const bool isBinary = bytes.starts_with(binaryHeader);
  isBinary ? checkBinaryPropertyList(bytes) : checkXMLPropertyList(bytes);
  plist_t node = nullptr;
  (isBinary ? plist_from_bin : plist_from_xml)(bytes.data(),
                                               static_cast<std::uint32_t>(bytes.size()), &node);
  if (!node) {
    throw PropertyListError(isBinary ? "the property list is damaged"
                                     : "the property list is neither binary nor XML");
  }
  return PropertyList(Node(node));
}

std::string PropertyList::binary() const {
  return encode(node_.get(), plist_to_bin);
}

std::string PropertyList::xml() const {
  return encode(node_.get(), plist_to_xml);
}

bool PropertyList::isDictionary() const {
  return PLIST_IS_DICT(node_.get());
}

bool PropertyList::isArray() const {
  return PLIST_IS_ARRAY(node_.get());
}

std::optional<std::string> PropertyList::asString() const {
  if (!PLIST_IS_STRING(node_.get())) {
    return std::nullopt;
  }
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node_.get(), &length);
  return std::string(text, length);
}

std::optional<std::string> PropertyList::asData() const {
  if (!PLIST_IS_DATA(node_.get())) {
    return std::nullopt;
  }
  std::uint64_t length = 0;
  const char* bytes = plist_get_data_ptr(node_.get(), &length);
  return length == 0 ? std::string() : std::string(bytes, length);
}

std::optional<bool> PropertyList::asBoolean() const {
  if (!PLIST_IS_BOOLEAN(node_.get())) {
    return std::nullopt;
  }
  return plist_bool_val_is_true(node_.get()) != 0;
}

std::optional<std::int64_t> PropertyList::asInteger() const {
  if (!PLIST_IS_UINT(node_.get())) {
    return std::nullopt;
  }
  std::uint64_t value = 0;
  plist_get_uint_val(node_.get(), &value);
  // A negative number and one above the largest signed one read alike; only the form tells them
  // apart, which has 16 bytes for the latter.
  constexpr auto wide = '\x14';
  if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) &&
      binary()[binaryHeader.size()] == wide) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(value);
}

std::optional<double> PropertyList::asReal() const {
  if (!PLIST_IS_REAL(node_.get())) {
    return std::nullopt;
  }
  double value = 0;
  plist_get_real_val(node_.get(), &value);
  return value;
}

std::optional<std::uint32_t> PropertyList::asUID() const {
  if (!PLIST_IS_UID(node_.get())) {
    return std::nullopt;
  }
  std::uint64_t value = 0;
  plist_get_uid_val(node_.get(), &value);
  return static_cast<std::uint32_t>(value);
}

std::optional<PropertyList::Array> PropertyList::items() const {
  if (!isArray()) {
    return std::nullopt;
  }
  Array found;
  plist_array_iter next = nullptr;
  plist_array_new_iter(node_.get(), &next);
  const std::unique_ptr<void, FreeMemory> memory(next);
  for (std::uint32_t left = plist_array_get_size(node_.get()); left > 0; --left) {
    plist_t item = nullptr;
    plist_array_next_item(node_.get(), next, &item);
    found.push_back(copyOf(item));
  }
  return found;
}

PropertyList::Members PropertyList::members() const {
  Members found;
  if (!isDictionary()) {
    return found;
  }
  plist_dict_iter next = nullptr;
  plist_dict_new_iter(node_.get(), &next);
  const std::unique_ptr<void, FreeMemory> memory(next);
  for (std::uint32_t left = plist_dict_get_size(node_.get()); left > 0; --left) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node_.get(), next, &key, &value);
    const std::unique_ptr<char, FreeMemory> keyMemory(key);
    found.emplace_back(key, copyOf(value));
  }
  return found;
}

std::optional<PropertyList> PropertyList::member(const std::string& key) const {
  const plist_t value = isDictionary() ? plist_dict_get_item(node_.get(), key.c_str()) : nullptr;
  return value ? std::optional(copyOf(value)) : std::nullopt;
}

bool PropertyList::operator==(const PropertyList& other) const {
  if (isDictionary() || other.isDictionary()) {
    return isDictionary() && other.isDictionary() && members() == other.members();
  }
  if (isArray() || other.isArray()) {
    return items() == other.items();
  }
  return binary() == other.binary();
}

void PropertyList::setMember(const std::string& key, const PropertyList& value) {
  assert(isDictionary());
  requireText(key);
  plist_dict_set_item(node_.get(), key.c_str(), copyOf(value.node_.get()).node_.release());
}

void PropertyList::removeMember(const std::string& key) {
  assert(isDictionary());
  plist_dict_remove_item(node_.get(), key.c_str());
}

}  // namespace plemora
