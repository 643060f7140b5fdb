# The pages nimbara serve embeds: web/ is built with the npm registry's TypeScript and esbuild (from the
# committed lockfile) into the build tree, then turned into web_assets.cpp, compiled into the static
# library nimbara_web_assets that the program links.
find_program(NIMBARA_NODE node REQUIRED)
find_program(NIMBARA_NPM npm REQUIRED)
find_program(NIMBARA_GZIP gzip REQUIRED)

set(NIMBARA_WEB_SOURCE ${PROJECT_SOURCE_DIR}/web)
set(NIMBARA_WEB_DIST ${CMAKE_BINARY_DIR}/web/dist)
set(NIMBARA_WEB_ASSETS_CPP ${CMAKE_BINARY_DIR}/generated/web/web_assets.cpp)
# Each file's size as sent and as gzip copy: the bundle-size figure reads it.
set(NIMBARA_WEB_SIZES ${CMAKE_BINARY_DIR}/web/asset-sizes.tsv)
# npm writes this file last on every install, so it is older than the lockfile exactly when the
# packages must be installed again (or missing when they never were).
set(NIMBARA_WEB_INSTALLED ${NIMBARA_WEB_SOURCE}/node_modules/.package-lock.json)

add_custom_command(
  OUTPUT ${NIMBARA_WEB_INSTALLED}
  COMMAND ${NIMBARA_NPM} ci --no-audit --no-fund --loglevel=error
  WORKING_DIRECTORY ${NIMBARA_WEB_SOURCE}
  DEPENDS ${NIMBARA_WEB_SOURCE}/package.json ${NIMBARA_WEB_SOURCE}/package-lock.json
  COMMENT "Installing the pages' packages from web/package-lock.json"
  VERBATIM)

file(GLOB_RECURSE NIMBARA_WEB_INPUTS CONFIGURE_DEPENDS ${NIMBARA_WEB_SOURCE}/src/*)
add_custom_command(
  OUTPUT ${CMAKE_BINARY_DIR}/web/dist.stamp
  COMMAND ${NIMBARA_NODE} node_modules/typescript/bin/tsc --noEmit -p .
  COMMAND ${NIMBARA_NODE} build.mjs ${NIMBARA_WEB_DIST}
  COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_BINARY_DIR}/web/dist.stamp
  WORKING_DIRECTORY ${NIMBARA_WEB_SOURCE}
  DEPENDS ${NIMBARA_WEB_INSTALLED} ${NIMBARA_WEB_INPUTS} ${NIMBARA_WEB_SOURCE}/build.mjs
    ${NIMBARA_WEB_SOURCE}/tsconfig.json
  COMMENT "Type-checking and bundling the pages"
  VERBATIM)

add_custom_command(
  OUTPUT ${NIMBARA_WEB_ASSETS_CPP} ${NIMBARA_WEB_SIZES}
  COMMAND ${CMAKE_COMMAND} -DDIST=${NIMBARA_WEB_DIST} -DOUT=${NIMBARA_WEB_ASSETS_CPP} -DGZIP=${NIMBARA_GZIP}
    -DSIZES=${NIMBARA_WEB_SIZES} -P ${PROJECT_SOURCE_DIR}/cmake/embed_web_assets.cmake
  DEPENDS ${CMAKE_BINARY_DIR}/web/dist.stamp ${PROJECT_SOURCE_DIR}/cmake/embed_web_assets.cmake
  COMMENT "Embedding the bundled pages"
  VERBATIM)

add_library(nimbara_web_assets STATIC ${NIMBARA_WEB_ASSETS_CPP})
target_include_directories(nimbara_web_assets PUBLIC ${PROJECT_SOURCE_DIR}/tools/nimbara/serve)
