#include "base/property_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

namespace plemora {
namespace {

using testing::HasSubstr;

void appendNumber(std::string& bytes, std::uint64_t value, int size) {
  for (int i = size - 1; i >= 0; --i) {
    bytes += static_cast<char>(value >> (8 * i));
  }
}

std::string bytesOf(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) {
    bytes += static_cast<char>(value);
  }
  return bytes;
}

/// A binary form of these objects, the first of which is the root; references have two bytes.
std::string binaryForm(const std::vector<std::string>& objects) {
  std::string form = "bplist00";
  std::vector<std::uint64_t> offsets;
  for (const std::string& object : objects) {
    offsets.push_back(form.size());
    form += object;
  }
  const std::uint64_t table = form.size();
  for (const std::uint64_t offset : offsets) {
    appendNumber(form, offset, 4);
  }
  form += bytesOf({0, 0, 0, 0, 0, 0, 4, 2});
  appendNumber(form, objects.size(), 8);
  appendNumber(form, 0, 8);
  appendNumber(form, table, 8);
  return form;
}

/// The value alone, as the encoder writes it.
std::string contentOf(const PropertyList& list) {
  const std::string form = list.binary();
  return form.substr(8, form.size() - 8 - 32 - 1);
}

TEST(PropertyList, KeepsEveryScalarToTheLastBit) {
  const std::string scalars[] = {
      bytesOf({0x08}),
      bytesOf({0x09}),
      bytesOf({0x10, 5}),
      bytesOf({0x10, 255}),
      bytesOf({0x12, 255, 255, 255, 255}),
      bytesOf({0x13, 255, 255, 255, 255, 255, 255, 255, 251}),                          // -5
      bytesOf({0x14, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 251}),  // 2^64-5
      bytesOf({0x22, 0x3f, 0x80, 0, 0}),                                                // 1.0
      bytesOf({0x23, 0x3f, 0xb9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9a}),                  // 0.1
      bytesOf({0x23, 0x7f, 0xf8, 0, 0, 0, 0, 0, 1}),                                    // no number
      bytesOf({0x33, 0x41, 0xb9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9a}),                  // a date
      bytesOf({0x33, 0x47, 0xb9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9a}),                  // a far one
      bytesOf({0x80, 7}),
      bytesOf({0x83, 1, 0, 0, 0}),
      bytesOf({0x40}),
      bytesOf({0x43, 0, 1, 0xff}),
      bytesOf({0x50}),
      "\x53"
      "abc",
      bytesOf({0x62, 0, 0xe9, 0x20, 0xac}),
      bytesOf({0x62, 0xd8, 0x3d, 0xde, 0x00}),  // a surrogate pair
  };
  for (const std::string& scalar : scalars) {
    const PropertyList list = PropertyList::parse(binaryForm({scalar}));
    EXPECT_EQ(contentOf(list), scalar);
    EXPECT_EQ(contentOf(PropertyList(list)), scalar) << "in a copy";
  }
}

TEST(PropertyList, TellsItsValuesApart) {
  EXPECT_EQ(PropertyList::integer(-5).asInteger(), -5);
  const auto least = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(PropertyList::parse(PropertyList::integer(least).binary()).asInteger(), least);
  const auto wide = PropertyList::parse(
      binaryForm({bytesOf({0x14, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0})}));
  EXPECT_EQ(wide.asInteger(), std::nullopt);
  EXPECT_EQ(PropertyList::real(1).asReal(), 1);
  EXPECT_EQ(PropertyList::real(1).asInteger(), std::nullopt);
  EXPECT_EQ(PropertyList::integer(1).asBoolean(), std::nullopt);
  EXPECT_EQ(PropertyList::integer(1).asUID(), std::nullopt);
  EXPECT_EQ(PropertyList::boolean(true).asInteger(), std::nullopt);
  EXPECT_EQ(PropertyList::boolean(true).asBoolean(), true);
  EXPECT_EQ(PropertyList::uid(7).asUID(), 7U);
  EXPECT_EQ(PropertyList::string("é").asString(), "é");
  EXPECT_EQ(PropertyList::string("x").asData(), std::nullopt);
  EXPECT_EQ(PropertyList::data({"\0x", 2}).asData(), std::string("\0x", 2));
  EXPECT_EQ(PropertyList::parse(PropertyList::data({}).binary()).asData(), "");
  EXPECT_EQ(PropertyList().items(), std::nullopt);
  EXPECT_EQ(PropertyList::array().member("x"), std::nullopt);
  EXPECT_TRUE(PropertyList::array().members().empty());
}

TEST(PropertyList, EditsADictionaryInPlaceAndKeepsTheRest) {
  PropertyList list;
  for (const char* key : {"z", "é", "a"}) {
    list.setMember(key, PropertyList::array({PropertyList::string(key), PropertyList::uid(3)}));
  }
  PropertyList before = list;
  list = PropertyList::parse(list.binary());
  list.setMember("é", PropertyList::integer(1));
  list.setMember("new", PropertyList());
  list.removeMember("z");
  list.removeMember("absent");
  std::vector<std::string> keys;
  for (const auto& [key, value] : list.members()) {
    keys.push_back(key);
  }
  EXPECT_THAT(keys, testing::ElementsAre("é", "a", "new"));
  EXPECT_EQ(list.member("é")->asInteger(), 1);
  EXPECT_EQ(list.member("a"), before.member("a"));
  EXPECT_EQ(before.member("z")->items()->at(1).asUID(), 3U) << "a copy is its own";
  EXPECT_EQ(PropertyList::parse(before.xml()).member("é")->items()->at(0).asString(), "é");
}

TEST(PropertyList, RefusesWhatItCouldNotWriteBack) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{bytesOf({0x00})}, "unknown kind"},
      {{bytesOf({0x0f})}, "unknown kind"},
      {{bytesOf({0xc1, 0, 1}), bytesOf({0x09})}, "unknown kind"},  // a set
      {{bytesOf({0x15})}, "unknown size"},
      {{bytesOf({0x14, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 5})}, "more than 64 bits"},
      {{bytesOf({0x20, 1})}, "unknown size"},
      {{bytesOf({0x32, 1, 2, 3, 4})}, "unknown size"},
      {{bytesOf({0x84, 0, 0, 0, 0, 7})}, "more than 32 bits"},
      {{bytesOf({0x53, 'a', 0, 'c'})}, "text"},
      {{bytesOf({0x53, 'a', 0xe9, 'c'})}, "text"},
      {{bytesOf({0x62, 0, 'a', 0, 0})}, "text"},
      {{bytesOf({0x62, 0xd8, 0x3d, 0, 'a'})}, "text"},
      {{bytesOf({0x61, 0xd8, 0x3d})}, "text"},
      {{bytesOf({0x61, 0xde, 0x00})}, "text"},
      {{bytesOf({0xd1, 0, 1, 0, 1}), bytesOf({0x10, 1})}, "key that is no text"},
      {{bytesOf({0xa1, 0, 0})}, "holds itself"},
      {{bytesOf({0xa1, 0, 1}), bytesOf({0xa1, 0, 0})}, "holds itself"},
      {{bytesOf({0xa1, 0, 9})}, "outside"},
      {{bytesOf({0x5f, 0x10, 200})}, "middle of a value"},
      {{bytesOf({0x5f, 0x13, 255, 255, 255, 255, 255, 255, 255, 255})}, "middle of a value"},
      {{bytesOf({0x5f, 0x50, 1})}, "unknown length"},
      {{bytesOf({0xaf, 0x13, 64, 0, 0, 0, 0, 0, 0, 1})}, "middle of a value"},
  };
  for (const auto& [objects, reason] : cases) {
    try {
      PropertyList::parse(binaryForm(objects));
      ADD_FAILURE() << "took what " << reason;
    } catch (const PropertyListError& error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }
  EXPECT_THROW(PropertyList::string(std::string("a\0b", 3)), PropertyListError);
  for (const char* text : {"\x80", "\xc3", "\xc0\x80", "\xe0\x80\x80", "\xed\xa0\x80",
                           "\xf0\x80\x80\x80", "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80"}) {
    EXPECT_THROW(PropertyList::string(text), PropertyListError);
    EXPECT_THROW(PropertyList().setMember(text, PropertyList()), PropertyListError);
  }
}

