add_executable(host_backends_test backends_test.cpp)
target_compile_definitions(host_backends_test PRIVATE
  ACECONV_YANG_DIRECTORY="${PROJECT_SOURCE_DIR}/yang"
  ACECONV_EXAMPLES_DIRECTORY="${PROJECT_SOURCE_DIR}/examples")
target_link_libraries(host_backends_test PRIVATE aceconv_flags aceconv_host ipv4_acl_ace
                                                 entry_generator GTest::gtest_main)
gtest_discover_tests(host_backends_test TEST_PREFIX host. PROPERTIES TIMEOUT 1800)
