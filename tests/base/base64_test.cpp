#include "base/base64.h"

#include <gtest/gtest.h>

namespace plemora {
namespace {

TEST(Base64, CodesTheKnownVectors) {
  const std::pair<const char*, const char*> vectors[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"\xff\xfb\xbf", "//u/"},
      {"\xfb\xef\xbe", "++++"},
  };
  for (const auto& [bytes, text] : vectors) {
    EXPECT_EQ(encodeBase64(bytes), text);
    EXPECT_EQ(decodeBase64(text), bytes);
  }
}

TEST(Base64, RefusesWhatIsNotBase64Throughout) {
  for (const char* text : {"Z", "Zg", "Zg=", "Z===", "====", "=Zg=", "Zg==Zg==", "Zm9v\n", "Zm 9v",
                           "Zm9v    ", "Zm9v=", "Z-9v", "Z_9v", "Zm9\x80"}) {
    EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
  }
  EXPECT_EQ(decodeBase64(std::string_view("Zm\0v", 4)), std::nullopt);
}

}  // namespace
}  // namespace plemora
