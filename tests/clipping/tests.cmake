target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clip_records_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_convert_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_params_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_trim_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_convex_split_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clip_viewbox_test.cpp)
