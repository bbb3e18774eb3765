// English: what every page shows, the login and the status. The forms' part is en-sets.js. One line a text: key, blank, text.
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
lead.status What the recorder is doing, read again every few seconds.
lead.device Number, time zone and clock.
lead.video Picture and streams of the first camera.
lead.network Local address, Wi-Fi and mobile network.
lead.platforms The servers that the recorder reports to.
lead.security The password of these pages and the lock after wrong entries.
lead.maintenance Versions, configuration file and language.

fault.noservice The recorder’s service does not answer
fault.noservice.help It may be restarting or busy with a slow request.
fault.lost No connection to the recorder
fault.lost.help Check the Wi-Fi or cable of this device.

load.silent The recorder does not answer its web service.
load.noservice The web service does not answer.
load.lost The connection to the recorder is lost.
load.unreadable The recorder gave an answer that these pages cannot use.

login.title Sign in
login.password Password
login.go Sign in
login.checking Checking the password…
login.counting Wrong password. The recorder notes the attempt…
login.wrong Wrong password. Attempts left: {left}.
login.locked Locked after five wrong entries.
login.left Time left: {time}
login.open The lock has ended. You can sign in again.
login.silent The recorder does not answer, so the password cannot be checked.
login.impossible No password of the recorder looks like this.
login.cookies Allow cookies for this address to stay signed in.
login.moved The recorder answers at its new address.

card.gps Positioning
card.mobile Mobile network
card.wifi Wi-Fi
card.platforms Platforms
card.disks Storage
card.io Inputs and outputs
card.versions Versions
summary.device Device number
summary.ignition Ignition
summary.network Network
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
mobile.module Module
mobile.dial Connection
mobile.signal Signal
mobile.sim SIM card
mobile.imei IMEI
mobile.imsi IMSI
mobile.iccid ICCID
mobile.revision Module revision
wifi.module Module
wifi.mode Mode
wifi.dial Connection
wifi.signal Signal
workMode.1 Station
workMode.2 Access point
platform.cms Platform server
platform.address Server address
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
`;
