#include "base/property_list_check.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/property_list.h"

namespace plemora {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;
constexpr std::size_t bytesPerValue = 64;  // what weighs as much as one value
constexpr int mostXMLContainers = 4096;    // however they are nested, that is not too deep

[[noreturn]] void refuse(const std::string& what) {
  throw PropertyListError("the property list " + what);
}

enum class Kind {
  boolean = 0x0,
  integer,
  real,
  date,
  data,
  ascii,
  utf16,
  uid = 0x8,
  array = 0xA,
  dictionary = 0xD
};

/// An object of the binary form, its references not yet followed.
struct Object {
  Kind kind{};
  std::size_t count = 0;  ///< bytes, units, items or members
  std::size_t start = 0;  ///< of what follows the marker and the count
};

class BinaryCheck {
 public:
  explicit BinaryCheck(std::string_view bytes) : bytes_(bytes) {}

  void run() {
    readTrailer();
    begin(root_);
    while (!open_.empty()) {
      Visit& visit = open_.back();
      if (visit.next == visit.references) {
        finish();
      } else {
        follow(visit);
      }
    }
  }

 private:
  /// What is known of an object by its number.
  struct Measure {
    enum State : std::uint8_t { unknown, open, done } state = unknown;
    bool isText = false;
    int depth = 0;           ///< levels from here downwards
    std::size_t weight = 0;  ///< in values, with all that is below, as often as it is referred to
  };
  struct Visit {
    std::size_t number;
    Object object;
    std::size_t references;
    std::size_t next = 0;
  };