std::string nested(int levels) {
  std::vector<std::string> objects;
  for (int i = 1; i < levels; ++i) {
    objects.push_back(bytesOf({0xa1, i >> 8, i & 0xff}));
  }
  objects.push_back(bytesOf({0x09}));
  return binaryForm(objects);
}

TEST(PropertyList, BoundsTheNestingAndTheSize) {
  EXPECT_EQ(
      PropertyList::parse(nested(PropertyList::deepestNesting)).binary().size(),
      PropertyList(PropertyList::parse(nested(PropertyList::deepestNesting))).binary().size());
  EXPECT_THROW(PropertyList::parse(nested(PropertyList::deepestNesting + 1)), PropertyListError);
  EXPECT_THROW(PropertyList::parse(nested(60000)), PropertyListError);

  // Every level refers to the next one twice: 2^40 values in 41 objects.
  std::vector<std::string> doubled;
  for (int i = 1; i <= 40; ++i) {
    doubled.push_back(bytesOf({0xa2, 0, i, 0, i}));
  }
  doubled.push_back(bytesOf({0x09}));
  EXPECT_THROW(PropertyList::parse(binaryForm(doubled)), PropertyListError);
  // The deepest way down counts, also where a shallow one came first.
  std::vector<std::string> reused = {bytesOf({0xa2, 1, 0x40, 0, 1})};
  for (int i = 1; i < 600; ++i) {
    reused.push_back(bytesOf({0xa1, (i + 1) >> 8, (i + 1) & 0xff}));
  }
  reused.push_back(bytesOf({0x09}));
  EXPECT_THROW(PropertyList::parse(binaryForm(reused)), PropertyListError);

  std::string tags;
  for (int i = 0; i < 100000; ++i) {
    tags += "<array>";
  }
  EXPECT_THROW(PropertyList::parse("<plist>" + tags), PropertyListError);
  EXPECT_THROW(PropertyList::parse(std::string(PropertyList::mostBytes + 1, ' ')),
               PropertyListError);
}

TEST(PropertyList, RefusesTornAndDamagedBytesWithoutHarm) {
  PropertyList list;
  list.setMember("array", PropertyList::array({PropertyList::integer(300), PropertyList::uid(1)}));
  list.setMember("é", PropertyList::data("bytes"));
  list.setMember("long", PropertyList::string(std::string(300, 'x')));
  const std::string whole = list.binary();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_THROW(PropertyList::parse(whole.substr(0, length)), PropertyListError) << length;
  }
  std::mt19937 random(11);
  for (int i = 0; i < 20000; ++i) {
    std::string damaged = whole;
    for (int flips = 0; flips < 3; ++flips) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    try {
      const PropertyList taken = PropertyList::parse(damaged);
      EXPECT_EQ(PropertyList::parse(taken.binary()), taken);
    } catch (const PropertyListError&) {
    }
  }
  for (const char* text : {"", "hello", "<plist>", "<plist><array><true/></dict></plist>",
                           "<plist><string>\xff</string></plist>", "bplist00"}) {
    EXPECT_THROW(PropertyList::parse(text), PropertyListError) << text;
  }
}

}  // namespace
}  // namespace plemora
