# stage_file(<file here> <path there>) and stage_compressed: put a file into the tree that cpack is
# making a package of. Its root is DESTDIR for some generators, and the head of the prefix for others.
if(DEFINED ENV{DESTDIR} AND NOT "$ENV{DESTDIR}" STREQUAL "")
  set(stage $ENV{DESTDIR})
else()
  get_filename_component(stage ${CMAKE_INSTALL_PREFIX}/../.. ABSOLUTE)
endif()

function(stage_folder path)
  get_filename_component(folder ${path} DIRECTORY)
  file(MAKE_DIRECTORY ${stage}${folder})
endfunction()

function(stage_file from path)
  stage_folder(${path})
  file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/${from} ${stage}${path})
endfunction()

function(stage_compressed from path)
  stage_folder(${path})
  execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_LIST_DIR}/${from} OUTPUT_FILE ${stage}${path}
                  COMMAND_ERROR_IS_FATAL ANY)
endfunction()
