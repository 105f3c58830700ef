# What the tests are compiled and linked into; see tovek_test. Most of what a test costs to compile are
# the headers that it includes, and to link is the library that it tests. So, unless TOVEK_UNITY_TESTS is
# off, fifteen are compiled at a time and all of one library linked together. Each is still run by itself,
# through a link to the program that bears its name.

# tovek_moc(TARGET SOURCE FOLDER): what the source includes as its .moc. The generator's own way costs
# a scan and an object file more for each target, which for so many small ones is half of the build.
function(tovek_moc target source folder)
  get_filename_component(name ${source} NAME_WE)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${folder}/${name}.moc VERBATIM DEPENDS ${source}
    COMMAND Qt6::moc ${source} -o ${folder}/${name}.moc)
  target_sources(${target} PRIVATE ${folder}/${name}.moc)
endfunction()

# tovek_test_program(TARGET LIBRARIES SOURCES...)
function(tovek_test_program target libraries)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE tovek_test_options ${libraries})
  set(kind rules)
  if(Qt6::Widgets IN_LIST libraries)
    set(kind widgets)
  endif()
  target_precompile_headers(${target} REUSE_FROM tovek_test_${kind})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTORCC OFF
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  # The link that stood there in a build with batches would have the linker write to its target.
  if(IS_SYMLINK ${CMAKE_BINARY_DIR}/tests/${target})
    file(REMOVE ${CMAKE_BINARY_DIR}/tests/${target})
  endif()
endfunction()

# tovek_batched_test(TARGET SOURCE LIBRARY LIBRARIES): has the test become a part of the program of all
# that test the same library, which links what any of them needs. With widgets it is another one: a
# test without them has another kind of application. The target builds that program.
function(tovek_batched_test target source library libraries)
  add_custom_target(${target})
  set_target_properties(${target} PROPERTIES tovek_source ${source})
  string(REGEX REPLACE "^(tovek_|Qt6::)" "tests_" program ${library})
  if(Qt6::Widgets IN_LIST libraries)
    string(APPEND program _widgets)
  endif()
  set_property(GLOBAL APPEND PROPERTY tovek_test_programs ${program})
  set_property(GLOBAL APPEND PROPERTY ${program}_tests ${target})
  set_property(GLOBAL APPEND PROPERTY ${program}_libraries ${libraries})
endfunction()

# tovek_batch(PROGRAM FOLDER TESTS...): adds the file that has the tests compiled as one.
function(tovek_batch program folder)
  set(file ${folder}/batch.cpp)
  set(sources "")
  foreach(test ${ARGN})
    get_target_property(source ${test} tovek_source)
    list(APPEND sources ${source})
    tovek_moc(${program} ${source} ${folder})
    get_target_property(definitions ${test} COMPILE_DEFINITIONS)
    if(definitions)
      target_compile_definitions(${program} PRIVATE ${definitions})
    endif()
    get_target_property(more ${test} SOURCES)
    get_target_property(room ${test} SOURCE_DIR)
    foreach(one ${more})
      if(one)
        cmake_path(ABSOLUTE_PATH one BASE_DIRECTORY ${room})
        target_sources(${program} PRIVATE ${one})
      endif()
    endforeach()
  endforeach()
  set(mocs ${sources})
  list(TRANSFORM mocs REPLACE "^.*/(.*)\\.cpp$" "${folder}/\\1.moc")
  add_custom_command(OUTPUT ${file} VERBATIM
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/batch.cmake ${sources} ${mocs}
    COMMAND ${CMAKE_COMMAND} -D OUTPUT=${file} -D "NAMES=${ARGN}" -D "SOURCES=${sources}"
      -D "MOCS=${mocs}" -P ${CMAKE_CURRENT_SOURCE_DIR}/batch.cmake)
  target_sources(${program} PRIVATE ${file})
  # Not for the whole program: two tests of it may have the same name, in different rooms.
  set_source_files_properties(${file} PROPERTIES INCLUDE_DIRECTORIES ${folder})
endfunction()

# tovek_batched_program(PROGRAM TESTS...): the program, and the links that the tests are started by.
function(tovek_batched_program program)
  set(declarations "")
  set(rows "")
  foreach(test ${ARGN})
    string(APPEND declarations "namespace ${test} {\nint main(int argc, char **argv);\n}\n")
    string(APPEND rows "    {\"${test}\", ${test}::main},\n")
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/programs/${program})
  configure_file(main.cpp.in ${folder}/main.cpp @ONLY)
  get_property(libraries GLOBAL PROPERTY ${program}_libraries)
  list(REMOVE_DUPLICATES libraries)
  tovek_test_program(${program} "${libraries}" ${folder}/main.cpp)
  # What is private to a test looks like a header's.
  target_compile_options(${program} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  set_source_files_properties(${folder}/main.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)

  # Fifteen at a time, so that several processors have something to do.
  list(LENGTH ARGN count)
  math(EXPR last "${count} - 1")
  foreach(first RANGE 0 ${last} 15)
    list(SUBLIST ARGN ${first} 15 tests)
    tovek_batch(${program} ${folder}/${first} ${tests})
  endforeach()
  foreach(test ${ARGN})
    add_dependencies(${test} ${program})
    file(CREATE_LINK ${program} ${CMAKE_BINARY_DIR}/tests/${test} SYMBOLIC)
  endforeach()
endfunction()

# tovek_batched_programs(): when all tests are known.
function(tovek_batched_programs)
  get_property(programs GLOBAL PROPERTY tovek_test_programs)
  list(REMOVE_DUPLICATES programs)
  foreach(program ${programs})
    get_property(tests GLOBAL PROPERTY ${program}_tests)
    tovek_batched_program(${program} ${tests})
  endforeach()
endfunction()
