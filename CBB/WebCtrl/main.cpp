// The process: starts the service on the web_root beside its executable and then sleeps forever.
// With --version or --help it prints that and ends.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "CBB/Http/Descriptors.h"
#include "CBB/Http/LibraryMemory.h"
#include "CBB/Http/Server.h"
#include "CBB/Util/Print.h"
#include "CBB/Util/Thread.h"
#include "CBB/WebCtrl/WebCtrl.h"

namespace {

constexpr size_t kMaxPath = 128;
constexpr size_t kMaxWebRoot = 126;
constexpr int kWantedDescriptors = kMaxConnections + 100;

// The folder of the executable with its closing '/', in pszFolder (256 zeroed bytes). Returns -1
// for a path of more than 127 characters or one that cannot be read.
int OwnFolder(char* pszFolder) {
  const ssize_t nRead = readlink("/proc/self/exe", pszFolder, kMaxPath);
  // As an unsigned number, a failure is too long as well.
  if (static_cast<size_t>(nRead) > kMaxPath - 1) return -1;
  if (char* pszSlash = strrchr(pszFolder, '/')) pszSlash[1] = '\0';
  return 0;
}

constexpr const char* kHelp =
    "Usage: webctrl [--version | --help]\n"
    "Serves the pages of the folder web_root beside this program on port 80/tcp, and passes\n"
    "what a browser reads and changes to the device application at 127.0.0.1, port 6000/udp.\n"
    "It stays in the foreground, needs no configuration, and runs until a signal ends it.\n"
    "\n"
    "  --version  print the version and end\n"
    "  --help     print this text and end\n";

// What to print instead of a start; null for a start. Deliberate: any other argument is ignored.
const char* TextAskedFor(int nArgs, char** ppszArgs) {
  if (nArgs != 2) return nullptr;
  if (strcmp(ppszArgs[1], "--version") == 0) return "webctrl " WEBCTRL_VERSION "\n";
  return strcmp(ppszArgs[1], "--help") == 0 ? kHelp : nullptr;
}

}  // namespace

int main(int nArgs, char** ppszArgs) {
  if (const char* pszText = TextAskedFor(nArgs, ppszArgs)) {
    return fputs(pszText, stdout) < 0 || fflush(stdout) != 0 ? 1 : 0;
  }
  GuardStdStreams();
  RaiseDescriptorLimit(kWantedDescriptors);
  PrepareMemory();
  PrepareThreadStop();
  CWebCtrl& webCtrl = CWebCtrl::Instance();
  webCtrl.Init("127.0.0.1", 6000);

  char szFolder[256] = {};
  if (OwnFolder(szFolder) != 0) {
    puts("***Error***");
    exit(-1);
  }
  const std::string strWebRoot = (std::string(szFolder) + "web_root").substr(0, kMaxWebRoot);
  printf("web server current absolute path:%s\n", strWebRoot.c_str());
  webCtrl.Start(strWebRoot.c_str());
  FlushPrinted();
  for (;;) sleep(2);
}
