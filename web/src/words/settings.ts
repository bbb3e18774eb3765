// Words for the settings of a configuration: sections, items of a section, attributes. What has no
// word keeps its raw name.
import {spoken} from '.';

type Pair = readonly [zh: string, en: string];

const kSections: Record<string, Pair> = {
  stBaseInfo: ['编号和时钟', 'Number and clock'],
  stVehicle: ['车辆和登记', 'Vehicle and registration'],
  stUserSec: ['用户和密码', 'Users and passwords'],
  stLockOfPassword: ['密码锁定', 'Password lock'],
  stDisplay: ['显示', 'Display'],
  stVideoMirror: ['画面镜像', 'Picture mirror'],
  stVideoCrop: ['画面裁剪', 'Picture crop'],
  stMainStream: ['主码流', 'Main stream'],
  stSubStream: ['子码流', 'Sub stream'],
  stOverlay: ['画面叠加', 'Overlay'],
  stChnOverlay: ['通道叠加', 'Overlay of channels'],
  stRecord: ['录像', 'Recording'],
  stChnRecord: ['通道录像', 'Recording of channels'],
  stSnapshot: ['抓拍', 'Snapshots'],
  stExport: ['导出选项', 'Export options'],
  stSerial: ['串口', 'Serial ports'],
  stPtz: ['云台', 'Pan and tilt'],
  stAlarm: ['报警', 'Alarms'],
  stAlarmLinkage: ['报警联动', 'Alarm linkage'],
  stPower: ['电源', 'Power'],
  stTimingRec: ['定时录像', 'Timed recording'],
  stSpeed: ['速度和疲劳', 'Speed and fatigue'],
  stTempAlarm: ['温度报警', 'Temperature alarms'],
  stGSensor: ['加速度', 'Acceleration sensor'],
  stVda: ['视频分析', 'Video analysis'],
  stIpc: ['网络摄像机', 'Network cameras'],
  stReserve: ['保留数据', 'Reserved data'],
  stNetWorkMode: ['网络模式', 'Network mode'],
  stLocalEth0: ['本地以太网', 'Local Ethernet'],
  stMobileGNet: ['移动网络', 'Mobile network'],
  stWifi: ['无线网络（客户端）', 'Wi-Fi, station'],
  stWifiAp: ['无线网络（热点）', 'Wi-Fi, access point'],
  stCMS: ['平台服务器', 'Platform server'],
  stServerGroup: ['第二服务器组', 'Second server group'],
  stGB28181: ['GB28181 平台', 'GB28181 platform'],
  stSystemInfo: ['运行状态', 'Status'],
  stVersion: ['版本', 'Versions'],
};

// Items count from 0 in the configuration, from 1 for people.
const kItems: Record<string, Pair> = {
  VChn: ['通道', 'Channel'], SUBDEVID: ['通道', 'Channel'], USER: ['用户', 'User'],
  Serial: ['串口', 'Port'], IO: ['输入输出', 'Input or output'], Item: ['联动', 'Linkage'],
  Day: ['日', 'Day'], Temp: ['温度', 'Sensor'], Ipc: ['摄像机', 'Camera'], Time: ['时段', 'Period'],
};

