// Chinese, every page, login, status. A line is a key, a blank and the text.
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
load.silent 录像机没有应答网页服务。
load.noservice 网页服务没有应答，可能正在重启。
load.lost 无法连接录像机，请检查本设备的无线网络或网线。
load.unreadable 录像机的应答无法识别。
login.title 登录
password 密码
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
section.gps 定位
section.mobile 移动网络
section.wifi 无线网络
section.disks 存储
section.io 输入输出
deviceNo 设备编号
ignition 点火
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
module 模块
dial 连接
signal 信号
mobile.sim SIM 卡
mobile.imei IMEI
mobile.imsi IMSI
mobile.iccid ICCID
mobile.revision 模块版本
wifi.mode 模式
workMode.1 客户端
workMode.2 热点
platform.cms 平台服务器
address 服务器地址
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
section.platforms 平台
section.versions 版本
`;
