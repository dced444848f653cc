#pragma once

namespace engine {

class EngineSession;

// Turns raw field entry of the whole Initial table (chainage typed on a cross-section's first
// reading only, offsets typed as positive distances from the left edge across the centre line)
// into one chainage on every row and negative offsets left of the centre-line reading; then
// validates the current section's levels. Running it again changes nothing.
void FormatInitialTable(EngineSession& session);

}  // namespace engine
