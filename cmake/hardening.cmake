# What makes faults of memory harder to use. tests/hardened.sh looks for it in what was built.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()
target_compile_options(aceconv_flags INTERFACE -fstack-protector-strong)
# Checked branches, by the names that they have on x86-64 and aarch64.
check_cxx_compiler_flag(-fcf-protection ACECONV_HAS_CF_PROTECTION)
check_cxx_compiler_flag(-mbranch-protection=standard ACECONV_HAS_BRANCH_PROTECTION)
if(ACECONV_HAS_CF_PROTECTION)
  target_compile_options(aceconv_flags INTERFACE -fcf-protection)
elseif(ACECONV_HAS_BRANCH_PROTECTION)
  target_compile_options(aceconv_flags INTERFACE -mbranch-protection=standard)
endif()
target_link_options(aceconv_flags INTERFACE -Wl,-z,relro,-z,now)
# Bounded calls need the optimiser; without it debuggers want the paths of the sources.
if(NOT CMAKE_BUILD_TYPE STREQUAL Debug)
  target_compile_options(aceconv_flags INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 # 2 where the compiler has no more
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endif()
