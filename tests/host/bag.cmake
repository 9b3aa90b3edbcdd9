add_executable(bag_test
  bag_codec_test.cpp
  bag_description_test.cpp
  bag_hostile_test.cpp
  debug_test.cpp
  plugin_loader_test.cpp
  ${PROJECT_SOURCE_DIR}/src/record/descriptor.cpp)
if(NOT ACECONV_SANITIZE) # sanitizers bring an allocator of their own
  target_sources(bag_test PRIVATE bag_memory_test.cpp)
endif()
target_link_libraries(bag_test PRIVATE aceconv_host aceconv_flags GTest::gtest_main)

# Libraries that are plug-ins, or nearly.
foreach(variant good incomplete foreign refused)
  add_library(plugin_${variant} MODULE fake_plugin.c)
  string(TOUPPER ${variant} symbol)
  target_compile_definitions(plugin_${variant} PRIVATE ${symbol})
  target_link_libraries(plugin_${variant} PRIVATE aceconv_flags)
  add_dependencies(bag_test plugin_${variant})
  target_compile_definitions(bag_test PRIVATE
    PLUGIN_${symbol}="$<TARGET_FILE:plugin_${variant}>")
endforeach()
gtest_discover_tests(bag_test PROPERTIES TIMEOUT 120)
