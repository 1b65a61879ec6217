#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <chrono>

#include "views/panel_rig.h"

namespace plemora {
namespace {

TEST_F(PanelTest, TwoHundredAppsScrollAndEachIsReached) {
  for (int i = 0; i < 200; ++i) {
    world.play(100 + i, "app" + std::to_string(1000 + i), "App " + std::to_string(1000 + i),
               world.speakers);
  }
  open(600);
  QQuickItem* panel = scene->item();
  EXPECT_GT(scene->fittingHeight(), 7000);
  EXPECT_EQ(panel->height(), 600);
  // Only what is near is built.
  EXPECT_LT(everything().size(), 400u);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), "Sound Settings…");
  const QPoint bottom = place("Sound Settings…");
  EXPECT_LT(bottom.y(), 600);
  for (int i = 0; i < 8; ++i) {
    press(Qt::Key_Up);
  }
  EXPECT_EQ(focused(), "Mute App 1196");
  EXPECT_GT(place("Mute App 1196").y(), 0);
}

TEST_F(PanelTest, NamesOfAnyKindStayOnTheirLineAndInTheirPlace) {
  const std::string names[] = {std::string(500, 'W'),
                               "مشغل الموسيقى",
                               "🎧👩‍👩‍👧‍👦 🎶",
                               "a\nb\tc",
                               "<b>bold</b> &amp; %20?&#",
                               "\xff\xfe broken",
                               " "};
  int pid = 100;
  for (const std::string& name : names) {
    world.play(pid, "app" + std::to_string(pid), name, world.speakers);
    ++pid;
  }
  open();
  for (Interface node : everything()) {
    const QRect rect = node->rect().translated(-window->position());
    if (node->role() == QAccessible::Slider || node->role() == QAccessible::Button) {
      EXPECT_GE(rect.left(), 0);
      EXPECT_LE(rect.right(), 308);
      EXPECT_LE(rect.height(), 48);
    }
  }
  EXPECT_NE(find("Mute <b>bold</b> &amp; %20?&#"), nullptr);
}

TEST_F(PanelTest, BadIconsShowSomethingElse) {
  const QTemporaryDir folder;
  const auto write = [&](const char* name, const QByteArray& bytes) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName().toStdString();
  };
  QByteArray wide("P5 200000 200000 255\n");
  const std::string pipe = folder.filePath("pipe.png").toStdString();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string icons[] = {"",
                               "/no/such/file.png",
                               "no-such-icon-name",
                               write("text.png", "no picture at all"),
                               write("wide.pgm", wide),
                               write("empty.png", ""),
                               folder.path().toStdString(),
                               pipe,
                               "../relative.png"};
  int pid = 100;
  for (const std::string& icon : icons) {
    const std::string name = "App " + std::to_string(pid);
    world.play(pid, name, name, world.speakers);
    world.workspace.launch({.pid = pid,
                            .bundleID = name,
                            .localizedName = name,
                            .icon = {icon},
                            .activationPolicy = ActivationPolicy::regular});
    ++pid;
  }
  open();
  const QImage picture = window->grabWindow();
  for (pid = 100; pid < 109; ++pid) {
    const QPoint middle = place("Mute App " + std::to_string(pid));
    EXPECT_GT(picture.pixelColor(middle).saturation() + picture.pixelColor(middle).value(), 60)
        << icons[pid - 100];
  }
}

TEST_F(PanelTest, DevicesAndAppsComeAndGoWhileItIsOpen) {
  world.play(11, "a", "Music", world.speakers);
  open();
  click("Output for Music", QAccessible::Button);
  QQuickItem* slider = item("Music volume", QAccessible::Slider);
  std::vector<AudioObjectID> added;
  for (int round = 0; round < 12; ++round) {
    added.push_back(world.hal.addDevice({.uid = "new" + std::to_string(round),
                                         .name = "New " + std::to_string(round),
                                         .transport = kAudioDeviceTransportTypeUSB}));
    const AudioObjectID app = world.play(50 + round, "b" + std::to_string(round),
                                         "Browser " + std::to_string(round), world.speakers);
    turn();
    if (round % 3 == 2) {
      world.hal.removeDevice(added[static_cast<std::size_t>(round - 1)]);
      world.hal.removeProcess(app);
      world.workspace.quit(50 + round);
      turn();
    }
  }
  world.hal.removeDevice(world.headset);
  settleTransitions();
  turn();
  EXPECT_EQ(find("Headset"), nullptr);
  EXPECT_NE(find("New 11", QAccessible::RadioButton), nullptr);
  EXPECT_EQ(find("Output for Music", QAccessible::Grouping)->childCount(), 10);
  // The row has been the same one all along.
  EXPECT_EQ(item("Music volume", QAccessible::Slider), slider);
}

TEST_F(PanelTest, EverythingMayGoWhileASliderIsHeld) {
  const AudioObjectID process = world.play(11, "a", "Music", world.speakers);
  open();
  QTest::mousePress(window.get(), Qt::LeftButton, {}, place("Music volume", 0.5));
  world.hal.removeProcess(process);
  world.workspace.quit(11);
  world.pass(601);
  world.mixer->publish();
  for (const AudioObjectID device : {world.speakers, world.usb, world.headset}) {
    world.hal.removeDevice(device);
  }
  settleTransitions();
  QTest::mouseMove(window.get(), {200, 90});
  QTest::mouseRelease(window.get(), Qt::LeftButton, {}, {200, 90});
  turn();
  EXPECT_EQ(find("Music volume"), nullptr);
  EXPECT_NE(find("No apps are playing sound"), nullptr);
}

}  // namespace
}  // namespace plemora
