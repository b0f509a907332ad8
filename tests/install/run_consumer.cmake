# Installs the build into WORK_DIR/prefix, then configures, builds and runs
# the consumer project against the installed package.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer -B ${WORK_DIR}/build
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_CXX_COMPILER=${CXX}
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
file(MAKE_DIRECTORY ${WORK_DIR}/root/telephony)
run(${CMAKE_COMMAND} -E env ORBA_PATH=${WORK_DIR}/root/ CMCFG_LOG_DIR=${WORK_DIR}
    ${WORK_DIR}/build/consumer)
