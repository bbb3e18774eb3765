# stage(<file> <target path> <mode>) and stage_compressed: put a file into the tree from which cpack
# makes a package. Its root is DESTDIR for some generators, and the beginning of the prefix for
# others.
if(DEFINED ENV{DESTDIR} AND NOT "$ENV{DESTDIR}" STREQUAL "")
  set(stage $ENV{DESTDIR})
else()
  get_filename_component(stage ${CMAKE_INSTALL_PREFIX}/../.. ABSOLUTE)
endif()
set(readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(plain FILE_PERMISSIONS ${readable})
set(script FILE_PERMISSIONS ${readable} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)

# The modes are explicit, because those of a checkout depend on its owner's settings.
function(stage from path mode)
  get_filename_component(folder ${path} DIRECTORY)
  get_filename_component(name ${from} NAME)
  file(COPY ${from} DESTINATION ${stage}${folder} ${${mode}})
  file(RENAME ${stage}${folder}/${name} ${stage}${path})
endfunction()

function(stage_compressed from path)
  execute_process(COMMAND gzip -9nc ${from} OUTPUT_FILE ${CPACK_WEBCTRL_FILES}/compressed
                  COMMAND_ERROR_IS_FATAL ANY)
  stage(${CPACK_WEBCTRL_FILES}/compressed ${path} plain)
endfunction()

set(here ${CMAKE_CURRENT_LIST_DIR})
