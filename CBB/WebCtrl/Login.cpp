// Login and passwords. Only the pair in m_stLogin is cached: every check and every change goes
// through the device application.
#include <md5.h>

#include <cstring>
#include <ctime>

#include "CBB/Util/DebugPrint.h"
#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/FormReader.h"
#include "CBB/WebCtrl/JsonReply.h"

namespace {

constexpr size_t kPasswdSize = 128;
constexpr uint8_t kNoUser = 2;

constexpr stQuery<stUserSec> kQuery{QUERY("<stUserSec>"), IMPORT(stUserSec)};

// The identifier of a session: the MD5 digest, in hexadecimal, of the login time in seconds as
// decimal text. szSessionId has room for 32 characters and a terminator.
void MakeSessionId(time_t now, char (&szSessionId)[64]) {
  char szTime[24];
  snprintf(szTime, sizeof(szTime), "%ld", static_cast<long>(now));
  DebugPrint(4, "\033[33m\033[1mstrtime = %s\n\033[0m", szTime);
  static_assert(MD5_DIGEST_STRING_LENGTH <= sizeof(szSessionId));
  MD5Data(reinterpret_cast<const uint8_t*>(szTime), strlen(szTime), szSessionId);
  DebugPrint(4, "\033[33m\033[1mmd5 = %s\n\033[0m", szSessionId);
}

bool IsFromLoginPage(const http_message& msg) {
  const std::string_view request(msg.message.p, msg.message.len);
  return request.find("login.html") != std::string_view::npos;
}

}  // namespace

int CWebCtrl::getUserSecurityFromNet(stUserSec& rec) {
  TraceFun();
  const int nRet = Query(kQuery, rec);
  if (nRet != 0) TraceFun();
  return nRet;
}

int CWebCtrl::getLoginFromNet(stUserSec& rec) {
  TraceFun();
  const int nRet = Query(kQuery, rec);
  if (nRet != 0) TraceFun();
  return nRet;
}

void CWebCtrl::cmp_UserSecurity(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  char szSessionId[64] = {};
  if (IsFromLoginPage(*pMsg)) {
    // Deliberate: a wrong password creates a session, too; only the result shows the difference.
    const time_t now = time(nullptr);
    MakeSessionId(now, szSessionId);
    m_sessions.AddSession(szSessionId, static_cast<int32_t>(now));
  }
  CFormReader<> userForm(*pMsg);
  if (userForm.Get("strUserName", Presence::kNonEmpty) != nullptr) {
    printf("CWebCtrl::cmp_UserSecurity, ucUserName = %d\n", kNoUser);
  }
  CFormReader<kPasswdSize> form(*pMsg);
  const char* pszPasswd = form.Get("strFD_AdminPasswd", Presence::kAlways);
  stUserSec stUserSecurity{};
  // Deliberate: a failed query leaves the record zeroed, and an empty password then matches.
  getUserSecurityFromNet(stUserSecurity);
  const bool bEqual = strcmp(pszPasswd, stUserSecurity.stCustomUser[0].strFD_UserPWD) == 0;
  CJsonReply reply(pConn);
  reply.Add("jsession", szSessionId);
  reply.Result(bEqual);
  TraceFun();
}

void CWebCtrl::get_UserSecurity(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stUserSec stUserSecurity{};
  const int nRet = getUserSecurityFromNet(stUserSecurity);
  CJsonReply reply(pConn);
  reply.Add("strAdminPasswd", stUserSecurity.stCustomUser[0].strFD_UserPWD);
  reply.Piece({", \"strNormalPasswd\": \"", stUserSecurity.stCustomUser[1].strFD_UserPWD, "\" "});
  reply.Result(nRet == 0);
  printf("stUserSecurity.stCustomUser[0].strFD_UserPWD = %s\n",
         stUserSecurity.stCustomUser[0].strFD_UserPWD);
  TraceFun();
}

int CWebCtrl::setUserSecurityToNet(stUserSec rec, uint8_t ucUser) {
  TraceFun();
  CSetExchange exchange(*this);
  if (ucUser == 0) {
    exchange.Send(SET("<stUserSec><stCustomUser><USER_0 strFD_UserPWD=\"%s\" />"
                      "</stCustomUser></stUserSec>"),
                  rec.stCustomUser[0].strFD_UserPWD);
  } else {
    // Deliberate: only the first user's password can be changed; the others' message is empty.
    exchange.SendText("", 0, kDeviceTimeoutSec);
  }
  if (exchange.IsAccepted()) return 0;
  TraceFun();
  return -1;
}

void CWebCtrl::set_UserSecurity(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  CFormReader<> userForm(*pMsg);
  const char* pszUser = userForm.Get("strUserName", Presence::kNonEmpty);
  const uint8_t ucUser = pszUser != nullptr ? static_cast<uint8_t>(TextToInt(pszUser)) : kNoUser;
  CFormReader<kPasswdSize> form(*pMsg);
  const char* pszPasswd = form.Get("strConfirmPasswd", Presence::kAlways);
  stUserSec rec{};
  if (ucUser == 0) Store<&stUserItem::strFD_UserPWD>(rec.stCustomUser[0], pszPasswd);
  ReplyResult(pConn, setUserSecurityToNet(rec, ucUser) == 0);
  TraceFun();
}

void CWebCtrl::get_Login(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stUserSec stUserSecurity{};
  const int nRet = getLoginFromNet(stUserSecurity);
  CJsonReply reply(pConn);
  reply.Add("strFD_AdminPasswd", stUserSecurity.strFD_AdminPasswd);
  reply.Add("strFD_NormalPasswd", stUserSecurity.strFD_NormalPasswd);
  reply.Result(nRet == 0);
  Store<&stLogin::strFD_AdminPasswd>(m_stLogin, stUserSecurity.strFD_AdminPasswd);
  printf("===========m_stLogin.strFD_AdminPasswd================%s\n", m_stLogin.strFD_AdminPasswd);
  Store<&stLogin::strFD_NormalPasswd>(m_stLogin, stUserSecurity.strFD_NormalPasswd);
  printf("===========m_stLogin.strFD_NormalPasswd================%s\n",
         m_stLogin.strFD_NormalPasswd);
  TraceFun();
}

void CWebCtrl::set_Login(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  // Deliberate: the client gets the whole reply of get_Login first, then a second one.
  get_Login(pConn, pMsg);
  CFormReader<> form(*pMsg);
  const char* pszText = form.Get("strFD_AdminPasswd", Presence::kAlways);
  int nRet = -1;
  if (pszText[0] == '\0') {
    printf("===============000=============strParaValue==%s\n", pszText);
  } else {
    printf("===============strParaValue===================%s\n", pszText);
    const bool bKnown = strcmp(pszText, m_stLogin.strFD_AdminPasswd) == 0 ||
                        strcmp(pszText, m_stLogin.strFD_NormalPasswd) == 0;
    if (bKnown) nRet = 0;
  }
  printf("''''''''''''''''''''''''''''ret=='%d\n", nRet);
  ReplyResult(pConn, nRet == 0);
  TraceFun();
}
