#pragma once

#include <cstddef>
#include <string>

// What the machine itself takes for work of the same kind, and how it counts: one source a machine.

/// Seconds that have gone into the work of this process and of those that it has started and waited
/// for, from some moment on.
double WorkSeconds();

/// Has every entry of the folder told with its size and time.
void ListBare(const std::string& folder);

/// Opens, reads and closes every file of the baseline.
void ReadBare();

/// Looks for a word in all files of the folder, where the machine has a program for it.
void SearchBare(const std::string& folder, const std::string& word);

/// Of this process's memory.
std::size_t BytesInUse();
