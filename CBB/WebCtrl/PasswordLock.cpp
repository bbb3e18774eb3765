// The password lock's endpoints. The service only forwards the numbers, except that the query
// clears a lock when its hour has passed.
#include "CBB/WebCtrl/PasswordLock.h"

#include <ctime>

#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/FormReader.h"
#include "CBB/WebCtrl/JsonReply.h"

namespace {

constexpr uint32_t kClockOffsetSec = 28800;  // our clock is 8 hours ahead of the stored lock time
constexpr uint32_t kLockOutSec = 3600;
constexpr uint8_t kMaxErrors = 5;

constexpr stQuery<stLockOfPassword> kQuery{QUERY("<stLockOfPassword>"), IMPORT(stLockOfPassword),
                                           256};

constexpr stFormField<stLockOfPassword> kForm[] = {
    {"ucFD_ErrorCount", Presence::kNonEmpty, Store<&stLockOfPassword::ucFD_ErrorCount>},
    {"time", Presence::kNonEmpty, Store<&stLockOfPassword::uiFD_LockTime>}};

}  // namespace

stLockState EvaluateLock(const stLockOfPassword& rec, uint32_t uiNow) {
  const uint32_t uiElapsed = uiNow - kClockOffsetSec - rec.uiFD_LockTime;
  if (uiElapsed < kLockOutSec || rec.ucFD_ErrorCount < kMaxErrors) {
    return {rec.ucFD_ErrorCount, uiElapsed, false};
  }
  // Deliberate: here the reply has the stored lock time, not the elapsed one.
  return {0, rec.uiFD_LockTime, true};
}

int CWebCtrl::getLockOfPasswordFromNet(stLockOfPassword& rec) { return Ask(kQuery, rec); }

void CWebCtrl::get_LockOfPassword(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stLockOfPassword rec{};
  const int nRet = getLockOfPasswordFromNet(rec);
  const stLockState state = EvaluateLock(rec, static_cast<uint32_t>(time(nullptr)));
  if (state.bLockOver) setLockOfPasswordToNet(0, rec.uiFD_LockTime);
  CJsonReply reply(pConn);
  reply.Add("ucFD_ErrorCount", state.nErrorCount);
  reply.Piece({", \"time\": \"", std::to_string(static_cast<int>(state.uiTime)), "\" "});
  reply.Result(nRet == 0);
  TraceFun();
}

int CWebCtrl::setLockOfPasswordToNet(uint8_t ucErrorCount, uint32_t uiLockTime) {
  TraceFun();
  CSetExchange exchange(*this);
  exchange.Send(SET("<stLockOfPassword ucFD_ErrorCount=\"%d\" uiFD_LockTime=\"%d\" />"),
                ucErrorCount, static_cast<int>(uiLockTime));
  if (exchange.IsAccepted()) return 0;
  TraceFun();
  return -1;
}

void CWebCtrl::set_LockOfPassword(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  stLockOfPassword rec{};
  ReadForm<256>(*pMsg, kForm, rec);
  ReplyResult(pConn, setLockOfPasswordToNet(rec.ucFD_ErrorCount, rec.uiFD_LockTime) == 0);
  TraceFun();
}
