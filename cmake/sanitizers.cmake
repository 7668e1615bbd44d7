# Clang with AddressSanitizer and UndefinedBehaviorSanitizer, and with counters of what ran, so that one build and one run
# answer both questions. What there is to warn of is for the other builds.
set(CMAKE_CXX_COMPILER clang++-19)

set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
  "-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizers-ignored.txt")
# Some tests run several threads: counters that they tear would count a branch as not taken.
set(counters -fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping -fcoverage-mcdc
  -fcoverage-compilation-dir=.)
string(JOIN " " CMAKE_CXX_FLAGS_INIT -w ${sanitizers} ${counters})

# In a library of its own, so that the kit's clock still comes before it.
set(runtime "-shared-libasan -Wl,-rpath,/usr/lib/llvm-19/lib/clang/19/lib/linux")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${runtime}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${runtime}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${runtime}")
