# Adds every direct subfolder that has a CMakeLists.txt, so that components
# can be added without editing a shared list.
function(vexil_add_subdirectories)
  file(GLOB children LIST_DIRECTORIES true RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/*)
  list(SORT children)
  foreach(child ${children})
    if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${child} AND EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${child}/CMakeLists.txt)
      add_subdirectory(${child})
    endif()
  endforeach()
endfunction()

# vexil_gtest(name SOURCES... LIBS...) : a GoogleTest executable registered with CTest; each test is
# named "<name>.<Suite>.<Test>", so CI can pick families by executable prefix (zelmar_, maths_, simplify_).
function(vexil_gtest name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS;ENV" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main)
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${T_ENV}")
endfunction()
