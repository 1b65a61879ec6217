#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "adapters/files/disk_files.h"
#include "adapters/files/property_list_preferences.h"
#include "adapters/stage/faulty_stores.h"
#include "controlcenter/layout_world.h"
#include "support/faulty_disk.h"

// Every step of every command fails once, fails for good, and is the last before the program is
// killed. Afterwards both values are the old ones or both the new ones, or the same command makes
// them so when it is run again; and the first backup is there as long as it is needed.

namespace plemora {
namespace {

constexpr const char* mainDomain = ControlCenterLayout::mainDomain;
constexpr const char* layoutDomain = ControlCenterLayout::layoutDomain;

struct Killed {};

/// Which of the values that were set and not synchronized reach the disk after a kill.
enum class Flush { none, controls, boxes, both };

/// Where the preferences and the backup are.
class Storage {
 public:
  virtual ~Storage() = default;

  /// For a program that starts now: what another one had only set is gone.
  virtual std::unique_ptr<Preferences> preferences() = 0;
  virtual Files& files() = 0;
};

class MemoryStorage : public Storage {
 public:
  std::unique_ptr<Preferences> preferences() override {
    return std::make_unique<MemoryPreferences>(store_);
  }
  Files& files() override { return files_; }

 private:
  std::shared_ptr<PreferenceStore> store_ = std::make_shared<PreferenceStore>();
  MemoryFiles files_;
};

/// A disk whose single operations fail, and that loses what was not synced.
class FaultyDiskStorage : public Storage {
 public:
  std::unique_ptr<Preferences> preferences() override {
    return std::make_unique<PropertyListPreferences>("/p", "host", disk);
  }
  Files& files() override { return files_; }

  std::shared_ptr<FaultyDisk> disk = std::make_shared<FaultyDisk>();

 private:
  DiskFiles files_{"/s", disk};
};

/// Asks before it ends an application: the program may be killed there too.
class GatedWorkspace : public ScriptedWorkspace {
 public:
  bool forceTerminate(std::int32_t pid) override {
    if (gate) {
      gate("forceTerminate");
    }
    return ScriptedWorkspace::forceTerminate(pid);
  }
  StoreGate gate;
};

using Command = std::function<void(ControlCenterLayout&)>;

/// One run of the program.
class ProgramRun {
 public:
  ProgramRun(Storage& storage, VirtualClock& clock)
      : inner_(storage.preferences()),
        preferences_(*inner_),
        files_(storage.files()),
        layout_(preferences_, files_, clock, workspace_) {
    workspace_.launch(application(7, "com.apple.controlcenter"));
  }

  void setGate(const StoreGate& gate) { preferences_.gate = files_.gate = workspace_.gate = gate; }

  /// Whether it came to its end, well or not; false when it was killed.
  bool perform(const Command& command) {
    try {
      command(layout_);
      succeeded = true;
    } catch (const std::exception&) {
    } catch (const Killed&) {
      return false;
    }
    return true;
  }

  void flush(Flush which) {
    setGate({});
    if (which == Flush::controls || which == Flush::both) {
      inner_->synchronize(mainDomain, PreferenceHost::any);
    }
    if (which == Flush::boxes || which == Flush::both) {
      inner_->synchronize(layoutDomain, PreferenceHost::current);
    }
  }

  bool succeeded = false;

