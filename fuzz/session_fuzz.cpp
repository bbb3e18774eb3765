// Logins and requests through the session store, compared with a model. The input is a series of
// steps, each ended by 0x1E. A login is '+', one byte times 20 for the seconds before it, and the
// identifier; anything else is a request after the seconds of its first byte times 20.
#include <string>
#include <vector>

#include "CBB/WebCtrl/Sessions.h"
#include "fuzz/Input.h"

namespace {

constexpr char kStepMark = '\x1E';

struct stLogin {
  std::string strId;
  int32_t nTime;
};

class CModel {
 public:
  void Add(const std::string& strId, int32_t nNow) {
    if (m_logins.size() == 5) m_logins.erase(m_logins.begin());
    m_logins.push_back({strId.substr(0, 32), nNow});
  }

  int Check(const std::string& strRequest, int32_t nNow) {
    const auto has = [&](const char* pszWord) {
      return strRequest.find(pszWord) != std::string::npos;
    };
    if (!(has("page.css") || has("sets.css")) || !has("time")) return 0;
    if (!has("SessionID")) return -1;
    if (m_logins.empty()) return 0;
    // Padded, so that an identifier may be at the very end.
    const std::string strId = (strRequest + std::string(1, '\xFF'))
                                  .substr(Clamp(strRequest, strRequest.find("SessionID") + 10), 32);
    return CheckId(Trimmed(strRequest, strId), nNow);
  }

  size_t Count() const { return m_logins.size(); }

 private:
  static size_t Clamp(const std::string& strRequest, size_t nPos) {
    return nPos < strRequest.size() ? nPos : strRequest.size();
  }

  // Without the padding, where that was copied as well.
  static std::string Trimmed(const std::string& strRequest, std::string strId) {
    const size_t nFrom = Clamp(strRequest, strRequest.find("SessionID") + 10);
    if (nFrom + strId.size() > strRequest.size()) strId.pop_back();
    return strId;
  }

  int CheckId(const std::string& strId, int32_t nNow) {
    for (size_t i = 0; i < m_logins.size(); ++i) {
      if (m_logins[i].strId != strId) continue;
      const bool bFresh = nNow - m_logins[i].nTime <= 1800;
      if (bFresh) {
        m_logins[i].nTime = nNow;
      } else {
        m_logins.erase(m_logins.begin() + static_cast<std::ptrdiff_t>(i));
      }
      return bFresh ? 0 : -1;
    }
    return -1;
  }

  std::vector<stLogin> m_logins;
};

int32_t Passed(std::string_view step, size_t nAt) {
  return nAt < step.size() ? static_cast<unsigned char>(step[nAt]) * 20 : 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  CSessions sessions;
  CModel model;
  int32_t nNow = 1000;
  for (const std::string_view step : Split(AsText(pData, nSize), kStepMark)) {
    const bool bLogin = !step.empty() && step.front() == '+';
    nNow += Passed(step, bLogin ? 1 : 0);
    if (bLogin) {
      const std::string strId = std::string(step.substr(step.size() < 2 ? 1 : 2)).c_str();
      sessions.AddSession(strId.c_str(), nNow);
      model.Add(strId, nNow);
    } else {
      const auto pRequest = ExactCopy(step, false);
      const int nRet = sessions.CheckSession({pRequest.get(), step.size()}, nNow);
      Require(nRet == model.Check(std::string(step), nNow));
    }
    Require(sessions.Count() == model.Count() && sessions.Count() <= 5);
  }
  return 0;
}
