# What every target is compiled with. -ffp-contract=off: single-precision results, which are part of
# the contracts, must not change with the CPU.
add_library(fp_utils_options INTERFACE)
target_compile_options(fp_utils_options INTERFACE
  -Wall -Wextra $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
  -ffp-contract=off -fno-omit-frame-pointer)
if(FP_UTILS_WERROR)
  target_compile_options(fp_utils_options INTERFACE -Werror)
endif()
if(FP_UTILS_SANITIZE)
  target_compile_options(fp_utils_options INTERFACE
    -fsanitize=${FP_UTILS_SANITIZE} -fno-sanitize-recover=all)
  target_link_options(fp_utils_options INTERFACE -fsanitize=${FP_UTILS_SANITIZE})
  if(FP_UTILS_SANITIZE MATCHES undefined)
    # The runtime library of this check creates pipes, which would fail when tests inject faults
    # into pipe().
    target_compile_options(fp_utils_options INTERFACE -fno-sanitize=vptr)
  endif()
endif()
if(FP_UTILS_FUZZ)
  # Counts what an input reaches. The simulated device is without, since shells load it.
  target_compile_options(fp_utils_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
