# Adds to a recorder's archive the files outside /opt/webctrl/bin.
include(${CMAKE_CURRENT_LIST_DIR}/StageFile.cmake)

stage(${here}/init/S90webctrl /etc/init.d/S90webctrl script)
stage_compressed(${CPACK_WEBCTRL_FILES}/copyright.all /opt/webctrl/share/copyright.gz)