 private:
  std::unique_ptr<Preferences> inner_;
  FaultyPreferences preferences_;
  FaultyFiles files_;
  GatedWorkspace workspace_;
  ControlCenterLayout layout_;
};

const Command replaceSound = [](ControlCenterLayout& layout) { layout.replaceSound(); };
const Command restore = [](ControlCenterLayout& layout) { layout.restore(); };
const Command putSoundBack = [](ControlCenterLayout& layout) { layout.putSoundBack(true); };

struct Case {
  const char* name;
  std::vector<Command> before;
  bool soundReturns;  ///< the system puts it back beside our tiles before the command
  Command command;
};

const Case cases[] = {
    {"replace", {}, false, replaceSound},
    {"replace with a backup", {replaceSound, putSoundBack}, false, replaceSound},
    {"replace beside our tiles", {replaceSound}, true, replaceSound},
    {"restore", {replaceSound}, false, restore},
    {"restore after Sound is back", {replaceSound, putSoundBack}, false, restore},
    {"put back", {replaceSound}, false, putSoundBack},
    {"put back without a backup", {replaceSound, restore, replaceSound}, false, putSoundBack},
    {"put back beside Sound", {replaceSound}, true, putSoundBack},
};

class Scene {
 public:
  explicit Scene(std::unique_ptr<Storage> made, const Case& example)
      : storage(std::move(made)), example_(example) {
    storeLayout(*storage->preferences(), freshStoredLayout());
    for (const Command& command : example.before) {
      ProgramRun run(*storage, clock);
      run.perform(command);
    }
    if (example.soundReturns) {
      Layout layout = Layout::decode(stored());
      layout.elements.push_back(Layout::decode(freshStoredLayout()).elements[8]);
      storeLayout(*storage->preferences(), layout.encode());
    }
    before = stored();
    backupBefore = backup();
  }

  StoredLayout stored() { return readStoredLayout(*storage->preferences()); }
  std::optional<std::string> backup() {
    return storage->files().read(storage->files().applicationSupport() +
                                 "/Plemora/ControlCenterLayoutBackup.plist");
  }

  /// The layout as text, with our identifiers by their order.
  static std::string shape(const StoredLayout& stored) {
    const Layout layout = Layout::decode(stored);
    std::string text = layoutJsonText(layout.elements) + layoutJsonText(layout.controls) +
                       layoutJsonText(layout.boxes[0]["occupiedLocations"]) +
                       PropertyList::array(layout.modules).xml();
    const std::string ours = "00000000-0000-4000-8000-";
    int number = 0;
    for (std::size_t first = text.find(ours); first != text.npos; first = text.find(ours)) {
      const std::string id = text.substr(first, 36);
      const std::string name = "ours-" + std::to_string(++number);
      for (std::size_t at = first; at != text.npos; at = text.find(id, at)) {
        text.replace(at, id.size(), name);
      }
    }
    return text;
  }

  /// Runs the command and sets what it comes to without a fault.
  void reachGoal() {
    ProgramRun run(*storage, clock);
    run.perform(example_.command);
    ASSERT_TRUE(run.succeeded);
    goal = shape(stored());
  }

  void check(const std::string& goalShape) {
    const StoredLayout now = stored();
    expectNoStrays(now);
    expectBackup(now);
    if (now == before || shape(now) == goalShape) {
      return;
    }
    ProgramRun again(*storage, clock);
    again.perform(example_.command);
    EXPECT_TRUE(again.succeeded) << "between the old and the new, and the command does not help";
    EXPECT_EQ(shape(stored()), goalShape);
    expectBackup(stored());
  }

  std::unique_ptr<Storage> storage;
  VirtualClock clock;
  StoredLayout before;
  std::optional<std::string> backupBefore;
  std::string goal;

 private:
  /// A tile of ours that no control names could never be removed again.
  static void expectNoStrays(const StoredLayout& stored) {
    const Layout layout = Layout::decode(stored);
    const auto names = layout.moduleNames();
    const LayoutDictionaries ours = layout.mixerElements();
    for (const LayoutJson& element : layout.elements) {
      const std::string id = elementID(element);
      if (id.starts_with("00000000-") && !names.contains(id)) {
        EXPECT_THAT(ours, testing::Contains(element));
      }
    }
  }

  /// The first one is never lost before it is restored.
  void expectBackup(const StoredLayout& now) {
    const auto kept = backup();
    if (kept || !backupBefore) {
      if (backupBefore) {
        EXPECT_EQ(kept, backupBefore);
      } else if (now != before) {
        EXPECT_TRUE(kept) << "changed without a backup";
      }
      return;
    }
    EXPECT_EQ(now, freshStoredLayout()) << "the backup went before it was restored";
  }

