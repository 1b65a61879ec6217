#include "adapters/linux/windows/mac_key_codes.h"

#include <Qt>
#include <algorithm>
#include <iterator>

namespace plemora {

namespace {

struct KeyCode {
  int qtKey;
  int code;
};

constexpr KeyCode keyCodes[] = {
    {Qt::Key_A, 0},        {Qt::Key_S, 1},       {Qt::Key_D, 2},          {Qt::Key_F, 3},
    {Qt::Key_H, 4},        {Qt::Key_G, 5},       {Qt::Key_Z, 6},          {Qt::Key_X, 7},
    {Qt::Key_C, 8},        {Qt::Key_V, 9},       {Qt::Key_B, 11},         {Qt::Key_Q, 12},
    {Qt::Key_W, 13},       {Qt::Key_E, 14},      {Qt::Key_R, 15},         {Qt::Key_Y, 16},
    {Qt::Key_T, 17},       {Qt::Key_O, 31},      {Qt::Key_U, 32},         {Qt::Key_I, 34},
    {Qt::Key_P, 35},       {Qt::Key_Return, 36}, {Qt::Key_L, 37},         {Qt::Key_J, 38},
    {Qt::Key_K, 40},       {Qt::Key_Comma, 43},  {Qt::Key_N, 45},         {Qt::Key_M, 46},
    {Qt::Key_Period, 47},  {Qt::Key_Tab, 48},    {Qt::Key_Backtab, 48},   {Qt::Key_Space, 49},
    {Qt::Key_Escape, 53},  {Qt::Key_Enter, 76},  {Qt::Key_Backspace, 51}, {Qt::Key_Home, 115},
    {Qt::Key_PageUp, 116}, {Qt::Key_End, 119},   {Qt::Key_PageDown, 121}, {Qt::Key_Left, 123},
    {Qt::Key_Right, 124},  {Qt::Key_Down, 125},  {Qt::Key_Delete, 117},   {Qt::Key_Up, 126},
};

}  // namespace

int macKeyCode(int qtKey) {
  const auto* found = std::find_if(std::begin(keyCodes), std::end(keyCodes),
                                   [&](const KeyCode& entry) { return entry.qtKey == qtKey; });
  return found == std::end(keyCodes) ? -1 : found->code;
}

}  // namespace plemora
