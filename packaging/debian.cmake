# Debian packages, one of each install component: cpack -G DEB.
set(ORV_PACKAGE_MAINTAINER "liborv-agent developers <liborv-agent@example.invalid>"
    CACHE STRING "Maintainer that the packages name")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${ORV_PACKAGE_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has a description of its own

# The stand-ins in the build tree belong to no package, so nothing depends on them through their
# files: what holds the platform's libraries on a camera is for the camera to say.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(platform "orv-camera-sim | orv-platform")

set(CPACK_COMPONENTS_ALL agent agent-dev client client-dev tools camera-sim)

set(CPACK_DEBIAN_AGENT_PACKAGE_NAME liborv-agent)
set(CPACK_DEBIAN_AGENT_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_AGENT_PACKAGE_RECOMMENDS ${platform})
set(CPACK_DEBIAN_AGENT_PACKAGE_SUGGESTS orv-tools)
set(CPACK_COMPONENT_AGENT_DESCRIPTION "on-device test agent for an embedded camera
The agent is a shared library. A host process loads it; from then on a test
tool drives the camera through the platform's key-value store: it injects keys
and touches, asks for the target's figures and runs periodic monitors.

This package has the library, a host for it (orv-host) and a systemd unit,
which is neither enabled nor started by the installation.

The agent loads the camera's own store, log and version libraries, or those of
orv-camera-sim, whichever are there.")

set(CPACK_DEBIAN_AGENT-DEV_PACKAGE_NAME liborv-agent-dev)
set(CPACK_DEBIAN_AGENT-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_AGENT-DEV_PACKAGE_DEPENDS "liborv-agent (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_AGENT-DEV_DESCRIPTION "on-device test agent for an embedded camera - development
What a host process of its own is built with: the agent's C headers, and how to
find the library with pkg-config (orv-agent) or CMake (orv::agent).")

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME liborv-client)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS ${platform})
set(CPACK_COMPONENT_CLIENT_DESCRIPTION "client library for a camera's on-device test agent
A program drives a camera through this library: it injects keys and touches,
asks for the target's figures and watches its monitors. The library finds the
camera through the platform's key-value store, and loads the camera's own store
library or that of orv-camera-sim, whichever is there.")

set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_NAME liborv-client-dev)
set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_DEPENDS "liborv-client (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_CLIENT-DEV_DESCRIPTION "client library for a camera's on-device test agent - development
What a test program is built with: the library's header for C and that for C++,
and how to find the library with pkg-config (orv-client) or CMake (orv::client).")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orv-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "liborv-client (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS ${platform}) # the log's reader, for orvctl log
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS liborv-agent)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "test tool for a camera's on-device agent
orvctl sends commands to the agent through the platform's key-value store and
prints the answers.")

set(CPACK_DEBIAN_CAMERA-SIM_PACKAGE_NAME orv-camera-sim)
set(CPACK_DEBIAN_CAMERA-SIM_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_CAMERA-SIM_PACKAGE_DEPENDS "bubblewrap, xvfb")
set(CPACK_DEBIAN_CAMERA-SIM_PACKAGE_PROVIDES orv-platform)
set(CPACK_DEBIAN_CAMERA-SIM_PACKAGE_SUGGESTS "liborv-agent, orv-tools")
set(CPACK_COMPONENT_CAMERA-SIM_DESCRIPTION "simulated camera for trying its test agent
Stand-ins for the camera's store, log and version libraries, a camera
application, and orv-camera, which runs a command in a simulated camera: with
processes, a screen and a memory card of its own.")

foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} upper)
  install(FILES copyright COMPONENT ${component}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
endforeach()

include(CPack)
