#include "CBB/Util/BeforeWait.h"

#include "CBB/Util/Print.h"

namespace {

void (*g_pfnAction)(void* pData) = nullptr;
void* g_pData = nullptr;

}  // namespace

void BeforeWait() {
  FlushPrinted();
  if (g_pfnAction != nullptr) g_pfnAction(g_pData);
}

void SetBeforeWait(void (*pfnAction)(void* pData), void* pData) {
  g_pfnAction = pfnAction;
  g_pData = pData;
}
