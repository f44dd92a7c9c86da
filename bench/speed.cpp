#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "bench/CookieWork.h"
#include "bench/MakeCookieFolder.h"
#include "bench/Reference.h"
#include "bench/Timing.h"
#include "cookies/CookieColumns.h"
#include "cookies/CookieList.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"

// speed FOLDER FILES ROUNDS: times the work on a large cookie folder, which is made if it is not
// there, beside what the same folder costs without this program. Prints a line for each piece of
// work: its name, what was measured and the reference, divided by tabs; seconds or bytes.

namespace {

struct Request {
  std::string Folder;
  int Files;
  int Rounds;
};

void Print(std::string_view name, const Timing& timing) {
  std::cout << name << '\t' << timing.Measured << '\t' << timing.Reference << std::endl;
}

void MeasureScan(const Request& asked) {
  Print("scan", TakeTurns(
                    asked.Rounds, [] { return SecondsOf(TakeFirstSnapshot); },
                    [&] { return SecondsOf([&] { ListBare(asked.Folder); }); }));
}

/// Seconds a row.
double SecondsOfCompare(const Snapshot& known, const Snapshot& current) {
  const std::size_t times = 1 + 20'000 / known.size();
  const double seconds = SecondsOf([&] {
    for (std::size_t i = 0; i < times; ++i) Compare(known, current);
  });
  return seconds / static_cast<double>(times * known.size());
}

void MeasureCompare(const Request& asked) {
  constexpr std::ptrdiff_t Few = 1000;
  const Snapshot& all = PublicDim.KnownRows;
  const Snapshot few(all.begin(), all.begin() + Few);
  const auto measure = [&](std::string_view name, const Snapshot& allNow, const Snapshot& fewNow) {
    Print(name, TakeTurns(
                    asked.Rounds, [&] { return SecondsOfCompare(all, allNow); },
                    [&] { return SecondsOfCompare(few, fewNow); }));
  };
  measure("compare, nothing changed", Snapshot(all), Snapshot(few));
  measure("compare, everything changed", Renamed(all), Renamed(few));
}

void MeasureRead(const Request& asked) {
  const auto read = [] {
    ClearCookieRows();
    return ElapsedSecondsOf(ReadCookies);
  };
  Print("read", TakeTurns(asked.Rounds, read, [] { return ElapsedSecondsOf(ReadBare); }));
}

void MeasureMemory(CookieLists& lists) {
  const std::size_t before = BytesInUse();
  LoadCookieList(lists.ListVCookie);
  platform::DoEvents();
  const std::size_t held = BytesInUse() - before;
  std::size_t text = 0;
  for (const CookieRow& row : PublicDim.CookieRows) {
    for (const platform::SharedText* field :
         {&row.Server, &row.CookieName, &row.CookieValue, &row.ExpireDate, &row.CookieFile,
          &row.FileSize, &row.Modified}) {
      text += field->size();
    }
  }
  const auto cookies = static_cast<double>(PublicDim.CookieRows.size() - 1);
  Print("memory", {static_cast<double>(held) / cookies, static_cast<double>(text) / cookies});
}

void MeasureFill(const Request& asked, platform::ListView& list) {
  const std::size_t all = PublicDim.CookieRows.size() - 1;
  const std::size_t tenth = all / 10;
  Print("fill",
        {MedianOf(asked.Rounds, [&] { return SecondsOf([&] { FillList(list, all); }); }), 0});
  const auto perRow = [&list](std::size_t count) {
    FillList(list, count);
    return SecondsOf([&] { FillList(list, count); }) / static_cast<double>(count);
  };
  SortColumn(list, 4);
  Print("rebuild, sorted",
        TakeTurns(asked.Rounds, [&] { return perRow(all); }, [&] { return perRow(tenth); }));
  list.Sorted(false);
}

void MeasureSearch(const Request& asked, CookieLists& lists) {
  const auto measure = [&](int field, const std::string& word) {
    const auto bare = [&] { return SecondsOf([&] { SearchBare(asked.Folder, word); }); };
    const Timing timing = TakeTurns(
        asked.Rounds, [&] { return SecondsOf([&] { Search(lists, field, word); }); }, bare);
    Print("search, " + std::to_string(lists.ListVSearch.Count()) + " found", timing);
  };
  constexpr int CookieName = 2;
  constexpr int Value = 3;
  measure(CookieName, "sessionid");
  measure(Value, "qx7");
}

void MeasureSort(const Request& asked, platform::ListView& list) {
  FillList(list, PublicDim.CookieRows.size() - 1);
  for (std::size_t column = 1; column <= CookieColumns.size(); ++column) {
    const auto sort = [&] {
      return SecondsOf([&] { SortColumn(list, static_cast<int>(column)); });
    };
    Print("sort by " + std::string(CookieColumns[column - 1].Title),
          {MedianOf(asked.Rounds, sort), 0});
  }
}

class SpeedForm : public CookieLists {
 public:
  explicit SpeedForm(Request asked) : asked_(std::move(asked)) {}

  void Form_Load() override {
    StyleLists(*this);
    Show();
    platform::DoEvents();
    MeasureScan(asked_);
    MeasureMemory(*this);
    MeasureRead(asked_);
    MeasureCompare(asked_);
    MeasureFill(asked_, ListVCookie);
    MeasureSearch(asked_, *this);
    MeasureSort(asked_, ListVCookie);
    platform::End();
  }

 private:
  Request asked_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const Request asked = {argv[1], std::stoi(argv[2]), std::stoi(argv[3])};
  if (!std::filesystem::exists(asked.Folder)) {
    const std::string unfinished = asked.Folder + ".new";
    std::filesystem::remove_all(unfinished);
    std::filesystem::create_directories(unfinished);
    MakeCookieFolder(unfinished, asked.Files);
    std::filesystem::rename(unfinished, asked.Folder);
  }
  UseCookieFolder(asked.Folder);
  return platform::RunApplication(argc, argv,
                                  [&asked] { return std::make_unique<SpeedForm>(asked); });
}
