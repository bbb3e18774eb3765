// English, every page, login, status. A line is a key, a blank and the text.
export default `
brand Vehicle recorder
language.other 中文
nav Pages
skip Skip to content
leave Sign out
again Try again
on On
off Off
value.none –
page.status Status
page.device Device
page.video Video
page.network Network
page.platforms Platforms
page.security Security
page.maintenance Maintenance
load.silent The recorder does not answer its web service.
load.noservice The web service does not answer. It may be restarting.
load.lost No connection to the recorder. Check the Wi-Fi or cable of this device.
load.unreadable The recorder gave an answer that these pages cannot use.
login.title Sign in
password Password
login.go Sign in
login.checking Checking the password…
login.counting Wrong password. The recorder notes the attempt…
login.wrong Wrong password. Attempts left: {left}.
login.locked Locked after five wrong entries.
login.left Time left: {time}
login.open The lock has ended. You can sign in again.
login.silent The recorder does not answer: the password cannot be checked.
login.impossible No password of the recorder looks like this.
login.cookies Allow cookies for this address to stay signed in.
login.moved The recorder answers at its new address.
section.gps Positioning
section.mobile Mobile network
section.wifi Wi-Fi
section.disks Storage
section.io Inputs and outputs
deviceNo Device number
ignition Ignition
status.online Connected
status.offline Not connected
status.fitted Present
status.missing Not present
status.unknown Unknown
status.signal {bars} of {most} bars ({value})
status.moment Read at {time}
status.stale Shown below: values of {time}.
gps.module Receiver
gps.position Position
module Module
dial Connection
signal Signal
mobile.sim SIM card
mobile.imei IMEI
mobile.imsi IMSI
mobile.iccid ICCID
mobile.revision Module revision
wifi.mode Mode
workMode.1 Station
workMode.2 Access point
platform.cms Platform server
address Server address
platform.jtt808 JT/T 808
platform.gb28181 GB28181
disk.1 Disk 1
disk.2 Disk 2
io.inputs States
version.app Application
version.mcu Controller
version.boot Boot loader
version.kernel Kernel
version.files File system
version.data Database
section.platforms Platforms
section.versions Versions
`;
