# The two shared libraries, put together from the rooms. Version scripts keep what a room needs
# of the standard library and of Boost inside.
function(diags_add_shared name)
  cmake_parse_arguments(SHARED "" "SCRIPT" "ROOMS" ${ARGN})
  set(objects)
  foreach(room ${SHARED_ROOMS})
    list(APPEND objects $<TARGET_OBJECTS:${room}>)
  endforeach()
  add_library(${name} SHARED ${objects})
  add_library(diagsrunner::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
      LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
      LINK_DEPENDS ${SHARED_SCRIPT} INSTALL_RPATH "$ORIGIN")
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_include_directories(${name} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner>)
  target_link_options(${name} PRIVATE -Wl,--version-script=${SHARED_SCRIPT} -Wl,--no-undefined)
  if(DIAGSRUNNER_SANITIZE)
    target_link_options(${name} PRIVATE -fsanitize=${DIAGSRUNNER_SANITIZE} -Wl,-z,undefs)
  endif()
endfunction()

diags_add_shared(diagsplatform
  SCRIPT ${PROJECT_SOURCE_DIR}/platform/diagsplatform.map
  ROOMS diags_contract diags_services diags_model diags_schema diags_cmpi diags_cimxml diags_setup)
target_link_libraries(diagsplatform
  PUBLIC Boost::headers
  PRIVATE CURL::libcurl EXPAT::EXPAT spdlog::spdlog Threads::Threads ${CMAKE_DL_LIBS})

diags_add_shared(diagsrunner
  SCRIPT ${PROJECT_SOURCE_DIR}/runner/diagsrunner.map
  ROOMS diags_runner diags_parsers)
target_link_libraries(diagsrunner PUBLIC diagsplatform PRIVATE Threads::Threads)
