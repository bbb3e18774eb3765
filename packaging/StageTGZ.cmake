# Puts into a recorder's archive what lies outside /opt/webctrl.
include(${CMAKE_CURRENT_LIST_DIR}/StageFile.cmake)

stage_file(init/S90webctrl /etc/init.d/S90webctrl)
