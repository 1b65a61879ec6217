#include "adapters/linux/pipewire/client_identity.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace plemora {
namespace {

std::string ownBinary() {
  return std::filesystem::read_symlink("/proc/self/exe").filename();
}

TEST(ClientIdentityTest, TheKernelsWordCountsForNativeClientsAndACheckedClaimForOthers) {
  const std::string self = std::to_string(getpid());
  struct Case {
    const char* what;
    PropertyMap client;
    PropertyMap stream;
    bool isReal;
    bool isClaimed;
  };
  const auto pulse = [&](PropertyMap more) {
    more.insert({{"client.api", "pipewire-pulse"}, {"pipewire.sec.pid", "1"}});
    return more;
  };
  const PropertyMap own = {{"application.process.id", self},
                           {"application.process.binary", ownBinary()}};
  const PropertyMap others = {{"application.process.id", self},
                              {"application.process.binary", "someplayer"}};
  PropertyMap sandboxed = own;
  sandboxed["pipewire.access.portal.app_id"] = "org.example.Player";
  const Case cases[] = {
      {"native", {{"pipewire.sec.pid", self}, {"application.process.id", "1"}}, {}, true, false},
      {"pulse, true claim", pulse(own), {}, true, true},
      {"pulse, claimed on the stream alone", pulse({}), own, true, true},
      {"pulse, somebody else's number", pulse(others), {}, false, true},
      {"pulse, sandboxed", pulse(sandboxed), {}, false, true},
      {"pulse, no number", pulse({{"application.process.binary", "someplayer"}}), {}, false, true},
  };
  ClientDirectory directory;
  for (const Case& given : cases) {
    SCOPED_TRACE(given.what);
    const ClientIdentity identity = identifyClient(given.client, given.stream, directory);
    if (given.isReal) {
      EXPECT_EQ(identity.pid, getpid());
    } else {
      EXPECT_TRUE(ClientDirectory::isSynthetic(identity.pid));
    }
    EXPECT_EQ(identity.hints.pidIsClaimed, given.isClaimed);
  }
}

TEST(ClientIdentityTest, ClientsOfOneSandboxedAppAreOneProcessAndOthersAreNot) {
  ClientDirectory directory;
  const auto pidOf = [&](const char* app, const char* binary) {
    return identifyClient({{"client.api", "pipewire-pulse"},
                           {"pipewire.access.portal.app_id", app},
                           {"application.process.binary", binary}},
                          {}, directory)
        .pid;
  };
  EXPECT_EQ(pidOf("org.example.Player", "a"), pidOf("org.example.Player", "b"));
  EXPECT_NE(pidOf("org.example.Player", "a"), pidOf("org.example.Other", "a"));
  EXPECT_NE(pidOf("", "a"), pidOf("", "b"));
}

TEST(ClientIdentityTest, TheStreamsOwnWordsGoBeforeTheClients) {
  ClientDirectory directory;
  const auto hints =
      identifyClient({{"pipewire.sec.pid", "5"},
                      {"application.name", "client"},
                      {"application.process.binary", "binary"}},
                     {{"application.name", "stream"}, {"media.icon-name", "icon"}}, directory)
          .hints;
  EXPECT_EQ(hints.applicationName, "stream");
  EXPECT_EQ(hints.binary, "binary");
  EXPECT_EQ(hints.iconName, "icon");
}

}  // namespace
}  // namespace plemora
