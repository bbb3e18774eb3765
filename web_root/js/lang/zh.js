// Chinese: what every page shows, the login and the status. The forms' part is zh-sets.js. One line a text: key, blank, text.
export default `
brand 车载录像机
language.other English
nav 页面
skip 跳到内容
leave 退出登录
again 重试
on 开
off 关
value.none –

page.status 状态
page.device 设备
page.video 视频
page.network 网络
page.platforms 平台
page.security 安全
page.maintenance 维护
lead.status 录像机的实时状态，每隔几秒刷新。
lead.device 设备编号、时区和时钟。
lead.video 第一路摄像头的画面和码流。
lead.network 本机地址、无线网络和移动网络。
lead.platforms 录像机上报的服务器。
lead.security 本页面的登录密码，以及输错密码后的锁定。
lead.maintenance 版本、配置文件和语言。

fault.noservice 录像机的网页服务没有应答
fault.noservice.help 服务可能正在重启，或正忙于较慢的请求。
fault.lost 无法连接录像机
fault.lost.help 请检查本设备的无线网络或网线。

load.silent 录像机没有应答网页服务。
load.noservice 网页服务没有应答。
load.lost 与录像机的连接已断开。
load.unreadable 录像机的应答无法识别。

login.title 登录
login.password 密码
login.go 登录
login.checking 正在核对密码…
login.counting 密码错误，录像机正在记录…
login.wrong 密码错误，还可以尝试 {left} 次。
login.locked 密码连续输错五次，已锁定。
login.left 剩余时间：{time}
login.open 锁定已结束，可以重新登录。
login.silent 录像机没有应答，无法核对密码。
login.impossible 录像机不可能有这样的密码。
login.cookies 请允许此地址使用 Cookie，否则无法保持登录。
login.moved 录像机已在新地址上应答。

card.gps 定位
card.mobile 移动网络
card.wifi 无线网络
card.platforms 平台
card.disks 存储
card.io 输入输出
card.versions 版本
summary.device 设备编号
summary.ignition 点火
summary.network 网络
status.online 已连接
status.offline 未连接
status.fitted 有
status.missing 无
status.unknown 未知
status.signal {bars}/{most} 格（{value}）
status.moment 读取时间 {time}
status.stale 以下为 {time} 的数据。
gps.module 定位模块
gps.position 位置
mobile.module 模块
mobile.dial 连接
mobile.signal 信号
mobile.sim SIM 卡
mobile.imei IMEI
mobile.imsi IMSI
mobile.iccid ICCID
mobile.revision 模块版本
wifi.module 模块
wifi.mode 模式
wifi.dial 连接
wifi.signal 信号
workMode.1 客户端
workMode.2 热点
platform.cms 平台服务器
platform.address 服务器地址
platform.jtt808 JT/T 808
platform.gb28181 GB28181
disk.1 硬盘 1
disk.2 硬盘 2
io.inputs 状态
version.app 应用程序
version.mcu 单片机
version.boot 引导程序
version.kernel 内核
version.files 文件系统
version.data 数据库
`;
