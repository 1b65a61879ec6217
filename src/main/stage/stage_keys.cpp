#include "main/stage/stage_keys.h"

#include <Qt>
#include <algorithm>
#include <iterator>

namespace plemora {

namespace {

struct Pair {
  int qt;
  int stage;
};

// Where two keys have one code the first stands for it.
constexpr Pair keys[] = {
    {Qt::Key_A, 0},        {Qt::Key_S, 1},          {Qt::Key_D, 2},          {Qt::Key_F, 3},
    {Qt::Key_H, 4},        {Qt::Key_G, 5},          {Qt::Key_Z, 6},          {Qt::Key_X, 7},
    {Qt::Key_C, 8},        {Qt::Key_V, 9},          {Qt::Key_B, 11},         {Qt::Key_Q, 12},
    {Qt::Key_W, 13},       {Qt::Key_E, 14},         {Qt::Key_R, 15},         {Qt::Key_Y, 16},
    {Qt::Key_T, 17},       {Qt::Key_1, 18},         {Qt::Key_2, 19},         {Qt::Key_3, 20},
    {Qt::Key_4, 21},       {Qt::Key_6, 22},         {Qt::Key_5, 23},         {Qt::Key_9, 25},
    {Qt::Key_7, 26},       {Qt::Key_8, 28},         {Qt::Key_0, 29},         {Qt::Key_O, 31},
    {Qt::Key_U, 32},       {Qt::Key_I, 34},         {Qt::Key_P, 35},         {Qt::Key_Return, 36},
    {Qt::Key_L, 37},       {Qt::Key_J, 38},         {Qt::Key_K, 40},         {Qt::Key_Comma, 43},
    {Qt::Key_N, 45},       {Qt::Key_M, 46},         {Qt::Key_Period, 47},    {Qt::Key_Tab, 48},
    {Qt::Key_Backtab, 48}, {Qt::Key_Space, 49},     {Qt::Key_Backspace, 51}, {Qt::Key_Escape, 53},
    {Qt::Key_Enter, 76},   {Qt::Key_Home, 115},     {Qt::Key_PageUp, 116},   {Qt::Key_Delete, 117},
    {Qt::Key_End, 119},    {Qt::Key_PageDown, 121}, {Qt::Key_Left, 123},     {Qt::Key_Right, 124},
    {Qt::Key_Down, 125},   {Qt::Key_Up, 126},
};

constexpr Pair modifierKeys[] = {
    {Qt::ShiftModifier, 0x20000},
    {Qt::MetaModifier, 0x40000},
    {Qt::AltModifier, 0x80000},
    {Qt::ControlModifier, 0x100000},
};

}  // namespace

int stageKeyCode(int qtKey) {
  const auto* found = std::ranges::find(keys, qtKey, &Pair::qt);
  return found != std::end(keys) ? found->stage : -1;
}

int qtKeyOf(int keyCode) {
  const auto* found = std::ranges::find(keys, keyCode, &Pair::stage);
  return found != std::end(keys) ? found->qt : 0;
}

unsigned stageModifiers(int qtModifiers) {
  unsigned result = 0;
  for (const Pair& key : modifierKeys) {
    result |= (qtModifiers & key.qt) != 0 ? static_cast<unsigned>(key.stage) : 0;
  }
  return result;
}

int qtModifiersOf(unsigned modifiers) {
  int result = 0;
  for (const Pair& key : modifierKeys) {
    result |= (modifiers & static_cast<unsigned>(key.stage)) != 0 ? key.qt : 0;
  }
  return result;
}

}  // namespace plemora
