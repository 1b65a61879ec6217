#include "stage_desktop/desk.h"
#include "support/accessibility_contract.h"
#include "support/window_list_contract.h"

namespace plemora {

namespace {

struct Stores {
  std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>();
  MemoryPreferences program{store};
  MemoryPreferences system{store};

  Stores() { storeFreshLayout(program); }
};

/// Control Center, open, with an app's control as the button.
class ControlCenterWorld : public AccessibilityWorld {
 public:
  ControlCenterWorld() {
    std::string why;
    FreshLayout layout = freshLayout();
    auto grid = StageTileGrid::read(layout.boxes, layout.controls, why);
    const StageControlExtension radio{
        "org.example.radio.controls", "org.example.radio", "play", "Radio", "",
        [this] { ++presses_; }};
    grid->addControl(radio, "RADIO", "rect2x1");
    const auto put = [&](const char* key, const char* domain, PreferenceHost host,
                         const std::string& bytes) {
      stores_.program.setValue(key, PreferenceData{bytes}, domain, host);
      stores_.program.synchronize(domain, host);
    };
    put(boxesKey, boxesDomain, PreferenceHost::current, grid->boxesValue());
    put(controlsKey, controlsDomain, PreferenceHost::any, grid->controlsValue());
    desktop_ = std::make_unique<StageDesktop>(
        StageDesktop::PreferencePair{stores_.program, stores_.system});
    desktop_->extensions.installed.push_back(radio);
    desktop_->controlCenter.open();
    pid_ = desktop_->controlCenter.pid();
  }

  Accessibility& accessibility() override { return desktop_->accessibility; }
  void setTrusted(bool isTrusted) override { desktop_->accessibility.setTrusted(isTrusted); }
  std::int32_t pid() override { return pid_; }
  bool isButton(AccessibilityElement& element) override {
    return element.attribute("AXIdentifier") ==
           AccessibilityValue(std::string("org.example.radio.controls:play"));
  }
  int presses() override {
    desktop_->settle();
    return presses_;
  }
  void endApplication() override { desktop_->controlCenter.kill(); }

 private:
  Stores stores_;
  int presses_ = 0;
  std::int32_t pid_ = -1;
  std::unique_ptr<StageDesktop> desktop_;
};

INSTANTIATE_TEST_SUITE_P(StageDesktop, AccessibilityContract,
                         testing::Values(AccessibilityWorldFactory{
                             "control_center",
                             [] { return std::make_unique<ControlCenterWorld>(); }}));

/// The program's windows, among all others of the stage.
class ProgramWindowsWorld : public WindowListWorld {
 public:
  ProgramWindowsWorld() { desktop_.program.start("org.example.program", "Program"); }

  WindowList& windowList() override { return desktop_.windowServer; }
  std::int64_t show(int layer, const Rect& bounds, double alpha) override {
    PanelWindowOptions options;
    options.level = layer;
    auto window = desktop_.windows.makePanel(options);
    window->setFrame(desktop_.space.flipped(bounds));
    window->setAlpha(alpha);
    window->order(WindowOrder::front);
    const std::int64_t number = desktop_.windows.windows().back()->number;
    shown_[number] = std::move(window);
    return number;
  }
  void move(std::int64_t number, const Rect& bounds) override {
    shown_.at(number)->setFrame(desktop_.space.flipped(bounds));
  }
  void hide(std::int64_t number) override { shown_.at(number)->order(WindowOrder::out); }
  void silence() override { desktop_.windowServer.isSilent = true; }
  std::string ownerName() override { return "Program"; }
  std::int32_t ownerPid() override { return desktop_.program.pid(); }

 private:
  Stores stores_;
  StageDesktop desktop_{StageDesktop::PreferencePair{stores_.program, stores_.system}};
  std::map<std::int64_t, std::unique_ptr<PanelWindow>> shown_;
};

INSTANTIATE_TEST_SUITE_P(StageDesktop, WindowListContract,
                         testing::Values(WindowListWorldFactory{
                             "program_windows",
                             [] { return std::make_unique<ProgramWindowsWorld>(); }}));

}  // namespace

}  // namespace plemora
