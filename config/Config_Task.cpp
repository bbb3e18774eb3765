#include "config/Config_Task.h"

#include <atomic>
#include <new>

#include "CBB/Util/StrDict.h"

namespace {

// The parts of the last destroyed task; void, because their type is private to the task. Zeroing
// 130 KB again took more than half of a query's own time. Nothing writes to them, so the next task
// reuses them as they are. At most one set is kept.
std::atomic<void*> g_pSpareParts{nullptr};

}  // namespace

CConfig_Task::CConfig_Task() : m_pParts(TakeParts()) {}

CConfig_Task::~CConfig_Task() = default;

void CConfig_Task::CRelease::operator()(StrDict* pDict) const { StrDict::Free(pDict); }

CConfig_Task::stParts::stParts()
    : apWork{WorkList(static_cast<stWorkList*>(calloc(1, sizeof(stWorkList)))),
             WorkList(static_cast<stWorkList*>(calloc(1, sizeof(stWorkList))))},
      pDict(StrDict::Create()) {
  for (const WorkList& pList : apWork) {
    if (pList != nullptr) pList->uiCapacity = sizeof(pList->aEntry) / sizeof(pList->aEntry[0]);
  }
}

CConfig_Task::Parts CConfig_Task::TakeParts() {
  if (void* const pSpare = g_pSpareParts.exchange(nullptr)) {
    return Parts(static_cast<stParts*>(pSpare));
  }
  return Parts(new (std::nothrow) stParts);
}

void CConfig_Task::CKeep::operator()(stParts* pParts) const {
  delete static_cast<stParts*>(g_pSpareParts.exchange(pParts));
}
