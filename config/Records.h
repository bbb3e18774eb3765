// The composite configuration record: one member per section of the device application's
// configuration, named after the record's type plus "Info". Plain values: it is zeroed, filled by
// one importer and copied out section by section. About seven kilobytes.
#pragma once

#include "config/RecordsAlarm.h"
#include "config/RecordsDevice.h"
#include "config/RecordsNetwork.h"
#include "config/RecordsRecording.h"
#include "config/RecordsVehicle.h"
#include "config/RecordsVideo.h"

struct stConfig {
  stBaseInfo stBaseInfoInfo;
  stUserSec stUserSecInfo;
  stLockOfPassword stLockOfPasswordInfo;
  stDisplay stDisplayInfo;
  stVersion stVersionInfo;
  stSystemInfo stSystemInfoInfo;

  stNetWorkMode stNetWorkModeInfo;
  stMobileGNet stMobileGNetInfo;
  stWifi stWifiInfo;
  stWifiAp stWifiApInfo;
  stLocalEth0 stLocalEth0Info;
  stCMS stCMSInfo[5];  // the server slots; the service uses slot 0
  stGB28181 stGB28181Info;
  stServerGroup stServerGroupInfo;

  stVideoMirror stVideoMirrorInfo;
  stMainStream stMainStreamInfo;
  stSubStream stSubStreamInfo;
  stVideoCrop stVideoCropInfo;
  stOverlay stOverlayInfo;
  stChnOverlay stChnOverlayInfo;

  stRecord stRecordInfo;
  stChnRecord stChnRecordInfo;
  stSnapshot stSnapshotInfo;
  stExport stExportInfo;
  stTimingRec stTimingRecInfo;

  stAlarm stAlarmInfo;
  stAlarmLinkage stAlarmLinkageInfo;
  stSpeed stSpeedInfo;
  stTempAlarm stTempAlarmInfo;
  stGSensor stGSensorInfo;
  stVda stVdaInfo;

  stVehicle stVehicleInfo[2];
  stSerial stSerialInfo;
  stPtz stPtzInfo;
  stPower stPowerInfo;
  stReserve stReserveInfo;
  stIpc stIpcInfo;
};
