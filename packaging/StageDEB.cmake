# Puts into a Debian package what lies outside /opt/webctrl.
include(${CMAKE_CURRENT_LIST_DIR}/StageFile.cmake)

stage_file(systemd/webctrl.service /lib/systemd/system/webctrl.service)
stage_file(init/S90webctrl /etc/init.d/webctrl)
stage_file(../LICENSE /usr/share/doc/webctrl/copyright)
stage_compressed(../CHANGELOG.md /usr/share/doc/webctrl/changelog.gz)
stage_compressed(webctrl.8 /usr/share/man/man8/webctrl.8.gz)
foreach(name webctrl.conf away.html)
  stage_file(proxy/${name} /usr/share/doc/webctrl/examples/proxy/${name})
endforeach()
