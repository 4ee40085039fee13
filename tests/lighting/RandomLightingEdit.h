// One random lighting edit on the main window's open world, made through the same calls as the user's
// commands, each leaving whole undo steps on the stack: create an omnidirectional or directional light, and
// on a light that is there: select it, delete it, hide or show it, move it as the gizmo does, turn it as the
// gizmo does (only when `turns`: a turn undone is equal to the last bits only), or change the fog through
// the fog dialog. For the random-edit undo property test: seeded sequences, undo all and redo all, and the
// saved worlds compared.
#pragma once
#include <random>
#include <string>

namespace vexil {

class Form1;

// Answers what was done ("create omni", "move Light02", ...), or "" when the drawn edit had nothing to act
// on (no light yet).
std::string ApplyRandomLightingEdit(Form1& form, std::mt19937& rng, bool turns = false);

} // namespace vexil