  std::uint64_t number(std::size_t position, std::size_t size) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8 | static_cast<unsigned char>(bytes_[position + i]);
    }
    return value;
  }

  void readTrailer() {
    if (bytes_.size() < headerSize + trailerSize + 2) {
      refuse("is too short");
    }
    const std::size_t trailer = bytes_.size() - trailerSize;
    offsetSize_ = static_cast<unsigned char>(bytes_[trailer + 6]);
    referenceSize_ = static_cast<unsigned char>(bytes_[trailer + 7]);
    const std::uint64_t count = number(trailer + 8, 8);
    root_ = number(trailer + 16, 8);
    const std::uint64_t table = number(trailer + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8 ||
        count == 0 || root_ >= count || table < headerSize || table > trailer ||
        count > (trailer - table) / offsetSize_) {
      refuse("has a broken trailer");
    }
    table_ = table;
    measures_.resize(count);
  }

  Object objectAt(std::size_t index) const {
    const std::uint64_t offset = number(table_ + index * offsetSize_, offsetSize_);
    if (offset < headerSize || offset >= table_) {
      refuse("refers to a value outside of it");
    }
    const auto marker = static_cast<unsigned char>(bytes_[offset]);
    Object object{static_cast<Kind>(marker >> 4), marker & 0x0FU, offset + 1};
    switch (object.kind) {
      case Kind::data:
      case Kind::ascii:
      case Kind::utf16:
      case Kind::array:
      case Kind::dictionary:
        if (object.count == 0x0F) {
          readCount(object);
        }
        break;
      case Kind::boolean:
        if (object.count != 8 && object.count != 9) {
          refuse("holds a value of an unknown kind");
        }
        object.count = 0;
        break;
      case Kind::integer:
      case Kind::real:
      case Kind::date:
        checkNumber(object);
        object.count = std::size_t{1} << object.count;
        break;
      case Kind::uid:
        if (object.count > 3) {
          refuse("holds a UID of more than 32 bits");
        }
        ++object.count;
        break;
      default:
        refuse("holds a value of an unknown kind");
    }
    if (object.count > (table_ - object.start) / unitSize(object.kind)) {
      refuse("ends in the middle of a value");
    }
    return object;
  }

  static void checkNumber(const Object& object) {
    const bool fits = object.kind == Kind::integer ? object.count <= 4
                      : object.kind == Kind::real  ? object.count == 2 || object.count == 3
                                                   : object.count == 3;
    if (!fits) {
      refuse("holds a number of an unknown size");
    }
  }

  void readCount(Object& object) const {
    const std::size_t marker =
        object.start < table_ ? static_cast<unsigned char>(bytes_[object.start]) : 0;
    const std::size_t size = std::size_t{1} << (marker & 0x0F);
    if (marker >> 4 != 1 || size > 8 || size >= table_ - object.start) {
      refuse("holds a value of an unknown length");
    }
    object.count = number(object.start + 1, size);
    object.start += 1 + size;
  }

  std::size_t unitSize(Kind kind) const {
    switch (kind) {
      case Kind::utf16:
        return 2;
      case Kind::array:
        return referenceSize_;
      case Kind::dictionary:
        return 2 * referenceSize_;
      default:
        return 1;
    }
  }

  void checkContent(const Object& object) const {
    const std::string_view content = bytes_.substr(object.start, object.count);
    const bool isWhole =
        object.kind == Kind::ascii   ? std::ranges::all_of(content, [](char c) { return c > 0; })
        : object.kind == Kind::utf16 ? isUtf16(object)
        : object.kind == Kind::integer && object.count == 16 ? number(object.start, 8) == 0
                                                             : true;
    if (!isWhole) {
      refuse(object.kind == Kind::integer ? "holds an integer of more than 64 bits"
                                          : "holds a text that is none");
    }
  }

  bool isUtf16(const Object& object) const {
    for (std::size_t i = 0; i < object.count; ++i) {
      const std::uint64_t unit = number(object.start + 2 * i, 2);
      const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
      if (unit == 0 || (unit >= 0xDC00 && unit < 0xE000) || (isHigh && i + 1 == object.count)) {
        return false;
      }
      if (isHigh) {
        ++i;
        const std::uint64_t low = number(object.start + 2 * i, 2);
        if (low < 0xDC00 || low >= 0xE000) {
          return false;
        }
      }
    }
    return true;
  }

  void begin(std::size_t index) {
    Measure& measure = measures_[index];
    if (measure.state == Measure::open) {
      refuse("holds itself");
    }
    if (measure.state == Measure::done) {
      return;
    }
    const Object object = objectAt(index);
    checkContent(object);
    const bool isContainer = object.kind == Kind::array || object.kind == Kind::dictionary;
    measure.state = Measure::open;
    measure.isText = object.kind == Kind::ascii || object.kind == Kind::utf16;
    measure.depth = 1;
    measure.weight = 1 + (isContainer ? 0 : object.count / bytesPerValue);
    open_.push_back(
        {index, object, isContainer ? object.count * unitSize(object.kind) / referenceSize_ : 0});
  }

  void follow(Visit& visit) {
    const std::uint64_t index =
        number(visit.object.start + visit.next * referenceSize_, referenceSize_);
    if (index >= measures_.size()) {
      refuse("refers to a value outside of it");
    }
    if (measures_[index].state != Measure::done) {
      if (open_.size() >= static_cast<std::size_t>(PropertyList::deepestNesting)) {
        refuseDepth();
      }
      begin(index);  // comes back to this reference when it is done
      return;
    }
    add(visit, measures_[index]);
    ++visit.next;
  }

  void add(const Visit& visit, const Measure& part) {
    const bool isKey = visit.object.kind == Kind::dictionary && visit.next < visit.object.count;
    if (isKey && !part.isText) {
      refuse("holds a dictionary with a key that is no text");
    }
    Measure& whole = measures_[visit.number];
    whole.depth = std::max(whole.depth, part.depth + 1);
    whole.weight += part.weight;
    if (whole.depth > PropertyList::deepestNesting) {
      refuseDepth();
    }
    if (whole.weight > PropertyList::mostValues) {
      refuse("holds too many values");
    }
  }

  [[noreturn]] static void refuseDepth() {
    refuse("is nested deeper than " + std::to_string(PropertyList::deepestNesting) + " levels");
  }

  void finish() {
    measures_[open_.back().number].state = Measure::done;
    open_.pop_back();
  }

  std::string_view bytes_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t root_ = 0;
  std::size_t table_ = 0;  ///< where the offsets begin, and with them the values end
  std::vector<Measure> measures_;
  std::vector<Visit> open_;
};

/// Length of the UTF-8 character that the bytes begin with; 0 when they begin with none.
std::size_t characterLength(std::string_view bytes) {
  const auto at = [bytes](std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
  };
  const unsigned lead = at(0);
  const std::size_t length = lead < 0x80                   ? 1
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  // What has a shorter form, the halves of surrogate pairs, and what is above the last character.
  const unsigned second = at(1);
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
      (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90)) {
    return 0;
  }
  return length;
}

}  // namespace

void checkBinaryPropertyList(std::string_view bytes) {
  BinaryCheck(bytes).run();
}

void checkXMLPropertyList(std::string_view bytes) {
  if (!isPropertyListText(bytes)) {
    refuse("is neither binary nor XML");
  }
  int containers = 0;
  for (const std::string_view tag : {"<array", "<dict"}) {
    for (std::size_t at = bytes.find(tag); at != bytes.npos; at = bytes.find(tag, at + 1)) {
      ++containers;
    }
  }
  if (containers > mostXMLContainers) {
    refuse("is too large for one in XML");
  }
}

bool isPropertyListText(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = bytes.front() == '\0' ? 0 : characterLength(bytes);
    if (length == 0) {
      return false;
    }
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace plemora
