#include "tests/model/FolderChanges.h"

#include <filesystem>
#include <fstream>

#include "tests/support/Machine.h"

namespace model {

namespace fs = std::filesystem;

namespace {

const std::string Long(251, 'n');
const std::vector<std::string> FileNames = [] {
  std::vector<std::string> names = {"a.txt",       "A.TXT",       "\xC3\xA4.txt", "\xC3\x84.txt",
                                    Long + ".txt", Long + ".TXT", ".hidden.txt",  ".txt",
                                    "other.dat",   "a.txt.bak",   "c1.txt",       "c2.txt",
                                    "c3.txt",      "c4.txt"};
  for (const auto& [odd, shown] : machine::OddNames()) names.push_back(odd);
  return names;
}();
const std::vector<std::string> Contents = {
    "",
    "x",
    std::string(1234, '\n'),
    Record("uid", "a%3Db", "shop.example/"),
    Record("Password", "", "news.example//") + Record("lang", "\xC3\xA4\xC3\xA4", "Shop.example/x"),
    Record("a", "b", "c", "4294967295") + Record("d", "e", "/", "2147483647") + "cut\n",
    Record("n", "v", "s", "30000000") + "a\rb\n" + Record("lost", "v", "s"),
    Record("x", "v", "s.example", "word"),
    Record("y", "z", "", "-7") + Record("y", "10", "9", "29721845").substr(0, 60)};

bool Rename(const std::string& from, const std::string& to) {
  std::error_code refused;
  fs::rename(machine::NativePath(from), machine::NativePath(to), refused);
  return !refused;
}

/// Whether it is told.
bool Remove(const std::string& entry, bool isFolder) {
  std::error_code refused;
  return fs::remove(machine::NativePath(entry), refused) && !isFolder;
}

}  // namespace

std::set<std::string> EntriesOf(const std::string& folder) {
  std::set<std::string> names;
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(machine::NativePath(folder), missing)) {
    names.insert(machine::PathText(entry.path().filename()));
  }
  return names;
}

void FolderChanges::Make() {
  const int kind = dice_.Pick(100);
  if (!now_.IsThere() || kind == 0) return ChangeWholeFolder();
  const std::string name = AsItStands(dice_.Any(FileNames));
  const std::string file = now_.Folder + name;
  const machine::Facts facts = machine::FactsOf(file);
  bool changed = false;
  if (kind < 40) {
    changed = Write(file, facts);
  } else if (kind < 52 && facts.IsPlain) {
    changed = TouchFile(file);
  } else if (kind < 62 && facts.IsPlain) {
    const std::string other = now_.Folder + dice_.Any(FileNames);
    changed = machine::FactsOf(other).IsPlain && NamesChangeBy(file, other);
  } else if (kind < 67 && facts.IsPlain) {
    const std::string twin = Folded(name);
    const bool taken = machine::CasesDiffer && machine::FactsOf(now_.Folder + twin).Exists;
    changed = twin != name && !taken && NamesChangeBy(file, now_.Folder + twin);
  } else if (kind < 75) {
    changed = MoveAcross(file, folder_.Path("outside/") + name);
  } else if (kind < 85 && facts.Exists) {
    changed = Remove(file, facts.IsFolder);
  } else if (kind < 88 && facts.IsPlain) {
    machine::ReadOnly(file, facts.MayGo);
  } else if (kind < 91 && !facts.Exists) {
    fs::create_directory(machine::NativePath(file));
  } else if (kind < 96 && !facts.Exists) {
    changed = machine::MakeOddity(file, static_cast<unsigned>(dice_.Pick(12)));
  } else {
    folder_.Write("user/cookies/sub.txt/inner.txt");
    fs::remove(folder_.Native("user/cookies/sub.txt/inner.txt"));
  }
  now_.Changed = now_.Changed || changed;
  count_ += changed ? 1 : 0;
}

bool FolderChanges::Write(const std::string& file, const machine::Facts& facts) {
  const std::string& content = dice_.Any(Contents);
  if (facts.Exists && (!facts.IsWritable || content.empty())) return false;
  std::ofstream(machine::NativePath(file), std::ios::binary) << content;
  const bool dotted = file.compare(now_.Folder.size(), 1, ".") == 0;
  if (dotted && dice_.Pick(2) == 0) machine::Hide(file);
  return true;
}

/// Never back to an earlier time: between two waits that is no change.
bool FolderChanges::TouchFile(const std::string& file) {
  const bool told = machine::TouchIsTold && dice_.Pick(4) != 0;
  if (told || !machine::TouchIsTold) {
    machine::Touch(file, 1'100'000'000 + dice_.Pick(3), ++touches_);
  } else {
    machine::TouchInVain(file);
  }
  return told;
}

/// Out of the folder, or into it.
bool FolderChanges::MoveAcross(const std::string& file, const std::string& away) const {
  const machine::Facts here = machine::FactsOf(file);
  const machine::Facts there = machine::FactsOf(away);
  if (here.Exists == there.Exists) return false;
  const bool moved = here.Exists ? Rename(file, away) : Rename(away, file);
  return moved && !(here.Exists ? here : there).IsFolder;
}

/// Not every machine renames a file in case alone.
bool FolderChanges::NamesChangeBy(const std::string& from, const std::string& to) const {
  const std::set<std::string> before = EntriesOf(now_.Folder);
  return Rename(from, to) && EntriesOf(now_.Folder) != before;
}

/// Takes the watched folder away or brings one, sometimes both before anything can look.
void FolderChanges::ChangeWholeFolder() {
  const std::string folder = folder_.Path("user/cookies");
  const std::string aside = folder_.Path("user/aside");
  if (now_.IsThere()) {
    machine::RemoveFolder(aside + machine::Separator);
    if (!Rename(folder, aside)) return;
    now_.Gone = true;
    if (dice_.Pick(2) == 0) return;
  }
  // Where no event tells that it went, one that is soon back was never missed.
  if (machine::ToldExactly && dice_.Pick(2) == 0 && machine::FactsOf(aside).Exists) {
    Rename(aside, folder);
  } else {
    fs::create_directory(machine::NativePath(folder));
  }
}

/// Where cases do not differ, another file's name may stand for one that is there.
std::string FolderChanges::AsItStands(const std::string& name) const {
  return machine::CasesDiffer ? name : Meant(name, EntriesOf(now_.Folder));
}

}  // namespace model
