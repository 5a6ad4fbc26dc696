target_compile_definitions(
  ${folder}_tests
  PRIVATE ZENTAVO_RECORDED_PAGES="${PROJECT_SOURCE_DIR}/tests/platform/recorded_pages.txt")
