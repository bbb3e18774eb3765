// Chinese, the pages with forms. A line is a key, a blank and the text.
export default `
save 保存
discard 放弃修改
cancel 取消
reveal 显示
choice.other 其他（{value}）
value.absent 不存在
state.loading 正在读取录像机…
state.draft 已恢复您未保存的修改。
state.unchanged 没有任何修改。
state.invalid 请更正标出的项目。
state.checking 正在与录像机核对…
state.sending 正在发送…
state.restarting 已发送。录像机接受后服务会重启，请稍候。
state.reading 正在从录像机读回…
state.progress 进行中
state.elsewhere 尚未发送：打开本页后，有人修改了这些设置。
state.elsewhere.next 您的修改仍然保留，请检查后再次保存。
end.applied 已保存。重新读取录像机，确认为这些值。
end.adjusted 部分已保存。录像机中的以下值不同：
end.refused 录像机拒绝，其中的值没有变化。
end.silent 录像机没有应答，无法确认是否保存。
end.noservice 网页服务没有应答，无法确认是否送达。
end.lost 连接已断开，无法确认是否送达。
end.unreadable 应答无法识别，无法确认是否送达。
limit.range {min} 至 {max}。
limit.bytes 最多 {most} 字节。
limit.between {least} 至 {most} 字节。
error.empty 请填写。
error.short 太短：{used} 字节，至少 {limit} 字节。
error.long 太长：{used} 字节，最多 {limit} 字节。一个汉字占 2 字节。
error.entities 发送时太长：{used} 字节，最多 {limit} 字节。字符 " < & 各占 4 至 6 字节。
error.char 录像机无法保存此字符：{char}
error.range 请输入 {min} 至 {max} 的数字。
error.ipv4 请输入地址，例如 192.168.1.88。
error.host 请输入域名，例如 server.example.com。
error.mac 请输入六组十六进制数，例如 00:00:5E:00:53:01。
error.clock 请选择日期和时间。
error.choose 有两个不同的编号，请选择一个。
error.current 当前密码不正确。
error.repeat 两次输入的新密码不一致。
section.base 编号和时钟
timeZone 时区
timeZone.help 录像机自己的时区号。
gpsTime 定位校时
clock 时钟
clock.keep 保持不变
clock.now 设为本设备的时间
clock.set 设为其他时间
clock.chosen 其他时间
section.mirror 镜像
leftRight 左右镜像
upDown 上下镜像
section.mainStream 主码流
section.subStream 子码流
frameRate 帧率（每秒帧数）
bitRate 码率（kbit/s）
code.help 录像机自己的编号。
section.netMode 网络模式
netType 模式编号
section.localNet 本地以太网
localIp IP 地址
netMask 子网掩码
gateWay 网关
mac MAC 地址
workMode 工作模式
workMode.help 客户端加入网络，热点开放网络。
ssid 网络名称（SSID）
wifiPassword 无线密码
authMode 认证方式编号
cryptType 加密方式编号
dhcp 分配地址（DHCP）
wifi.ap 这些是热点已保存的值。录像机通常只接受模式，保留这些值。
wifi.station 这些是客户端已保存的值。
wifi.unknown 无法读取另一模式的值，请检查名称和密码。
mobileType 网络类型编号
apn 接入点（APN）
phoneNo 拨号号码
userName 用户名
move.title 修改录像机的地址？
move.text 修改后页面地址为 {origin}。本页会在那里等待录像机并跳转。
move.hint 您的设备必须能访问新地址。
move.go 修改地址
move.waiting 已发送，正在等待录像机在 {origin} 应答…
move.silent 地址已发送，但新地址还没有应答：
section.server 平台服务器
addressType 地址类型
addressType.0 IP 地址
addressType.1 域名
port 端口
section.gb28181 GB28181 平台
gbEnable 接入平台
streamType 码流类型
streamType.help 仅在接入时保存。
streamType.0 类型 0
streamType.1 类型 1
manufacturer 制造商
modelName 型号
serverPort 服务器端口
serverId 服务器编号
deviceId 设备编号
devicePort 设备端口
id.title 通道编号
id.help 通道 3 的镜头编号同时也是通道 1 的报警输入编号，以此类推：两者共用一个位置。每个最多 31 字节。
id.channel 通道
id.lensHead 镜头编号
id.alarmHead 报警输入编号
id.lens 通道 {channel} 镜头编号
id.alarm 通道 {channel} 报警输入编号
id.shared ，也是通道 {channel} 镜头编号
id.twin 与通道 {channel} 报警输入编号相同
id.open 录像机中镜头为 {lens}，报警输入为 {alarm}
id.conflict 录像机有些共用位置存有两个编号，只能写入一个，请选择：
id.keepLens 保留镜头编号
id.keepAlarm 保留报警输入编号
id.hidden 保存还会覆盖不存在的通道的编号：
id.hiddenRow 通道 {channel}：镜头 {lens}，报警输入 {alarm}
section.changePassword 密码
currentPassword 当前密码
newPassword 新密码
repeatPassword 再次输入新密码
section.lock 输错密码后的锁定
lock.help 一小时内输错五次密码，登录锁定一小时。
lock.count 输错次数
lock.of {count}/{most}
lock.state 登录
lock.open 开放
lock.locked 锁定，还剩 {time}
lock.reset 计数清零
section.export 导出配置文件
export.help 全部设置保存为一个文件，包含密码。
export.go 导出
export.busy 正在读取全部设置…
export.done 已交给浏览器：{name}。
section.import 导入配置文件
import.help 文件先在这里检查和比较，您同意之前不会发送。
import.choose 选择文件
import.none 未选择文件
import.comparing 正在与录像机比较…
import.foreign 此文件不是录像机的配置。
import.empty 此配置中没有设置。
import.deep 此配置嵌套超过 {limit} 层。
import.char 录像机无法保存 {path} 中的字符 {char}。
import.long 此配置太长：{used} 字节，最多 {limit} 字节。
import.same 录像机的设置与此文件相同。
import.count 将要修改的设置：{count} 项
import.setting 设置
import.now 录像机现值
import.file 文件中的值
import.title 将此文件写入录像机？
import.question 将修改 {count} 项设置，之后服务会重启。
import.go 导入
section.recorderLanguage 语言
language 录像机语言
language.help 用于录像机自己的屏幕，也是本页面的首选语言。上方按钮只改变本浏览器。
language.zh 中文
language.en 英语
`;
