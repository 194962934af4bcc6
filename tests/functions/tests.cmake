target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/geolib_linear_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_frames_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_planar_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/geolib_spatial_test.cpp)
