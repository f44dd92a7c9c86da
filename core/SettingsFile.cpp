#include "core/SettingsFile.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "core/PublicDim.h"
#include "platform/Files.h"
#include "platform/Regional.h"
#include "platform/Texts.h"

namespace {

struct Option {
  std::string_view Key;  // as written
  bool PublicVariables::* Variable;
  bool Default;
};

constexpr std::array<Option, 4> Options{{
    {"SaveLog", &PublicVariables::SaveLog, false},
    {"ToTray", &PublicVariables::ToTray, true},
    {"PlaySound1", &PublicVariables::PlaySound1, true},
    {"PlaySound2", &PublicVariables::PlaySound2, true},
}};

std::string SettingsPath() { return PublicDim.AppPath + "config.ini"; }

/// In any case of its letters. The length tells apart letters beyond ASCII that fold to one of it.
bool IsWord(std::string_view text, std::string_view word) {
  return text.size() == word.size() && platform::FoldCase(text) == platform::FoldCase(word);
}

/// The words True and False in any case, or a number; blanks around either count as not there.
std::optional<bool> BooleanFromText(std::string_view text) {
  text = platform::Trimmed(text);
  if (IsWord(text, "True")) return true;
  if (IsWord(text, "False")) return false;
  if (platform::IsNumeric(text)) return platform::CDbl(text) != 0;
  return std::nullopt;
}

void ApplyLine(std::string_view line) {
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) return;
  for (const Option& option : Options) {
    if (!IsWord(line.substr(0, equals), option.Key)) continue;
    if (const auto value = BooleanFromText(line.substr(equals + 1))) {
      PublicDim.*option.Variable = *value;
    }
  }
}

}  // namespace

void LoadConfig() {
  for (const Option& option : Options) PublicDim.*option.Variable = option.Default;
  if (platform::Dir(SettingsPath()).empty()) return;
  platform::InputFile file(SettingsPath());
  while (!file.EndOfFile()) ApplyLine(file.LineInput());
}

void SaveConfig() {
  std::string content;
  for (const Option& option : Options) {
    content.append(option.Key).append(PublicDim.*option.Variable ? "=True\r\n" : "=False\r\n");
  }
  platform::WriteFileWhole(SettingsPath(), content);
}
