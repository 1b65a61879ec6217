#pragma once

namespace plemora {

/// The virtual key code that a Mac has for a key of the toolkit (Qt::Key); -1 for keys that have
/// none here.
int stageKeyCode(int qtKey);
/// And back; 0 (no Qt::Key) for codes that are not known.
int qtKeyOf(int keyCode);

/// The modifier keys that are down (Qt::KeyboardModifiers) as NSEvent.ModifierFlags. Control of
/// other keyboards stands for the command key, as everywhere in the toolkit.
unsigned stageModifiers(int qtModifiers);
int qtModifiersOf(unsigned modifiers);

}  // namespace plemora
