// Importers of picture and streams, each below its attribute tables.
#include "config/Config_Task.h"

constexpr stAttr<stVideoMirrorItem> kVideoMirrorItem[] = {
    ATTR(stVideoMirrorItem, ucFD_LeftRight),
    ATTR(stVideoMirrorItem, ucFD_UpDown),
    ATTR(stVideoMirrorItem, ucFD_Rotate),
};

int CConfig_Task::Import_stVideoMirror(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stVideoMirrorPara", kVideoMirrorItem,
                     Dest(pDst).stVideoMirrorInfo.stVideoMirrorPara);
}

namespace {

// A region's corner is rounded down to a multiple of 16.
template <auto M>
int StoreRoiCorner(stVideoItem& rec, const char* pszText) {
  Store<M>(rec, pszText);
  rec.*M = rec.*M / 16 * 16;
  return 0;
}

// Deliberate: a region's size is rounded up to the next multiple of 16; an exact multiple grows by
// 16.
template <auto M>
int StoreRoiSize(stVideoItem& rec, const char* pszText) {
  Store<M>(rec, pszText);
  rec.*M = (rec.*M + 16) / 16 * 16;
  return 0;
}

}  // namespace

constexpr stAttr<stMainStream> kMainStream[] = {
    ATTR(stMainStream, ucFD_VideoMode),
    ATTR(stMainStream, ucFD_VEncFormat),
    ATTR(stMainStream, ucFD_AEncFormat),
};

constexpr stAttr<stVideoItem> kVideoItem[] = {
    ATTR(stVideoItem, ucFD_Resolution),
    ATTR(stVideoItem, ucFD_Quality),
    ATTR(stVideoItem, ucFD_FrameRate),
    ATTR(stVideoItem, ucFD_Gop),
    ATTR(stVideoItem, uiFD_BitRate),
    ATTR(stVideoItem, uiFD_DisableAudio),
    ATTR(stVideoItem, uiFD_DisableVideo),
    ATTR(stVideoItem, uiFD_EnableROI),
    ATTR_AS(stVideoItem, ucFD_ROI_X, StoreRoiCorner),
    ATTR_AS(stVideoItem, ucFD_ROI_Y, StoreRoiCorner),
    ATTR_AS(stVideoItem, ucFD_ROI_Wight, StoreRoiSize),
    ATTR_AS(stVideoItem, ucFD_ROI_Height, StoreRoiSize),
};

int CConfig_Task::Import_stMainStream(TiXmlElement* pElem, stConfig* pDst) {
  stMainStream& rec = Dest(pDst).stMainStreamInfo;
  if (Walk(pElem, kMainStream, rec) < 0) return -1;
  return WalkIndexed(pElem, "stVideoPara", kVideoItem, rec.stVideoPara);
}

constexpr stAttr<stSubStream> kSubStream[] = {
    ATTR(stSubStream, ucFD_EncodeMode), ATTR(stSubStream, ucFD_Resolution),
    ATTR(stSubStream, ucFD_Quality),    ATTR(stSubStream, ucFD_FrameRate),
    ATTR(stSubStream, uiFD_BitRate),
};

int CConfig_Task::Import_stSubStream(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kSubStream, Dest(pDst).stSubStreamInfo);
}

constexpr stAttr<stVideoCropItem> kVideoCropItem[] = {
    ATTR(stVideoCropItem, uiFD_X),
    ATTR(stVideoCropItem, uiFD_Y),
    ATTR(stVideoCropItem, uiFD_Width),
    ATTR(stVideoCropItem, uiFD_Height),
};

int CConfig_Task::Import_stVideoCrop(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stVideoCropPara", kVideoCropItem,
                     Dest(pDst).stVideoCropInfo.stVideoCropPara);
}

constexpr stAttr<stOverlay> kOverlay[] = {
    ATTR(stOverlay, ucFD_DeviceNoEnable), ATTR(stOverlay, ucFD_ChnNameEnable),
    ATTR(stOverlay, ucFD_TimeEnable),     ATTR(stOverlay, ucFD_GPSEnable),
    ATTR(stOverlay, ucFD_LPlateEnable),   ATTR(stOverlay, ucFD_SpeedEnable),
    ATTR(stOverlay, ucFD_TempEnable),     ATTR(stOverlay, ucFD_IOEnable),
    ATTR(stOverlay, ucFD_GSensorEnable),  ATTR(stOverlay, ucFD_BatteryEnable),
};

int CConfig_Task::Import_stOverlay(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kOverlay, Dest(pDst).stOverlayInfo);
}

constexpr stAttr<stChnOverlayItem> kChnOverlayItem[] = {
    ATTR(stChnOverlayItem, ucFD_Resolution),
    ATTR(stChnOverlayItem, ucDisplayStyle),
    ATTR(stChnOverlayItem, ucPreviewEnable),
};

int CConfig_Task::Import_stChnOverlay(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stChnOSDPara", kChnOverlayItem,
                     Dest(pDst).stChnOverlayInfo.stChnOSDPara);
}
