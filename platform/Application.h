#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

// The running program: where it lies, how it was called, how it begins and ends.

namespace platform {

class Form;

/// What ends a folder's text and divides it from the file name that follows.
extern const std::string_view PathSeparator;

/// What stands behind an executable's name in a command, ".exe" where files carry it.
extern const std::string_view ExeSuffix;

/// Folder of the executable, without a separator at its end unless it is a root.
std::string AppPath();

/// The executable's file name without folder and without `ExeSuffix`.
std::string AppExeName();

/// Everything that stood behind the program's name when it was started, as one text.
std::string Command();

/// Starts the form framework: makes the start-up window, raises its `Form_Load`, and hands out
/// events until the process ends. A request from outside to end, the end of the desktop session
/// among them, unloads that window like a click on its close box.
/// Returns the process's exit code.
int RunApplication(int argc, char** argv, const std::function<std::unique_ptr<Form>()>& startUp);

/// Ends the process at once, from however deep a stack, without running anything else.
[[noreturn]] void End();

}  // namespace platform
