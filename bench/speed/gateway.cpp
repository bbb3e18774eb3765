// The same exchange behind another web server: a FastCGI program, or a CGI program if started
// without a FastCGI socket. The replies are constants.
//
//   REPLAYS=<replay folder> gateway
#include <fcgiapp.h>

#include <cstdlib>
#include <string>

#include "bench/speed/exchange.h"
#include "bench/speed/replay.h"

namespace {

std::string Reply(const std::map<std::string, stReplay>& replays, const std::string& strUri) {
  const auto it = replays.find(strUri.substr(strUri.rfind('/')));
  if (it == replays.end() || !ExchangeAndParse(it->second.strRequest)) {
    return "Status: 502 Bad Gateway\r\n\r\n";
  }
  return "Content-Type: text/plain\r\n\r\n" + Body(it->second);
}

}  // namespace

int main() {
  const std::map<std::string, stReplay> replays = LoadReplays(getenv("REPLAYS"));
  if (FCGX_IsCGI() != 0) {
    const std::string strReply = Reply(replays, getenv("SCRIPT_NAME"));
    fwrite(strReply.data(), 1, strReply.size(), stdout);
    return 0;
  }
  FCGX_Init();
  FCGX_Request request;
  FCGX_InitRequest(&request, 0, 0);
  while (FCGX_Accept_r(&request) == 0) {
    const std::string strReply = Reply(replays, FCGX_GetParam("SCRIPT_NAME", request.envp));
    FCGX_PutStr(strReply.data(), static_cast<int>(strReply.size()), request.out);
    FCGX_Finish_r(&request);
  }
}
