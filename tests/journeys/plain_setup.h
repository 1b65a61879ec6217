#pragma once

#include <memory>
#include <string>
#include <vector>

#include "journeys/plain_content.h"
#include "onboarding/helper_view.h"
#include "onboarding/onboarding_services.h"
#include "onboarding/setup_view.h"

namespace plemora {

/// The content of the setup window: its cards below one another. Main thread.
class PlainSetup : public PlainContent {
 public:
  explicit PlainSetup(SetupView& view) : view_(view) {
    page_ = view_.page.subscribe([this](const SetupPage&) { reportFrames(); });
  }

  double fittingWidth() override { return 560; }
  double fittingHeight() override { return 620; }
  void setVisible(bool isVisible) override {
    if (isVisible) {
      reportFrames();
    }
  }

 private:
  static Rect buttonFrame(std::size_t card) {
    return {400, 80 + 100 * static_cast<double>(card), 140, 30};
  }

  void reportFrames() {
    const auto& cards = view_.page.get().cards;
    for (std::size_t i = 0; i < cards.size() && view_.onButtonFrame; ++i) {
      view_.onButtonFrame(cards[i].id, cards[i].buttonTitle.empty() ? Rect{} : buttonFrame(i));
    }
  }

  std::vector<Part> parts() const override {
    const SetupPage& page = view_.page.get();
    std::vector<Part> result;
    const auto add = [&](const std::string& name, const Rect& frame, std::function<void()> press) {
      if (!name.empty()) {
        result.push_back({name, frame, {}, std::move(press), {}, {}});
      }
    };
    for (std::size_t i = 0; i < page.cards.size() && !page.isComplete; ++i) {
      const SetupCard& card = page.cards[i];
      const Rect button = buttonFrame(i);
      if (!card.buttonTitle.empty() && card.isButtonEnabled) {
        add(card.buttonLabel(), button, [this, id = card.id] { view_.onButton(id); });
      }
      add(card.skipTitle, button.offset(-180, 0), [this, id = card.id] { view_.onSkip(id); });
    }
    add(page.showTitle, {100, 560, 120, 30}, [this] { view_.onShow(); });
    add(page.finishTitle, {400, 560, 120, 30}, [this] { view_.onFinish(); });
    return result;
  }

  SetupView& view_;
  Subscription page_;
};

/// The content of the docked helper. Main thread.
class PlainHelper : public PlainContent {
 public:
  explicit PlainHelper(HelperView& view) : view_(view) {}

  double fittingHeight() override { return 120; }

 private:
  std::vector<Part> parts() const override {
    const HelperPage& page = view_.page.get();
    std::vector<Part> result;
    double y = 10;
    const auto add = [&](const std::string& name, const std::function<void()>& press) {
      if (!name.empty() && !page.hasSucceeded) {
        result.push_back({name, {120, y, 300, 24}, {}, press, {}, {}});
        y += 30;
      }
    };
    add(page.backTitle, view_.onBack);
    add(page.askTitle, view_.onAskInstead);
    add(page.doneTitle, view_.onDone);
    if (page.hasDragIcon) {
      result.push_back({"Plemora", {20, 20, 64, 64}, {}, {}, {}, view_.onDrag});
    }
    return result;
  }

  HelperView& view_;
};

/// The content of the callout below the program's icon. Main thread.
class PlainCallout : public PlainContent {
 public:
  explicit PlainCallout(CalloutView& view) : view_(view) {}

  double fittingWidth() override { return 260; }
  double fittingHeight() override { return 90; }

 private:
  std::vector<Part> parts() const override {
    return {{view_.buttonTitle, {160, 50, 80, 26}, {}, view_.onOpen, {}, {}}};
  }

  CalloutView& view_;
};

/// All of setup without any drawing.
inline OnboardingContents plainOnboarding() {
  return {[](SetupView& view) { return std::make_shared<PlainSetup>(view); },
          [](HelperView& view) { return std::make_shared<PlainHelper>(view); },
          [](CalloutView& view) { return std::make_shared<PlainCallout>(view); },
          {}};
}

}  // namespace plemora
