#pragma once

/// Plays sound 1 (a file was added) or 2 (a file was removed) from `SoundDir` when its option is
/// on. An earlier playing of the same sound is cut off. Returns at once; no file or no sound device
/// is silence.
void PlaySoundFile(int which);

/// Plays a sound whatever its option says, which stays as it is.
void PlaySoundRegardless(int which);
