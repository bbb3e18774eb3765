#include "config/Config_Task.h"

#include "CBB/Util/StrDict.h"

CConfig_Task::CConfig_Task() : m_apWork{NewWorkList(), NewWorkList()}, m_pDict(StrDict::Create()) {}

CConfig_Task::~CConfig_Task() = default;

void CConfig_Task::CRelease::operator()(StrDict* pDict) const { StrDict::Free(pDict); }

CConfig_Task::WorkList CConfig_Task::NewWorkList() {
  WorkList pList(static_cast<stWorkList*>(calloc(1, sizeof(stWorkList))));
  if (pList) pList->uiCapacity = sizeof(pList->aEntry) / sizeof(pList->aEntry[0]);
  return pList;
}
