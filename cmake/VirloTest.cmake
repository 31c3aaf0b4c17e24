# virlo_add_test(NAME [QT] [SERIAL] SOURCES… LIBRARIES… [ENVIRONMENT…] [TIMEOUT seconds]): one test program, run whole by CTest,
# beside three others: it waits for events and allows for a busy machine, and has its own folders and ports. One that
# measures time, which a busy machine stretches, is SERIAL and runs alone.
# The test support's main watches the log: a line that no test expected fails the test in which it was written. With QT
# the program brings its own main, which makes its application object and then returns virlo::test::runAllTests.
function(virlo_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test "QT;SERIAL" "TIMEOUT" "SOURCES;LIBRARIES;ENVIRONMENT")
  add_executable(${name} ${test_SOURCES})
  target_link_libraries(${name} PRIVATE virlo-test-support ${test_LIBRARIES})
  if(NOT test_QT)
    target_link_libraries(${name} PRIVATE virlo-test-main)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  if(NOT test_TIMEOUT)
    set(test_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT} ENVIRONMENT "${test_ENVIRONMENT}"
    RUN_SERIAL "${test_SERIAL}")
endfunction()
