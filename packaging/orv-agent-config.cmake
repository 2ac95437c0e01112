# find_package(orv-agent) gives the target orv::agent.
include(${CMAKE_CURRENT_LIST_DIR}/orv-agent-targets.cmake)
