// English, the pages with forms. A line is a key, a blank and the text.
export default `
save Save
discard Discard changes
cancel Cancel
reveal Show
choice.other Other ({value})
value.absent not there
state.loading Reading from the recorder…
state.draft Your unsaved changes are back.
state.unchanged Nothing has been changed.
state.invalid Please correct the marked field.
state.checking Comparing with the recorder…
state.sending Sending…
state.restarting Sent. The service restarts when the recorder accepts; please wait.
state.reading Reading back from the recorder…
state.progress In progress
state.elsewhere Nothing sent: somebody changed this section since you opened it.
state.elsewhere.next What you typed is still here. Check it and save again.
end.applied Saved. The recorder was read again and holds these values.
end.adjusted Saved in part. The recorder holds other values here:
end.refused Refused by the recorder. Its values have not changed.
end.silent The recorder does not answer. Nothing is known to be saved.
end.noservice The web service does not answer. Whether the values arrived is unknown.
end.lost Connection lost. Whether the values arrived is unknown.
end.unreadable The answer cannot be read. Whether the values arrived is unknown.
limit.range {min} to {max}.
limit.bytes Up to {most} bytes.
limit.between {least} to {most} bytes.
error.empty Please fill in.
error.short Too short: {used} bytes, at least {limit}.
error.long Too long: {used} bytes, at most {limit}. A Chinese character takes 2.
error.entities Too long on the way: {used} bytes, at most {limit}. Each of " < & takes 4 to 6.
error.char The recorder cannot store this character: {char}
error.range Please enter a number from {min} to {max}.
error.ipv4 Please enter an address such as 192.168.1.88.
error.host Please enter a domain name such as server.example.com.
error.mac Please enter six pairs such as 00:00:5E:00:53:01.
error.clock Please choose date and time.
error.choose Two different IDs: please choose one.
error.current This is not the present password.
error.repeat The two new passwords differ.
section.base Number and clock
timeZone Time zone
timeZone.help The recorder’s own zone number.
gpsTime Set the clock by positioning
clock Clock
clock.keep Leave as it is
clock.now Set to this device’s time
clock.set Set to another time
clock.chosen Other time
section.mirror Mirror
leftRight Swap left and right
upDown Swap up and down
section.mainStream Main stream
section.subStream Sub stream
frameRate Frame rate (pictures per second)
bitRate Bit rate (kbit/s)
code.help The recorder’s own number.
section.netMode Network mode
netType Mode number
section.localNet Local Ethernet
localIp IP address
netMask Network mask
gateWay Gateway
mac MAC address
workMode Working mode
workMode.help Station joins a network, access point opens one.
ssid Network name (SSID)
wifiPassword Wi-Fi password
authMode Authentication number
cryptType Cipher number
dhcp Give out addresses (DHCP)
wifi.ap These are the access point’s stored values. Most recorders take the mode alone and keep them.
wifi.station These are the station’s stored values.
wifi.unknown The other mode’s values could not be read: check name and password.
mobileType Network type number
apn Access point name (APN)
phoneNo Dial number
userName User name
move.title Change the address of this recorder?
move.text These pages will then be at {origin}. This page waits for the recorder and follows it.
move.hint Your device must be able to reach the new address.
move.go Change address
move.waiting Sent. Waiting for the recorder at {origin} …
move.silent The address was sent, but nothing answers there yet:
section.server Platform server
addressType Address by
addressType.0 IP address
addressType.1 Domain name
port Port
section.gb28181 GB28181 platform
gbEnable Connect to the platform
streamType Stream type
streamType.help Kept only while the connection is on.
streamType.0 Type 0
streamType.1 Type 1
manufacturer Manufacturer
modelName Model
serverPort Server port
serverId Server ID
deviceId Device ID
devicePort Device port
id.title Channel IDs
id.help The lens ID of channel 3 is also the alarm-input ID of channel 1, and so on: one place holds both. Up to 31 bytes each.
id.channel Channel
id.lensHead Lens ID
id.alarmHead Alarm-input ID
id.lens Lens ID of channel {channel}
id.alarm Alarm-input ID of channel {channel}
id.shared , also lens ID of channel {channel}
id.twin Same as alarm-input ID of channel {channel}
id.open The recorder holds lens {lens} and alarm input {alarm}
id.conflict The recorder holds two IDs in places that can only be written as one. Please choose:
id.keepLens Keep lens IDs
id.keepAlarm Keep alarm-input IDs
id.hidden Saving also overwrites IDs of channels that this recorder does not have:
id.hiddenRow Channel {channel}: lens {lens}, alarm input {alarm}
section.changePassword Password
currentPassword Present password
newPassword New password
repeatPassword New password again
section.lock Lock after wrong entries
lock.help Five wrong passwords within an hour lock the sign-in for an hour.
lock.count Wrong entries
lock.of {count} of {most}
lock.state Sign-in
lock.open Open
lock.locked Locked for {time} more
lock.reset Set counter to zero
section.export Save configuration to a file
export.help All settings in one file, passwords included.
export.go Export
export.busy Reading all settings…
export.done Handed to the browser as {name}.
section.import Restore configuration from a file
import.help The file is checked and compared here. Nothing is sent before you agree.
import.choose Choose a file
import.none No file chosen
import.comparing Comparing the file with the recorder…
import.foreign This file is no configuration of a recorder.
import.empty This configuration holds no settings.
import.deep This configuration is nested more than {limit} levels deep.
import.char The recorder cannot store the character {char} in {path}.
import.long This configuration is too long: {used} bytes, at most {limit}.
import.same The recorder already holds everything in this file.
import.count Settings that would change: {count}
import.setting Setting
import.now Recorder now
import.file File
import.title Write this file to the recorder?
import.question Settings that change: {count}. The service restarts afterwards.
import.go Import
section.recorderLanguage Language
language Language of the recorder
language.help For its own screen, and first choice of these pages. The button above changes only this browser.
language.zh Chinese
language.en English
`;
