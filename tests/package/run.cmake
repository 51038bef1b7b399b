# Installs this build, moves it elsewhere, and builds and runs a foreign project against it.
cmake_minimum_required(VERSION 3.25)

function(must_succeed what)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message("${output}")
    message(FATAL_ERROR "${what} failed (${status}).")
  endif()
  message("${what}: done\n${output}")
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
must_succeed("Installing"
  ${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${CONFIG} --prefix ${WORK_DIR}/installed)
# Nothing in the package may remember where it was installed.
file(RENAME ${WORK_DIR}/installed ${WORK_DIR}/moved)

# The example of the README is a program of the foreign project.
file(READ ${SOURCE_DIR}/README.md readme)
string(FIND "${readme}" "```cpp\n" start)
if(start EQUAL -1)
  message(FATAL_ERROR "README.md has no C++ example (a block that begins with ```cpp).")
endif()
string(SUBSTRING "${readme}" ${start} -1 readme)
string(FIND "${readme}" "\n```\n" length)
math(EXPR length "${length} - 7")
string(SUBSTRING "${readme}" 7 ${length} readme)
file(WRITE ${WORK_DIR}/readme.cpp "${readme}")

# The libraries behind the host library are not to be found: its users need none of them.
must_succeed("Configuring the foreign project"
  ${CMAKE_COMMAND} -S ${FOREIGN_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
  -D CMAKE_PREFIX_PATH=${WORK_DIR}/moved -D CMAKE_BUILD_TYPE=${CONFIG}
  -D CMAKE_CXX_COMPILER=${CXX} -D CMAKE_CXX_FLAGS=${CXX_FLAGS}
  -D README_EXAMPLE=${WORK_DIR}/readme.cpp
  -D CMAKE_DISABLE_FIND_PACKAGE_urdfdom=TRUE -D CMAKE_DISABLE_FIND_PACKAGE_tinyxml2=TRUE
  -D CMAKE_DISABLE_FIND_PACKAGE_nlohmann_json=TRUE)
must_succeed("Building the foreign project" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)

file(GLOB programs ${WORK_DIR}/build/foreign_*)
if(NOT programs)
  message(FATAL_ERROR "The foreign project built no program in ${WORK_DIR}/build.")
endif()
foreach(program IN LISTS programs)
  must_succeed("Running ${program}" ${program})
endforeach()

# Every public member of the analysis is called from another module.
must_succeed("Looking for members that no other module calls"
  ${PYTHON} ${FOREIGN_DIR}/../members_called.py ${WORK_DIR}/moved/${INCLUDEDIR}/qmStaticStrength.h
  ${WORK_DIR}/moved/${LIBDIR}/libqmSSTRc.so ${WORK_DIR}/build/libother_module.so ${FOREIGN_DIR}/module.cpp)

# The same without CMake: the compiler, the headers and the two libraries are enough, with all warnings.
separate_arguments(flags UNIX_COMMAND "${CXX_FLAGS} -std=c++17 -Wall -Wextra -Wpedantic -Werror")
list(APPEND flags -I ${WORK_DIR}/moved/${INCLUDEDIR})
set(plain ${WORK_DIR}/plain)
file(MAKE_DIRECTORY ${plain})
must_succeed("Building a module by the compiler alone"
  ${CXX} ${flags} -shared -fPIC ${FOREIGN_DIR}/module.cpp -o ${plain}/module.so
  -L ${WORK_DIR}/moved/${LIBDIR} -lqmSSTRc -lqc -Wl,-rpath,${WORK_DIR}/moved/${LIBDIR})
must_succeed("Building its host by the compiler alone"
  ${CXX} ${flags} "-DMODULE_FILE=\"${plain}/module.so\"" "-DFIGURES_DIR=\"${WORK_DIR}/moved/${DATADIR}/sstr/figures\""
  ${FOREIGN_DIR}/loader.cpp -o ${plain}/loader -ldl)
must_succeed("Running it" ${plain}/loader)

# Each header stands by itself.
file(GLOB headers RELATIVE ${WORK_DIR}/moved/${INCLUDEDIR}
  ${WORK_DIR}/moved/${INCLUDEDIR}/*.h ${WORK_DIR}/moved/${INCLUDEDIR}/qc/*.h)
if(NOT headers)
  message(FATAL_ERROR "No header was installed in ${WORK_DIR}/moved/${INCLUDEDIR}.")
endif()
foreach(header IN LISTS headers)
  file(WRITE ${plain}/header.cpp "#include <${header}>\n")
  must_succeed("Compiling ${header} alone" ${CXX} ${flags} -fsyntax-only ${plain}/header.cpp)
endforeach()

must_succeed("Running the installed program" ${WORK_DIR}/moved/${BINDIR}/sstr --help)
