# The pages' own tests: their pure pieces under Node's test runner, and, once the program serves
# them, the whole round in headless Chromium (tests/web is included from tests/CMakeLists.txt).
# The embedded pages' table is checked as the server will read it.
target_link_libraries(nimbara_tests PRIVATE nimbara_web_assets)

add_executable(nimbara_pdf_symbol ${CMAKE_CURRENT_SOURCE_DIR}/web/pdf_symbol.cpp)
target_include_directories(nimbara_pdf_symbol PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(nimbara_pdf_symbol PRIVATE nimbara_test_support GTest::gtest ZXing::ZXing)

add_test(NAME Web.Units COMMAND ${NIMBARA_NODE} ${PROJECT_SOURCE_DIR}/web/tests/run-units.mjs ${CMAKE_BINARY_DIR}/web/unit-tests)
set_tests_properties(Web.Units PROPERTIES DEPENDS "" LABELS web)

# The browser round through `nimbara serve`; it skips (77) only when Chromium is missing outside CI.
if(NOT NIMBARA_SANITIZE AND NOT NIMBARA_FUZZ)
  add_test(NAME Web.Browser
    COMMAND ${NIMBARA_NODE} ${PROJECT_SOURCE_DIR}/web/tests/browser.mjs
      --nimbara $<TARGET_FILE:nimbara_cli> --symbol $<TARGET_FILE:nimbara_pdf_symbol>
      --jet ${PROJECT_SOURCE_DIR}/../shared/fixtures/jet --out ${CMAKE_BINARY_DIR}/web/screenshots)
  set_tests_properties(Web.Browser PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 600 LABELS web
    ENVIRONMENT "${NIMBARA_TEST_STATE}")
endif()
