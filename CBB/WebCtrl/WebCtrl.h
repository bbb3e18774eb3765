// CWebCtrl: the only service object. It owns the HTTP server thread, the device application's
// address, the web sessions and the cached login passwords, and lives as long as the process.
//
// Threads: the main thread calls Init and Start and then sleeps; everything else - handlers,
// sessions, device exchanges - runs on the HTTP server thread, one request at a time, without
// locks. Each handler get_X, set_X answers the URI of its name; Routes.h lists them.
#pragma once

#include <mongoose.h>

#include <atomic>
#include <cstdint>

#include "CBB/WebCtrl/Sessions.h"
#include "config/Records.h"

struct stThread;
template <class R>
struct stQuery;

// The login passwords as the device last gave them, each cut to 7 characters.
struct stLogin {
  char strFD_NormalPasswd[8];
  char strFD_AdminPasswd[8];
};

class CWebCtrl {
 public:
  CWebCtrl() = default;
  virtual ~CWebCtrl();
  CWebCtrl(const CWebCtrl&) = delete;
  CWebCtrl& operator=(const CWebCtrl&) = delete;

  // The service object, created by the first call. Not locked: main calls it before any thread
  // exists.
  static CWebCtrl& Instance();

  // Sets the device application's address (dotted IPv4, at most 31 characters) and UDP port;
  // Restart goes back to this address. Always returns 0.
  virtual int Init(const char* pszDeviceIp, int nDevicePort);

  // Starts the server thread on the document root (at most 127 characters). Returns 0, also when
  // the service is started already, or -1 when the thread cannot be created.
  virtual int Start(const char* pszWebRoot);

  // Stops the server thread and frees its block. Always returns 0. Called from a handler it returns
  // at once, and that thread goes on serving.
  virtual int Stop();

  // Stops, restores Init's address, waits two seconds and starts. Always returns 0.
  virtual int Restart();

  // Sets the device application's address and port until the next Restart.
  void SetDevice(const char* pszDeviceIp, int nDevicePort);

  bool IsStarted() const { return m_ucStarted != 0; }
  const char* DeviceIp() const { return m_szDeviceIp; }
  uint16_t DevicePort() const { return m_usDevicePort; }
  const char* WebRoot() const { return m_szWebRoot; }
  CSessions& Sessions() { return m_sessions; }

  // Routes one whole request; called only by the HTTP event handler. Deliberate: the spelling, here
  // and in its traces.
  void DoHttpRequeset(mg_connection* pConn, http_message* pMsg);

  // Handlers: each answers pConn before it returns, except where the interface demands no answer.
  // The arguments belong to the HTTP library.
  using Handler = void(mg_connection* pConn, http_message* pMsg);
  Handler get_LangInfo, set_LangInfo;
  Handler get_BaseInfo, set_BaseInfo, set_DeviceNo;
  Handler get_UserSecurity, set_UserSecurity, cmp_UserSecurity;
  Handler get_LockOfPassword, set_LockOfPassword;
  Handler get_MirrorInfo, set_MirrorInfo;
  Handler get_MainStreamInfo, set_MainStreamInfo;
  Handler get_SubStreamInfo, set_SubStreamInfo;
  Handler get_NetWModeInfo, set_NetWModeInfo;
  Handler get_VCmsInfo, set_VCmsInfo;
  Handler get_WifiInfo, set_WifiInfo;
  Handler get_GNetInfo, set_GNetInfo;
  Handler get_GB28181Info, set_GB28181Info;
  Handler get_LocalNetInfo, set_LocalNetInfo;
  Handler get_VersionInfo, get_SystemInfo, get_cpu_usage;
  Handler get_Login, set_Login;
  Handler export_CfgFile, import_CfgFile;

  // Device operations: one exchange each (Wi-Fi: up to two). A query fills the caller's record and
  // returns 0, or leaves it unchanged and returns something else.
  int getLangInfoFromNet(stDisplay& rec);
  int getBaseInfoFromNet(stBaseInfo& rec);
  int getUserSecurityFromNet(stUserSec& rec);
  int getLoginFromNet(stUserSec& rec);
  int getLockOfPasswordFromNet(stLockOfPassword& rec);
  int getMirrorInfoFromNet(stVideoMirror& rec);
  int getMainStreamInfoFromNet(stMainStream& rec);
  int getSubStreamInfoFromNet(stSubStream& rec);
  int getNetWModeInfoFromNet(stNetWorkMode& rec);
  int getVCmsInfoFromNet(stCMS& rec);
  int getWifiInfoFromNet(stWifi& rec);  // may fill in the station's values and still fail
  int getGNetInfoFromNet(stMobileGNet& rec);
  int getGB28181InfoFromNet(stGB28181& rec);
  int getVersionInfoFromNet(stVersion& rec);
  int getSystemInfoFromNet(stSystemInfo& rec);
  int getLocalNetInfoFromNet(stLocalEth0& rec);
  int export_CfgFileFromNet(char* pszText);  // 30,720 bytes; an empty text when it fails

  // A set returns 0 when the device answered with a Result (for the lock and the password: with
  // Result 0), otherwise the transaction's code. An accepted set ends with Restart.
  int setLangInfoToNet(const char* pszLanguage);
  int setBaseInfoToNet(stBaseInfo rec, const char* pszCurTime);
  int setDeviceNoToNet(stBaseInfo rec);
  int setUserSecurityToNet(stUserSec rec, uint8_t ucUser);
  int setLockOfPasswordToNet(uint8_t ucErrorCount, uint32_t uiLockTime);
  int setMirrorInfoToNet(stVideoMirror rec);
  int setMainStreamInfoToNet(stMainStream rec);
  int setSubStreamInfoToNet(stSubStream rec);
  int setNetWModeInfoToNet(stNetWorkMode rec);
  int setVCmsInfoToNet(stCMS rec);
  int setWifiInfoToNet(stWifi rec);
  int setGNetInfoToNet(stMobileGNet rec);
  int setGB28181InfoToNet(const stGB28181& rec);
  int setLocalNetInfoToNet(stLocalEth0 rec);
  int import_CfgFileFromNet(const char* pszXml);

 private:
  static void* DetectSvcEntry(void* pSelf);
  void DetectSvc();

  // The query transaction with the device application; see control/VariCfgSec.h.
  int GetParaInfoByCmd(const char* pszRequest, char* pReply, int& nCapacity);
  template <class R>
  int Query(const stQuery<R>& query, R& rec);
  // The same, between two traces that carry the calling function's name.
  template <class R>
  int Ask(const stQuery<R>& query, R& rec, const char* pszFun = __builtin_FUNCTION());

  stThread* m_pThread = nullptr;
  std::atomic<uint8_t> m_ucStarted{0};  // a restart's second thread clears it, too
  stLogin m_stLogin{};
  CSessions m_sessions;
  char m_szWebRoot[128] = {};
  char m_szDeviceIp[32] = {};
  uint16_t m_usDevicePort = 6000;
  char m_szSavedDeviceIp[32] = {};
};

static_assert(std::atomic<uint8_t>::is_always_lock_free, "the started flag takes no lock");
