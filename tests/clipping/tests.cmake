target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clip_records_test.cpp)
