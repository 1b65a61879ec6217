#include "app/services/main_menu.h"

namespace plemora {

void MainMenu::install(Application& application) {
  const MainMenuItem separator;
  application.setMainMenu({
      {"", {{"Quit Plemora", "terminate:", "q"}}},
      {"Edit",
       {{"Undo", "undo:", "z"},
        {"Redo", "redo:", "z", commandModifier | shiftModifier},
        separator,
        {"Cut", "cut:", "x"},
        {"Copy", "copy:", "c"},
        {"Paste", "paste:", "v"},
        {"Select All", "selectAll:", "a"}}},
      {"Window", {{"Close", "performClose:", "w"}}},
  });
}

}  // namespace plemora
