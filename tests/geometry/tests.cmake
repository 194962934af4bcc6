target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/VoGePoint3D_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeVector3D_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeMatrix3D_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeLine3d_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGePlane3d_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeCircle3d_test.cpp)
