#include "tests/model/Model.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/Machine.h"

namespace model {
namespace {

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
}

/// Of any year that a file can have, as the machine's own library does not promise.
std::string Date(std::time_t seconds) {
  const auto day = std::chrono::floor<std::chrono::days>(
      std::chrono::sys_seconds(std::chrono::seconds(seconds)));
  const std::chrono::year_month_day date(day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

std::string DateAndTime(std::time_t seconds) {
  constexpr std::time_t Day = 86'400;
  const auto time = static_cast<int>(((seconds % Day) + Day) % Day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), " %02d:%02d:%02d", time / 3600, time / 60 % 60,
                time % 60);
  return Date(seconds) + text.data();
}

std::string Grouped(std::string digits) {
  if (digits == "0") return "";
  for (std::size_t i = digits.size(); i > 3;) digits.insert(i -= 3, ",");
  return digits;
}

std::string Expiry(const std::string& highWord) {
  const double number = std::strtod(highWord.c_str(), nullptr);
  constexpr double SecondsAStep = 429.4967296;
  const double seconds = number * SecondsAStep - 11'644'473'600;
  constexpr double Year10000 = 253'402'300'800;
  return number < 0 || seconds >= Year10000 ? "-"
                                            : Date(static_cast<std::time_t>(std::floor(seconds)));
}

std::vector<Row> RowsOf(const std::string& folder, const File& file) {
  std::ifstream stream(machine::NativePath(folder + file[0]), std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  std::istringstream split(text.substr(0, text.find('\r')));
  std::vector<std::string> lines;
  for (std::string line; std::getline(split, line);) lines.push_back(line);
  std::vector<Row> rows;
  for (std::size_t at = 0; at + 9 <= lines.size(); at += 9) {
    std::string server = lines[at + 2];
    if (server.ends_with('/')) server.pop_back();
    rows.push_back(
        {{server, Expiry(lines[at + 5]), lines[at], lines[at + 1], file[0], file[1], file[2]}});
  }
  return rows;
}

std::string OneLine(const std::string& name) {
  for (const auto& [odd, shown] : machine::OddNames()) {
    if (name == odd) return shown;
  }
  return name;
}

const File* Named(const Files& files, const std::string& name) {
  for (const File& file : files) {
    if (Folded(file[0]) == Folded(name)) return &file;
  }
  return nullptr;
}

}  // namespace

std::string Folded(const std::string& text) {
  std::string folded = text;
  for (char& c : folded) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  ReplaceAll(folded, "\xC3\x84", "\xC3\xA4");
  return folded;
}

std::string Untimed(const std::string& line) {
  return line.substr(std::min(line.find(" - Cookie"), line.size()));
}

std::string Meant(const std::string& name, const std::set<std::string>& entries) {
  std::vector<std::string> equal;
  for (const std::string& entry : entries) {
    if (entry == name) return entry;
    if (Folded(entry) == Folded(name)) equal.push_back(entry);
  }
  return equal.size() == 1 ? equal[0] : name;
}

Files FilesIn(const std::string& folder) {
  Files files;
  std::error_code missing;
  for (const auto& entry :
       std::filesystem::directory_iterator(machine::NativePath(folder), missing)) {
    const std::string name = machine::PathText(entry.path().filename());
    const machine::Facts facts = machine::FactsOf(folder + name);
    if (!Folded(name).ends_with(".txt") || facts.LeadsToFolder) continue;
    files.push_back({name, Grouped(std::to_string(facts.Size)), DateAndTime(facts.Modified)});
  }
  return files;
}

bool IsReadable(const std::string& folder, const std::string& name) {
  return machine::FactsOf(folder + name).IsReadable;
}

// --- A list --------------------------------------------------------------------------------------

void List::Fill(const std::vector<Row>& rows) {
  Rows = rows;
  for (std::size_t i = 0; i < Rows.size(); ++i) Rows[i].Added = i;
  if (Sorted) Sort();
}

void List::Click(int column, std::array<bool, 7>& ascending) {
  if (Rows.size() <= 1) return;
  bool& up = ascending.at(static_cast<std::size_t>(column - 1));
  up = !up;
  Key = column - 1;
  Descending = column == 6 ? !up : !Descending;
  Sorted = true;
  Sort();
}

void List::Sort() {
  const auto key = [this](const Row& row) {
    std::string text = row.Cells.at(static_cast<std::size_t>(Key));
    if (Key != 5) return Folded(text);
    ReplaceAll(text, ",", "");
    return text.empty() ? text : std::string(20 - text.size(), '0') + text;
  };
  std::sort(Rows.begin(), Rows.end(), [&](const Row& one, const Row& other) {
    const std::string first = key(one);
    const std::string second = key(other);
    if (first != second) return (first < second) != Descending;
    return one.Added < other.Added;
  });
}

// --- The program ---------------------------------------------------------------------------------

void Program::BeginWatch() {
  Requested = false;
  FirstScan = true;
}

void Program::EndFirstScan() {
  FirstScan = false;
  Known = FilesIn(Folder);
  if (!Watching) return;
  Notification = IsThere() ? Handle::Live : Handle::Lost;
  Changed = Gone = false;
}

bool Program::IsThere() const { return machine::FactsOf(Folder).Exists; }

bool Program::SignalComes() const {
  if (Notification == Handle::Lost) return IsThere();
  return Notification == Handle::Live && (Changed || Gone);
}

void Program::Wait() {
  Pending = Pending || Signalled;
  Signalled = SignalComes();
  if (Signalled) Notification = IsThere() ? Handle::Live : Handle::Lost;
  Changed = Gone = false;
}

void Program::Report(const std::string& line, const std::string& kind, const File& file,
                     bool removed) {
  Log.push_back(" - Cookie file " + kind + ": " + line);
  MsgText = "Cookie file " + kind + "\r\n" + file[0];
  MsgCanView = !removed;
  if (!removed) MsgFile = file;
}

void Program::Compare() {
  const Files now = FilesIn(Folder);
  for (const File& file : now) {
    const File* const old = Named(Known, file[0]);
    if (old == nullptr) {
      Report(OneLine(file[0]) + ", " + file[1] + " bytes, " + file[2], "added", file, false);
    } else if ((*old)[1] != file[1] || (*old)[2] != file[2]) {
      Report(OneLine((*old)[0]) + " - " + (*old)[1] + "bytes " + (*old)[2] + " => " + file[1] +
                 " bytes " + file[2],
             "modified", *old, false);
    }
  }
  for (const File& file : Known) {
    if (Named(now, file[0]) != nullptr) continue;
    Report(OneLine(file[0]) + ", " + file[1] + " bytes, " + file[2], "removed", file, true);
  }
  Known = now;
  Stale = true;
}

void Program::Rebuild() {
  if (Minimised || !Stale || (FirstScan && Known.empty())) return;
  Stale = false;
  All.clear();
  for (const File& file : Known) {
    if (!IsReadable(Folder, file[0])) continue;
    for (const Row& row : RowsOf(Folder, file)) All.push_back(row);
  }
  Cookies.Fill(All);
}

void Program::Find(const std::string& text, int field) {
  constexpr std::array<std::size_t, 6> Cells = {0, 1, 2, 3, 4, 6};
  std::vector<Row> hits;
  for (const Row& row : All) {
    const std::string& cell = row.Cells.at(Cells.at(static_cast<std::size_t>(field)));
    const bool found = Folded(cell).find(Folded(text)) != std::string::npos;
    if (found && !text.empty()) hits.push_back(row);
  }
  Search.Fill(hits);
}

}  // namespace model