// By the name without the letters for its type.
const kSettings: Record<string, Pair> = {
  DeviceNo: ['设备编号', 'Device number'], TimeZone: ['时区', 'Time zone'],
  TZAdjust: ['时区校正', 'Time zone adjustment'], DstEnable: ['夏令时', 'Daylight saving'],
  DstFromMon: ['夏令时开始月', 'Daylight saving from month'],
  DstFromDay: ['夏令时开始日', 'Daylight saving from day'],
  DstToMon: ['夏令时结束月', 'Daylight saving to month'],
  DstToDay: ['夏令时结束日', 'Daylight saving to day'],
  NowIsDst: ['当前为夏令时', 'Daylight saving now'],
  DstAdjust: ['夏令时校正', 'Daylight saving adjustment'], DateStyle: ['日期格式', 'Date style'],
  GpsMode: ['定位模式', 'Positioning mode'], GpsSTFlag: ['定位校时', 'Set the clock by positioning'],
  DiskFormatFlag: ['硬盘格式化标志', 'Disk format flag'],
  SizeOf2ndPart: ['第二分区大小', 'Size of second partition'], CurTime: ['当前时间', 'Current time'],
  CompanyName: ['公司名称', 'Company name'], LicensePlate: ['车牌号', 'Licence plate'],
  DriverName: ['驾驶员', 'Driver'], DeviceNum: ['设备号', 'Device number of the vehicle'],
  Phonenumber: ['终端手机号', 'Phone number'], ServiceTel: ['服务电话', 'Service telephone'],
  ProvincialId: ['省域代码', 'Province'], CityDomainId: ['市县域代码', 'City'],
  CarColors: ['车牌颜色', 'Plate colour'], Authentication: ['鉴权码', 'Authentication code'],
  TerminalType: ['终端型号', 'Terminal type'], TerminalID: ['终端编号', 'Terminal ID'],
  FacturerID: ['制造商编号', 'Manufacturer ID'], CarVIN: ['车架号', 'Vehicle identification number'],
  CarType: ['车辆类型', 'Vehicle type'], DrivingLicense: ['驾驶证号', 'Driving licence'],
  PWEnableFlag: ['启用密码', 'Passwords in use'], NormalPasswd: ['普通密码', 'Normal password'],
  AdminPasswd: ['管理密码', 'Administrator password'], UserStatus: ['用户状态', 'User state'],
  UserName: ['用户名', 'User name'], UserPWD: ['密码', 'Password'], UserRoles: ['权限', 'Rights'],
  ErrorCount: ['输错次数', 'Wrong entries'], LockTime: ['锁定时间', 'Time of the lock'],
  AutoEnable: ['自动切换', 'Automatic'], LcdTimeout: ['屏幕超时', 'Screen time-out'],
  GuiTimeout: ['菜单超时', 'Menu time-out'], Language: ['语言', 'Language'],
  WinMax: ['最多画面', 'Most pictures'], WinNum: ['画面数', 'Pictures'],
  VideoOutMode: ['视频输出制式', 'Video output mode'],
  VideoOutRes: ['视频输出分辨率', 'Video output resolution'],
  LeftRight: ['左右镜像', 'Swap left and right'], UpDown: ['上下镜像', 'Swap up and down'],
  Rotate: ['旋转', 'Rotation'], X: ['X', 'X'], Y: ['Y', 'Y'], Z: ['Z', 'Z'],
  Width: ['宽', 'Width'], Height: ['高', 'Height'], VideoMode: ['视频制式', 'Video standard'],
  VEncFormat: ['视频编码', 'Video encoding'], AEncFormat: ['音频编码', 'Audio encoding'],
  EncodeMode: ['编码模式', 'Encoding mode'], Resolution: ['分辨率', 'Resolution'],
  Quality: ['画质', 'Quality'], FrameRate: ['帧率', 'Frame rate'],
  Gop: ['关键帧间隔', 'Key picture interval'], BitRate: ['码率（kbit/s）', 'Bit rate (kbit/s)'],
  DisableAudio: ['关闭音频', 'No audio'], DisableVideo: ['关闭视频', 'No video'],
  EnableROI: ['感兴趣区域', 'Region of interest'], ROI_X: ['区域 X', 'Region X'],
  ROI_Y: ['区域 Y', 'Region Y'], ROI_Wight: ['区域宽', 'Region width'],
  ROI_Height: ['区域高', 'Region height'], DeviceNoEnable: ['显示设备编号', 'Show device number'],
  ChnNameEnable: ['显示通道名', 'Show channel name'], TimeEnable: ['显示时间', 'Show time'],
  GPSEnable: ['显示位置', 'Show position'], LPlateEnable: ['显示车牌', 'Show licence plate'],
  SpeedEnable: ['显示速度', 'Show speed'], TempEnable: ['显示温度', 'Show temperature'],
  IOEnable: ['启用', 'In use'], GSensorEnable: ['显示加速度', 'Show acceleration'],
  BatteryEnable: ['显示电压', 'Show battery'], DisplayStyle: ['显示方式', 'Display style'],
  PreviewEnable: ['预览', 'Preview'], RecordMode: ['录像模式', 'Recording mode'],
  SDUsage: ['SD 卡用途', 'Use of the SD card'], AutoCoverEnable: ['自动覆盖', 'Overwrite the oldest'],
  AlarmRecordType: ['报警录像类型', 'Alarm recording type'],
  PreRecordTime: ['预录时间', 'Recorded before an alarm'],
  AlarmRecordTime: ['报警录像时间', 'Recorded after an alarm'],
  AlarmRecordDays: ['报警录像天数', 'Days that alarm recordings stay'],
  RecordEnable: ['录像', 'Recording'], HaveAudio: ['录音', 'Audio'], SubStream: ['子码流', 'Sub stream'],
  SaveDays: ['保存天数', 'Days kept'], MultiSnapEnable: ['连拍', 'Series'],
  Interval: ['间隔', 'Interval'], SnapCount: ['张数', 'Pictures each'],
  PasswdEnable: ['需要密码', 'Password needed'], WorkMode: ['工作模式', 'Working mode'],
  ExportEnable: ['允许导出', 'Export allowed'], ExportLimit: ['导出限制', 'Export limit'],
  DataMode: ['数据模式', 'Data mode'], BaudRate: ['波特率', 'Baud rate'], DataBit: ['数据位', 'Data bits'],
  Parity: ['校验', 'Parity'], StopBit: ['停止位', 'Stop bits'], Count: ['数量', 'Count'],
  PtzAddress: ['云台地址', 'Address'], PtzProtocol: ['云台协议', 'Protocol'],
  SerialIndex: ['串口号', 'Serial port'], AutoStoped: ['自动停止', 'Stops by itself'],
  DiskFaulAlarm: ['硬盘故障报警', 'Disk fault alarm'], DiskSpaceAlarm: ['硬盘空间报警', 'Disk space alarm'],
  VideoLostAlarm: ['视频丢失报警', 'Video loss alarm'], SOSButtonAlarm: ['紧急按钮报警', 'Emergency button alarm'],
  OxygenAlarm: ['氧气报警', 'Oxygen alarm'], IONumber: ['端口号', 'Number'], IOLevel: ['电平', 'Level'],
  IOFunc: ['功能', 'Function'], IOLast: ['持续时间', 'Duration'], LinkageName: ['名称', 'Name'],
  LinkageEnable: ['启用', 'In use'], AlarmInType: ['报警输入类型', 'Alarm input type'],
  AlarmOutType: ['报警输出类型', 'Alarm output type'], AlarmRecordCh: ['录像通道', 'Recorded channels'],
  AlarmRecordLast: ['录像时长', 'Recording time'], AlarmSendCh: ['上传通道', 'Sent channels'],
  AlarmSnapCh: ['抓拍通道', 'Snapshot channels'], ViewChnNo: ['显示通道', 'Shown channel'],
  PowerMode: ['电源模式', 'Power mode'], POnDelayEnable: ['延时开机', 'Delayed start'],
  POffDelayTime: ['延时关机时间', 'Delay before power-off'],
  TimingPOnTime: ['定时开机', 'Timed power-on'], TimingPOffTime: ['定时关机', 'Timed power-off'],
  AccOffStopRecCh: ['熄火停录通道', 'Channels that stop with the ignition'],
  RT1Type: ['时段 1 类型', 'Period 1 type'], RT2Type: ['时段 2 类型', 'Period 2 type'],
  StartT1: ['时段 1 开始', 'Period 1 from'], EndT1: ['时段 1 结束', 'Period 1 to'],
  StartT2: ['时段 2 开始', 'Period 2 from'], EndT2: ['时段 2 结束', 'Period 2 to'],
  StartT3: ['时段 3 开始', 'Period 3 from'], EndT3: ['时段 3 结束', 'Period 3 to'],
  LowSpeedIsEnable: ['低速报警', 'Low speed alarm'], LowSpeedUnit: ['低速单位', 'Low speed unit'],
  LowSpeed: ['低速', 'Low speed'], OverSpeedIsEnable: ['超速报警', 'Overspeed alarm'],
  OverSpeedUnit: ['超速单位', 'Overspeed unit'], OverSpeed: ['超速', 'Overspeed'],
  PeakingIsEnable: ['峰值报警', 'Peak alarm'], TimeUnit: ['时间单位', 'Time unit'],
  OverTime: ['超速时间', 'Overspeed time'], FatigueEnable: ['疲劳驾驶报警', 'Fatigue alarm'],
  DrivingTime: ['驾驶时间', 'Driving time'], RestTime: ['休息时间', 'Rest time'],
  TempType: ['温度类型', 'Temperature type'], LowTempEnable: ['低温报警', 'Low temperature alarm'],
  LowTemp: ['低温', 'Low temperature'], HighTempEnable: ['高温报警', 'High temperature alarm'],
  HighTemp: ['高温', 'High temperature'], XLimit: ['X 限值', 'X limit'], YLimit: ['Y 限值', 'Y limit'],
  ZLimit: ['Z 限值', 'Z limit'], AlarmEnable: ['报警', 'Alarm'], RAccel: ['急加速', 'Hard acceleration'],
  RDecel: ['急减速', 'Hard braking'], Crash: ['碰撞', 'Crash'], Swerve: ['急转弯', 'Sharp turn'],
  TrunOver: ['侧翻', 'Roll-over'], Enable: ['启用', 'In use'], Wday1: ['时段 1 星期', 'Period 1 weekdays'],
  Wday2: ['时段 2 星期', 'Period 2 weekdays'], Wday3: ['时段 3 星期', 'Period 3 weekdays'],
  Wday: ['星期', 'Weekdays'], StartT: ['开始', 'From'], EndT: ['结束', 'To'],
  Percent: ['百分比', 'Percentage'], Mask: ['区域掩码', 'Area mask'], ReserveData: ['数据', 'Data'],
  IPCNum: ['摄像机数', 'Cameras'], FuncMode: ['功能模式', 'Function mode'], PureNVR: ['纯网络模式', 'Network cameras only'],
  User: ['用户名', 'User name'], Pass: ['密码', 'Password'], Valid: ['有效', 'Valid'],
  NetType: ['网络类型', 'Network type'], GNAuthMode: ['认证方式', 'Authentication'],
  StreamType: ['码流类型', 'Stream type'], GNEnableMode: ['启用方式', 'Enable mode'],
  ExtFunBitFlag: ['扩展功能', 'Further functions'], EnableHR808: ['启用 HR808', 'HR808 in use'],
  EnableJSIASS: ['启用 JSIASS', 'JSIASS in use'], GPSInterval: ['位置上报间隔', 'Position interval'],
  DhcpEnableFlag: ['DHCP', 'DHCP'], LocalIp: ['IP 地址', 'IP address'], IP: ['IP 地址', 'IP address'],
  NetMask: ['子网掩码', 'Network mask'], GateWay: ['网关', 'Gateway'], DNS: ['域名服务器', 'Name server'],
  Mac: ['MAC 地址', 'MAC address'], Apn: ['接入点（APN）', 'Access point name (APN)'],
  PhoneNo: ['拨号号码', 'Dial number'], UserPasswd: ['密码', 'Password'],
  SSID: ['网络名称（SSID）', 'Network name (SSID)'], Passwd: ['密码', 'Password'],
  AuthMode: ['认证方式', 'Authentication'], CryptType: ['加密方式', 'Cipher'],
  AddressType: ['地址类型', 'Address by'], Domain: ['域名', 'Domain name'], Port: ['端口', 'Port'],
  GroupNo: ['组号', 'Group number'], Manufacturer: ['制造商', 'Manufacturer'],
  ModelName: ['型号', 'Model'], ServerIp: ['服务器地址', 'Server address'],
  ServerPort: ['服务器端口', 'Server port'], ServerID: ['服务器编号', 'Server ID'],
  DeviceId: ['设备国标编号', 'Device ID'], DevicePort: ['设备端口', 'Device port'],
  DeviceUser: ['用户名', 'User name'], DevicePass: ['密码', 'Password'],
  WebSEnable: ['WebSocket', 'WebSocket'], WebSAddr: ['WebSocket 地址', 'WebSocket address'],
  LensId: ['镜头编号', 'Lens ID'], AudioInId: ['音频输入编号', 'Audio-input ID'],
  AlarmInId: ['报警输入编号', 'Alarm-input ID'],
};

const pick = (pair: Pair | undefined, raw: string) =>
  pair ? pair[spoken() === 'zh' ? 0 : 1] : raw;

export const sectionWord = (name: string) => pick(kSections[name], name);

const bare = (attribute: string) => attribute.replace(/^(?:(?:uc|us|ui|str|f)(?:FD_)?)/, '');

// The attribute at a path's end.
export function settingWord(path: string): string {
  const attribute = path.split('/').pop() || '';
  return pick(kSettings[bare(attribute)], attribute);
}

// "Channel 3" for a setting of an item, nothing for one of the section itself.
export function itemWord(path: string): string {
  const items = path.split('/').slice(1, -1).map((name) => /^(\w+)_(\d+)$/.exec(name))
      .filter((match) => match).map((match) =>
        `${pick(kItems[match![1] || ''], match![1] || '')} ${Number(match![2]) + 1}`);
  return items.join(' · ');
}
