#include "report/ChangeReports.h"

#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/Regional.h"
#include "platform/Texts.h"
#include "report/FormMsg.h"
#include "report/LogFile.h"
#include "report/PlaySoundFile.h"

namespace {

std::string AddedOrRemovedLine(const std::string& now, const char* kind, const CookieFileRow& row) {
  return Joined({now, kind, platform::OneLine(row.FileName), ", ", row.SizeText, " bytes, ",
                 row.ModifiedText});
}

void RememberFile(const CookieFileRow& row) {
  PublicDim.MsgCanView = true;
  PublicDim.MsgFileName = row.FileName;
  PublicDim.MsgFileSize = row.SizeText;
  PublicDim.MsgFileModified = row.ModifiedText;
}

}  // namespace

const std::string& PresentDateAndTime() {
  static platform::SYSTEMTIME known;
  static std::string text;
  const platform::SYSTEMTIME now = platform::Now();
  if (now != known) {
    known = now;
    text = platform::GeneralDate(now);
  }
  return text;
}

std::string ModifiedLine(const std::string& now, const CookieFileRow& before,
                         const CookieFileRow& after) {
  return Joined({now, " - Cookie file modified: ", platform::OneLine(before.FileName), " - ",
                 before.SizeText, "bytes ", before.ModifiedText, " => ", after.SizeText, " bytes ",
                 after.ModifiedText});
}

std::string AddedLine(const std::string& now, const CookieFileRow& row) {
  return AddedOrRemovedLine(now, " - Cookie file added: ", row);
}

std::string RemovedLine(const std::string& now, const CookieFileRow& row) {
  return AddedOrRemovedLine(now, " - Cookie file removed: ", row);
}

void TellOfModified(platform::ListBox& log, const CookieFileRow& before,
                    const CookieFileRow& after) {
  if (before.SizeText == after.SizeText && before.ModifiedText == after.ModifiedText) return;
  const std::string line = ModifiedLine(PresentDateAndTime(), before, after);
  log.AddItem(line);
  PublicDim.MsgText = Joined({"Cookie file modified\r\n", before.FileName});
  // The popup's detail window gets size and time from before the change.
  RememberFile(before);
  WriteLogFile(line);
  ShowChangePopup();
}

void TellOfAdded(platform::ListBox& log, const CookieFileRow& row) {
  const std::string line = AddedLine(PresentDateAndTime(), row);
  log.AddItem(line);
  PublicDim.MsgText = Joined({"Cookie file added\r\n", row.FileName});
  RememberFile(row);
  PlaySoundFile(1);
  WriteLogFile(line);
  ShowChangePopup();
}

void TellOfRemoved(platform::ListBox& log, const CookieFileRow& row) {
  const std::string line = RemovedLine(PresentDateAndTime(), row);
  log.AddItem(line);
  PublicDim.MsgText = Joined({"Cookie file removed\r\n", row.FileName});
  PublicDim.MsgCanView = false;
  PlaySoundFile(2);
  WriteLogFile(line);
  ShowChangePopup();
}
