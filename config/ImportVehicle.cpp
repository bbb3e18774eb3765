// Importers of the vehicle and of the devices wired to the recorder, each below its tables.
#include "CBB/Util/OtherFun.h"
#include "config/Config_Task.h"

constexpr stAttr<stVehicle> kVehicle[] = {
    ATTR(stVehicle, strFD_CompanyName),  ATTR(stVehicle, strFD_LicensePlate),
    ATTR(stVehicle, strFD_DriverName),   ATTR(stVehicle, strFD_DeviceNum),
    ATTR(stVehicle, strFD_Phonenumber),  ATTR(stVehicle, strFD_ServiceTel),
    ATTR(stVehicle, strFD_ProvincialId), ATTR(stVehicle, strFD_CityDomainId),
    ATTR(stVehicle, strFD_CarColors),    ATTR(stVehicle, strFD_Authentication),
    ATTR(stVehicle, strFD_TerminalType), ATTR(stVehicle, strFD_TerminalID),
    ATTR(stVehicle, strFD_FacturerID),   ATTR(stVehicle, strFD_CarVIN),
    ATTR(stVehicle, strFD_CarType),      ATTR(stVehicle, strFD_DrivingLicense),
};

int CConfig_Task::Import_stVehicle(TiXmlElement* pElem, int nCopy, stConfig* pDst) {
  return Walk(pElem, kVehicle, Dest(pDst).stVehicleInfo[nCopy == 1 ? 1 : 0]);
}

constexpr stAttr<stSerialItem> kSerialItem[] = {
    ATTR(stSerialItem, ucFD_DataMode), ATTR(stSerialItem, uiBaudRate),
    ATTR(stSerialItem, ucDataBit),     ATTR(stSerialItem, ucParity),
    ATTR(stSerialItem, ucStopBit),     ATTR(stSerialItem, ucCount),
};

int CConfig_Task::Import_stSerial(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stSerialChnPara", kSerialItem,
                     Dest(pDst).stSerialInfo.stSerialChnPara);
}

constexpr stAttr<stPtzItem> kPtzItem[] = {
    ATTR(stPtzItem, usPtzAddress),
    ATTR(stPtzItem, ucPtzProtocol),
    ATTR(stPtzItem, ucSerialIndex),
    ATTR(stPtzItem, ucAutoStoped),
};

int CConfig_Task::Import_stPtz(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stChnPtzPara", kPtzItem, Dest(pDst).stPtzInfo.stChnPtzPara);
}

constexpr stAttr<stPower> kPower[] = {
    ATTR(stPower, ucPowerMode),      ATTR(stPower, ucPOnDelayEnable),
    ATTR(stPower, usPOffDelayTime),  ATTR(stPower, uiTimingPOnTime),
    ATTR(stPower, uiTimingPOffTime), ATTR(stPower, uiAccOffStopRecCh),
};

int CConfig_Task::Import_stPower(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kPower, Dest(pDst).stPowerInfo);
}

namespace {

// Stores whole bytes. A text with other characters, or with more bytes than the block, leaves it
// unchanged.
int StoreReserveData(stReserve& rec, const char* pszText) {
  const size_t nDigits = strlen(pszText) & ~size_t{1};
  int nLen = sizeof(rec.ucReserveData);
  HexStrToBytes(pszText, static_cast<int>(nDigits), rec.ucReserveData, nLen);
  return 0;
}

}  // namespace

constexpr stAttr<stReserve> kReserve[] = {{"ucReserveData", StoreReserveData}};

int CConfig_Task::Import_stReserve(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kReserve, Dest(pDst).stReserveInfo);
}

namespace {

template <auto M>
int StoreTimeOfDay(stTPeriodItem& rec, const char* pszText) {
  rec.*M = TextToTimeOfDay(pszText);
  return 0;
}

}  // namespace

constexpr stAttr<stIpc> kIpc[] = {
    ATTR(stIpc, ucFD_Enable),
    ATTR(stIpc, ucFD_IPCNum),
    ATTR(stIpc, usFD_FuncMode),
    ATTR(stIpc, ucFD_PureNVR),
};

constexpr stAttr<stIpcItem> kIpcItem[] = {
    ATTR(stIpcItem, strFD_User),
    ATTR(stIpcItem, strFD_Pass),
    ATTR_AS(stIpcItem, uiFD_IP, StoreAddress),
    ATTR(stIpcItem, ucFD_Valid),
};

constexpr stAttr<stTPeriodItem> kTPeriodItem[] = {
    ATTR(stTPeriodItem, strFD_Wday),
    ATTR_AS(stTPeriodItem, strFD_StartT, StoreTimeOfDay),
    ATTR_AS(stTPeriodItem, strFD_EndT, StoreTimeOfDay),
};

int CConfig_Task::Import_stIpc(TiXmlElement* pElem, stConfig* pDst) {
  stIpc& rec = Dest(pDst).stIpcInfo;
  if (Walk(pElem, kIpc, rec) < 0) return -1;
  const int nRet = WalkItems(pElem, "stChnIpc", kIpcItem, rec.stChnIpc);
  if (nRet != 0) return nRet < 0 ? -1 : 0;
  return WalkIndexed(pElem, "stFunTPeriod", kTPeriodItem, rec.stFunTPeriod);
}