  const Case& example_;
};

enum class Fault { once, forGood, kill };

class Steps : public testing::TestWithParam<const Case*> {
 protected:
  using MakeStorage = std::function<std::unique_ptr<Storage>()>;

  /// Goes through every call to a seam that the command makes.
  void forEverySeamCall(const MakeStorage& make, std::initializer_list<Flush> pending) {
    Scene ideal(make(), *GetParam());
    ideal.reachGoal();
    for (const Fault fault : {Fault::once, Fault::forGood, Fault::kill}) {
      for (const Flush flush : pending) {
        int calls = 0;
        for (int step = 1; calls + 1 >= step; ++step) {
          Scene scene(make(), *GetParam());
          std::string last = "the end";
          calls = 0;
          {
            ProgramRun run(*scene.storage, scene.clock);
            run.setGate([&](const std::string& call) {
              ++calls;
              if (calls < step || (calls > step && fault == Fault::once)) {
                return true;
              }
              last = calls == step ? call : last;
              if (fault == Fault::kill) {
                throw Killed();
              }
              return false;
            });
            const bool ended = run.perform(GetParam()->command);
            EXPECT_EQ(ended, fault != Fault::kill || calls < step);
            if (run.succeeded) {
              EXPECT_EQ(Scene::shape(scene.stored()), ideal.goal);
            }
            run.flush(flush);
          }
          SCOPED_TRACE(testing::Message()
                       << "fault " << static_cast<int>(fault) << " at step " << step << " (" << last
                       << "), flush " << static_cast<int>(flush));
          scene.check(ideal.goal);
          if (HasFailure()) {
            return;
          }
        }
        EXPECT_GT(calls, 5) << "the command makes more calls than that";
      }
    }
  }
};

TEST_P(Steps, InMemory) {
  forEverySeamCall([] { return std::make_unique<MemoryStorage>(); },
                   {Flush::none, Flush::controls, Flush::boxes, Flush::both});
}

// Down to the single operation on the disk, with the power gone at once or the operation failing.
TEST_P(Steps, OnADiskThatFails) {
  const auto make = [] { return std::make_unique<FaultyDiskStorage>(); };
  Scene ideal(make(), *GetParam());
  ideal.reachGoal();
  for (const Fault fault : {Fault::once, Fault::forGood, Fault::kill}) {
    int calls = 0;
    for (int step = 1; calls + 1 >= step; ++step) {
      auto made = make();
      const std::shared_ptr<FaultyDisk> disk = made->disk;
      Scene scene(std::move(made), *GetParam());
      const int before = disk->calls();
      {
        ProgramRun run(*scene.storage, scene.clock);
        disk->failFrom(step, fault == Fault::once ? 1 : 1'000'000);
        run.perform(GetParam()->command);
        calls = disk->calls() - before;
        disk->failFrom(1, 0);
        if (run.succeeded && fault == Fault::once) {
          EXPECT_EQ(Scene::shape(scene.stored()), ideal.goal);
        }
      }
      if (fault == Fault::kill) {
        disk->crash();
      }
      SCOPED_TRACE(testing::Message()
                   << "fault " << static_cast<int>(fault) << " at operation " << step);
      scene.check(ideal.goal);
      if (HasFailure()) {
        return;
      }
    }
    EXPECT_GT(calls, 10);
  }
}

std::vector<const Case*> everyCase() {
  std::vector<const Case*> all;
  for (const Case& example : cases) {
    all.push_back(&example);
  }
  return all;
}

std::string nameOf(const testing::TestParamInfo<const Case*>& parameter) {
  std::string name = parameter.param->name;
  std::ranges::replace(name, ' ', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, Steps, testing::ValuesIn(everyCase()), nameOf);

}  // namespace
}  // namespace plemora
