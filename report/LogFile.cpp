#include "report/LogFile.h"

#include "core/PublicDim.h"
#include "platform/Files.h"
#include "platform/Regional.h"

void WriteLogFile(const std::string& line) {
  if (!PublicDim.SaveLog) return;
  const std::string path =
      PublicDim.LogDir + platform::Format(platform::Now(), "YYYYMMDD") + ".txt";
  platform::AppendFile(path, line + "\r\n");
}
