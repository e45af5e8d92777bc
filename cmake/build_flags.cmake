# Compiler settings of every corvex target. They are directory properties, so they reach the
# targets of this project (its subdirectories included) and never a parent project's.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

# Results must be bit-for-bit reproducible, so the flags below decide the code whatever the
# build type or the parent's flags: no per-configuration flags, no fast-math (it reorders
# and simplifies floating-point arithmetic), no fused multiply-add (it rounds once where the
# source rounds twice). -fno-fast-math comes first: clang's resets the contraction mode.
foreach(language IN ITEMS C CXX)
  foreach(configuration IN ITEMS DEBUG RELEASE RELWITHDEBINFO MINSIZEREL)
    set(CMAKE_${language}_FLAGS_${configuration} "")
  endforeach()
endforeach()
add_compile_options(${CORVEX_OPTIMIZE} -g -fno-fast-math -ffp-contract=off -Wall -Wextra
                    -Wpedantic)
if(CORVEX_WERROR)
  add_compile_options(-Werror)
endif()
if(CORVEX_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
endif()
