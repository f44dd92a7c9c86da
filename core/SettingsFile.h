#pragma once

// The four options in config.ini beside the executable: read once at start-up, written once at the
// end of the program.

/// Sets the options of `PublicDim` to their defaults, then to what the file says.
void LoadConfig();

/// Writes the file whole.
void SaveConfig();
