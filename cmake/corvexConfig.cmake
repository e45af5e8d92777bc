# find_package(corvex): the imported targets corvex::corvex (libcorvex.so, the header, and the
# release library) and corvex::corvex_release / corvex::corvex_release_static.
include(${CMAKE_CURRENT_LIST_DIR}/corvexTargets.cmake)
