add_executable(host_yang_test
  nearest_test.cpp
  text_test.cpp
  yang_modules_test.cpp
  yang_reader_test.cpp
  yang_refusal_test.cpp
  yang_writer_test.cpp
  ../plugin/entries.cpp # what the leaves of the base schema take
  ../plugin/record_text.cpp)
target_compile_definitions(host_yang_test PRIVATE
  ACECONV_YANG_DIRECTORY="${PROJECT_SOURCE_DIR}/yang")
target_link_libraries(host_yang_test PRIVATE aceconv_flags aceconv_host aceconv_keywords
                                             PkgConfig::yang GTest::gtest_main)
gtest_discover_tests(host_yang_test TEST_PREFIX host.)

find_program(YANGLINT yanglint REQUIRED)
add_test(NAME host.modules_pass_yanglint
         COMMAND ${YANGLINT} --verbose ${PROJECT_SOURCE_DIR}/yang/aceconv-base.yang
                 ${PROJECT_SOURCE_DIR}/yang/aceconv-um.yang)
set_tests_properties(host.modules_pass_yanglint PROPERTIES FAIL_REGULAR_EXPRESSION "warn;err")
