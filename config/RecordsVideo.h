// Records of picture and streams: mirror, main and sub stream, and the crop and overlay sections,
// which no endpoint queries. Plain values without ownership; a field is named after its XML
// attribute.
#pragma once

#include <cstdint>

struct stVideoMirrorItem {
  uint8_t ucFD_LeftRight;
  uint8_t ucFD_UpDown;
  uint8_t ucFD_Rotate;
};

struct stVideoMirror {
  stVideoMirrorItem stVideoMirrorPara[1];  // only channel 0 is read
};
static_assert(sizeof(stVideoMirror) == 3);

// One channel of the main stream. The region of interest is aligned to 16 on import.
struct stVideoItem {
  uint8_t ucFD_Resolution;
  uint8_t ucFD_Quality;
  uint8_t ucFD_FrameRate;
  uint8_t ucFD_Gop;
  uint32_t uiFD_BitRate;
  uint32_t uiFD_DisableAudio;
  uint32_t uiFD_DisableVideo;
  uint32_t uiFD_EnableROI;
  uint32_t ucFD_ROI_X;  // Deliberate: 32 bits wide despite the prefix; so are the next three.
  uint32_t ucFD_ROI_Y;
  uint32_t ucFD_ROI_Wight;
  uint32_t ucFD_ROI_Height;
};
static_assert(sizeof(stVideoItem) == 36);

struct stMainStream {
  uint8_t ucFD_VideoMode;
  uint8_t ucFD_VEncFormat;
  uint8_t ucFD_AEncFormat;
  stVideoItem stVideoPara[1];  // only channel 0 is read
};
static_assert(sizeof(stMainStream) == 40);

struct stSubStream {
  uint8_t ucFD_EncodeMode;
  uint8_t ucFD_Resolution;
  uint8_t ucFD_Quality;
  uint8_t ucFD_FrameRate;
  uint32_t uiFD_BitRate;
};
static_assert(sizeof(stSubStream) == 8);

struct stVideoCropItem {
  uint32_t uiFD_X;
  uint32_t uiFD_Y;
  uint32_t uiFD_Width;
  uint32_t uiFD_Height;
};

struct stVideoCrop {
  stVideoCropItem stVideoCropPara[8];
};
static_assert(sizeof(stVideoCrop) == 128);

// Switches of the on-screen overlay.
struct stOverlay {
  uint8_t ucFD_DeviceNoEnable;
  uint8_t ucFD_ChnNameEnable;
  uint8_t ucFD_TimeEnable;
  uint8_t ucFD_GPSEnable;
  uint8_t ucFD_LPlateEnable;
  uint8_t ucFD_SpeedEnable;
  uint8_t ucFD_TempEnable;
  uint8_t ucFD_IOEnable;
  uint8_t ucFD_GSensorEnable;
  uint8_t ucFD_BatteryEnable;
};
static_assert(sizeof(stOverlay) == 10);

struct stChnOverlayItem {
  uint8_t ucFD_Resolution;
  uint8_t ucDisplayStyle;
  uint8_t ucPreviewEnable;
};

struct stChnOverlay {
  stChnOverlayItem stChnOSDPara[8];
};
static_assert(sizeof(stChnOverlay) == 24);
