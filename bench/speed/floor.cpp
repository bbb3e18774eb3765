// The floor of the speed comparison: the same HTTP library with the same options, the same system
// calls (traces included) and the same parsing of the reply, but the replies are constants. No
// program that answers these requests with this library can do less.
//
//   floor <port> <document root> <replay folder>
#include <mongoose.h>
#include <netinet/tcp.h>

#include <cstdio>

#include "bench/speed/exchange.h"
#include "bench/speed/replay.h"

namespace {

std::map<std::string, stReplay> g_replays;
mg_serve_http_opts g_opts;

void Answer(mg_connection* pConn, const stReplay& replay) {
  // Like the daemon: the traces up to the exchange are written before its wait, the others with the
  // reply.
  auto line = replay.lines.begin();
  while (line != replay.lines.end() && line->rfind("CUdpCtrlSocket::Recv", 0) != 0) {
    fputs((line++)->c_str(), stdout);
  }
  fflush(stdout);
  if (!ExchangeAndParse(replay.strRequest)) return;
  while (line != replay.lines.end()) fputs((line++)->c_str(), stdout);
  mg_printf(pConn, "%s", replay.strHead.c_str());
  for (const std::string& strChunk : replay.chunks) {
    mg_send_http_chunk(pConn, strChunk.data(), strChunk.size());
  }
  mg_send_http_chunk(pConn, "", 0);
}

void OnEvent(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  auto* pMsg = static_cast<http_message*>(pData);
  const auto it = g_replays.find(std::string(pMsg->uri.p, pMsg->uri.len));
  if (it != g_replays.end()) {
    Answer(pConn, it->second);
  } else {
    fputs("--------------------------DoHttpRequeset, start.\n", stdout);
    fputs("------------others-------mg_serve_http.\n", stdout);
    mg_serve_http(pConn, pMsg, g_opts);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: floor PORT DOCUMENT_ROOT REPLAY_FOLDER\n");
    return 2;
  }
  g_replays = LoadReplays(argv[3]);
  g_opts.document_root = argv[2];
  mg_mgr mgr;
  mg_mgr_init(&mgr, nullptr);
  mg_connection* pListener = mg_bind(&mgr, argv[1], &OnEvent);
  if (pListener == nullptr) return 1;
  const int nOn = 1;
  setsockopt(pListener->sock, IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof(nOn));
  mg_set_protocol_http_websocket(pListener);
  for (;;) {
    fflush(stdout);
    mg_mgr_poll(&mgr, 1000);
  }
}
