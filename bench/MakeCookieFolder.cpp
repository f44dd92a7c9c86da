#include "bench/MakeCookieFolder.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <random>
#include <string_view>

namespace {

using Words = std::array<std::string_view, 12>;

constexpr Words Sites = {"shop", "news",  "mail", "maps",  "video", "bank",
                         "game", "forum", "wiki", "photo", "music", "travel"};
constexpr Words Ends = {"example.com", "example.org", "example.net", "shop.example",
                        "com.example", "co.example",  "de.example",  "fr.example",
                        "jp.example",  "nl.example",  "pl.example",  "se.example"};
constexpr Words Names = {"uid",       "lang",    "SESSIONID", "visits",
                         "last_seen", "cart",    "consent",   "tracking",
                         "ABtest",    "referer", "theme",     "basket_items"};
constexpr Words Paths = {"/",      "/",       "/",    "/",      "/cart/", "/user/",
                         "/news/", "/login/", "/de/", "/shop/", "/a/b/",  "/static/"};

class Maker {
 public:
  std::string FileName(int number) {
    return "user@" + std::string(Pick(Sites)) + '.' + std::string(Pick(Sites)) + '[' +
           std::to_string(number) + "].txt";
  }

  std::string Content(int cookies) {
    std::string text;
    for (int i = 0; i < cookies; ++i) AppendRecord(text);
    return text;
  }

  std::filesystem::file_time_type WriteTime() {
    constexpr std::chrono::seconds From{1'070'000'000};
    constexpr std::size_t Span = 600'000'000;
    const std::chrono::sys_time<std::chrono::nanoseconds> time{
        From + std::chrono::seconds(Below(Span)) + std::chrono::nanoseconds(Below(1'000'000'000))};
    return std::chrono::file_clock::from_sys(time);
  }

 private:
  unsigned Below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  std::string_view Pick(const Words& words) { return words[Below(words.size())]; }

  std::string Value() {
    constexpr std::string_view Letters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789%=&._-";
    std::string value;
    for (unsigned left = 4 + Below(Below(2) == 0 ? 12 : 100); left > 0; --left) {
      value += Letters[Below(Letters.size())];
    }
    return value;
  }

  void AppendRecord(std::string& text) {
    const std::string server = "www." + std::string(Pick(Sites)) + std::to_string(Below(5000)) +
                               '.' + std::string(Pick(Ends)) + std::string(Pick(Paths));
    const std::string name = std::string(Pick(Names)) + (Below(3) == 0 ? "_" + Value() : "");
    for (const std::string& line :
         {name, Value(), server, std::string("1536"), std::to_string(random_() >> 32),
          std::to_string(29'000'000 + Below(3'000'000)), std::to_string(random_() >> 32),
          std::to_string(29'000'000 + Below(700'000)), std::string("*")}) {
      text.append(line).append("\n");
    }
  }

  std::mt19937_64 random_{1};
};

}  // namespace

void MakeCookieFolder(const std::string& folder, int files) {
  Maker make;
  for (int i = 0; i < files; ++i) {
    const std::string path = folder + '/' + make.FileName(i);
    std::ofstream(path, std::ios::binary) << make.Content(i % 4 + 1);
    std::filesystem::last_write_time(path, make.WriteTime());
  }
}
