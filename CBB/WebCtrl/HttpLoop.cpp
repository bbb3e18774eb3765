#include "CBB/WebCtrl/HttpLoop.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "CBB/Http/Server.h"
#include "CBB/Util/BeforeWait.h"
#include "CBB/Util/Print.h"
#include "CBB/WebCtrl/HttpOptions.h"
#include "CBB/WebCtrl/WebCtrl.h"

namespace {

constexpr const char* kPort = "80";
constexpr int kPollMs = 1000;

// What the pages' include calls print.
char setting1[100] = "value1";
char setting2[100] = "value2";

void PrintSetting(mg_connection* pConn, const char* pszName) {
  if (strcmp(pszName, "setting1") == 0) mg_printf_html_escape(pConn, "%s", setting1);
  if (strcmp(pszName, "setting2") == 0) mg_printf_html_escape(pConn, "%s", setting2);
}

}  // namespace

void HttpEvent(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent == MG_EV_HTTP_REQUEST)
    CWebCtrl::Instance().DoHttpRequeset(pConn, static_cast<http_message*>(pData));
  if (nEvent == MG_EV_SSI_CALL) PrintSetting(pConn, static_cast<const char*>(pData));
}

int RunHttpLoop(const char* pszWebRoot) {
  CServer server(&HttpEvent);
  // Deliberate: the failure paths below leave the server's manager as it is.
  if (server.Bind(kPort) != 0) {
    fprintf(stderr, "Cannot bind to %s\n", kPort);
    return -1;
  }
  HttpOptions().document_root = pszWebRoot;
  struct stat st {};
  if (stat(pszWebRoot, &st) != 0) {
    fputs("Cannot find web_root directory, exiting\n", stderr);
    return -1;
  }
  printf("Starting web server on port %s\n", kPort);
  FlushPrinted();
  // Finished replies do not wait for a slow device.
  SetBeforeWait([](void* pServer) { static_cast<CServer*>(pServer)->SendReplies(); }, &server);
  for (;;) {
    if (!server.Poll(kPollMs)) continue;
    puts("CWebCtrl::DetectSvc, out of memory, all connections are closed.");
    FlushPrinted();
  }
}
