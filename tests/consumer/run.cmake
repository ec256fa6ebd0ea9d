# Installs the build tree into a fresh prefix, configures and builds the consumer against it and
# runs it on the installed resources. Arguments: -DBUILD_DIR= -DSOURCE_DIR= -DWORK_DIR=
file(REMOVE_RECURSE ${WORK_DIR})
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}")
  endif()
endfunction()
step(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
step(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja
     -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_BUILD_TYPE=RelWithDebInfo
     -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
step(${CMAKE_COMMAND} --build ${WORK_DIR}/build -j2)
step(${WORK_DIR}/build/consumer ${WORK_DIR}/prefix/share/bkedittimecheck/resources
     ${WORK_DIR}/prefs)
