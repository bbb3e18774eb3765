// Words for the settings of a configuration: sections, items of a section, attributes, units. What
// has no word keeps its raw name.
import {spoken, type Language} from '.';
import {kAttributeWords} from './attributes';

const kSectionWords = `
stBaseInfo=编号和时钟=Number and clock;stVehicle=车辆和登记=Vehicle and registration;
stUserSec=用户和密码=Users and passwords;stLockOfPassword=密码锁定=Password lock;
stDisplay=显示=Display;stVideoMirror=画面镜像=Picture mirror;stVideoCrop=画面裁剪=Picture crop;
stMainStream=主码流=Main stream;stSubStream=子码流=Sub stream;
stOverlay=画面叠加（OSD）=On-screen display (OSD);stChnOverlay=通道叠加（OSD）=OSD of channels;
stRecord=录像=Recording;stChnRecord=通道录像=Recording of channels;stSnapshot=抓拍=Snapshots;
stExport=导出和密码选项=Export and password options;stSerial=串口=Serial ports;
stPtz=云台（PTZ）=Pan and tilt (PTZ);stAlarm=报警和报警输入=Alarms and alarm inputs;
stAlarmLinkage=报警联动=Alarm linkage;stPower=电源管理=Power management;
stTimingRec=定时录像=Timed recording;stSpeed=速度和疲劳驾驶=Speed and fatigue driving;
stTempAlarm=温度报警=Temperature alarms;stGSensor=加速度传感器=Acceleration sensor;
stVda=视频分析=Video analysis;stIpc=网络摄像机（IPC）=Network cameras (IPC);
stReserve=保留数据=Reserved data;stNetWorkMode=网络模式=Network mode;
stLocalEth0=本地以太网=Local Ethernet;stMobileGNet=移动网络=Mobile network;
stWifi=无线网络（客户端）=Wi-Fi, station;stWifiAp=无线网络（热点）=Wi-Fi, access point;
stCMS=CMS 平台服务器=CMS platform server;stServerGroup=第二服务器组=Second server group;
stGB28181=GB28181 平台=GB28181 platform;stSystemInfo=运行状态=Status;stVersion=版本=Versions`;

// By the list, where it tells more than the item's own name.
const kItemWords = `
VChn=通道=Channel;SUBDEVID=通道=Channel;USER=用户=User;Serial=串口=Port;
stAlarmInIO=报警输入=Alarm input;stAlarmOutIO=报警输出=Alarm output;Item=联动=Linkage;
Day=日=Day;Temp=温度传感器=Temperature sensor;Ipc=摄像机=Camera;Time=时段=Period`;

const kUnitWords = `
kbit=kbit/s=kbit/s;fps=帧/秒=frames/s;percent=%=%;day=天=days;baud=波特=Bd`;

type Pair = readonly [zh: string, en: string];

const tables = new Map<string, Map<string, Pair>>();

// The rows of a table by name, taken apart when one is first asked for.
function rowsOf(text: string): Map<string, Pair> {
  const known = tables.get(text);
  if (known) return known;
  const rows = new Map<string, Pair>();
  for (const row of text.split(';')) {
    const [name = '', zh = '', en = ''] = row.trim().split('=');
    rows.set(name, [zh, en]);
  }
  tables.set(text, rows);
  return rows;
}

const find = (table: string, name: string, language: Language) => {
  const pair = rowsOf(table).get(name);
  return pair && pair[language === 'zh' ? 0 : 1];
};

export const sectionWords = (section: string, language = spoken()) =>
  find(kSectionWords, section, language) || section;

export const unitWords = (unit: string, language = spoken()) =>
  find(kUnitWords, unit, language) || unit;

const bare = (attribute: string) => attribute.replace(/^(?:uc|us|ui|str|f)(?:FD_)?/, '');

// The attribute at a path's end.
export function attributeWords(path: string, language = spoken()): string {
  const attribute = path.replace(/.*\//, '');
  const name = bare(attribute);
  const [digit = ''] = /\d/.exec(name) || [];
  return find(kAttributeWords, `${path.replace(/\/.*/, '')}/${name}`, language)
    || find(kAttributeWords, name, language)
    || (find(kAttributeWords, name.replace(digit, '#'), language) || attribute).replace('#', digit);
}

// "Channel 3" for a setting of an item, nothing for one of the section itself. Items count from 0 in
// the configuration, from 1 for people.
export function itemWords(path: string, language = spoken()): string {
  const words: string[] = [];
  path.split('/').slice(0, -1).forEach((name, i, names) => {
    const [, item = '', number] = /^(\w+)_(\d+)$/.exec(name) || [];
    if (!number) return;
    const word = find(kItemWords, names[i - 1] || '', language)
      || find(kItemWords, item, language);
    words.push(`${word || item} ${Number(number) + 1}`);
  });
  return words.join(' · ');
}
